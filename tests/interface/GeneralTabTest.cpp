#include "tests/interface/Fixture.h"

using ostrel::Tab;

namespace {

constexpr const char* yellowTitle = "Yellow button centers the window";
constexpr const char* greenTitle = "Green button fills the screen";
constexpr const char* redTitle = "Red button hides the app";
constexpr const char* loginTitle = "Open at login";
constexpr const char* privacyPane = "x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility";

class GeneralTabTest : public SettingsTest {
 protected:
  ns::Switch& toggle(const std::string& title) { return *controlInRow<ns::Switch>(document(), title); }
};

struct SwitchCase {
  const char* title;
  const char* key;
  bool isOnAtFirst;
};

class BehaviourSwitchTest : public GeneralTabTest, public testing::WithParamInterface<SwitchCase> {};

TEST_P(BehaviourSwitchTest, StoresEachChangeAndShowsWhatIsStored) {
  const auto [title, key, isOnAtFirst] = GetParam();
  present(Tab::General);
  EXPECT_EQ(toggle(title).isOn(), isOnAtFirst);
  EXPECT_FALSE(stored(key));

  toggle(title).performClick();
  EXPECT_EQ(toggle(title).isOn(), !isOnAtFirst);
  EXPECT_EQ(desktop.defaults()->user.at(key), ns::PropertyList{!isOnAtFirst});
  EXPECT_EQ(desktop.defaults()->user.size(), 1u);
  EXPECT_EQ(changes, 0);

  // Another program changes the stored value; coming back to the tab shows it.
  desktop.defaults()->user[key] = {isOnAtFirst};
  settings->showTab(Tab::Displays);
  settings->showTab(Tab::General);
  EXPECT_EQ(toggle(title).isOn(), isOnAtFirst);
}

TEST_P(BehaviourSwitchTest, WithoutControllerItStoresNothingAndShowsTheFallback) {
  const auto [title, key, isOnAtFirst] = GetParam();
  desktop.defaults()->user[key] = {!isOnAtFirst};
  present(Tab::General);
  EXPECT_EQ(toggle(title).isOn(), !isOnAtFirst);
  const auto before = desktop.defaults()->user;
  controller.reset();
  toggle(title).performClick();
  toggle(title).performClick();
  EXPECT_EQ(desktop.defaults()->user, before);
  settings->showTab(Tab::General);
  EXPECT_EQ(toggle(title).isOn(), isOnAtFirst);
}

INSTANTIATE_TEST_SUITE_P(All, BehaviourSwitchTest,
                         testing::Values(SwitchCase{yellowTitle, "behavior.yellowButtonEnabled", true},
                                         SwitchCase{greenTitle, "behavior.greenButtonEnabled", true},
                                         SwitchCase{redTitle, "behavior.redButtonHidesWindow", false}),
                         [](const auto& instance) { return std::string(instance.param.title).substr(0, 3); });

TEST_F(GeneralTabTest, AccessibilityFollowsThePermissionWhenTheWindowBecomesKey) {
  desktop.isTrusted = false;
  present(Tab::General);
  auto& line =
      *labelSaying(document(), "Accessibility access is missing — grant access so the app can manage windows.");
  auto& button = *buttonSaying(document(), "Grant access…");
  EXPECT_EQ(line.textColor(), ns::Color::systemOrangeColor());
  EXPECT_FALSE(button.isHidden());

  desktop.isTrusted = true;
  settings->windowDidBecomeKey();
  EXPECT_EQ(line.stringValue(), "Accessibility access has been granted.");
  EXPECT_EQ(line.textColor(), ns::Color::secondaryLabelColor());
  EXPECT_TRUE(button.isHidden());
}

TEST_F(GeneralTabTest, GrantAccessPromptsOpensThePaneAndReports) {
  desktop.isTrusted = false;
  present(Tab::General);
  auto& button = *buttonSaying(document(), "Grant access…");
  button.performClick();
  EXPECT_EQ(desktop.promptCount(), 1);
  EXPECT_EQ(desktop.workspace()->openedURLs, std::vector<std::string>{privacyPane});
  EXPECT_EQ(changes, 1);

  controller.reset();
  button.performClick();
  EXPECT_EQ(desktop.promptCount(), 1);
  EXPECT_EQ(desktop.workspace()->openedURLs.size(), 2u);
  EXPECT_EQ(changes, 2);
}

struct LoginCase {
  int status;
  bool isOn;
  const char* message;
  ns::Color color;
};

TEST_F(GeneralTabTest, ShowsEveryLoginStatus) {
  constexpr const char* off = "Ostrel does not start automatically.";
  const LoginCase cases[] = {
      {0, false, off, ns::Color::secondaryLabelColor()},
      {1, true, "Ostrel starts automatically at login.", ns::Color::secondaryLabelColor()},
      {2, false, "Approval required: enable Ostrel in System Settings › General › Login Items & Extensions.",
       ns::Color::systemOrangeColor()},
      {3, false, "Not available: move Ostrel to the Applications folder and try again.",
       ns::Color::systemOrangeColor()},
      {4, false, off, ns::Color::secondaryLabelColor()},
      {-1, false, off, ns::Color::secondaryLabelColor()},
  };
  present(Tab::General);
  for (const auto& [status, isOn, message, color] : cases) {
    SCOPED_TRACE(status);
    services.loginItem.statusNow = status;
    settings->windowDidBecomeKey();
    EXPECT_EQ(toggle(loginTitle).isOn(), isOn);
    auto* const line = labelSaying(document(), message);
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(line->textColor(), color);
  }
  EXPECT_TRUE(services.loginItem.calls.empty());
}

TEST_F(GeneralTabTest, LoginSwitchRegistersUnregistersAndShowsTheSystemsAnswer) {
  present(Tab::General);
  toggle(loginTitle).performClick();
  EXPECT_TRUE(toggle(loginTitle).isOn());
  toggle(loginTitle).performClick();
  EXPECT_FALSE(toggle(loginTitle).isOn());
  EXPECT_EQ(services.loginItem.calls, (std::vector<std::string>{"register", "unregister"}));

  // The system wants the person's approval first.
  services.loginItem.calls.clear();
  services.loginItem.statusAfterRegistering = 2;
  toggle(loginTitle).performClick();
  EXPECT_FALSE(toggle(loginTitle).isOn());
  toggle(loginTitle).performClick();
  EXPECT_EQ(services.loginItem.calls, (std::vector<std::string>{"register", "register"}));
  EXPECT_TRUE(services.alerts.empty());
}

TEST_F(GeneralTabTest, SwitchingOffWhatIsNotRegisteredAsksNothingOfTheSystem) {
  services.loginItem.statusNow = 3;
  present(Tab::General);
  toggle(loginTitle).setOn(true);
  toggle(loginTitle).performClick();
  EXPECT_TRUE(services.loginItem.calls.empty());
  EXPECT_FALSE(toggle(loginTitle).isOn());
  EXPECT_NE(labelSaying(document(), "Not available: move Ostrel to the Applications folder and try again."), nullptr);
}

TEST_F(GeneralTabTest, RefusedRegistrationTellsWhyAndFlipsBack) {
  services.loginItem.refusal = "The folder is read-only.";
  present(Tab::General);
  toggle(loginTitle).performClick();
  EXPECT_FALSE(toggle(loginTitle).isOn());
  ASSERT_EQ(services.alerts.size(), 1u);
  EXPECT_EQ(services.alerts[0].message, "Couldn't enable 'Open at login'");
  EXPECT_EQ(services.alerts[0].informativeText, "The folder is read-only.");
  EXPECT_EQ(services.alerts[0].buttonTitles, std::vector<std::string>{"OK"});

  services.loginItem.statusNow = 1;
  settings->windowDidBecomeKey();
  toggle(loginTitle).performClick();
  EXPECT_TRUE(toggle(loginTitle).isOn());
  ASSERT_EQ(services.alerts.size(), 2u);
  EXPECT_EQ(services.alerts[1].message, "Couldn't disable 'Open at login'");
}

}  // namespace
