// The part of the workspace that follows from the desktop's running applications.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Workspace.h"
#include "platform/portable/Desktop.h"

namespace desktop {

/// Posts to its observers in the order of their registration.
class LocalNotificationCenter final : public ns::NotificationCenter {
 public:
  Observer addObserverForName(std::string_view name, std::function<void()> handler) override;
  void removeObserver(Observer observer) override;
  /// An observer added while this runs is not called; one removed meanwhile is not called any more.
  void post(std::string_view name);

 private:
  struct Registration {
    Observer observer;
    std::string name;
    std::shared_ptr<const std::function<void()>> handler;
  };
  std::vector<Registration> registrations_;
  Observer lastObserver_ = 0;
};

/// Running applications and their notifications, from a desktop. What concerns installed applications and documents is
/// left to each backing. Main thread only.
class DesktopWorkspace : public ns::Workspace {
 public:
  /// Keeps observing `desktop`, which may outlive this object.
  explicit DesktopWorkspace(Desktop& desktop);

  std::vector<std::shared_ptr<ns::RunningApplication>> runningApplications() override;
  ns::NotificationCenter& notificationCenter() override { return *center_; }

 private:
  Desktop& desktop_;
  const std::shared_ptr<LocalNotificationCenter> center_ = std::make_shared<LocalNotificationCenter>();
};

}  // namespace desktop
