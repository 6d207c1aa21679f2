// The finished application on a real desktop: clicks on the window buttons of another process.
#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <memory>

#import "tests/macos/Desk.h"

namespace {

using desk::waitFor;

// Applications may put a window on whole pixels.
constexpr double tolerance = 1;

bool isAt(const std::optional<CGRect>& frame, CGRect wanted) {
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

CGRect centered(CGRect frame) {
  const CGRect display = CGDisplayBounds(CGMainDisplayID());
  frame.origin.x = display.origin.x + (display.size.width - frame.size.width) / 2;
  return frame;
}

CGRect filled() {
  const CGRect display = CGDisplayBounds(CGMainDisplayID());
  return CGRectMake(display.origin.x + 32, display.origin.y + 56, display.size.width - 64, display.size.height - 88);
}

class ClickTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(AXIsProcessTrusted())
        << "what runs this test needs the permission in System Settings › Privacy & Security › Accessibility";
    ASSERT_EQ([NSRunningApplication runningApplicationsWithBundleIdentifier:@OSTREL_BUNDLE_IDENTIFIER].count, 0U)
        << "quit Ostrel first";
  }

  /// With these preferences and no others. Returns once its tap is there.
  void start(NSDictionary<NSString*, id>* preferences = @{}) {
    ostrel_.reset();
    preferences_.set(preferences);
    ostrel_ = std::make_unique<desk::Program>(std::vector<std::string>{OSTREL_PROGRAM});
    ASSERT_TRUE(waitFor([this] { return hasTap(); }, 10)) << "Ostrel has not started, or has no permission";
  }
  bool hasTap() const {
    const auto taps = desk::tapsOf(ostrel_->pid());
    return taps.size() == 1 && taps[0].enabled;
  }
  desk::Program& ostrel() { return *ostrel_; }

 private:
  desk::Preferences preferences_ { @OSTREL_BUNDLE_IDENTIFIER };
  std::unique_ptr<desk::Program> ostrel_;
};

TEST_F(ClickTest, HasOneTapForPressesWhileItRuns) {
  start();
  const auto taps = desk::tapsOf(ostrel().pid());
  ASSERT_EQ(taps.size(), 1U);
  EXPECT_EQ(taps[0].eventsOfInterest, 0xAU) << "left and right mouse-downs";
  EXPECT_EQ(taps[0].options, kCGEventTapOptionDefault);
  EXPECT_EQ(ostrel().application().activationPolicy, NSApplicationActivationPolicyAccessory);
  [ostrel().application() terminate];
  EXPECT_TRUE(waitFor([this] { return desk::tapsOf(ostrel().pid()).empty(); }));
}

TEST_F(ClickTest, HasAStatusItem) {
  start();
  const auto application = CFRef<AXUIElementRef>::adopt(AXUIElementCreateApplication(ostrel().pid()));
  EXPECT_TRUE(waitFor([&] {
    const auto bar = desk::attribute(application.get(), CFSTR("AXExtrasMenuBar"));
    if (!bar) return false;
    const auto items = desk::attribute(static_cast<AXUIElementRef>(bar.get()), kAXChildrenAttribute);
    return items && CFArrayGetCount(static_cast<CFArrayRef>(items.get())) == 1;
  }));
}

TEST_F(ClickTest, ASecondStartShowsTheSettingsOfTheFirst) {
  start();
  EXPECT_TRUE(desk::windows(ostrel().pid()).empty());
  const desk::Program second({OSTREL_PROGRAM, "settings", "displays"});
  EXPECT_TRUE(waitFor([this] { return desk::windows(ostrel().pid()).size() == 1; }));
  EXPECT_EQ([NSRunningApplication runningApplicationsWithBundleIdentifier:@OSTREL_BUNDLE_IDENTIFIER].count, 1U);
}

TEST_F(ClickTest, YellowCentres) {
  start();
  Target target;
  const CGRect wanted = centered(target.frame().value());
  target.click(kAXMinimizeButtonAttribute);
  EXPECT_TRUE(waitFor([&] { return isAt(target.frame(), wanted); }));
  target.expectNoPressBeforeThisOne();
}

TEST_F(ClickTest, GreenFillsTheDisplayLessTheMargins) {
  start();
  Target target;
  target.click(kAXZoomButtonAttribute);
  EXPECT_TRUE(waitFor([&] { return isAt(target.frame(), filled()); }));
  target.expectNoPressBeforeThisOne();
}

TEST_F(ClickTest, RedClosesUntilItIsToldToHide) {
  start();
  Target target;
  target.click(kAXCloseButtonAttribute);
  EXPECT_TRUE(waitFor([&] { return !target.isThere(); }));
  EXPECT_EQ(target.presses(), 1);
  EXPECT_FALSE(target.isHidden());
}

TEST_F(ClickTest, RedHidesTheApplication) {
  start(@{@"behavior.redButtonHidesWindow" : @YES});
  Target target;
  target.click(kAXCloseButtonAttribute);
  EXPECT_TRUE(waitFor([&] { return target.isHidden(); }));
  EXPECT_TRUE(target.isThere());
  EXPECT_EQ(target.presses(), 0);
}

TEST_F(ClickTest, ModifiersLeaveTheClickToTheApplication) {
  start();
  Target target(60, 140, {"keep"});
  const CGRect before = target.frame().value();
  int presses = 0;
  for (const CGEventFlags flag :
       {kCGEventFlagMaskShift, kCGEventFlagMaskControl, kCGEventFlagMaskAlternate, kCGEventFlagMaskCommand}) {
    target.click(kAXMinimizeButtonAttribute, flag);
    ++presses;
    EXPECT_TRUE(waitFor([&] { return target.presses() == presses; })) << std::hex << flag;
  }
  EXPECT_TRUE(isAt(target.frame(), before));
  target.click(kAXMinimizeButtonAttribute, kCGEventFlagMaskAlphaShift);
  EXPECT_TRUE(waitFor([&] { return isAt(target.frame(), centered(before)); })) << "caps lock is no modifier";
  EXPECT_EQ(target.presses(), presses);
}

TEST_F(ClickTest, ExcludedApplicationsAndButtonsSwitchedOffKeepTheirClicks) {
  for (NSDictionary<NSString*, id>* preferences in @[
         @{@"behavior.yellowButtonEnabled" : @NO},
         @{@"behavior.excludedApps" : @[ @{@"bundleID" : @"example.ostrel.test-window", @"name" : @"Window"} ]},
       ]) {
    start(preferences);
    Target target(60, 140, {"keep"});
    const CGRect before = target.frame().value();
    target.click(kAXMinimizeButtonAttribute);
    EXPECT_TRUE(waitFor([&] { return target.presses() == 1; })) << preferences.description.UTF8String;
    EXPECT_TRUE(isAt(target.frame(), before));
  }
}

TEST_F(ClickTest, TwoQuickClicksAreBothTaken) {
  start();
  Target target;
  const CGPoint button = target.button(kAXMinimizeButtonAttribute);
  const CGRect wanted = centered(target.frame().value());
  // Elsewhere on the title bar the second would be a press of the application's.
  desk::click(button);
  desk::click(button);
  EXPECT_TRUE(waitFor([&] { return isAt(target.frame(), wanted); }));
  EXPECT_TRUE(hasTap());
  target.click(kAXZoomButtonAttribute);
  EXPECT_TRUE(waitFor([&] { return isAt(target.frame(), filled()); }));
}

TEST_F(ClickTest, AStoppedApplicationHoldsUpNoOther) {
  start();
  Target stopped(60, 140);
  Target other(200, 480);
  const CGPoint button = stopped.button(kAXMinimizeButtonAttribute);
  const CGRect wanted = centered(other.frame().value());
  const CGPoint otherButton = other.button(kAXMinimizeButtonAttribute);
  stopped.signal(SIGSTOP);
  desk::click(button);
  desk::click(otherButton);
  EXPECT_TRUE(waitFor([&] { return isAt(other.frame(), wanted); }));
  stopped.signal(SIGCONT);
  EXPECT_TRUE(waitFor([this] { return hasTap(); })) << "off after the silence of the stopped one";
  other.click(kAXZoomButtonAttribute);
  EXPECT_TRUE(waitFor([&] { return isAt(other.frame(), filled()); }));
}

}  // namespace
