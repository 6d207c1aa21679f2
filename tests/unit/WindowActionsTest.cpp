// Where windows end up, in which order they are written, and what happens when they refuse.
#include <algorithm>
#include <string>
#include <vector>

#include "Fixture.h"

namespace {

using simulated::Call;
using WindowActionsTest = RunningTest;

TEST_F(WindowActionsTest, CentersOnTheDisplayThatHoldsTheMiddle) {
  const struct {
    const char* displays;
    CGRect before;
    double x;
  } cases[] = {
      {R"(1 "A" 0,0 1440x900 main)", {{0, 80}, {640, 480}}, 400},
      {R"(1 "A" 0,0 1440x900 main)", {{0, 80}, {1640, 480}}, -100},
      {R"(1 "A" 0,0 1441x900 main)", {{0, 80.5}, {640, 480}}, 400.5},
      // The middle on the shared edge belongs to the right one.
      {"1 \"A\" 0,0 1000x900 main\n2 \"B\" 1000,0 1000x900", {{900, 80}, {200, 200}}, 1400},
      {"1 \"A\" 0,0 1000x900 main\n2 \"B\" -1000,-900 1000x900", {{-300, -300}, {200, 200}}, -600},
      // In a gap: the nearer one, and of equally near ones the first.
      {"1 \"A\" 0,0 1000x900 main\n2 \"B\" 1200,0 1000x900", {{1010, 80}, {200, 200}}, 1600},
      {"2 \"B\" 1200,0 1000x900\n1 \"A\" 0,0 1000x900 main", {{1000, 80}, {200, 200}}, 1600},
      {"1 \"A\" 0,0 1000x900 main\n2 \"B\" 1200,0 1000x900", {{1000, 80}, {200, 200}}, 400},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(each.displays);
    desktop.setDisplays(each.displays);
    desktop.elements().named("window").place = each.before;
    desktop.clearJournal();
    EXPECT_FALSE(click("yellow"));
    CGRect after = each.before;
    after.origin.x = each.x;
    EXPECT_EQ(desktop.frame("window"), after);
    EXPECT_EQ(desktop.writes().size(), 1U);
  }
}

TEST_F(WindowActionsTest, FillsTheDisplayLessItsMargins) {
  EXPECT_FALSE(click("green"));
  EXPECT_EQ(desktop.frame("window"), CGRectMake(32, 56, 1376, 812));
  const std::vector<std::string> inOrder{"set window AXPosition 32,56", "set window AXSize 1376x812",
                                         "set window AXPosition 32,56"};
  EXPECT_EQ(desktop.writes(), inOrder);

  desktop.setDisplays(R"(1 "Small" -500,-400 300x200 main)");
  store("margins.left", {100.0});
  store("margins.right", {80.5});
  store("margins.top", {100.0});
  EXPECT_FALSE(click("green"));
  EXPECT_EQ(desktop.frame("window"), CGRectMake(-400, -300, 120, 120));
}

TEST_F(WindowActionsTest, RefusedWritesAreNotRetried) {
  desktop.inject({.call = Call::SetAttribute, .attribute = "AXSize", .error = kAXErrorCannotComplete});
  EXPECT_FALSE(click("green"));
  EXPECT_EQ(desktop.frame("window"), CGRectMake(32, 56, 640, 480));
  EXPECT_EQ(desktop.writes().size(), 3U);
}

TEST_F(WindowActionsTest, UnreadableWindowOrNoDisplayLeavesItAlone) {
  const simulated::Fault faults[] = {
      {.call = Call::Attribute, .attribute = "AXPosition", .error = kAXErrorNoValue},
      {.call = Call::Attribute, .attribute = "AXPosition", .value = desktop::Value(CGSize{1, 2})},
      {.call = Call::Attribute, .attribute = "AXSize", .value = desktop::Value(std::string("large"))},
      {.call = Call::Attribute, .attribute = "AXSize", .error = kAXErrorInvalidUIElement},
      {.call = Call::ActiveDisplays, .error = kCGErrorFailure},
      {.call = Call::ActiveDisplays, .nth = 2, .error = kCGErrorFailure},
      {.call = Call::ActiveDisplays, .nth = 2, .meanwhile = [this] { desktop.setDisplays(""); }},
  };
  for (const auto& fault : faults) {
    desktop.clearFaults();
    desktop.inject(fault);
    EXPECT_FALSE(click("yellow"));
    desktop.clearFaults();
    desktop.inject(fault);
    EXPECT_FALSE(click("green"));
  }
  EXPECT_TRUE(desktop.writes().empty());
}

TEST_F(WindowActionsTest, HidingFallsBackStepByStep) {
  store("behavior.redButtonHidesWindow", {true});
  const std::vector<std::string> steps{"hide 501", "set application-501 AXHidden true", "set window AXMinimized true"};
  const auto writesOfClick = [this] {
    desktop.clearJournal();
    EXPECT_FALSE(click("red"));
    return desktop.writes();
  };
  EXPECT_EQ(writesOfClick(), std::vector(steps.begin(), steps.begin() + 1));
  EXPECT_TRUE(desktop.isHidden(editorPID));
  EXPECT_EQ(std::ranges::count(desktop.journal(), "running applications"), 0) << "who they are does not matter";

  desktop.refusesHiding = true;
  EXPECT_EQ(writesOfClick(), std::vector(steps.begin(), steps.begin() + 2));

  desktop.inject({.call = Call::SetAttribute, .attribute = "AXHidden", .error = kAXErrorAttributeUnsupported});
  EXPECT_EQ(writesOfClick(), steps);

  desktop.inject({.call = Call::ProcessIdentifier, .error = kAXErrorFailure});
  EXPECT_EQ(writesOfClick(), std::vector(steps.begin() + 2, steps.end()));

  // A process that no application is known for may still obey its element.
  desktop.clearFaults();
  desktop.elements().named("window").pid = 777;
  EXPECT_EQ(writesOfClick(), std::vector<std::string>{"set application-777 AXHidden true"});
}

}  // namespace
