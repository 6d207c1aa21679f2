// Ten thousand presses in title bars and in the top bands of windows, none of them on a button: every one arrives.
#include <algorithm>
#include <cstdlib>
#include <map>
#include <random>

#include "tests/desktop/DesktopTest.h"

namespace desktoptest {
namespace {

// On each of three window managers.
constexpr int presses = 3300;
constexpr int pressesOnGtk = 50;
constexpr unsigned seed = 20;

/// Half of them near to buttons: what is taken wrongly is so because somebody thinks a button to be larger than it is.
class RandomPresses : public EachWindowManager {
 protected:
  RandomPresses() { std::cout << "seed " << seed << std::endl; }

  struct Target {
    Window window;
    Frame frame;
    int band;  // as high as it is pressed in
    std::vector<Frame> buttons;
    Point last{};
  };

  static Frame around(Point centre, int width, int height) {
    return {centre.x - width / 2, centre.y - height / 2, width, height};
  }
  static bool contains(const Frame& frame, Point point) {
    return point.x >= frame.x && point.x < frame.x + frame.width && point.y >= frame.y &&
           point.y < frame.y + frame.height;
  }
  Point fromRight(const Frame& frame, int across, int down) {
    return {frame.x + frame.width - 1 - across, frame.y + down};
  }

  /// The window manager's buttons, and other small windows in its title bar.
  void findButtonWindows(Window parent, Target& target) {
    for (const Window child : x.children(parent)) {
      const auto attributes = x.attributes(child);
      const auto place = x.rectangle(child);
      if (child == target.window || !attributes || !place || attributes->map_state != XCB_MAP_STATE_VIEWABLE) continue;
      constexpr int largest = 40;
      if (place->width <= largest && place->height <= largest) target.buttons.push_back(*place);
      findButtonWindows(child, target);
    }
  }

  Frame nextFrame() {
    const auto number = static_cast<int>(targets.size());
    return {20 + 475 * (number % 3), 20 + 440 * (number / 3), 450, 400};
  }
  Target& add(const Arguments& arguments, int band = 64) {
    const Window window = desktop.open(arguments, nextFrame());
    targets.push_back({window, x.frame(window).value_or(Frame{}), band, {}, {}});
    return targets.back();
  }
  void addDecorated() {
    const Arguments terminal{"xterm", "-xrm", "*wmTimeout: 200", "-e", "sleep", "1000"};
    Target& target = add(terminal);
    target.band = x.rectangle(target.window).value_or(Frame{}).y - target.frame.y;
    if (GetParam() != WindowManager::Metacity) return findButtonWindows(x.topLevel(target.window), target);
    target.buttons.push_back({target.frame.x, target.frame.y, 34, target.band});  // the menu
    for (const int across : {7, 40, 73}) {
      const Point corner = fromRight(target.frame, across + 29, 3);
      target.buttons.push_back({corner.x, corner.y, 33, 31});
    }
  }
  void addSelfDrawn() {
    Target& target = add({OSTREL_SELF_DRAWN_WINDOW, "chromium"});
    constexpr int shadow = 4;
    target.buttons.push_back({target.frame.x + target.frame.width + shadow - 90, target.frame.y, 90, 30});
  }
  void addGtk() {
    Target& target = add({"/usr/bin/python3", OSTREL_DESKTOP_TESTS "/../support/decorated_window.py", "gtk3", "one"});
    for (const Button button : {Button::Minimise, Button::Zoom, Button::Close}) {
      target.buttons.push_back(around(desktop.button(target.window, button), 46, 46));
    }
  }

  int random(int least, int most) { return std::uniform_int_distribution(least, most)(random_); }

  /// Not near to the last press on that window, or two would be a double click.
  Point place(const Target& target) {
    for (;;) {
      // At the very edge a window is resized, and two presses there are no clicks.
      constexpr int edge = 8;
      const Frame inside{target.frame.x + edge, target.frame.y + edge, target.frame.width - 2 * edge,
                         target.band - edge};
      Frame area = inside;
      if (!target.buttons.empty() && random(0, 1) == 0) {
        const Frame& button =
            target.buttons[static_cast<std::size_t>(random(0, static_cast<int>(target.buttons.size()) - 1))];
        area = {button.x - 8, button.y - 8, button.width + 16, button.height + 16};
      }
      const Point point{random(area.x, area.x + area.width - 1), random(area.y, area.y + area.height - 1)};
      const bool isOnButton = std::any_of(target.buttons.begin(), target.buttons.end(),
                                          [&](const Frame& button) { return contains(button, point); });
      const bool isNear = std::abs(point.x - target.last.x) < 10 && std::abs(point.y - target.last.y) < 10;
      if (contains(inside, point) && !isOnButton && !isNear) return point;
    }
  }

  /// A press in a title bar or a window makes it the active one, if it arrives at whom it is for: the window manager,
  /// who sees to that in either case. To be called for another window than the active one.
  void press(Target& target) {
    const Point point = place(target);
    target.last = point;
    x.movePointer(point);
    // A window manager may still hold the mouse, waiting for a second click.
    ASSERT_TRUE(happens([&] { return x.isPointerFree(); }));
    x.press();
    x.release();
    ASSERT_TRUE(happens([&] { return active() == target.window; }))
        << "a press at " << point.x - target.frame.x << ", " << point.y - target.frame.y << " in " << target.frame;
  }

  /// Presses have to pass by known buttons, or nothing could be taken.
  void expectKnown(const std::string& source) {
    ASSERT_TRUE(happens([&] {
      return desktop.ostrelCommand({"buttons"}).output.find(" zoom               " + source) != std::string::npos;
    })) << source;
  }

  void expectNothingDone() {
    desktop.settle();
    for (const Target& target : targets) {
      EXPECT_EQ(x.frame(target.window), target.frame);
      EXPECT_FALSE(x.isIconic(target.window));
    }
  }

  Window active() {
    const auto windows = x.property(x.root(), "_NET_ACTIVE_WINDOW");
    return windows.empty() ? XCB_NONE : windows[0];
  }

  std::mt19937 random_{seed};
  std::vector<Target> targets;
};

TEST_P(RandomPresses, OnNoButtonAllArrive) {
  for (int i = 0; i < 2; ++i) {
    addDecorated();
    addSelfDrawn();
  }
  desktop.startOstrel();
  expectKnown("shipped");
  expectKnown(GetParam() == WindowManager::Metacity ? "known decoration" : "a button window");
  for (int i = 0; i < presses; ++i) {
    std::vector<Target*> others;
    const Window before = active();
    for (Target& target : targets) {
      if (target.window != before) others.push_back(&target);
    }
    ASSERT_NO_FATAL_FAILURE(press(*others[static_cast<std::size_t>(random(0, static_cast<int>(others.size()) - 1))]));
  }
  expectNothingDone();
  x.click(fromRight(targets[1].frame, 75, 20));
  EXPECT_TRUE(reaches(targets[1].window, centred(targets[1].window))) << "Ostrel has been there all the time";
}

TEST_P(RandomPresses, OnNoButtonOfAGtkTitleBarAllArrive) {
  addDecorated();
  addGtk();
  Target& gtk = targets.back();
  desktop.startOstrel();
  expectKnown("AT-SPI");
  for (int i = 0; i < pressesOnGtk; ++i) {
    // It asks to be the active window after a press once more, which may come late.
    ASSERT_TRUE(happens([&] {
      x.activate(targets[0].window);
      desktop.settle();
      return active() == targets[0].window;
    }));
    ASSERT_NO_FATAL_FAILURE(press(gtk));
  }
  expectNothingDone();
}

TEST_P(RandomPresses, OnTheRimOfAButtonAllArrive) {
  const Window window = desktop.open({OSTREL_SELF_DRAWN_WINDOW, "chromium"}, startFrame);
  desktop.startOstrel();
  int round = 0;
  const auto click = [&](int across, int down) {
    ++round;  // elsewhere each time, or two would be a double click
    desktop.place(window, {60 + 40 * round, 100 + 20 * round, 500, 340});
    desktop.settle();
    x.click(fromRight(x.frame(window).value_or(Frame{}), across, down));
    desktop.settle();
  };
  const auto arrived = [&] {
    const std::string log = desktop.applicationLog();
    return std::count(log.begin(), log.end(), '\n');
  };
  // What is shipped of the zoom button, 36 to 59 across and 11 to 31 down.
  for (const Point inside : {Point{38, 13}, Point{57, 29}}) {
    click(inside.x, inside.y);
    EXPECT_TRUE(reaches(window, filledFrame));
  }
  EXPECT_EQ(arrived(), 0);
  int expected = 0;
  for (const Point rim : {Point{45, 30}, Point{45, 31}, Point{36, 20}, Point{37, 20}, Point{45, 11}, Point{45, 12}}) {
    click(rim.x, rim.y);
    ++expected;
    EXPECT_TRUE(happens([&] { return arrived() == expected; })) << rim.x << ", " << rim.y;
  }
}

INSTANTIATE_TEST_SUITE_P(, RandomPresses,
                         testing::Values(WindowManager::Openbox, WindowManager::Xfwm4, WindowManager::Metacity),
                         parameterName);

}  // namespace
}  // namespace desktoptest
