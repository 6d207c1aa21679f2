#include "Ostrel/AppDelegate.h"

#include "Ostrel/InstanceRequests.h"

namespace ostrel {

void AppDelegate::applicationDidFinishLaunching() {
  controller_ = OstrelController::create();
  controller_->startIfPossible();
  // Consent may come at any time, from another process; nobody tells us.
  permissionTimer_ = ns::Timer::scheduledTimer(2.0, [weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->tick();
  });
}

void AppDelegate::applicationWillTerminate() {
  if (permissionTimer_) permissionTimer_->invalidate();
  controller_->stop();
}

std::string AppDelegate::answer(const std::string& request) const {
  return controller_ ? answerRequest(request, *controller_, [](const std::string&) {}) : std::string();
}

void AppDelegate::tick() {
  if (AXIsProcessTrusted()) controller_->startIfPossible();
}

}  // namespace ostrel
