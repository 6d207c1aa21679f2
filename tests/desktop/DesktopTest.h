// The fixture of the desktop tests: one desktop for each test and window manager.
#pragma once

#include <gtest/gtest.h>

#include <iostream>

#include "tests/desktop/DesktopSession.h"

namespace desktoptest {

constexpr Frame startFrame{100, 120, 500, 340};
constexpr Frame filledFrame{32, 56, 1376, 812};

class DesktopTest : public testing::Test {
 protected:
  explicit DesktopTest(WindowManager windowManager, int width = 1440, int height = 900)
      : desktop(windowManager, width, height), x(desktop.x()) {}

  void TearDown() override {
    if (HasFailure()) std::cerr << "Ostrel said:\n" << desktop.ostrelLog();
  }

  testing::AssertionResult happens(const std::function<bool()>& condition) {
    return x.waitUntil(condition) ? testing::AssertionSuccess() : testing::AssertionFailure() << "in vain";
  }

  /// Waits for a frame; a window with size increments may stay smaller by less than one.
  testing::AssertionResult reaches(Window window, const Frame& wanted) {
    if (x.waitUntil([&] { return x.fits(window, wanted); })) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "it is at " << x.frame(window).value_or(Frame{}) << ", not at " << wanted;
  }

  /// Holds the first button at `grip` and moves it until the window follows, then by this much in all.
  void dragWindow(Window window, Point grip, Point distance) {
    const Frame start = x.frame(window).value_or(Frame{});
    x.movePointer(grip);
    x.press();
    int step = 0;
    EXPECT_TRUE(happens([&] {
      x.movePointer({grip.x + 20 + step++ % 2, grip.y});
      return x.frame(window) != start;
    }));
    x.movePointer({grip.x + distance.x, grip.y + distance.y});
    EXPECT_TRUE(reaches(window, {start.x + distance.x, start.y + distance.y, start.width, start.height}));
    x.release();
    EXPECT_TRUE(happens([&] { return x.isPointerFree(); })) << "the window manager lets go";
  }

  /// A window like this one in the middle of a display that is `width` wide and begins at `left`.
  Frame centred(Window window, int left = 0, int width = 1440) {
    const Frame frame = x.frame(window).value_or(Frame{});
    return {left + (width - frame.width) / 2, frame.y, frame.width, frame.height};
  }

  /// Brings a window back that was iconified, to where it was.
  void bringBack(Window window) {
    x.activate(window);
    ASSERT_TRUE(happens([&] { return !x.isIconic(window); }));
  }

  void expectNativeMinimise(Window window, const Frame& untouched) {
    EXPECT_TRUE(happens([&] { return x.isIconic(window); }));
    bringBack(window);
    EXPECT_TRUE(reaches(window, untouched));
  }

  Window openTerminal(const Frame& frame = startFrame) {
    // Without the bound xterm waits five seconds for an answer that some window managers do not owe it.
    return desktop.open({"xterm", "-xrm", "*wmTimeout: 200", "-e", "sleep", "1000"}, frame);
  }
  Window openEditor(const Frame& frame = startFrame) { return desktop.open({"mousepad", "--disable-server"}, frame); }

  DesktopSession desktop;
  XClient& x;
};

/// A fixture whose tests run once on each window manager.
class EachWindowManager : public DesktopTest, public testing::WithParamInterface<WindowManager> {
 protected:
  explicit EachWindowManager(int width = 1440, int height = 900) : DesktopTest(GetParam(), width, height) {}
};

inline void PrintTo(WindowManager windowManager, std::ostream* stream) { *stream << name(windowManager); }
inline std::string parameterName(const testing::TestParamInfo<WindowManager>& info) { return name(info.param); }
inline auto windowManagers() { return testing::Values(WindowManager::Openbox, WindowManager::Xfwm4); }

}  // namespace desktoptest
