#include "tests/interface/Fixture.h"

using ostrel::Tab;

namespace {

class ShellTest : public SettingsTest {
 protected:
  ostrel::SidebarButton& sidebarButton(Tab tab) {
    for (auto* const button : allOf<ostrel::SidebarButton>(root())) {
      if (button->tab() == tab) return *button;
    }
    throw std::out_of_range("no such tab");
  }
  std::vector<Tab> selectedButtons() {
    std::vector<Tab> selected;
    for (auto* const button : allOf<ostrel::SidebarButton>(root())) {
      if (button->isSelected()) selected.push_back(button->tab());
    }
    return selected;
  }
};

TEST_F(ShellTest, FirstPresentationMayBeAnyTab) {
  EXPECT_EQ(settings->window(), nullptr);
  present(Tab::About);
  EXPECT_EQ(selectedButtons(), std::vector<Tab>{Tab::About});
  EXPECT_NE(labelSaying(document(), "Features"), nullptr);
  EXPECT_TRUE(settings->window()->isVisible());
}

TEST_F(ShellTest, SidebarReactsWhenTheMouseGoesDown) {
  present(Tab::General);
  for (const Tab tab : {Tab::Displays, Tab::Exclude, Tab::About, Tab::General}) {
    auto& button = sidebarButton(tab);
    button.mouseDown({{5, 5}});
    EXPECT_EQ(settings->selectedTab(), tab);
    EXPECT_EQ(selectedButtons(), std::vector<Tab>{tab});
    EXPECT_EQ(button.layer().backgroundColor, ns::Color::controlAccentColor());
    EXPECT_EQ(labelSaying(button, title(tab))->textColor(), ns::Color::whiteColor());
    EXPECT_EQ(allOf<ns::ScrollView>(root()).size(), 1u);
  }
  auto& other = sidebarButton(Tab::About);
  EXPECT_EQ(other.layer().backgroundColor, ns::Color::clearColor());
  EXPECT_EQ(labelSaying(other, "About")->textColor(), ns::Color::labelColor());
}

TEST_F(ShellTest, OnlyTheGeneralTabIsRefreshedWhenShown) {
  present(Tab::Displays);
  const auto before = services.loginItem.statusNow;
  services.loginItem.statusNow = 1;
  settings->showTab(Tab::About);
  settings->showTab(Tab::General);
  EXPECT_TRUE(controlInRow<ns::Switch>(document(), "Open at login")->isOn());
  EXPECT_NE(before, 1);

  settings->showTab(Tab::Displays);
  auto& stepper = *controlInRow<ns::Stepper>(document(), "Top");
  desktop.defaults()->user["margins.top"] = {5.0};
  settings->showTab(Tab::Exclude);
  settings->showTab(Tab::Displays);
  EXPECT_EQ(stepper.doubleValue(), 56);
  present(Tab::Displays);
  EXPECT_EQ(stepper.doubleValue(), 5);
}

TEST_F(ShellTest, ClosingKeepsWindowAndControls) {
  present(Tab::Displays);
  const auto window = settings->window();
  auto* const stepper = controlInRow<ns::Stepper>(document(), "Top");
  const auto app = ns::Application::sharedApplication();
  app->setActivationPolicy(ns::ActivationPolicy::Regular);
  window->close();
  EXPECT_EQ(app->activationPolicy(), ns::ActivationPolicy::Accessory);
  app->setActivationPolicy(ns::ActivationPolicy::Regular);
  present(Tab::Displays);
  EXPECT_EQ(app->activationPolicy(), ns::ActivationPolicy::Accessory);
  EXPECT_EQ(settings->window(), window);
  EXPECT_EQ(controlInRow<ns::Stepper>(document(), "Top"), stepper);
}

TEST_F(ShellTest, VersionTellsShortVersionAndBuild) {
  using ostrel::SettingsWindowController;
  auto& info = services.mainBundleInfo;
  EXPECT_EQ(SettingsWindowController::versionString(), "v?");
  info["CFBundleVersion"] = {std::string("45")};
  EXPECT_EQ(SettingsWindowController::versionString(), "v? (45)");
  info["CFBundleShortVersionString"] = {std::string("1.2")};
  EXPECT_EQ(SettingsWindowController::versionString(), "v1.2 (45)");
  info["CFBundleVersion"] = {std::string()};
  EXPECT_EQ(SettingsWindowController::versionString(), "v1.2");
}

TEST_F(ShellTest, WindowDoesNotKeepItsController) {
  present(Tab::General);
  const std::weak_ptr<ostrel::SettingsWindowController> weak = settings;
  settings.reset();
  EXPECT_TRUE(weak.expired());
}

TEST_F(ShellTest, EveryIconHasADrawing) {
  controller->addExcludedApp({"gone", "Gone"});
  for (const auto tab : ostrel::allTabs) {
    present(tab);
    EXPECT_FALSE(allOf<ns::ImageView>(document()).empty());
    for (auto* const view : allOf<ns::ImageView>(root())) EXPECT_NE(view->image(), nullptr);
  }
}

TEST_F(ShellTest, LinkOpensTheWebSiteItNames) {
  present(Tab::About);
  auto& link = *allOf<ns::Button>(document()).at(0);
  link.performClick();
  EXPECT_EQ(desktop.workspace()->openedURLs, std::vector<std::string>{"https://" + link.title()});
  EXPECT_TRUE(desktop.defaults()->user.empty());
  EXPECT_EQ(changes, 0);
}

TEST(TabTest, IsKnownByItsRawValue) {
  for (const Tab tab : ostrel::allTabs) EXPECT_EQ(ostrel::tabWithRawValue(ostrel::rawValue(tab)), tab);
  for (const char* const text : {"", "General", "generals", "about "})
    EXPECT_EQ(ostrel::tabWithRawValue(text), std::nullopt);
}

}  // namespace
