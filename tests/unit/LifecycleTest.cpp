// Starting, stopping, and what the event tap lets through.
#include <optional>
#include <string>
#include <vector>

#include "Fixture.h"
#include "platform/portable/CFObject.h"

namespace {

using simulated::Call;
using simulated::RunLoop;
using LifecycleTest = DesktopTest;
using TapTest = RunningTest;

TEST_F(LifecycleTest, WaitsForConsentThenInstallsOneTap) {
  desktop.isTrusted = false;
  EXPECT_FALSE(controller->startIfPossible());
  EXPECT_EQ(controller->lastError(), "waiting for Accessibility");
  EXPECT_EQ(desktop.tapCount(), 0U);

  desktop.isTrusted = true;
  for (int start = 0; start < 2; ++start) {
    EXPECT_TRUE(controller->startIfPossible());
    EXPECT_EQ(controller->lastError(), std::nullopt);
    EXPECT_EQ(desktop.enabledTapCount(), 1U);
  }
}

TEST_F(LifecycleTest, FailedStartLeavesNothingBehindAndCanBeRepeated) {
  const std::size_t objects = cf::liveObjects();
  desktop.refusesTap = true;
  EXPECT_FALSE(controller->startIfPossible());
  EXPECT_EQ(controller->lastError(), "event tap could not start");

  desktop.refusesTap = false;
  desktop.refusesRunLoopSource = true;
  EXPECT_FALSE(controller->startIfPossible());
  EXPECT_EQ(controller->lastError(), "run loop source could not start");
  EXPECT_EQ(desktop.tapCount(), 0U);
  EXPECT_FALSE(controller->isTapInstalled());
  EXPECT_EQ(cf::liveObjects(), objects);

  controller->stop();
  EXPECT_EQ(controller->lastError(), "run loop source could not start");
  desktop.refusesRunLoopSource = false;
  EXPECT_TRUE(controller->startIfPossible());
  EXPECT_EQ(controller->lastError(), std::nullopt);
}

TEST_F(TapTest, TakenDownWhenStoppedSwitchedOffDistrustedOrReleased) {
  controller->stop();
  EXPECT_EQ(desktop.tapCount(), 0U);

  EXPECT_TRUE(controller->startIfPossible());
  desktop.isTrusted = false;
  EXPECT_FALSE(controller->startIfPossible());
  EXPECT_EQ(desktop.tapCount(), 0U);

  desktop.isTrusted = true;
  EXPECT_TRUE(controller->startIfPossible());
  controller->setEnabled(false);
  EXPECT_FALSE(controller->startIfPossible());
  EXPECT_EQ(controller->lastError(), std::nullopt);  // switched off is no failure
  EXPECT_EQ(desktop.tapCount(), 0U);

  controller->setEnabled(true);
  EXPECT_TRUE(controller->startIfPossible());
  controller.reset();
  EXPECT_EQ(desktop.tapCount(), 0U);
  EXPECT_TRUE(click("yellow"));
}

TEST_F(TapTest, SwallowsAWindowButtonClickAndActsAfterwards) {
  EXPECT_FALSE(desktop.click("yellow"));
  EXPECT_TRUE(desktop.writes().empty()) << "the window changed while the click was held";
  RunLoop::runPending();
  EXPECT_EQ(desktop.frame("window"), CGRectMake(400, 80, 640, 480));
}

TEST_F(TapTest, AsksForMouseDownsOnlyAndPassesTheRightOnesOn) {
  EXPECT_EQ(desktop.tapMask(), CGEventMask{0xA}) << "whatever else it asks for is held up, too";
  for (const char* button : {"red", "yellow", "green"}) {
    EXPECT_TRUE(desktop.click(button, 0, kCGEventRightMouseDown));
  }
  EXPECT_EQ(RunLoop::pendingCount(), 0U);
}

TEST_F(TapTest, PassesWithoutAskingAnybody) {
  const struct {
    const char* why;
    CGEventFlags flags;
    bool isTrusted = true;
    bool isEnabled = true;
  } cases[] = {
      {"shift", kCGEventFlagMaskShift},
      {"control", kCGEventFlagMaskControl},
      {"option", kCGEventFlagMaskAlternate},
      {"command", kCGEventFlagMaskCommand},
      {"command with caps lock", kCGEventFlagMaskCommand | kCGEventFlagMaskAlphaShift},
      {"consent withdrawn", 0, false},
      {"switched off", 0, true, false},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(each.why);
    desktop.isTrusted = each.isTrusted;
    controller->setEnabled(each.isEnabled);
    desktop.resetCounts();
    EXPECT_TRUE(click("yellow", each.flags));
    EXPECT_EQ(desktop.totalCount(), 0);
    EXPECT_EQ(desktop.tapCount(), 1U);
  }
  desktop.isTrusted = true;
  controller->setEnabled(true);
  EXPECT_FALSE(click("yellow", kCGEventFlagMaskAlphaShift)) << "caps lock is no modifier";
}

TEST_F(TapTest, TurnsItselfOnAgainWhenTheSystemDisablesIt) {
  for (const CGEventType notice : {kCGEventTapDisabledByTimeout, kCGEventTapDisabledByUserInput}) {
    EXPECT_TRUE(desktop.disableTaps(notice));
    EXPECT_EQ(desktop.enabledTapCount(), 1U);
  }
  desktop.silenceTaps();
  EXPECT_TRUE(controller->startIfPossible());
  EXPECT_EQ(desktop.enabledTapCount(), 1U);
  EXPECT_EQ(desktop.tapCount(), 1U);
  EXPECT_FALSE(click("green"));
}

TEST_F(TapTest, StaysOffWithoutConsentUntilItIsBack) {
  for (const CGEventType notice : {kCGEventTapDisabledByTimeout, kCGEventTapDisabledByUserInput}) {
    desktop.isTrusted = false;
    EXPECT_TRUE(desktop.disableTaps(notice));
    EXPECT_EQ(desktop.enabledTapCount(), 0U) << "on again, it would hold the next click until that timed out too";
    EXPECT_TRUE(controller->isTapInstalled());

    desktop.isTrusted = true;
    EXPECT_TRUE(controller->startIfPossible());
    EXPECT_EQ(desktop.enabledTapCount(), 1U);
    EXPECT_FALSE(click("yellow"));
  }
}

TEST_F(TapTest, MadeAnewWhenItHasDied) {
  const std::size_t objects = cf::liveObjects();
  desktop.dropTaps();
  EXPECT_TRUE(click("green"));
  desktop.refusesTap = true;
  EXPECT_FALSE(controller->startIfPossible());
  EXPECT_FALSE(controller->isTapInstalled());
  EXPECT_EQ(controller->lastError(), "event tap could not start");

  desktop.refusesTap = false;
  EXPECT_TRUE(controller->startIfPossible());
  EXPECT_EQ(controller->lastError(), std::nullopt);
  EXPECT_EQ(desktop.enabledTapCount(), 1U);
  EXPECT_FALSE(click("green"));
  EXPECT_EQ(cf::liveObjects(), objects);
}

TEST_F(TapTest, ClickOnAHungApplicationIsPassedOnAndTheNextOneWorks) {
  desktop.inject({.call = Call::Attribute, .element = "yellow", .nth = 1, .seconds = 6});
  EXPECT_TRUE(click("yellow"));
  EXPECT_EQ(desktop.enabledTapCount(), 1U);
  EXPECT_FALSE(click("green"));
}

TEST_F(TapTest, ReleasedBetweenTheClickAndItsTask) {
  EXPECT_FALSE(desktop.click("green"));
  controller.reset();
  RunLoop::runPending();
  EXPECT_TRUE(desktop.writes().empty());
}

TEST_F(TapTest, ReleasedInTheMiddleOfItsOwnCallback) {
  desktop.inject({.call = Call::HitTest, .meanwhile = [this] { controller.reset(); }});
  EXPECT_FALSE(desktop.click("green"));
  EXPECT_EQ(desktop.enabledTapCount(), 0U);
  EXPECT_EQ(desktop.tapCount(), 1U) << "a tap must outlive its own call";
  RunLoop::runPending();
  EXPECT_EQ(desktop.tapCount(), 0U);
  EXPECT_TRUE(desktop.writes().empty());
}

TEST_F(TapTest, CallbackWithoutAControllerPassesEverythingOn) {
  int placeholder = 0;
  auto* event = reinterpret_cast<CGEventRef>(&placeholder);
  EXPECT_EQ(ostrel::ostrelEventTapCallback(nullptr, kCGEventLeftMouseDown, event, nullptr), event);
}

TEST_F(TapTest, ClicksLeaveNoObjectBehind) {
  const std::size_t objects = cf::liveObjects();
  for (const char* element : {"red", "yellow", "green", "content"}) {
    click(element);
    click(element, 0, kCGEventRightMouseDown);
  }
  EXPECT_EQ(cf::liveObjects(), objects);
  controller.reset();
  EXPECT_EQ(cf::liveObjects(), objects - 3) << "the tap, its source and the system-wide element";
}

}  // namespace
