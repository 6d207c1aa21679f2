// An application with one window for the tests that click on it, and where its clicks should lead.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <csignal>
#include <string>
#include <vector>

#import "tests/macos/Desk.h"

namespace desk {

// Applications may put a window on whole pixels.
inline constexpr double tolerance = 1;

inline bool isAt(const std::optional<CGRect>& frame, CGRect wanted) {
  return frame && std::abs(frame->origin.x - wanted.origin.x) <= tolerance &&
         std::abs(frame->origin.y - wanted.origin.y) <= tolerance &&
         std::abs(frame->size.width - wanted.size.width) <= tolerance &&
         std::abs(frame->size.height - wanted.size.height) <= tolerance;
}

/// An application with one window, and what of the mouse reaches it.
class Target {
 public:
  explicit Target(double x = 60, double y = 140, const std::vector<std::string>& more = {})
      : program_(command(x, y, more)) {
    EXPECT_TRUE(waitFor([this] { return program_.count("ready") == 1 && !desk::windows(pid()).empty(); }));
    window_ = desk::windows(pid()).at(0);
  }

  pid_t pid() const { return program_.pid(); }
  void signal(int number) const { kill(pid(), number); }
  std::optional<CGRect> frame() const { return desk::frame(window_.get()); }
  CGPoint button(CFStringRef name) const { return desk::middleOfButton(window_.get(), name); }
  void click(CFStringRef name, CGEventFlags flags = 0) const { desk::click(button(name), flags); }
  bool isThere() const { return !desk::windows(pid()).empty(); }
  bool isHidden() const { return program_.application().hidden; }
  int presses() { return program_.count("press"); }
  /// Presses arrive in order: once one on the content is there, nothing before it is still on its way.
  void expectNoPressBeforeThisOne() {
    const CGRect place = frame().value_or(CGRectZero);
    desk::click(CGPointMake(CGRectGetMidX(place), CGRectGetMidY(place)));
    EXPECT_TRUE(waitFor([this] { return presses() > 0; }));
    EXPECT_EQ(presses(), 1) << "the click on the button has reached the application";
  }

 private:
  static std::vector<std::string> command(double x, double y, const std::vector<std::string>& more) {
    std::vector<std::string> words{OSTREL_TEST_WINDOW, std::to_string(x), std::to_string(y)};
    words.insert(words.end(), more.begin(), more.end());
    return words;
  }

  desk::Program program_;
  CFRef<AXUIElementRef> window_;
};

inline CGRect centered(CGRect frame) {
  const CGRect display = CGDisplayBounds(CGMainDisplayID());
  frame.origin.x = display.origin.x + (display.size.width - frame.size.width) / 2;
  return frame;
}

}  // namespace desk
