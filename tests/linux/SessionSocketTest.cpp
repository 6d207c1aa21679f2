#include "platform/linux/freedesktop/SessionSocket.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QCoreApplication>
#include <cstring>
#include <future>

#include "platform/linux/freedesktop/BaseFolders.h"
#include "tests/support/TemporaryFolder.h"

namespace freedesktop {
namespace {

using Status = ns::InstanceReply::Status;
using namespace std::chrono_literals;

class SessionSocketTest : public testing::Test {
 protected:
  /// Asks from another thread while this one serves, as a main loop does.
  ns::InstanceReply askWhileServing(const std::string& request) {
    auto reply = std::async(std::launch::async, [&] { return askSession(path, request, 10s); });
    while (reply.wait_for(0s) != std::future_status::ready) application.processEvents(QEventLoop::AllEvents, 10);
    return reply.get();
  }
  static std::string echo(const std::string& request) { return "<" + request + ">"; }

  const support::TemporaryFolder folder;
  const std::string path = folder / "session";
  int argumentCount = 1;
  char name[5] = "test";
  char* arguments[2] = {name, nullptr};
  QCoreApplication application{argumentCount, arguments};
};

TEST_F(SessionSocketTest, OneInstanceAnswersTheOthers) {
  EXPECT_EQ(askSession(path, "x", 10s).status, Status::NotRunning);
  auto first = SessionSocket::claim(path, &echo);
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(SessionSocket::claim(path, &echo), nullptr);
  const std::string longest(60'000, 'x');
  for (const std::string& request : {std::string("settings about"), longest}) {
    const auto reply = askWhileServing(request);
    EXPECT_EQ(reply.status, Status::Answered);
    EXPECT_EQ(reply.text, "<" + request + ">");
  }
  first.reset();
  EXPECT_EQ(askSession(path, "x", 10s).status, Status::NotRunning);
  EXPECT_NE(SessionSocket::claim(path, &echo), nullptr);
}

TEST_F(SessionSocketTest, AnInstanceThatDoesNotServeIsSilentInTime) {
  const auto first = SessionSocket::claim(path, &echo);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(askSession(path, "x", 100ms).status, Status::Silent);
  EXPECT_LT(std::chrono::steady_clock::now() - start, 2s);
}

TEST_F(SessionSocketTest, VisitorsWhoSayNothingOrTooMuchDoNotStopTheService) {
  const auto first = SessionSocket::claim(path, &echo);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::strcpy(address.sun_path, (path + ".sock").c_str());
  std::vector<Descriptor> visitors;
  for (int i = 0; i < 100; ++i) {
    Descriptor visitor(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_NONBLOCK, 0));
    const int connected = connect(visitor.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address);
    if (connected == 0 && i % 2 == 0) send(visitor.get(), std::string(100'000, 'x').data(), 100'000, MSG_NOSIGNAL);
    visitors.push_back(std::move(visitor));
    application.processEvents();
  }
  EXPECT_EQ(askWhileServing("x").text, "<x>");
}

TEST_F(SessionSocketTest, AKilledInstanceLeavesNothingInTheWay) {
  int ready[2];
  ASSERT_EQ(pipe(ready), 0);
  const pid_t child = fork();
  if (child == 0) {
    const auto claim = SessionSocket::claim(path, &echo);
    const char byte = claim ? 'y' : 'n';
    if (write(ready[1], &byte, 1) == 1) pause();
    _exit(0);
  }
  char byte = 0;
  ASSERT_EQ(read(ready[0], &byte, 1), 1);
  ASSERT_EQ(byte, 'y');
  EXPECT_EQ(SessionSocket::claim(path, &echo), nullptr);
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
  EXPECT_EQ(askSession(path, "x", 10s).status, Status::NotRunning);
  const auto next = SessionSocket::claim(path, &echo);
  ASSERT_NE(next, nullptr);
  EXPECT_EQ(askWhileServing("x").text, "<x>");
  close(ready[0]);
  close(ready[1]);
}

TEST_F(SessionSocketTest, WithoutAFolderTheProgramStillStarts) {
  EXPECT_NE(SessionSocket::claim(folder / "missing/session", &echo), nullptr);
  EXPECT_NE(SessionSocket::claim("", &echo), nullptr);
}

TEST_F(SessionSocketTest, OnlyTheUsersOwnProcessesAndFoldersAreTrusted) {
  const auto server = SessionSocket::claim(path, [](const std::string&) {
    ADD_FAILURE() << "a stranger has been told";
    return std::string();
  });
  EXPECT_EQ(askSession(path, "x", 10s, geteuid() + 1).status, Status::NotRunning);
  QCoreApplication::processEvents();

  EXPECT_TRUE(isPrivateFolder(folder.path(), geteuid()));
  EXPECT_FALSE(isPrivateFolder(folder.path(), geteuid() + 1));
  ASSERT_EQ(symlink(folder.path().c_str(), (folder / "link").c_str()), 0);
  EXPECT_FALSE(isPrivateFolder(folder / "link", geteuid()));
  EXPECT_FALSE(isPrivateFolder("", geteuid()));
  setenv("XDG_RUNTIME_DIR", folder.path().c_str(), 1);
  EXPECT_TRUE(sessionPath().starts_with(folder.path() + '/'));
  ASSERT_EQ(chmod(folder.path().c_str(), 0770), 0);
  EXPECT_FALSE(sessionPath().starts_with(folder.path()));
}

}  // namespace
}  // namespace freedesktop
