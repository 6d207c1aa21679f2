#include "platform/portable/DesktopWorkspace.h"

#include <algorithm>
#include <utility>

namespace desktop {

namespace {

class DesktopApplication final : public ns::RunningApplication {
 public:
  using Identifier = std::function<std::optional<std::string>()>;
  /// `identifier` is asked when somebody wants to know it: many only want the process hidden.
  DesktopApplication(pid_t pid, Identifier identifier) : pid_(pid), identifier_(std::move(identifier)) {}
  pid_t processIdentifier() const override { return pid_; }
  std::optional<std::string> bundleIdentifier() const override { return identifier_(); }
  bool hide() override { return Desktop::current().hideApplication(pid_); }

 private:
  const pid_t pid_;
  const Identifier identifier_;
};

std::optional<std::string> identifierOfProcess(pid_t pid) {
  const std::vector<Application> all = Desktop::current().runningApplications();
  const auto found = std::ranges::find(all, pid, &Application::pid);
  return found == all.end() ? std::nullopt : found->bundleIdentifier;
}

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
    applications.push_back(std::make_shared<DesktopApplication>(
        each.pid, [identifier = std::move(each.bundleIdentifier)] { return identifier; }));
  }
  return applications;
}

}  // namespace desktop

namespace ns {

std::shared_ptr<RunningApplication> RunningApplication::runningApplicationWithProcessIdentifier(pid_t pid) {
  if (!desktop::Desktop::current().isApplicationRunning(pid)) return nullptr;
  return std::make_shared<desktop::DesktopApplication>(pid, [pid] { return desktop::identifierOfProcess(pid); });
}

}  // namespace ns
