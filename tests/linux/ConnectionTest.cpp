// X servers that lack something, and those that go.
#include "platform/linux/x11/Connection.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/socket.h>

#include "platform/linux/x11/DisplayList.h"
#include "platform/linux/x11/Window.h"
#include "tests/support/XvfbSession.h"

namespace x11 {
namespace {

TEST(ConnectionTest, WithoutXResourceAProcessIsTheOneThatItsWindowClaims) {
  const support::XvfbSession session("800x600x24", "X-Resource");
  const auto connection = Connection::open();
  const Atoms atoms(*connection);
  support::JournalWindow window(0, 0, 100, 100);
  EXPECT_EQ(processOfWindow(*connection, atoms, window.window()), 0);
  const std::uint32_t claim = 4711;
  xcb_change_property(connection->get(), XCB_PROP_MODE_REPLACE, window.window(), atoms.netWmPid, XCB_ATOM_CARDINAL, 32,
                      1, &claim);
  EXPECT_EQ(processOfWindow(*connection, atoms, window.window()), 4711);
  EXPECT_FALSE(connection->isBroken());
}

TEST(ConnectionTest, WithoutRandrTheScreenIsTheDisplay) {
  const support::XvfbSession session("800x600x24", "RANDR");
  const auto connection = Connection::open();
  DisplayList displays(*connection, *connection);
  ASSERT_EQ(displays.monitors().size(), 1U);
  EXPECT_TRUE(CGRectEqualToRect(displays.monitors()[0].display.bounds, CGRectMake(0, 0, 800, 600)));
  EXPECT_FALSE(connection->isBroken());
}

TEST(ConnectionTest, WritingToNobodyDoesNotEndTheProcess) {
  const support::XvfbSession session;
  const auto connection = Connection::open();
  // Of a server's end the library often reads before it writes; not so of a connection that the watchdog has closed.
  kill(session.serverPid(), SIGSTOP);
  shutdown(connection->fileDescriptor(), SHUT_WR);
  xcb_no_operation(connection->get());
  connection->flush();
  EXPECT_TRUE(connection->isBroken());
  // What is ignored would be inherited by every program that is started from here.
  support::ChildProcess program({"grep", "SigIgn", "/proc/self/status"});
  const auto ignored = program.readLine(support::patience);
  ASSERT_TRUE(ignored);
  EXPECT_EQ(std::stoull(ignored->substr(ignored->find(':') + 1), nullptr, 16) & (1ULL << (SIGPIPE - 1)), 0U);
}

}  // namespace
}  // namespace x11
