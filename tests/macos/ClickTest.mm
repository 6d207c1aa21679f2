// The finished application on a real desktop: clicks on the window buttons of another process.
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

#import "tests/macos/Target.h"

namespace {

using desk::centered;
using desk::isAt;
using desk::Target;
using desk::waitFor;

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

TEST_F(ClickTest, TheStatusItemOpensItsMenu) {
  start();
  CFRef<AXUIElementRef> item;
  ASSERT_TRUE(waitFor([&] {
    item = desk::statusItem(ostrel().pid());
    return static_cast<bool>(item);
  }));
  const auto place = desk::frame(item.get()).value();
  desk::click(CGPointMake(CGRectGetMidX(place), CGRectGetMidY(place)));
  std::vector<std::string> titles;
  EXPECT_TRUE(waitFor([&] {
    titles.clear();
    for (const auto& menu : desk::children(item.get())) {
      for (const auto& entry : desk::children(menu.get())) {
        titles.push_back(desk::text(entry.get(), kAXTitleAttribute));
      }
    }
    return titles.size() == 5;
  }));
  EXPECT_EQ(titles, (std::vector<std::string>{"About (v" OSTREL_VERSION ")", "Settings", "Check for Updates…", "",
                                              "Quit Ostrel"}));
  if (const char* folder = std::getenv("OSTREL_PICTURES")) desk::takePicture(folder + std::string("/menu.png"));
  desk::tapKey(desk::escapeKey);
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
