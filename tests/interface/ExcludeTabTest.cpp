#include "tests/interface/Fixture.h"

using ostrel::Tab;

namespace {

constexpr const char* emptyText = "No apps are excluded. Ostrel affects the window buttons in every app.";

class ExcludeTabTest : public SettingsTest {
 protected:
  ExcludeTabTest() {
    services.bundles = {{"/apps/Maps.app", "org.example.maps"}, {"/apps/Bare.app", ""}};
    services.displayNames = {{"/apps/Maps.app", "Maps.app"}};
  }
  void presentExclude() { present(Tab::Exclude); }
  void add(const std::string& path) {
    services.choices.push_back(path);
    buttonSaying(document(), "Add app…")->performClick();
    root().layoutSubtreeIfNeeded();
  }
  /// The button in the row of the application with this name.
  ns::Button& removeButton(const std::string& name) { return *controlInRow<ns::Button>(document(), name); }
};

TEST_F(ExcludeTabTest, AddsTheChosenApplicationOnce) {
  presentExclude();
  ASSERT_NE(labelSaying(document(), emptyText), nullptr);
  add("/apps/Maps.app");
  EXPECT_EQ(labelSaying(document(), emptyText), nullptr);
  EXPECT_NE(labelSaying(document(), "Maps"), nullptr);
  EXPECT_EQ(controller->excludedApps(), (std::vector<ostrel::ExcludedApp>{{"org.example.maps", "Maps"}}));
  EXPECT_EQ(changes, 1);
  const auto& panel = services.panels.at(0);
  EXPECT_EQ(panel.prompt, "Exclude");
  EXPECT_EQ(panel.message, "Choose an app to exclude from Ostrel.");
  EXPECT_EQ(panel.directory, "/Applications");

  add("/apps/Maps.app");
  EXPECT_EQ(controller->excludedApps().size(), 1u);
  EXPECT_EQ(changes, 2);
}

TEST_F(ExcludeTabTest, TakesEverySuffixOutOfTheName) {
  services.displayNames["/apps/Maps.app"] = ".app.application.App.app";
  presentExclude();
  add("/apps/Maps.app");
  EXPECT_EQ(controller->excludedApps().at(0).name, "lication.App");
}

TEST_F(ExcludeTabTest, CancelledPanelChangesNothing) {
  presentExclude();
  buttonSaying(document(), "Add app…")->performClick();
  EXPECT_EQ(services.panels.size(), 1u);
  EXPECT_TRUE(services.alerts.empty());
  EXPECT_EQ(changes, 0);
}

TEST_F(ExcludeTabTest, WhatCannotBeReadIsReportedAndNotAdded) {
  presentExclude();
  for (const char* const path : {"/apps/Bare.app", "/apps/Gone.app"}) {
    services.alerts.clear();
    add(path);
    ASSERT_EQ(services.alerts.size(), 1u) << path;
    EXPECT_EQ(services.alerts[0].message, "Couldn't read that app");
    EXPECT_EQ(services.alerts[0].informativeText,
              "Ostrel couldn't determine the app's identifier, so it can't be excluded.");
  }
  EXPECT_EQ(changes, 0);
  EXPECT_TRUE(desktop.defaults()->user.empty());
}

TEST_F(ExcludeTabTest, RemovesByIdentifierAndEndsWithTheMutedText) {
  controller->setExcludedApps({{"b", "Twin"}, {"a", "Atlas"}, {"c", "Twin"}});
  presentExclude();
  removeButton("Atlas").performClick();
  ASSERT_EQ(controller->excludedApps().size(), 2u);
  const std::string first = removeButton("Twin").identifier();
  removeButton("Twin").performClick();
  ASSERT_EQ(controller->excludedApps().size(), 1u);
  EXPECT_NE(controller->excludedApps()[0].bundleID, first);
  removeButton("Twin").performClick();
  EXPECT_NE(labelSaying(document(), emptyText), nullptr);
  EXPECT_EQ(changes, 3);
}

TEST_F(ExcludeTabTest, KeyboardStaysInTheRebuiltList) {
  controller->setExcludedApps({{"a", "Atlas"}, {"b", "Books"}, {"c", "Chess"}});
  presentExclude();
  ns::Window& window = *settings->window();
  const auto removeByKeyboard = [&](const std::string& name) {
    window.makeFirstResponder(removeButton(name));
    removeButton(name).performClick();
  };
  removeByKeyboard("Books");
  EXPECT_TRUE(window.isFirstResponder(removeButton("Chess"))) << "the following row";
  removeByKeyboard("Chess");
  EXPECT_TRUE(window.isFirstResponder(removeButton("Atlas"))) << "the row before, when there is none after";
  removeByKeyboard("Atlas");
  EXPECT_TRUE(window.isFirstResponder(*buttonSaying(document(), "Add app…")));
  add("/apps/Maps.app");
  EXPECT_TRUE(window.isFirstResponder(*buttonSaying(document(), "Add app…")));

  controller->setExcludedApps({{"a", "Atlas"}, {"b", "Books"}});
  settings->rebuildExcludeTab();
  removeButton("Atlas").performClick();
  EXPECT_FALSE(window.isFirstResponder(removeButton("Books"))) << "by mouse nothing lights up";
}

TEST_F(ExcludeTabTest, ListIsRebuiltWhileAnotherTabShows) {
  presentExclude();
  settings->showTab(Tab::About);
  controller->addExcludedApp({"org.example.maps", "Maps"});
  settings->rebuildExcludeTab();
  EXPECT_EQ(labelSaying(root(), "Maps"), nullptr);
  EXPECT_NE(labelSaying(root(), "Features"), nullptr);
  settings->showTab(Tab::Exclude);
  EXPECT_NE(labelSaying(root(), "Maps"), nullptr);
}

TEST_F(ExcludeTabTest, ShowsTheIconOfTheApplicationOrADashedOne) {
  const auto icon = ns::Image::imageWithSystemSymbolName("gear");
  desktop.workspace()->installedApplications["here"] = "/apps/Here.app";
  desktop.workspace()->icons["/apps/Here.app"] = icon;
  controller->setExcludedApps({{"here", "Here"}, {"gone", "Gone"}});
  presentExclude();
  EXPECT_EQ(controlInRow<ns::ImageView>(document(), "Here")->image(), icon);
  EXPECT_EQ(icon->size().width, 22);
  EXPECT_NE(controlInRow<ns::ImageView>(document(), "Gone")->image(), nullptr);
}

TEST_F(ExcludeTabTest, WithoutControllerTheListEmptiesAndReports) {
  controller->addExcludedApp({"org.example.maps", "Maps"});
  const auto before = desktop.defaults()->user;
  presentExclude();
  controller.reset();
  removeButton("Maps").performClick();
  EXPECT_NE(labelSaying(document(), emptyText), nullptr);
  add("/apps/Maps.app");
  EXPECT_NE(labelSaying(document(), emptyText), nullptr);
  EXPECT_EQ(changes, 2);
  EXPECT_EQ(desktop.defaults()->user, before);
}

}  // namespace
