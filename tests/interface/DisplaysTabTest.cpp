#include <algorithm>

#include "tests/interface/Fixture.h"
#include "tests/interface/Person.h"

using ostrel::Tab;
using ostrel::WindowMargins;

namespace ostrel {
void PrintTo(const WindowMargins& margins, std::ostream* stream) {
  *stream << margins.top << ' ' << margins.left << ' ' << margins.right << ' ' << margins.bottom;
}
}  // namespace ostrel

namespace {

constexpr const char* twoDisplays = R"(
1 "Built-in Display" 0,0 1440x900 main 610/160/0
2 "Panel" 1440,0 1920x1080 16/200/7
)";

class DisplaysTabTest : public SettingsTest {
 protected:
  void presentDisplays() { present(Tab::Displays); }
  ns::TextField& field(const std::string& edge) {
    for (auto* const candidate : allOf<ns::TextField>(*labelSaying(document(), edge)->superview())) {
      if (candidate->stringValue() != edge) return *candidate;
    }
    throw std::out_of_range(edge);
  }
  ns::Stepper& stepper(const std::string& edge) { return *controlInRow<ns::Stepper>(document(), edge); }
  ns::PopUpButton& popUp() { return *controlInRow<ns::PopUpButton>(document(), "Choose display"); }
  ns::Button& reset() { return *buttonSaying(document(), "Reset margins for this display"); }

  void enter(const std::string& edge, const std::string& text) { person::enter(field(edge), text); }
  void choose(std::size_t index) { person::choose(popUp(), index); }
  WindowMargins shown() {
    return {field("Top").doubleValue(), field("Left").doubleValue(), field("Right").doubleValue(),
            field("Bottom").doubleValue()};
  }
  WindowMargins shownInSteppers() {
    return {stepper("Top").doubleValue(), stepper("Left").doubleValue(), stepper("Right").doubleValue(),
            stepper("Bottom").doubleValue()};
  }
};

constexpr WindowMargins defaults{56, 32, 32, 32};

TEST_F(DisplaysTabTest, ShowsProfileDisplaysAndMargins) {
  desktop.setDisplays(twoDisplays);
  presentDisplays();
  const auto configuration = ostrel::currentDisplayConfiguration();
  EXPECT_NE(labelSaying(document(), configuration.label), nullptr);
  ASSERT_EQ(popUp().numberOfItems(), 2u);
  EXPECT_EQ(popUp().menu().items()[1]->title(), configuration.displays[1].name);
  EXPECT_EQ(settings->selectedDisplayID(), configuration.displays[0].id);
  EXPECT_EQ(popUp().selectedItem()->title(), configuration.displays[0].name);
  EXPECT_EQ(shown(), defaults);
  EXPECT_EQ(shownInSteppers(), defaults);
  EXPECT_TRUE(desktop.defaults()->user.empty());
}

TEST_F(DisplaysTabTest, TypedMarginIsStoredWithTheOthersAsTheyWere) {
  // A fallback level: no longer in effect once the display has margins of its own.
  desktop.defaults()->user["margins.top"] = {11.0};
  presentDisplays();
  enter("Left", "40");
  EXPECT_EQ(controller->margins(1), (WindowMargins{11, 40, 32, 32}));
  EXPECT_EQ(shown(), (WindowMargins{11, 40, 32, 32}));
  EXPECT_EQ(shownInSteppers(), shown());
  EXPECT_GE(changes, 1);
  desktop.defaults()->user["margins.top"] = {99.0};
  EXPECT_EQ(controller->margins(1).top, 11);
}

TEST_F(DisplaysTabTest, FieldRefusesWhatIsNoWholeNumberUpToAThousand) {
  presentDisplays();
  enter("Left", "7");
  const auto before = desktop.defaults()->user;
  const int changesBefore = changes;
  for (const char* const text : {"abc", "1001", "-1", "12.5", "", " ", "99999999999999999999"}) {
    SCOPED_TRACE(text);
    enter("Left", text);
    EXPECT_EQ(desktop.defaults()->user, before);
    EXPECT_EQ(field("Left").stringValue(), "7");
  }
  EXPECT_EQ(changes, changesBefore);
  for (const char* const text : {"0", "1000"}) {
    enter("Left", text);
    EXPECT_EQ(controller->margins(1).left, std::stod(text));
  }
}

TEST_F(DisplaysTabTest, LeavingAnEditedFieldStoresIt) {
  presentDisplays();
  person::type(field("Top"), "21");
  EXPECT_EQ(controller->margins(1).top, 56);
  person::leave(field("Top"));
  EXPECT_EQ(controller->margins(1).top, 21);
  EXPECT_EQ(stepper("Top").doubleValue(), 21);
}

TEST_F(DisplaysTabTest, ClosingTheWindowStoresAnEditedFieldAndNoOther) {
  presentDisplays();
  person::visit(field("Top"));
  settings->window()->close();
  EXPECT_TRUE(desktop.defaults()->user.empty());
  presentDisplays();
  person::type(field("Top"), "21");
  settings->window()->close();
  EXPECT_EQ(controller->margins(1).top, 21);
}

TEST_F(DisplaysTabTest, SteppersStoreAndGoOnAtTheOtherEnd) {
  presentDisplays();
  stepper("Bottom").increment();
  EXPECT_EQ(controller->margins(1), (WindowMargins{56, 32, 32, 33}));
  EXPECT_EQ(field("Bottom").doubleValue(), 33);
  EXPECT_EQ(changes, 1);
  enter("Bottom", "1000");
  stepper("Bottom").increment();
  EXPECT_EQ(controller->margins(1).bottom, 0);
  stepper("Bottom").decrement();
  EXPECT_EQ(controller->margins(1).bottom, 1000);
  EXPECT_EQ(shown(), shownInSteppers());
}

TEST_F(DisplaysTabTest, ResetStoresTheStartingMarginsOfThisDisplayOnly) {
  desktop.setDisplays(twoDisplays);
  presentDisplays();
  const auto first = *settings->selectedDisplayID();
  enter("Top", "1");
  choose(1);
  const auto second = *settings->selectedDisplayID();
  ASSERT_NE(first, second);
  enter("Top", "2");
  const int before = changes;
  reset().performClick();
  EXPECT_EQ(changes, before + 1);
  EXPECT_EQ(shown(), defaults);
  EXPECT_EQ(controller->margins(second), defaults);
  EXPECT_EQ(controller->margins(first).top, 1);
}

TEST_F(DisplaysTabTest, ChoosingADisplayStoresNothing) {
  desktop.setDisplays(twoDisplays);
  presentDisplays();
  enter("Top", "5");
  const auto before = desktop.defaults()->user;
  const int changesBefore = changes;
  choose(1);
  EXPECT_EQ(shown(), defaults);
  choose(0);
  EXPECT_EQ(shown().top, 5);
  EXPECT_EQ(desktop.defaults()->user, before);
  EXPECT_EQ(changes, changesBefore);
}

TEST_F(DisplaysTabTest, ChoiceSurvivesPresentingAgainUntilItsDisplayGoes) {
  desktop.setDisplays(twoDisplays);
  presentDisplays();
  choose(1);
  const auto chosen = settings->selectedDisplayID();
  presentDisplays();
  EXPECT_EQ(settings->selectedDisplayID(), chosen);
  EXPECT_EQ(popUp().numberOfItems(), 2u);

  desktop.setDisplays(*chosen == 2 ? R"(1 "Built-in Display" 0,0 1440x900 main 610/160/0)"
                                   : R"(2 "Panel" 0,0 1920x1080 main 16/200/7)");
  presentDisplays();
  EXPECT_EQ(popUp().numberOfItems(), 1u);
  EXPECT_NE(settings->selectedDisplayID(), chosen);
  EXPECT_TRUE(settings->selectedDisplayID().has_value());
}

TEST_F(DisplaysTabTest, EqualDisplaysAreToldApartByTheirIdentifiers) {
  desktop.setDisplays(R"(
1 "Built-in Display" 0,0 1440x900 main 610/160/0
2 "Twin" 1440,0 1920x1080 16/200/7
3 "Twin" 3360,0 1920x1080 16/200/8
)");
  presentDisplays();
  ASSERT_EQ(popUp().numberOfItems(), 3u);
  for (std::size_t index = 0; index < 3; ++index) {
    choose(index);
    enter("Left", std::to_string(100 + index));
  }
  for (const auto& display : ostrel::activeDisplays()) {
    const auto displays = ostrel::currentDisplayConfiguration().displays;
    const auto place = std::find(displays.begin(), displays.end(), display) - displays.begin();
    EXPECT_EQ(controller->margins(display.id).left, 100 + static_cast<double>(place)) << display.id;
  }
}

TEST_F(DisplaysTabTest, WithoutDisplaysNothingIsStored) {
  desktop.setDisplays("");
  presentDisplays();
  EXPECT_NE(labelSaying(document(), "No displays"), nullptr);
  EXPECT_EQ(popUp().numberOfItems(), 0u);
  EXPECT_EQ(settings->selectedDisplayID(), std::nullopt);
  stepper("Top").increment();
  reset().performClick();
  settings->displayChanged(popUp());
  EXPECT_TRUE(desktop.defaults()->user.empty());
  EXPECT_EQ(changes, 0);
}

TEST_F(DisplaysTabTest, DisplayThatLeftWhileShownIsStoredUnderItsIdentifierAlone) {
  presentDisplays();
  desktop.setDisplays(R"(9 "Other" 0,0 1440x900 main 1/1/1)");
  stepper("Top").increment();
  ASSERT_EQ(desktop.defaults()->user.size(), 4u);
  EXPECT_EQ(desktop.defaults()->user.at("margins.display.1.top"), ns::PropertyList{57.0});
}

TEST_F(DisplaysTabTest, WithoutControllerOnlyResetReports) {
  presentDisplays();
  controller.reset();
  stepper("Top").increment();
  EXPECT_EQ(changes, 0);
  reset().performClick();
  EXPECT_EQ(changes, 1);
  settings->reloadDisplays();
  EXPECT_EQ(popUp().numberOfItems(), 1u);
  EXPECT_TRUE(desktop.defaults()->user.empty());
}

}  // namespace
