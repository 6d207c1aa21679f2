// Frames, moves, hiding and window managers that come and go, with real window managers.
#include <algorithm>
#include <atomic>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "platform/linux/x11/Applications.h"
#include "platform/linux/x11/Placement.h"
#include "tests/linux/Desk.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using support::Desk;
using support::ManagedWindow;
using x11::Rect;

constexpr Rect filledFrame{32, 56, 1376, 812};

class Windows : public testing::TestWithParam<const char*> {
 protected:
  Desk desk{GetParam()};

  void fill(xcb_window_t client) {
    desk.set(client, "AXPosition", CGPointMake(filledFrame.x, filledFrame.y));
    desk.set(client, "AXSize", CGSizeMake(filledFrame.width, filledFrame.height));
    desk.set(client, "AXPosition", CGPointMake(filledFrame.x, filledFrame.y));
  }
  bool reaches(xcb_window_t client, const Rect& frame) {
    const bool reached = desk.waitFor([&] { return desk.frameOf(client) == frame; });
    const Rect now = desk.frameOf(client);
    EXPECT_TRUE(reached) << now.x << ',' << now.y << ' ' << now.width << 'x' << now.height;
    return reached;
  }
  bool isIconic(xcb_window_t client) { return desk.windowOf(client).properties.isIconic(); }
};

TEST_P(Windows, GoWhereTheyAreWanted) {
  ManagedWindow window(300, 200, 400, 300);
  const xcb_window_t client = window.window();
  const Rect before = desk.manage(window).geometry.frame();
  fill(client);
  // Nothing has been asked of anybody yet, but whoever reads now reckons with the outcome.
  desktop::Value size;
  ASSERT_EQ(desk.elements().attribute(x11::Elements::window(client), "AXSize", size), kAXErrorSuccess);
  EXPECT_EQ(std::get<CGSize>(size).width, filledFrame.width);
  EXPECT_EQ(desk.frameOf(client), before);
  ASSERT_TRUE(reaches(client, filledFrame));
  desk.set(client, "AXPosition", CGPointMake(100.4, 150.6));
  EXPECT_TRUE(reaches(client, {100, 151, filledFrame.width, filledFrame.height}));
}

TEST_P(Windows, GoWhereTheyAreWantedThoughTheConnectionForItWasClosed) {
  ManagedWindow window(300, 200, 400, 300);
  const xcb_window_t client = window.window();
  desk.manage(window);
  auto connection = x11::Connection::open();
  const auto owned = xcb_generate_id(connection->get());
  xcb_create_pixmap(connection->get(), 1, owned, connection->root(), 1, 1);
  connection->synchronise();
  x11::Placement placement(std::move(connection));
  xcb_kill_client(desk.connection().get(), owned);
  desk.connection().synchronise();
  placement.want(client, {CGPointMake(10, 50), CGSizeMake(500, 400)}, desk.windowOf(client).geometry);
  EXPECT_TRUE(reaches(client, {10, 50, 500, 400}));
}

TEST_P(Windows, RestoredBeforeTheyAreMoved) {
  ManagedWindow window(300, 200, 400, 300);
  const xcb_window_t client = window.window();
  desk.manage(window);
  const std::pair<const char*, const char*> states[] = {{"MAXIMIZED_HORZ", "MAXIMIZED_VERT"},
                                                        {"MAXIMIZED_VERT", ""},
                                                        {"MAXIMIZED_HORZ", ""},
                                                        {"FULLSCREEN", ""},
                                                        {"SHADED", ""}};
  for (const auto& [one, other] : states) {
    desk.changeState(client, 1, one, other);
    ASSERT_TRUE(desk.waitFor([&] { return desk.windowOf(client).geometry.isConfined(); })) << one;
    fill(client);
    ASSERT_TRUE(reaches(client, filledFrame)) << one;
    EXPECT_FALSE(desk.windowOf(client).geometry.isConfined()) << one;
    desk.set(client, "AXSize", CGSizeMake(500, 400));
    ASSERT_TRUE(reaches(client, {filledFrame.x, filledFrame.y, 500, 400}));
  }
}

TEST_P(Windows, ShadowsAreNotPartOfTheFrame) {
  ManagedWindow window(300, 200, 452, 352);
  window.setProperty("_MOTIF_WM_HINTS", window.connection().atom("_MOTIF_WM_HINTS"), {2, 0, 0, 0, 0});
  window.setProperty("_GTK_FRAME_EXTENTS", XCB_ATOM_CARDINAL, {26, 26, 23, 29});
  const xcb_window_t client = window.window();
  window.map();
  ASSERT_TRUE(desk.waitFor([&] { return desk.windowOf(client).properties.wmState == 1; }));
  fill(client);
  ASSERT_TRUE(reaches(client, filledFrame));
  EXPECT_EQ(desk.windowOf(client).geometry.client, (Rect{6, 33, 1428, 864}));
  // Its program draws another shadow in answer: the frame is still what counts.
  desk.changeState(client, 1, "MAXIMIZED_HORZ", "MAXIMIZED_VERT");
  ASSERT_TRUE(desk.waitFor([&] { return desk.windowOf(client).geometry.isConfined(); }));
  window.setProperty("_GTK_FRAME_EXTENTS", XCB_ATOM_CARDINAL, {0, 0, 0, 0});
  ASSERT_TRUE(desk.waitFor([&] { return desk.windowOf(client).geometry.shadow == x11::Extents{}; }));
  fill(client);
  ASSERT_TRUE(desk.waitFor([&] { return !desk.windowOf(client).geometry.isConfined(); }));
  window.setProperty("_GTK_FRAME_EXTENTS", XCB_ATOM_CARDINAL, {26, 26, 23, 29});
  ASSERT_TRUE(desk.waitFor([&] { return desk.windowOf(client).geometry.shadow.left == 26; }));
  EXPECT_TRUE(reaches(client, filledFrame));
}

TEST_P(Windows, TheirOwnLimitsAreAccepted) {
  const support::ChildProcess terminal({"xterm", "-geometry", "80x24+300+200"});
  xcb_window_t client = XCB_WINDOW_NONE;
  ASSERT_TRUE(desk.waitFor([&] {
    const auto windows = desk.tracker().windowsOfProcess(terminal.pid());
    if (!windows.empty()) client = windows.front().client;
    return client != XCB_WINDOW_NONE && desk.windowOf(client).properties.wmState == 1;
  }));
  fill(client);
  ASSERT_TRUE(desk.waitFor([&] {
    const Rect frame = desk.frameOf(client);
    return frame.x == filledFrame.x && frame.y == filledFrame.y && filledFrame.width - frame.width < 6 &&
           filledFrame.height - frame.height < 13;
  }));
  // What came of it is final: from here on the real size is what is told, not the one that was wanted.
  EXPECT_TRUE(desk.waitFor(
      [&] { return desk.placement().expectedFrame(client, desk.frameOf(client)) == desk.frameOf(client); }));
}

TEST_P(Windows, HiddenTogetherAndBackTogether) {
  ManagedWindow one(100, 200, 300, 200);
  ManagedWindow two(500, 200, 300, 200);
  ManagedWindow aside(900, 200, 300, 200);
  for (ManagedWindow* window : {&one, &two, &aside}) desk.manage(*window);
  const pid_t pid = getpid();
  desk.set(aside.window(), "AXMinimized", true);
  ASSERT_TRUE(desk.waitFor([&] { return isIconic(aside.window()); }));

  const desktop::Element application = x11::Elements::application(pid);
  ASSERT_EQ(desk.elements().setAttribute(application, "AXHidden", true), kAXErrorSuccess);
  ASSERT_TRUE(desk.waitFor([&] { return isIconic(one.window()) && isIconic(two.window()); }));
  desktop::Value hidden;
  ASSERT_EQ(desk.elements().attribute(application, "AXHidden", hidden), kAXErrorSuccess);
  EXPECT_TRUE(std::get<bool>(hidden));

  desk.set(one.window(), "AXMinimized", false);
  ASSERT_TRUE(desk.waitFor([&] { return !isIconic(one.window()) && !isIconic(two.window()); }));
  EXPECT_FALSE(desk.hiding().isHidden(pid));
  const x11::Atoms atoms(desk.connection());
  EXPECT_TRUE(desk.waitFor([&] { return x11::stackingOrder(desk.connection(), atoms).back() == one.window(); }));
  EXPECT_TRUE(isIconic(aside.window())) << "iconified by hand before";
  EXPECT_FALSE(desk.hiding().hide(1));
}

TEST_P(Windows, BackTogetherHoweverSoon) {
  ManagedWindow one(100, 200, 300, 200);
  ManagedWindow two(500, 200, 300, 200);
  for (ManagedWindow* window : {&one, &two}) desk.manage(*window);
  for (int round = 0; round < 20; ++round) {
    ASSERT_TRUE(desk.hiding().hide(getpid()));
    // Before anybody has seen it go.
    desk.set(one.window(), "AXMinimized", false);
    ASSERT_TRUE(desk.waitFor([&] { return !desk.hiding().isHidden(getpid()); })) << round;
    ASSERT_TRUE(desk.waitFor([&] { return !isIconic(one.window()) && !isIconic(two.window()); })) << round;
  }
}

TEST_P(Windows, TheDesktopAndPanelsAreNotHidden) {
  for (const char* type : {"_NET_WM_WINDOW_TYPE_DESKTOP", "_NET_WM_WINDOW_TYPE_DOCK"}) {
    ManagedWindow part(0, 0, 1440, 30);
    part.setProperty("_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM, {part.connection().atom(type)});
    part.map();
    ASSERT_TRUE(desk.waitFor([&] {
      return desk.windowOf(part.window()).properties.wmState == 1 &&
             desk.tracker().windowsOfProcess(getpid()).size() == 1;
    })) << type;
    EXPECT_FALSE(desk.hiding().hide(getpid())) << "nothing else to hide";
    ManagedWindow plain(300, 200, 300, 200);
    desk.manage(plain);
    const auto changes = [&] { return desk.windowOf(part.window()).properties.stateChanges; };
    const std::uint32_t before = changes();
    ASSERT_TRUE(desk.hiding().hide(getpid()));
    ASSERT_TRUE(desk.waitFor([&] { return isIconic(plain.window()); }));
    desk.set(plain.window(), "AXMinimized", false);
    ASSERT_TRUE(desk.waitFor([&] { return !isIconic(plain.window()); }));
    EXPECT_LT(changes() - before, 2U) << type;
  }
}

TEST_P(Windows, ComeBackWhenTheirWorkspaceIsEntered) {
  ManagedWindow here(100, 200, 300, 200);
  ManagedWindow beside(300, 200, 300, 200);
  ManagedWindow everywhere(500, 200, 300, 200);
  ManagedWindow there(700, 200, 300, 200);
  ManagedWindow besideThere(900, 200, 300, 200);
  const std::pair<ManagedWindow*, std::uint32_t> places[] = {
      {&here, 0}, {&beside, 0}, {&everywhere, x11::everyWorkspace}, {&there, 1}, {&besideThere, 1}};
  for (const auto& [window, workspace] : places) {
    desk.manage(*window);
    desk.moveToWorkspace(window->window(), workspace);
    ASSERT_TRUE(desk.waitFor([&, client = window->window(), wanted = workspace] {
      return desk.windowOf(client).properties.workspace == wanted;
    }));
  }
  const auto areOnScreen = [&](const std::vector<ManagedWindow*>& expected) {
    return desk.waitFor([&] {
      return std::ranges::all_of(places, [&](const auto& place) {
        const bool isExpected = std::ranges::find(expected, place.first) != expected.end();
        const xcb_window_t client = place.first->window();
        // Also as far as the tracker knows: nobody hides windows within the millisecond in which they come.
        return desk.isOnScreen(client) == isExpected && (!isExpected || !isIconic(client));
      });
    });
  };
  const auto areAllIconic = [&] {
    return desk.waitFor([&] {
      return std::ranges::all_of(places, [&](const auto& place) { return isIconic(place.first->window()); });
    });
  };
  const x11::Atoms atoms(desk.connection());
  const auto isOnTop = [&](const ManagedWindow& window) {
    return desk.waitFor([&] { return x11::stackingOrder(desk.connection(), atoms).back() == window.window(); });
  };
  ASSERT_TRUE(desk.hiding().hide(getpid()));
  ASSERT_TRUE(areOnScreen({}));
  desk.set(here.window(), "AXMinimized", false);
  ASSERT_TRUE(areOnScreen({&here, &beside, &everywhere}));
  // This window on top is asked for last: all else has been done by then, and nobody has been carried off.
  ASSERT_TRUE(isOnTop(here));
  EXPECT_EQ(desk.tracker().currentWorkspace(), 0U);
  EXPECT_TRUE(areOnScreen({&here, &beside, &everywhere}));
  EXPECT_FALSE(desk.hiding().isHidden(getpid()));
  desk.enterWorkspace(1);
  ASSERT_TRUE(areOnScreen({&everywhere, &there, &besideThere}));
  // A window manager may still be writing down what it has left behind, and nobody hides windows that soon.
  desk.set(there.window(), "AXMinimized", false);
  ASSERT_TRUE(isOnTop(there));
  ASSERT_TRUE(desk.waitFor([&] {
    return std::ranges::all_of(places, [&](const auto& place) {
      const xcb_window_t client = place.first->window();
      const auto now = x11::PropertiesRequest(desk.connection(), atoms, client).receive();
      return desk.windowOf(client).properties.stateIsIconic() == now.stateIsIconic();
    });
  }));

  ASSERT_TRUE(desk.hiding().hide(getpid()));
  ASSERT_TRUE(areOnScreen({}));
  desk.enterWorkspace(0);
  ASSERT_TRUE(areAllIconic()) << "where some window managers iconify only now";
  EXPECT_TRUE(desk.hiding().isHidden(getpid()));
  for (int round = 0; round < 2; ++round) {
    // From a pager, a window of the other workspace: the person goes there and stays there.
    desk.enterWorkspace(1);
    desk.set(there.window(), "AXMinimized", false);
    ASSERT_TRUE(areOnScreen({&everywhere, &there, &besideThere}));
    ASSERT_TRUE(isOnTop(there));
    EXPECT_EQ(desk.tracker().currentWorkspace(), 1U);
    EXPECT_TRUE(isIconic(here.window()) && isIconic(beside.window()));
    if (round > 0) break;
    // Hidden again, those that were still to come belong to it.
    ASSERT_TRUE(desk.hiding().hide(getpid()));
    ASSERT_TRUE(areAllIconic());
  }
  desk.enterWorkspace(0);
  EXPECT_TRUE(areOnScreen({&here, &beside, &everywhere}));
}

INSTANTIATE_TEST_SUITE_P(, Windows, testing::Values("openbox", "xfwm4"));

TEST(WindowTable, SurvivesWindowsThatVanishAndWindowManagersThatChange) {
  Desk desk("openbox");
  ManagedWindow stays(300, 200, 400, 300);
  desk.manage(stays);
  for (int round = 0; round < 300; ++round) {
    ManagedWindow window(400, 300, 200, 100);
    window.map();
    // Gone while the requests about it are on their way.
    desk.placement().want(window.window(), {CGPointMake(10, 10), CGSizeMake(100, 100)}, {});
    QCoreApplication::processEvents();
  }
  EXPECT_TRUE(desk.waitFor([&] { return desk.tracker().windows().size() == 1; }));

  desk.stopWindowManager();
  ASSERT_TRUE(desk.waitFor([&] { return desk.tracker().windowManager().name.empty(); }));
  EXPECT_FALSE(desk.elements().mayHitButton(desk.windowOf(stays.window()).frame, {310, 190}));
  desk.startWindowManager("xfwm4");
  ASSERT_TRUE(desk.waitFor([&] {
    const auto window = desk.tracker().window(stays.window());
    return window && window->frame != window->client && window->geometry.decoration.top > 0;
  }));
  EXPECT_TRUE(
      desk.waitFor([&] { return desk.findButton(desk.windowOf(stays.window()), x11::ButtonRole::Zoom).has_value(); }));
}

TEST(WindowTable, FindsTheFrameOfAWindowThatIsHandedFromOneToAnother) {
  const support::XvfbSession session;
  const auto connection = x11::Connection::open();
  support::JournalWindow client(0, 0, 10, 10);
  std::atomic<bool> done = false;
  std::thread framing([&] {
    const auto manager = x11::Connection::open();
    std::mt19937 random(1);
    for (xcb_window_t frame = XCB_WINDOW_NONE, next; !done; frame = next) {
      next = xcb_generate_id(manager->get());
      xcb_create_window(manager->get(), XCB_COPY_FROM_PARENT, next, manager->root(), 0, 0, 10, 10, 0,
                        XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
      xcb_reparent_window(manager->get(), client.window(), next, 0, 0);
      if (frame != XCB_WINDOW_NONE) xcb_destroy_window(manager->get(), frame);
      // Never in step with the questions for long, or it would come between every two of them.
      for (auto turns = 1 + random() % 12; turns > 0; --turns) manager->synchronise();
    }
    xcb_reparent_window(manager->get(), client.window(), manager->root(), 0, 0);
    manager->synchronise();
  });
  int lost = 0;
  for (int i = 0; i < 5000; ++i) lost += x11::rootChildOf(*connection, client.window()) ? 0 : 1;
  done = true;
  framing.join();
  EXPECT_EQ(lost, 0);
}

TEST(WindowTable, KnowsTheVisibleOneOfSeveralClientsInAFrame) {
  Desk desk("openbox");
  desk.stopWindowManager();
  ManagedWindow frame(100, 100, 400, 300);
  ManagedWindow below(0, 0, 400, 280);
  ManagedWindow above(0, 0, 400, 280);
  auto& connection = desk.connection();
  for (ManagedWindow* client : {&below, &above}) {
    xcb_reparent_window(connection.get(), client->window(), frame.window(), 0, 20);
    xcb_map_window(connection.get(), client->window());
  }
  xcb_map_window(connection.get(), frame.window());
  const xcb_window_t clients[] = {below.window(), above.window()};
  xcb_change_property(connection.get(), XCB_PROP_MODE_REPLACE, connection.root(), connection.atom("_NET_CLIENT_LIST"),
                      XCB_ATOM_WINDOW, 32, 2, clients);
  connection.flush();
  const auto isVisible = [&](const ManagedWindow& client) {
    return desk.waitFor([&] {
      const auto window = desk.tracker().windowOfFrame(frame.window());
      return window && window->client == client.window();
    });
  };
  EXPECT_TRUE(isVisible(above));
  xcb_unmap_window(connection.get(), above.window());
  connection.flush();
  EXPECT_TRUE(isVisible(below));
  xcb_map_window(connection.get(), above.window());
  connection.flush();
  EXPECT_TRUE(isVisible(above));
  const std::uint32_t mode = XCB_STACK_MODE_ABOVE;
  xcb_configure_window(connection.get(), below.window(), XCB_CONFIG_WINDOW_STACK_MODE, &mode);
  connection.flush();
  EXPECT_TRUE(isVisible(below));
}

TEST(WindowTable, TellsOfTheServersEnd) {
  auto session = std::make_unique<support::XvfbSession>();
  std::atomic<bool> lost = false;
  x11::WindowTracker tracker(x11::Connection::open());
  tracker.onLoss([&lost] {
    lost = true;
    lost.notify_all();
  });
  tracker.start();
  session.reset();
  lost.wait(false);
}

TEST(Applications, OneProcessMayBeSeveralAndBecomeAnother) {
  Desk desk("openbox");
  const support::TemporaryFolder folder;
  for (const std::string name : {"writer", "calc", "suite"}) {
    folder.write(name + ".desktop", "[Desktop Entry]\nType=Application\nName=" + name + "\nStartupWMClass=" + name);
  }
  freedesktop::DesktopEntries entries({folder.path()}, "C");
  freedesktop::ApplicationIdentity identity(entries);
  x11::WindowTracker tracker(x11::Connection::open());
  x11::Applications applications(tracker, identity);
  std::set<std::string> known;
  // Whoever follows launches and quits knows all there is: nobody looks in between.
  applications.observe([&](desktop::ApplicationChange, pid_t) {
    known.clear();
    for (const auto& application : applications.running()) known.insert(application.bundleIdentifier.value_or("?"));
  });
  tracker.start();
  const auto waitFor = [&](const std::set<std::string>& expected) {
    const bool came = desk.waitFor([&] { return known == expected; });
    for (const std::string& name : known) EXPECT_TRUE(came) << name;
    return came;
  };
  ManagedWindow first(100, 200, 300, 200);
  first.setClass("suite");
  desk.manage(first);
  EXPECT_TRUE(waitFor({"suite"}));
  {
    ManagedWindow second(500, 200, 300, 200);
    second.setClass("calc");
    desk.manage(second);
    EXPECT_TRUE(waitFor({"suite", "calc"})) << "whichever was opened first";
    first.setClass("writer");
    EXPECT_TRUE(waitFor({"writer", "calc"})) << "the start-up picture has become the application";
  }
  EXPECT_TRUE(waitFor({"writer"}));
  tracker.stop();
}

TEST(WindowTable, TellsWhichWindowBecomesActive) {
  Desk desk("openbox");
  ManagedWindow one(100, 200, 300, 200);
  ManagedWindow two(500, 200, 300, 200);
  for (ManagedWindow* window : {&one, &two}) desk.manage(*window);
  x11::WindowTracker tracker(x11::Connection::open());
  std::atomic<xcb_window_t> active = XCB_WINDOW_NONE;
  tracker.observe([&active](x11::WindowChange change, const x11::Window& window) {
    if (change == x11::WindowChange::Activated) active = window.client;
  });
  tracker.start();
  for (ManagedWindow* window : {&one, &two, &one}) {
    desk.set(window->window(), "AXMinimized", false);
    EXPECT_TRUE(desk.waitFor([&] { return active == window->window(); }));
  }
  tracker.stop();
}

TEST(MinimizeButtons, AreMissingOrDisabledAsTheWindowSays) {
  Desk desk("openbox");
  const auto answer = [&desk](xcb_window_t client) {
    desktop::Value value;
    const auto element = x11::Elements::window(client);
    if (desk.elements().attribute(element, "AXMinimizeButton", value) == kAXErrorNoValue) return std::string("missing");
    desk.elements().attribute(std::get<desktop::Element>(value), "AXEnabled", value);
    return std::string(std::get<bool>(value) ? "enabled" : "disabled");
  };
  ManagedWindow plain(100, 200, 300, 200);
  ManagedWindow transient(100, 200, 300, 200);
  transient.setProperty("WM_TRANSIENT_FOR", XCB_ATOM_WINDOW, {plain.window()});
  ManagedWindow dialog(100, 200, 300, 200);
  dialog.setProperty("_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM, {dialog.connection().atom("_NET_WM_WINDOW_TYPE_DIALOG")});
  // Motif: all functions but minimise; all decorations but the minimise button.
  ManagedWindow noFunction(100, 200, 300, 200);
  noFunction.setProperty("_MOTIF_WM_HINTS", noFunction.connection().atom("_MOTIF_WM_HINTS"), {1, 1 | 8, 0, 0, 0});
  ManagedWindow noButton(100, 200, 300, 200);
  noButton.setProperty("_MOTIF_WM_HINTS", noButton.connection().atom("_MOTIF_WM_HINTS"), {2, 0, 1 | 32, 0, 0});
  for (ManagedWindow* window : {&plain, &transient, &dialog, &noFunction, &noButton}) desk.manage(*window);
  EXPECT_EQ(answer(plain.window()), "enabled");
  EXPECT_EQ(answer(transient.window()), "missing");
  EXPECT_EQ(answer(dialog.window()), "missing");
  EXPECT_EQ(answer(noFunction.window()), "disabled");
  EXPECT_EQ(answer(noButton.window()), "missing");

  // A window that draws its own title bar has what its program says.
  ManagedWindow own(100, 200, 300, 200);
  own.setProperty("_MOTIF_WM_HINTS", own.connection().atom("_MOTIF_WM_HINTS"), {2, 0, 0, 0, 0});
  own.map();
  ASSERT_TRUE(desk.waitFor([&] { return desk.windowOf(own.window()).properties.wmState == 1; }));
  EXPECT_EQ(answer(own.window()), "missing");
  desk.clientButtons = {{x11::ButtonRole::Minimize, CGRectMake(200, 5, 30, 30), true},
                        {x11::ButtonRole::Close, CGRectMake(240, 5, 30, 30), true}};
  EXPECT_EQ(answer(own.window()), "enabled");
  const x11::Window window = desk.windowOf(own.window());
  const Rect frame = window.geometry.frame();
  const CGPoint close{frame.x + 240.0, frame.y + 5.0};
  EXPECT_TRUE(desk.elements().mayHitButton(window.frame, close));
  EXPECT_FALSE(desk.elements().mayHitButton(window.frame, {close.x - 1, close.y}));
  desktop::Element element;
  ASSERT_EQ(desk.elements().atPosition(close, element), kAXErrorSuccess);
  EXPECT_EQ(element, x11::Elements::button(own.window(), x11::ButtonRole::Close));
}

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  const QCoreApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
