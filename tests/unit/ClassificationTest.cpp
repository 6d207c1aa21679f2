// Which clicks become which action, and what they cost.
#include <string>

#include "Fixture.h"

namespace {

using ostrel::WindowAction;
using simulated::Call;

class ClassificationTest : public DesktopTest {
 protected:
  std::optional<WindowAction::Kind> classify(std::string_view element, CGEventType type = kCGEventLeftMouseDown) {
    const CGRect frame = desktop.frame(element);
    const auto action = controller->actionForClick(type, {frame.origin.x + 1, frame.origin.y + 1});
    return action ? std::optional(action->kind) : std::nullopt;
  }
};

constexpr auto center = WindowAction::Kind::CenterHorizontally;
constexpr auto fill = WindowAction::Kind::FillWithMargins;
constexpr auto hide = WindowAction::Kind::Hide;
constexpr auto none = std::nullopt;

TEST_F(ClassificationTest, PreferencesDecideForEachButton) {
  const ns::PropertyList unset{std::string("unset")};
  const struct {
    const char* key;
    ns::PropertyList value;
    std::optional<WindowAction::Kind> red, yellow, green;
  } cases[] = {
      {"behavior.nothing", unset, none, center, fill},
      {"behavior.yellowButtonEnabled", {false}, none, none, fill},
      {"behavior.yellowButtonEnabled", {std::string("YES")}, none, center, fill},
      {"behavior.yellowButtonEnabled", {std::string("maybe")}, none, none, fill},
      {"behavior.greenButtonEnabled", {std::int64_t{0}}, none, center, none},
      {"behavior.greenButtonEnabled", {ns::Array{}}, none, center, none},
      {"behavior.redButtonHidesWindow", {true}, hide, center, fill},
      {"behavior.redButtonHidesWindow", {std::string("no")}, none, center, fill},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(each.key);
    desktop.defaults()->user.clear();
    store(each.key, each.value);
    EXPECT_EQ(classify("red"), each.red);
    EXPECT_EQ(classify("yellow"), each.yellow);
    EXPECT_EQ(classify("green"), each.green);
    EXPECT_EQ(classify("content"), none);
    EXPECT_EQ(classify("window"), none);
    for (const char* button : {"red", "yellow", "green"}) EXPECT_EQ(classify(button, kCGEventRightMouseDown), none);
  }
  EXPECT_FALSE(controller->actionForClick(kCGEventLeftMouseDown, {1400, 880})) << "on the bare desktop";
  EXPECT_FALSE(controller->actionForClick(static_cast<CGEventType>(25), {131, 86})) << "the other buttons";
}

TEST_F(ClassificationTest, OnlyExactRolesAndSubrolesCount) {
  const struct {
    const char* button;
    std::optional<WindowAction::Kind> action;
  } cases[] = {
      {"AXButton/AXFullScreenButton #b 0,0 9x9", fill},
      {"AXButton/AXZoomButton #b 0,0 9x9", fill},
      {"AXButton/axzoombutton #b 0,0 9x9", none},
      {"AXButton/AXToolbarButton #b 0,0 9x9", none},
      {"AXButton #b 0,0 9x9", none},
      {"AXButton AXSubrole=1 #b 0,0 9x9", none},
      {"AXCheckBox/AXZoomButton #b 0,0 9x9", none},
      {"AXButton/AXZoomButton AXParent=7 #b 0,0 9x9", none},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(each.button);
    desktop.launch({502, {}, "Other"}, std::string("AXWindow #w 900,700 200x100\n  ") + each.button);
    EXPECT_EQ(classify("b"), each.action);
    desktop.quit(502);
    desktop.elements().named("b").name.clear();
  }
}

TEST_F(ClassificationTest, CloseButtonHidesOnlyWhatCanBeMinimized) {
  const struct {
    const char* minimizeButton;
    std::optional<WindowAction::Kind> action;
  } cases[] = {
      {"AXButton/AXMinimizeButton", hide},
      {"AXButton/AXMinimizeButton disabled", none},
      {"AXButton/AXMinimizeButton AXEnabled=1", hide},
      {"AXButton/AXMinimizeButton AXEnabled=2", none},
      {"AXButton/AXMinimizeButton AXEnabled=0.5", none},
      {"AXButton/AXMinimizeButton AXEnabled=\"true\"", none},
      {"AXGroup", none},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(each.minimizeButton);
    store("behavior.redButtonHidesWindow", {true});
    desktop.launch({502, {}, "Other"}, std::string("AXWindow #w 900,700 200x100\n  ") + each.minimizeButton +
                                           " 20,0 9x9\n  AXButton/AXCloseButton #close 0,0 9x9");
    EXPECT_EQ(classify("close"), each.action);
    store("behavior.redButtonHidesWindow", {false});
    desktop.clearJournal();
    EXPECT_EQ(classify("close"), none);
    for (const std::string& entry : desktop.journal()) EXPECT_EQ(entry.find("AXMinimizeButton"), std::string::npos);
    desktop.quit(502);
    desktop.elements().named("close").name.clear();
  }
}

/// A window, groups down to its zoom button, and groups in that.
std::string chain(int groupsAboveButton, int elementsBelowButton) {
  std::string text = "AXWindow #w 900,700 200x100\n";
  std::string indentation = " ";
  for (int i = 0; i < groupsAboveButton; ++i, indentation += ' ') text += indentation + "AXGroup 0,0 9x9\n";
  text += indentation + "AXButton/AXZoomButton 0,0 9x9\n";
  for (int i = 0; i < elementsBelowButton; ++i) text += (indentation += ' ') + "AXImage 0,0 9x9\n";
  return text;
}

TEST_F(ClassificationTest, WalksEndAtTheirLimits) {
  const struct {
    int windowAboveButton, hitBelowButton;
    std::optional<WindowAction::Kind> action;
    int mostCalls;
  } cases[] = {
      {1, 0, fill, 7},          {11, 0, fill, 1 + 2 + 1 + 24}, {12, 0, none, 1 + 2 + 1 + 24},
      {1, 5, fill, 1 + 18 + 4}, {1, 6, none, 1 + 18},          {11, 5, fill, 1 + 18 + 1 + 24},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(each.windowAboveButton * 100 + each.hitBelowButton);
    desktop.launch({502, {}, "Other"}, chain(each.windowAboveButton - 1, each.hitBelowButton));
    desktop.resetCounts();
    EXPECT_EQ(classify("w"), each.action);
    EXPECT_LE(desktop.totalCount(), each.mostCalls);
    desktop.quit(502);
    desktop.elements().named("w").name.clear();
  }
}

TEST_F(ClassificationTest, AnyCallThatGoesWrongPassesTheClickOn) {
  store("behavior.redButtonHidesWindow", {true});
  desktop.resetCounts();
  ASSERT_EQ(classify("red"), hide);
  const int reads = desktop.count(Call::Attribute);
  // The button's own role on the way to its window decides nothing: the walk goes on.
  const int idleRead = 4;
  for (int nth = 1; nth <= reads; ++nth) {
    const auto answer = nth == idleRead ? std::optional(hide) : none;
    const auto classifyWith = [&](simulated::Fault fault) {
      fault.nth = nth;
      desktop.clearFaults();
      desktop.inject(std::move(fault));
      return classify("red");
    };
    for (const AXError error : {kAXErrorFailure, kAXErrorInvalidUIElement, kAXErrorCannotComplete, kAXErrorNoValue}) {
      EXPECT_EQ(classifyWith({.error = error}), answer) << "read " << nth << ", error " << error;
    }
    EXPECT_EQ(classifyWith({.value = desktop::Value(desktop::ForeignValue{})}), answer) << "wrong type at read " << nth;

    EXPECT_EQ(classifyWith({.meanwhile = [this] { desktop.close("window"); }}), none) << "lost at read " << nth;
    desktop.elements().named("window").name.clear();
    desktop.elements().named("red").name.clear();
    desktop.launch({502, {}, "Again"},
                   "AXWindow #window 100,80 640x480\n AXButton/AXCloseButton #red 0,0 9x9\n"
                   " AXButton/AXMinimizeButton 20,0 9x9");
  }
  desktop.clearFaults();
  desktop.inject({.call = Call::HitTest, .error = kAXErrorCannotComplete});
  EXPECT_EQ(classify("red"), none);
}

TEST_F(ClassificationTest, ElementThatIsItsOwnAncestorEndsTheWalk) {
  auto& content = desktop.elements().named("content");
  content.attributes["AXParent"] = desktop::Element{simulated::treeElementKind, content.identifier};
  EXPECT_EQ(classify("content"), none);
}

}  // namespace
