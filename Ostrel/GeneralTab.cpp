// The General tab: opening at login, the three window buttons, the Accessibility permission.
#include "Ostrel/AccessibilityPermission.h"
#include "Ostrel/SettingsLayout.h"
#include "Ostrel/SettingsWindowController.h"

namespace ostrel {
namespace {

constexpr std::string_view yellowButtonKey = "behavior.yellowButtonEnabled";
constexpr std::string_view greenButtonKey = "behavior.greenButtonEnabled";
constexpr std::string_view redButtonKey = "behavior.redButtonHidesWindow";

/// A line under a row; empty until its refresh.
std::shared_ptr<ns::TextField> makeStatusLine() {
  auto line = makeWrappingLabel("", ns::Font::systemFontOfSize(11), ns::Color::secondaryLabelColor());
  line->setLineBreakMode(ns::LineBreakMode::WordWrapping);
  return line;
}

}  // namespace

std::shared_ptr<ns::View> SettingsWindowController::makeGeneralTab() {
  const auto startup = makeSectionContainer("Startup", [this](Rows& rows) {
    rows.push_back(makeSwitchRow("power", "Open at login", "Automatically start Ostrel when you log in to your Mac.",
                                 launchAtLoginSwitch_, &SettingsWindowController::launchAtLoginToggled));
    launchAtLoginStatusField_ = makeStatusLine();
    rows.push_back(launchAtLoginStatusField_);
  });
  const auto windowButtons = makeSectionContainer("Window buttons", [this](Rows& rows) {
    rows.push_back(makeSwitchRow("minus.circle", "Yellow button centers the window",
                                 "Left-click the yellow button to center the window horizontally. Off: the yellow "
                                 "button minimizes to the Dock as usual.",
                                 yellowButtonSwitch_, &SettingsWindowController::yellowButtonToggled));
    rows.push_back(makeSwitchRow("arrow.up.left.and.arrow.down.right.circle", "Green button fills the screen",
                                 "Left-click the green button to fill the screen using your margins. Off: the green "
                                 "button keeps its normal full-screen behavior.",
                                 greenButtonSwitch_, &SettingsWindowController::greenButtonToggled));
    rows.push_back(makeSwitchRow("xmark.circle", "Red button hides the app",
                                 "Hides the whole app (like ⌘H) instead of closing the window. Only for windows that "
                                 "can also be minimized; pop-ups and dialogs close as usual.",
                                 redButtonSwitch_, &SettingsWindowController::redButtonToggled));
  });
  const auto accessibility = makeSectionContainer("Accessibility", [this](Rows& rows) {
    accessibilityButton_ = std::make_shared<ns::Button>("Grant access…");
    accessibilityButton_->setTarget(weak_from_this(), &SettingsWindowController::requestAccessibility);
    rows.push_back(makeToggleRow("accessibility", "Accessibility access", "Required to move and center windows.",
                                 accessibilityButton_));
    accessibilityStatusField_ = makeStatusLine();
    rows.push_back(accessibilityStatusField_);
  });
  return makeScrollableTab({startup, windowButtons, accessibility});
}

std::shared_ptr<ns::View> SettingsWindowController::makeSwitchRow(
    const std::string& icon, const std::string& title, const std::string& subtitle,
    std::shared_ptr<ns::Switch>& control, void (SettingsWindowController::*action)(ns::Switch&)) {
  control = std::make_shared<ns::Switch>();
  control->setTarget(weak_from_this(), action);
  control->setAccessibilityLabel(title);
  return makeToggleRow(icon, title, subtitle, control);
}

void SettingsWindowController::yellowButtonToggled(ns::Switch& sender) {
  if (const auto controller = controller_.lock()) controller->defaults().setBool(sender.isOn(), yellowButtonKey);
}

void SettingsWindowController::greenButtonToggled(ns::Switch& sender) {
  if (const auto controller = controller_.lock()) controller->defaults().setBool(sender.isOn(), greenButtonKey);
}

void SettingsWindowController::redButtonToggled(ns::Switch& sender) {
  if (const auto controller = controller_.lock()) controller->defaults().setBool(sender.isOn(), redButtonKey);
}

void SettingsWindowController::requestAccessibility(ns::Button&) {
  if (controller_.lock()) promptForAccessibility();
  openAccessibilityPrivacyPane();
  refreshAccessibilityStatus();
  onChange_();
}

void SettingsWindowController::syncYellowButton() {
  const auto controller = controller_.lock();
  if (yellowButtonSwitch_) yellowButtonSwitch_->setOn(!controller || controller->interceptsYellowButton());
}

void SettingsWindowController::syncGreenButton() {
  const auto controller = controller_.lock();
  if (greenButtonSwitch_) greenButtonSwitch_->setOn(!controller || controller->interceptsGreenButton());
}

void SettingsWindowController::syncRedButton() {
  const auto controller = controller_.lock();
  if (redButtonSwitch_) redButtonSwitch_->setOn(controller && controller->defaults().boolForKey(redButtonKey));
}

void SettingsWindowController::refreshAccessibilityStatus() {
  const bool isTrusted = AXIsProcessTrusted();
  if (accessibilityButton_) accessibilityButton_->setHidden(isTrusted);
  if (!accessibilityStatusField_) return;
  accessibilityStatusField_->setStringValue(
      isTrusted ? "Accessibility access has been granted."
                : "Accessibility access is missing — grant access so the app can manage windows.");
  accessibilityStatusField_->setTextColor(isTrusted ? ns::Color::secondaryLabelColor()
                                                    : ns::Color::systemOrangeColor());
}

}  // namespace ostrel
