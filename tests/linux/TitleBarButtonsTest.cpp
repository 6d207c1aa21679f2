// Title-bar buttons of real GTK windows, proved by real clicks.
#include "platform/linux/atspi/TitleBarButtons.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/atspi/TitleBarLookup.h"
#include "platform/linux/x11/Connection.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/XvfbSession.h"

namespace {

using atspi::ButtonRole;
using atspi::TitleBarButton;
using atspi::TitleBarButtons;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr auto bound = 20s;
const std::string windowProgram = OSTREL_TEST_SUPPORT "/decorated_window.py";

/// An X server, a message bus and a window manager of the test's own, in the environment of the test's process.
class Session {
 public:
  explicit Session(const std::vector<std::string>& windowManager) {
    setenv("XDG_RUNTIME_DIR", folder_.path().c_str(), 1);
    setenv("HOME", folder_.path().c_str(), 1);
    setenv("XDG_CONFIG_HOME", folder_.path().c_str(), 1);
    setenv("DBUS_SESSION_BUS_ADDRESS", ("unix:path=" + folder_ / "session").c_str(), 1);
    setenv("GSETTINGS_BACKEND", "memory", 1);
    setenv("GIO_USE_VFS", "local", 1);  // else, where gvfs is installed, the window manager ends with its first bus
    setenv("LC_ALL", "C.UTF-8", 1);
    for (const char* name : {"LANGUAGE", "AT_SPI_BUS_ADDRESS", "WAYLAND_DISPLAY", "NO_AT_BRIDGE", "GTK_THEME"})
      unsetenv(name);
    connection_ = x11::Connection::open();
    if (!connection_) throw std::runtime_error("no X server");
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection_->get(), connection_->root(), XCB_CW_EVENT_MASK, &events);
    startBus();
    manager_.emplace(windowManager);
    if (!waitFor([this] { return !values(connection_->root(), "_NET_SUPPORTING_WM_CHECK").empty(); }))
      throw std::runtime_error("no window manager");
  }
  ~Session() { close(wake_); }

  void startBus() {
    bus_.emplace(std::vector<std::string>{"dbus-daemon", "--session", "--nofork", "--print-address=1",
                                          "--address=unix:path=" + folder_ / "session"});
    if (!bus_->readLine(bound)) throw std::runtime_error("no message bus");
  }
  /// The accessibility bus ends with the session's.
  void stopBus() {
    bus_.reset();
    std::filesystem::remove(folder_ / "session");
    // It leaves its address at the X server, where an application would take it for alive.
    xcb_delete_property(connection_->get(), connection_->root(), connection_->atom("AT_SPI_BUS"));
    connection_->synchronise();
  }

  /// Any thread: makes waitFor look again.
  void wake() const { eventfd_write(wake_, 1); }
  /// Looks again whenever the X server reports anything, and when woken.
  bool waitFor(const std::function<bool()>& condition) {
    const auto deadline = Clock::now() + bound;
    while (!condition()) {
      connection_->flush();
      std::array<pollfd, 2> ready{pollfd{connection_->fileDescriptor(), POLLIN, 0}, pollfd{wake_, POLLIN, 0}};
      const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
      auto event = connection_->pollEvent();
      if (!event && (left <= 0 || poll(ready.data(), ready.size(), static_cast<int>(left)) <= 0)) return condition();
      eventfd_t ignored = 0;
      if ((ready[1].revents & POLLIN) != 0) eventfd_read(wake_, &ignored);
    }
    return true;
  }

  std::vector<std::uint32_t> values(xcb_window_t window, std::string_view property) {
    const auto reply = connection_->reply(xcb_get_property_reply,
                                          xcb_get_property(connection_->get(), 0, window, connection_->atom(property),
                                                           XCB_GET_PROPERTY_TYPE_ANY, 0, 1024));
    if (!reply || reply->format != 32) return {};
    const auto* first = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return {first, first + reply->value_len};
  }
  std::string text(xcb_window_t window, std::string_view property) {
    const auto reply = connection_->reply(xcb_get_property_reply,
                                          xcb_get_property(connection_->get(), 0, window, connection_->atom(property),
                                                           XCB_GET_PROPERTY_TYPE_ANY, 0, 1024));
    if (!reply || reply->format != 8) return "";
    return {static_cast<const char*>(xcb_get_property_value(reply.get())), reply->value_len};
  }

  /// The window of that title once the window manager lists it.
  xcb_window_t window(const std::string& title) {
    xcb_window_t found = XCB_NONE;
    waitFor([&] {
      for (const auto candidate : values(connection_->root(), "_NET_CLIENT_LIST"))
        if (text(candidate, "_NET_WM_NAME") == title) found = candidate;
      return found != XCB_NONE;
    });
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection_->get(), found, XCB_CW_EVENT_MASK, &events);
    connection_->synchronise();
    return found;
  }
  bool exists(xcb_window_t window) {
    return std::ranges::count(values(connection_->root(), "_NET_CLIENT_LIST"), window) > 0;
  }
  bool isMinimised(xcb_window_t window) {
    const auto state = values(window, "WM_STATE");
    return !state.empty() && state[0] == 3;
  }
  bool isMaximised(xcb_window_t window) {
    return std::ranges::count(values(window, "_NET_WM_STATE"), connection_->atom("_NET_WM_STATE_MAXIMIZED_VERT")) > 0;
  }

  atspi::Window describe(xcb_window_t window) {
    atspi::Window described;
    described.id = window;
    const auto pid = values(window, "_NET_WM_PID");
    const auto size = connection_->reply(xcb_get_geometry_reply, xcb_get_geometry(connection_->get(), window));
    const auto place =
        connection_->reply(xcb_translate_coordinates_reply,
                           xcb_translate_coordinates(connection_->get(), window, connection_->root(), 0, 0));
    if (pid.empty() || !size || !place) return described;
    auto shadow = values(window, "_GTK_FRAME_EXTENTS");
    shadow.resize(4);
    described.pid = static_cast<pid_t>(pid[0]);
    described.client = CGRectMake(place->dst_x, place->dst_y, size->width, size->height);
    described.frame = CGRectMake(place->dst_x + static_cast<int>(shadow[0]), place->dst_y + static_cast<int>(shadow[2]),
                                 size->width - static_cast<int>(shadow[0] + shadow[1]),
                                 size->height - static_cast<int>(shadow[2] + shadow[3]));
    described.maximized = isMaximised(window);
    described.title = text(window, "_NET_WM_NAME");
    return described;
  }

  /// `point` is relative to the window's visible frame.
  void click(xcb_window_t window, CGPoint point) {
    const auto frame = describe(window).frame.origin;
    hands_.move(static_cast<int>(frame.x + point.x), static_cast<int>(frame.y + point.y));
    hands_.click();
  }
  void activate(xcb_window_t window) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = connection_->atom("_NET_ACTIVE_WINDOW");
    message.data.data32[0] = 2;
    xcb_send_event(connection_->get(), 0, connection_->root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&message));
    connection_->flush();
  }
  bool isActive(xcb_window_t window) {
    const auto active = values(connection_->root(), "_NET_ACTIVE_WINDOW");
    return !active.empty() && active[0] == window;
  }

 private:
  const support::TemporaryFolder folder_;
  const int wake_ = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  support::XvfbSession server_;
  support::Hands hands_;
  std::unique_ptr<x11::Connection> connection_;
  std::optional<support::ChildProcess> bus_;
  std::optional<support::ChildProcess> manager_;
};

/// The object under test, told of a window anew whenever it may have changed, as its owner does.
class Finder {
 public:
  explicit Finder(Session& session) : session_(session), finder_([&session](std::uint32_t) { session.wake(); }) {}

  TitleBarButtons* operator->() { return &finder_; }

  /// The answer as soon as it has `count` buttons, or the last one within the bound.
  std::vector<TitleBarButton> buttons(xcb_window_t window, std::size_t count) {
    std::vector<TitleBarButton> found;
    session_.waitFor([&] {
      if (session_.exists(window)) finder_.update(session_.describe(window));
      found = finder_.buttons(window);
      return found.size() == count;
    });
    return found;
  }

 private:
  Session& session_;
  TitleBarButtons finder_;
};

std::optional<CGRect> rectOf(const std::vector<TitleBarButton>& buttons, ButtonRole role) {
  const auto found = std::ranges::find(buttons, role, &TitleBarButton::role);
  if (found == buttons.end() || std::ranges::count(buttons, role, &TitleBarButton::role) != 1) return std::nullopt;
  return found->rect;
}

CGPoint centre(CGRect rect) {
  return CGPointMake(rect.origin.x + rect.size.width / 2, rect.origin.y + rect.size.height / 2);
}

struct Case {
  const char* name;
  const char* kind;
  std::vector<std::string> environment;
  std::vector<std::string> windowManager;
  bool shadow;
};

class RealClicks : public testing::TestWithParam<Case> {};

TEST_P(RealClicks, ReachTheButtonsThatWereFound) {
  Session session(GetParam().windowManager);
  support::ChildProcess program({windowProgram, GetParam().kind, "clicked"}, GetParam().environment);
  const auto window = session.window("clicked");
  ASSERT_NE(window, static_cast<xcb_window_t>(XCB_NONE));
  ASSERT_TRUE(session.waitFor([&] { return session.isActive(window); }));

  const auto described = session.describe(window);
  EXPECT_EQ(described.frame.size.width < described.client.size.width, GetParam().shadow);

  Finder finder(session);
  auto buttons = finder.buttons(window, 3);
  auto minimise = rectOf(buttons, ButtonRole::Minimize);
  ASSERT_TRUE(minimise && rectOf(buttons, ButtonRole::Zoom) && rectOf(buttons, ButtonRole::Close)) << buttons.size();

  // In the middle and just inside each edge.
  const double right = CGRectGetMaxX(*minimise) - 3;
  const double bottom = CGRectGetMaxY(*minimise) - 3;
  const auto middle = centre(*minimise);
  for (const auto point : {middle, CGPointMake(minimise->origin.x + 2, middle.y), CGPointMake(right, middle.y),
                           CGPointMake(middle.x, minimise->origin.y + 2), CGPointMake(middle.x, bottom)}) {
    session.click(window, point);
    ASSERT_TRUE(session.waitFor([&] { return session.isMinimised(window); })) << point.x << "," << point.y;
    session.activate(window);
    ASSERT_TRUE(session.waitFor([&] { return !session.isMinimised(window) && session.isActive(window); }));
  }

  const auto before = session.describe(window);
  session.click(window, centre(*rectOf(buttons, ButtonRole::Zoom)));
  ASSERT_TRUE(session.waitFor([&] {
    const auto now = session.describe(window);
    return now.maximized && now.frame.size.width > before.frame.size.width;
  }));
  finder->update(session.describe(window));
  EXPECT_TRUE(finder->buttons(window).empty()) << "the old answer outlived the old size";
  buttons = finder.buttons(window, 3);
  ASSERT_TRUE(rectOf(buttons, ButtonRole::Zoom));
  session.click(window, centre(*rectOf(buttons, ButtonRole::Zoom)));
  ASSERT_TRUE(session.waitFor([&] {
    const auto now = session.describe(window);
    return !now.maximized && now.frame.size.width == before.frame.size.width;
  }));

  buttons = finder.buttons(window, 3);
  ASSERT_TRUE(rectOf(buttons, ButtonRole::Close));
  session.click(window, centre(*rectOf(buttons, ButtonRole::Close)));
  EXPECT_EQ(program.readLine(bound), "closed");
  ASSERT_TRUE(session.waitFor([&] { return !session.exists(window); }));

  finder->refresh(window);
  EXPECT_TRUE(finder.buttons(window, 0).empty()) << "the application is gone";
}

const std::vector<std::string> openbox = {"openbox"};
// With its compositor on it lets windows draw shadows, so that frame and client window differ.
const std::vector<std::string> xfwm4 = {"xfwm4", "--compositor=on"};
INSTANTIATE_TEST_SUITE_P(Toolkits, RealClicks,
                         testing::Values(Case{"Gtk3", "gtk3", {}, openbox, false},
                                         Case{"Gtk3GermanShadow", "gtk3", {"LANGUAGE=de"}, xfwm4, true},
                                         Case{"Gtk4German", "gtk4", {"LANGUAGE=de"}, openbox, false},
                                         Case{"Gtk4Shadow", "gtk4", {}, xfwm4, true},
                                         Case{"AdwaitaJapanese", "adwaita", {"LANGUAGE=ja"}, openbox, false},
                                         Case{"AdwaitaShadow", "adwaita", {}, xfwm4, true}),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST(TitleBarButtonsTest, AStoppedApplicationDelaysNobodyElse) {
  Session session(openbox);
  support::ChildProcess stopped({windowProgram, "gtk3", "stopped"});
  support::ChildProcess running({windowProgram, "gtk4", "running"});
  const auto stoppedWindow = session.describe(session.window("stopped"));
  const auto runningWindow = session.describe(session.window("running"));
  std::optional<Finder> finder(std::in_place, session);
  // Until both are known to answer at all; then the stopped one has to stay silent.
  (*finder)->update(stoppedWindow);
  (*finder)->update(runningWindow);
  ASSERT_EQ(finder->buttons(stoppedWindow.id, 3).size(), 3U);
  ASSERT_EQ(finder->buttons(runningWindow.id, 3).size(), 3U);
  finder.emplace(session);

  stopped.signal(SIGSTOP);
  const auto start = Clock::now();
  (*finder)->update(stoppedWindow);
  (*finder)->update(runningWindow);
  EXPECT_EQ(finder->buttons(runningWindow.id, 3).size(), 3U);
  // A single unanswered call lasts 500 ms.
  EXPECT_LT(Clock::now() - start, 450ms);
  EXPECT_TRUE((*finder)->buttons(stoppedWindow.id).empty());

  stopped.signal(SIGCONT);
  EXPECT_EQ(finder->buttons(stoppedWindow.id, 3).size(), 3U) << "not asked again";

  // What was found survives silence, and an object is destroyed without waiting for an answer.
  stopped.signal(SIGSTOP);
  (*finder)->refresh(stoppedWindow.id);
  EXPECT_EQ((*finder)->buttons(stoppedWindow.id).size(), 3U);
  const auto end = Clock::now();
  finder.reset();
  EXPECT_LT(Clock::now() - end, 250ms);
}

TEST(TitleBarButtonsTest, ButtonsComeAndGoInATitleBar) {
  Session session(openbox);
  support::ChildProcess program({windowProgram, "gtk4", "changing"});
  const auto window = session.describe(session.window("changing"));
  Finder finder(session);
  finder->update(window);
  ASSERT_EQ(finder.buttons(window.id, 3).size(), 3U);

  const auto told = [&](const std::string& line) {
    program.writeLine(line);
    EXPECT_EQ(program.readLine(bound), line);
    finder->refresh(window.id);
  };
  told("plain");
  // The application's own "Close" is still there, and is none of ours.
  EXPECT_TRUE(finder.buttons(window.id, 0).empty());
  told("buttons");
  EXPECT_EQ(finder.buttons(window.id, 3).size(), 3U);

  auto moved = window;
  moved.frame.origin.x += 50;
  moved.client.origin.x += 50;
  finder->update(moved);
  EXPECT_EQ(finder->buttons(window.id).size(), 3U) << "a move forgets nothing";
  finder->remove(window.id);
  EXPECT_TRUE(finder->buttons(window.id).empty());
}

/// What one question finds, once it is answered.
std::vector<TitleBarButton> ask(const atspi::Window& window) {
  const atspi::Context context(g_main_context_new());
  g_main_context_push_thread_default(context.get());
  const atspi::Object<GCancellable> cancellable(g_cancellable_new());
  atspi::TitleBarLookup lookup("");
  std::optional<std::vector<TitleBarButton>> found;
  [](auto& finder, auto& asked, auto* stop, auto& answer) -> atspi::Detached {
    const auto connection = co_await atspi::AccessibilityBus::connect(stop);
    const atspi::AccessibilityBus bus(connection.get(), stop, 5000);
    answer = co_await finder.find(bus, asked);
  }(lookup, window, cancellable.get(), found);
  while (!found) g_main_context_iteration(context.get(), TRUE);
  g_main_context_pop_thread_default(context.get());
  return *found;
}

TEST(TitleBarButtonsTest, AHiddenTitleBarHasNoButtons) {
  struct Hidden {
    const char* kind;
    const char* command;
  };
  Session session(openbox);
  for (const auto& [kind, command] :
       {Hidden{"gtk3", "fullscreen"}, Hidden{"gtk4", "fullscreen"}, Hidden{"adwaita", "other page"}}) {
    support::ChildProcess program({windowProgram, kind, kind});
    const auto window = session.window(kind);
    Finder finder(session);
    ASSERT_EQ(finder.buttons(window, 3).size(), 3U) << kind;
    program.writeLine(command);
    ASSERT_EQ(program.readLine(bound), command);
    EXPECT_TRUE(ask(session.describe(window)).empty()) << kind;
  }
}

TEST(TitleBarButtonsTest, TheBusMayStartLateAndStartAgain) {
  Session session(openbox);
  session.stopBus();
  Finder finder(session);
  atspi::Window nobody;
  nobody.id = 1;
  nobody.pid = getpid();
  finder->update(nobody);
  for (const std::string title : {"first", "second"}) {
    session.startBus();
    support::ChildProcess program({windowProgram, "gtk3", title});
    const auto window = session.describe(session.window(title));
    finder->update(window);
    EXPECT_EQ(finder.buttons(window.id, 3).size(), 3U) << title;
    session.stopBus();
  }
}

}  // namespace
