// Every button of every window manager that has button windows: found by asking, proved by clicking.
#include "platform/linux/x11/WindowManagers/Fluxbox.h"
#include "tests/linux/Desk.h"

namespace {

using support::Desk;
using support::ManagedWindow;
using x11::ButtonRole;

class ButtonWindows : public testing::TestWithParam<const char*> {
 protected:
  Desk desk{GetParam()};

  void click(CGPoint point) {
    desk.hands().move(static_cast<int>(point.x), static_cast<int>(point.y));
    desk.hands().click();
  }
  /// Where the button is once the window manager has stopped moving it about.
  CGPoint button(xcb_window_t client, ButtonRole role) {
    CGPoint last{-1, -1};
    EXPECT_TRUE(desk.waitFor([&] {
      const CGPoint before =
          std::exchange(last, desk.findButton(desk.windowOf(client), role).value_or(CGPoint{-1, -1}));
      return last.x >= 0 && last.x == before.x && last.y == before.y;
    })) << "role "
        << static_cast<int>(role);
    return last;
  }
};

TEST_P(ButtonWindows, DoWhatTheirElementsSay) {
  ManagedWindow window(300, 200, 400, 300);
  const xcb_window_t client = window.window();
  desk.manage(window);

  click(button(client, ButtonRole::Zoom));
  ASSERT_TRUE(desk.waitFor([&] { return desk.windowOf(client).geometry.isConfined(); }));
  click(button(client, ButtonRole::Zoom));
  ASSERT_TRUE(desk.waitFor([&] { return !desk.windowOf(client).geometry.isConfined(); }));
  ASSERT_TRUE(desk.waitFor([&] { return desk.windowOf(client).geometry.client.width == 400; }));

  click(button(client, ButtonRole::Minimize));
  ASSERT_TRUE(desk.waitFor([&] { return desk.windowOf(client).properties.isIconic(); }));
  desk.set(client, "AXMinimized", false);
  ASSERT_TRUE(desk.waitFor([&] { return !desk.windowOf(client).properties.isIconic(); }));

  click(button(client, ButtonRole::Close));
  EXPECT_TRUE(desk.waitFor([&] { return window.isAskedToClose(); }));
  xcb_destroy_window(window.connection().get(), client);
  window.connection().flush();
  ASSERT_TRUE(desk.waitFor([&] { return !desk.tracker().window(client); }));
  desktop::Value value;
  EXPECT_EQ(desk.elements().attribute(x11::Elements::button(client, ButtonRole::Close), "AXParent", value),
            kAXErrorInvalidUIElement);
}

TEST_P(ButtonWindows, OnlyTitleBarsAreWorthAQuestion) {
  ManagedWindow window(300, 200, 400, 300);
  const x11::Window managed = desk.manage(window);
  const x11::Rect client = managed.geometry.client;
  const CGPoint onTitle{client.x + 100.0, client.y - 3.0};
  const CGPoint inClient{client.x + 100.0, client.y + 3.0};
  EXPECT_TRUE(desk.elements().mayHitButton(managed.frame, onTitle));
  EXPECT_FALSE(desk.elements().mayHitButton(managed.frame, inClient));
  EXPECT_FALSE(desk.elements().mayHitButton(XCB_WINDOW_NONE, onTitle));

  desktop::Element element;
  for (const CGPoint point : {onTitle, inClient}) {
    ASSERT_EQ(desk.elements().atPosition(point, element), kAXErrorSuccess);
    EXPECT_EQ(element, x11::Elements::window(managed.client));
  }
  EXPECT_EQ(desk.elements().atPosition({1430, 450}, element), kAXErrorNoValue);
}

INSTANTIATE_TEST_SUITE_P(, ButtonWindows, testing::Values("openbox", "xfwm4", "fluxbox", "icewm"));

class Tabs : public ButtonWindows {};

TEST_P(Tabs, TheVisibleOneCounts) {
  auto terminal = std::make_unique<support::ChildProcess>(std::vector<std::string>{"xterm", "-class", "tabbed"});
  const pid_t pid = terminal->pid();
  ASSERT_TRUE(desk.waitFor([&] {
    const auto windows = desk.tracker().windowsOfProcess(pid);
    return !windows.empty() && windows[0].frame != windows[0].client && desk.isOnScreen(windows[0].client);
  }));
  const xcb_window_t first = desk.tracker().windowsOfProcess(pid)[0].client;
  ManagedWindow window(300, 200, 400, 300);
  window.setClass("tabbed");
  window.map();
  const xcb_window_t second = window.window();
  ASSERT_TRUE(desk.waitFor([&] { return desk.tracker().window(second) && desk.isOnScreen(second); }));
  ASSERT_EQ(desk.windowOf(first).frame, desk.windowOf(second).frame);

  for (const xcb_window_t visible : {second, first, second, first}) {
    desk.set(visible, "AXMinimized", false);
    const CGPoint zoom = button(visible, ButtonRole::Zoom);
    desktop::Element element;
    ASSERT_EQ(desk.elements().atPosition(zoom, element), kAXErrorSuccess);
    pid_t owner = 0;
    EXPECT_EQ(desk.elements().processIdentifier(element, owner), kAXErrorSuccess);
    EXPECT_EQ(owner, visible == first ? pid : getpid());
  }

  // What is behind becomes visible when the other one goes.
  terminal.reset();
  ASSERT_TRUE(desk.waitFor([&] { return !desk.tracker().window(first); }));
  desk.set(second, "AXPosition", CGPointMake(100, 150));
  desk.set(second, "AXSize", CGSizeMake(600, 500));
  EXPECT_TRUE(desk.waitFor([&] {
    const auto frame = desk.connection().reply(xcb_get_geometry_reply,
                                               xcb_get_geometry(desk.connection().get(), desk.windowOf(second).frame));
    const int borders = frame ? 2 * frame->border_width : 0;
    return frame && frame->x == 100 && frame->y == 150 && frame->width + borders == 600 &&
           frame->height + borders == 500;
  }));
  click(button(second, ButtonRole::Minimize));
  EXPECT_TRUE(desk.waitFor([&] { return desk.windowOf(second).properties.isIconic(); }));
}

INSTANTIATE_TEST_SUITE_P(, Tabs, testing::Values("fluxbox", "icewm"));

TEST(FluxboxTitleButtons, FollowTheConfiguration) {
  const auto minimize = std::optional(ButtonRole::Minimize);
  const auto zoom = std::optional(ButtonRole::Zoom);
  const auto close = std::optional(ButtonRole::Close);
  using Buttons = std::vector<std::optional<ButtonRole>>;
  EXPECT_EQ(x11::fluxboxTitleButtons(""), (Buttons{std::nullopt, minimize, zoom, close}));
  EXPECT_EQ(x11::fluxboxTitleButtons("session.screen0.titlebar.left: Close MenuIcon\n"
                                     "Session.Screen0.Titlebar.Right:\tMaximize Shade\n"),
            (Buttons{close, std::nullopt, zoom, std::nullopt}));
  EXPECT_EQ(x11::fluxboxTitleButtons("session.screen0.titlebar.left:\nsession.screen0.titlebar.right:\n"), Buttons{});
}

}  // namespace
