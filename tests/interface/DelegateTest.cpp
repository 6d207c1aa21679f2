#include "Ostrel/AppDelegate.h"

#include "tests/interface/Fixture.h"

namespace {

class DelegateTest : public testing::Test {
 protected:
  DelegateTest() { services.mainBundleInfo["CFBundleShortVersionString"] = {std::string("1.2.3")}; }
  ~DelegateTest() override {
    delegate.reset();
    simulated::RunLoop::runPending();
  }
  ns::Menu& openMenu() {
    services.statusItem->menu->update();
    return *services.statusItem->menu;
  }
  /// "-" for a separator, "(…)" around what cannot be chosen, the key equivalent after a bar.
  std::vector<std::string> titles() {
    std::vector<std::string> result;
    for (const auto& item : openMenu().items()) {
      const std::string text = item->title() + (item->keyEquivalent().empty() ? "" : "|" + item->keyEquivalent());
      result.push_back(item->isSeparator() ? "-" : item->isEnabled() ? text : "(" + text + ")");
    }
    return result;
  }
  void choose(const std::string& title) {
    for (const auto& item : openMenu().items()) {
      if (item->title() == title) return item->performAction();
    }
    FAIL() << title;
  }
  bool showsWarning() const { return services.statusItem->toolTip != "Ostrel"; }

  simulated::SimulatedDesktop desktop;
  simulated::Services services;
  std::shared_ptr<ostrel::AppDelegate> delegate = std::make_shared<ostrel::AppDelegate>();
};

TEST_F(DelegateTest, LaunchesInOrder) {
  std::vector<std::string> order;
  desktop.isTrusted = true;
  services.onUpdaterMade = [&] { order.push_back("updater " + std::to_string(desktop.tapCount())); };
  services.onStatusItemMade = [&] { order.push_back("status item " + std::to_string(desktop.tapCount())); };
  delegate->applicationDidFinishLaunching();
  EXPECT_EQ(order, (std::vector<std::string>{"updater 0", "status item 0"}));
  EXPECT_EQ(desktop.enabledTapCount(), 1u);
  EXPECT_TRUE(services.updater->isStarted);
  EXPECT_EQ(services.updater->delegate.lock(), delegate);
  EXPECT_TRUE(services.statusItem->isVisible);
  EXPECT_TRUE(services.statusItem->menu->items().empty());
}

TEST_F(DelegateTest, TicksFollowThePermission) {
  desktop.isTrusted = false;
  delegate->applicationDidFinishLaunching();
  EXPECT_TRUE(showsWarning());
  simulated::RunLoop::advance(2);
  EXPECT_EQ(desktop.tapCount(), 0u);

  desktop.isTrusted = true;
  simulated::RunLoop::advance(1.9);
  EXPECT_EQ(desktop.tapCount(), 0u);
  simulated::RunLoop::advance(0.2);
  EXPECT_EQ(desktop.enabledTapCount(), 1u);
  EXPECT_FALSE(showsWarning());
  simulated::RunLoop::advance(6);
  EXPECT_EQ(desktop.tapCount(), 1u);

  // Withdrawn while running: the look changes, the tap stays and lets everything pass.
  desktop.isTrusted = false;
  simulated::RunLoop::advance(2);
  EXPECT_TRUE(showsWarning());
  EXPECT_EQ(desktop.tapCount(), 1u);
}

TEST_F(DelegateTest, OpenSettingsFollowThePermission) {
  desktop.isTrusted = false;
  delegate->showSettingsAtLaunch("general");
  delegate->applicationDidFinishLaunching();
  auto& root = *delegate->settingsWindow().window()->contentView();
  const auto says = [&](const std::string& text) { return labelSaying(root, text) != nullptr; };
  const std::string granted = "Accessibility access has been granted.";
  for (const bool isTrusted : {true, false}) {
    EXPECT_NE(says(granted), isTrusted);
    desktop.isTrusted = isTrusted;
    simulated::RunLoop::advance(2.1);
    EXPECT_EQ(says(granted), isTrusted);
  }
}

TEST_F(DelegateTest, TerminationStopsTapAndTimer) {
  delegate->applicationDidFinishLaunching();
  delegate->applicationWillTerminate();
  EXPECT_EQ(desktop.tapCount(), 0u);
  simulated::RunLoop::advance(10);
  EXPECT_EQ(desktop.tapCount(), 0u);
}

TEST_F(DelegateTest, TimerDoesNotKeepTheDelegate) {
  delegate->applicationDidFinishLaunching();
  const std::weak_ptr<ostrel::AppDelegate> weak = delegate;
  delegate.reset();
  EXPECT_TRUE(weak.expired());
  simulated::RunLoop::advance(4);
  EXPECT_EQ(desktop.tapCount(), 0u);
}

TEST_F(DelegateTest, StatusItemShowsOneOfTwoLooks) {
  desktop.isTrusted = false;
  delegate->applicationDidFinishLaunching();
  auto& item = *services.statusItem;
  ASSERT_NE(item.image, nullptr);
  EXPECT_TRUE(item.image->isTemplate());
  EXPECT_EQ(item.image->accessibilityDescription(), "Ostrel");
  EXPECT_EQ(item.title, "");
  EXPECT_EQ(item.toolTip, "Ostrel — Accessibility access needed");
  const auto warning = item.image;
  desktop.isTrusted = true;
  openMenu();
  EXPECT_EQ(item.toolTip, "Ostrel");
  EXPECT_NE(item.image, warning);

  item.hasButton = false;
  desktop.isTrusted = false;
  openMenu();
  EXPECT_EQ(item.toolTip, "Ostrel");
}

TEST_F(DelegateTest, MenuIsBuiltAnewAtEveryOpening) {
  const std::vector<std::string> usual{"About (v1.2.3)", "Settings|,", "Check for Updates…", "-", "Quit Ostrel|q"};
  std::vector<std::string> withoutPermission{"Accessibility access needed",
                                             "(Grant access in System Settings, then Ostrel starts on its own.)", "-"};
  withoutPermission.insert(withoutPermission.end(), usual.begin(), usual.end());
  desktop.isTrusted = false;
  delegate->applicationDidFinishLaunching();
  EXPECT_EQ(titles(), withoutPermission);
  EXPECT_EQ(titles(), withoutPermission);
  desktop.isTrusted = true;
  EXPECT_EQ(titles(), usual);
  for (const auto& item : openMenu().items()) {
    EXPECT_EQ(item->image() != nullptr && item->image()->isTemplate(), !item->isSeparator()) << item->title();
  }
  for (const ns::PropertyList& version : {ns::PropertyList{std::int64_t{3}}, ns::PropertyList{true}}) {
    services.mainBundleInfo["CFBundleShortVersionString"] = version;
    EXPECT_EQ(titles().front(), "About (v?)");
  }
  services.mainBundleInfo.clear();
  EXPECT_EQ(titles().front(), "About (v?)");
  services.updater->canCheck = false;
  EXPECT_EQ(titles()[2], "(Check for Updates…)");
}

TEST_F(DelegateTest, MenuActionsReachTheirTargets) {
  desktop.isTrusted = false;
  delegate->applicationDidFinishLaunching();
  choose("Accessibility access needed");
  EXPECT_EQ(desktop.promptCount(), 1);
  EXPECT_EQ(desktop.workspace()->openedURLs.size(), 1u);
  choose("Check for Updates…");
  EXPECT_EQ(services.updater->checks, 1);

  choose("Settings");
  auto& settings = delegate->settingsWindow();
  EXPECT_EQ(settings.selectedTab(), ostrel::Tab::General);
  const auto window = settings.window();
  ASSERT_NE(window, nullptr);
  choose("About (v1.2.3)");
  EXPECT_EQ(settings.selectedTab(), ostrel::Tab::About);
  window->close();
  EXPECT_FALSE(window->isVisible());
  choose("Settings");
  EXPECT_EQ(&delegate->settingsWindow(), &settings);
  EXPECT_EQ(settings.window(), window);
  EXPECT_TRUE(window->isVisible());
}

TEST_F(DelegateTest, SettingsReportToTheStatusItem) {
  desktop.isTrusted = false;
  delegate->applicationDidFinishLaunching();
  choose("Settings");
  desktop.isTrusted = true;
  buttonSaying(*delegate->settingsWindow().window()->contentView(), "Grant access…")->performClick();
  EXPECT_FALSE(showsWarning());
}

TEST_F(DelegateTest, ARefusedChangeIsToldAndTakenBackEverywhere) {
  delegate->applicationDidFinishLaunching();
  choose("Settings");
  auto& defaults = *desktop.defaults();
  const auto before = defaults.user;
  ns::View& root = *delegate->settingsWindow().window()->contentView();
  auto& red = *controlInRow<ns::Switch>(root, "Red button hides the app");
  red.performClick();
  ASSERT_NE(defaults.user, before);
  defaults.user = before;
  defaults.refused("No space left on device");
  EXPECT_FALSE(red.isOn());
  ASSERT_EQ(services.alerts.size(), 1u);
  EXPECT_EQ(services.alerts[0].informativeText, "No space left on device");
}

TEST_F(DelegateTest, UpdateInterfaceMakesItARegularApplicationForAWhile) {
  delegate->applicationDidFinishLaunching();
  const auto app = ns::Application::sharedApplication();
  app->setActivationPolicy(ns::ActivationPolicy::Accessory);
  EXPECT_TRUE(delegate->supportsGentleScheduledUpdateReminders());
  for (const bool argument : {false, true}) {
    delegate->standardUserDriverWillHandleShowingUpdate(argument, {"2.0"}, {argument});
    EXPECT_EQ(app->activationPolicy(), ns::ActivationPolicy::Regular);
    delegate->standardUserDriverDidReceiveUserAttentionForUpdate({"2.0"});
    EXPECT_EQ(app->activationPolicy(), ns::ActivationPolicy::Accessory);
  }
}

TEST_F(DelegateTest, StartsOpenTheTabTheyName) {
  delegate->showSettingsAtLaunch("displays");
  EXPECT_EQ(delegate->answer("settings"), "");
  delegate->applicationDidFinishLaunching();
  EXPECT_TRUE(delegate->settingsWindow().window()->isVisible());
  EXPECT_EQ(delegate->settingsWindow().selectedTab(), ostrel::Tab::Displays);
  delegate->answer("settings exclude");
  EXPECT_EQ(delegate->settingsWindow().selectedTab(), ostrel::Tab::Exclude);
  delegate->answer("settings");
  EXPECT_EQ(delegate->settingsWindow().selectedTab(), ostrel::Tab::Exclude);
}

TEST_F(DelegateTest, AStartByWayOfTheDesktopOpensTheSettings) {
  delegate->applicationDidFinishLaunching();
  delegate->answer("");
  EXPECT_TRUE(delegate->settingsWindow().window()->isVisible());
}

}  // namespace
