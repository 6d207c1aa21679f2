#include "Ostrel/LaunchAtLogin.h"

#include <string_view>

#include "Ostrel/SettingsWindowController.h"
#include "platform/LoginItem.h"
#include "platform/Panels.h"

namespace ostrel {
namespace {

constexpr int statusEnabled = 1;
constexpr int statusRequiresApproval = 2;
constexpr int statusNotFound = 3;

struct StatusText {
  std::string_view message;
  ns::Color color;
};

StatusText statusText(int status) {
  switch (status) {
    case statusEnabled:
      return {"Ostrel starts automatically at login.", ns::Color::secondaryLabelColor()};
    case statusRequiresApproval:
      return {"Approval required: enable Ostrel in System Settings › General › Login Items & Extensions.",
              ns::Color::systemOrangeColor()};
    case statusNotFound:
      return {"Not available: move Ostrel to the Applications folder and try again.", ns::Color::systemOrangeColor()};
    default:
      return {"Ostrel does not start automatically.", ns::Color::secondaryLabelColor()};
  }
}

}  // namespace

void LaunchAtLogin::setEnabled(bool isEnabled) {
  auto& service = sm::AppService::mainAppService();
  const bool isRegistered = service.status() == statusEnabled;
  if (isEnabled && !isRegistered) service.registerItem();
  if (!isEnabled && isRegistered) service.unregisterItem();
}

void SettingsWindowController::syncLaunchAtLogin() {
  const int status = sm::AppService::mainAppService().status();
  if (launchAtLoginSwitch_) launchAtLoginSwitch_->setOn(status == statusEnabled);
  if (launchAtLoginStatusField_) {
    const auto text = statusText(status);
    launchAtLoginStatusField_->setStringValue(std::string(text.message));
    launchAtLoginStatusField_->setTextColor(text.color);
  }
}

void SettingsWindowController::launchAtLoginToggled(ns::Switch& sender) {
  const bool wanted = sender.isOn();
  try {
    LaunchAtLogin::setEnabled(wanted);
  } catch (const sm::Error& error) {
    sender.setOn(!wanted);
    ns::Alert alert;
    alert.setAlertStyle(ns::AlertStyle::Warning);
    alert.setMessageText(wanted ? "Couldn't enable 'Open at login'" : "Couldn't disable 'Open at login'");
    alert.setInformativeText(error.what());
    alert.addButtonWithTitle("OK");
    alert.runModal();
  }
  syncLaunchAtLogin();
}

}  // namespace ostrel
