#include "Ostrel/AppDelegate.h"

#include "Ostrel/InstanceRequests.h"
#include "platform/Panels.h"

namespace ostrel {

void AppDelegate::applicationDidFinishLaunching() {
  updaterController_ = spu::StandardUpdaterController::make(true, weak_from_this());
  controller_ = OstrelController::create();
  controller_->defaults().setRefusalHandler([weak = weak_from_this()](const std::string& reason) {
    if (const auto self = weak.lock()) self->preferencesWereRefused(reason);
  });
  setupStatusItem();
  controller_->startIfPossible();
  // Consent may come or go at any time, from another process; nobody tells us.
  permissionTimer_ = ns::Timer::scheduledTimer(2.0, [weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->tick();
  });
  if (tabAtLaunch_) showSettings(*tabAtLaunch_);
}

void AppDelegate::tick() {
  if (AXIsProcessTrusted()) controller_->startIfPossible();
  updateStatusItemAppearance();
  if (settingsController_) settingsController_->refreshAccessibilityStatus();
}

void AppDelegate::applicationWillTerminate() {
  if (permissionTimer_) permissionTimer_->invalidate();
  controller_->stop();
}

void AppDelegate::preferencesWereRefused(const std::string& reason) {
  controller_->reloadExcludedApps();
  if (settingsController_) settingsController_->readPreferencesAgain();
  if (isTellingOfRefusal_) return;  // a held-down stepper is refused many times
  isTellingOfRefusal_ = true;
  ns::Alert alert;
  alert.setAlertStyle(ns::AlertStyle::Warning);
  alert.setMessageText("Your change couldn't be saved");
  alert.setInformativeText(reason);
  alert.addButtonWithTitle("OK");
  alert.runModal();
  isTellingOfRefusal_ = false;
}

std::string AppDelegate::answer(const std::string& request) {
  if (!controller_) return {};
  return answerRequest(request, *controller_, [this](const std::string& tab) { showSettings(tab); });
}

void AppDelegate::showSettings(const std::string& tab) {
  settingsWindow().present(tabWithRawValue(tab).value_or(settingsWindow().selectedTab()));
}

void AppDelegate::standardUserDriverWillHandleShowingUpdate(bool, const spu::AppcastItem&,
                                                            const spu::UserUpdateState&) {
  const auto app = ns::Application::sharedApplication();
  app->setActivationPolicy(ns::ActivationPolicy::Regular);
  app->activateIgnoringOtherApps();
}

void AppDelegate::standardUserDriverDidReceiveUserAttentionForUpdate(const spu::AppcastItem&) {
  ns::Application::sharedApplication()->setActivationPolicy(ns::ActivationPolicy::Accessory);
}

}  // namespace ostrel
