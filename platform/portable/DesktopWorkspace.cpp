#include "platform/portable/DesktopWorkspace.h"

#include <algorithm>
#include <utility>

namespace desktop {

namespace {

class DesktopApplication final : public ns::RunningApplication {
 public:
  explicit DesktopApplication(Application application) : application_(std::move(application)) {}
  pid_t processIdentifier() const override { return application_.pid; }
  std::optional<std::string> bundleIdentifier() const override { return application_.bundleIdentifier; }
  bool hide() override { return Desktop::current().hideApplication(application_.pid); }

 private:
  const Application application_;
};

}  // namespace

ns::NotificationCenter::Observer LocalNotificationCenter::addObserverForName(std::string_view name,
                                                                             std::function<void()> handler) {
  registrations_.push_back(
      {++lastObserver_, std::string(name), std::make_shared<const std::function<void()>>(std::move(handler))});
  return lastObserver_;
}

void LocalNotificationCenter::removeObserver(Observer observer) {
  std::erase_if(registrations_, [observer](const Registration& each) { return each.observer == observer; });
}

void LocalNotificationCenter::post(std::string_view name) {
  std::vector<Observer> due;
  for (const Registration& each : registrations_) {
    if (each.name == name) due.push_back(each.observer);
  }
  for (const Observer observer : due) {
    const auto found = std::find_if(registrations_.begin(), registrations_.end(),
                                    [observer](const Registration& each) { return each.observer == observer; });
    if (found == registrations_.end()) continue;
    const auto handler = found->handler;  // a handler that removes itself must outlive its own call
    (*handler)();
  }
}

DesktopWorkspace::DesktopWorkspace(Desktop& desktop) : desktop_(desktop) {
  desktop_.observeApplications([weakCenter = std::weak_ptr(center_)](ApplicationChange change, pid_t) {
    const auto center = weakCenter.lock();
    if (center == nullptr) return;
    center->post(change == ApplicationChange::Launched ? ns::WorkspaceDidLaunchApplicationNotification
                                                       : ns::WorkspaceDidTerminateApplicationNotification);
  });
}

std::vector<std::shared_ptr<ns::RunningApplication>> DesktopWorkspace::runningApplications() {
  std::vector<std::shared_ptr<ns::RunningApplication>> applications;
  for (Application& each : desktop_.runningApplications()) {
    applications.push_back(std::make_shared<DesktopApplication>(std::move(each)));
  }
  return applications;
}

}  // namespace desktop

namespace ns {

std::shared_ptr<RunningApplication> RunningApplication::runningApplicationWithProcessIdentifier(pid_t pid) {
  for (desktop::Application& each : desktop::Desktop::current().runningApplications()) {
    if (each.pid == pid) return std::make_shared<desktop::DesktopApplication>(std::move(each));
  }
  return nullptr;
}

}  // namespace ns
