#include "platform/linux/x11/Applications.h"

#include <set>

#include "platform/RunLoop.h"

namespace x11 {

Applications::Applications(WindowTracker& tracker, freedesktop::ApplicationIdentity& identity)
    : tracker_(tracker), identity_(identity), self_(std::make_shared<Applications*>(this)) {
  tracker.observe([this](WindowChange change, const Window& window) { windowChanged(change, window); });
}

std::vector<desktop::Application> Applications::running() {
  std::vector<desktop::Application> applications;
  std::set<pid_t> seen;
  for (const Window& window : tracker_.windows()) {
    if (window.pid == 0 || !seen.insert(window.pid).second) continue;
    const auto described = identity_.describe({window.pid, window.properties.gtkApplicationId,
                                               window.properties.windowInstance, window.properties.windowClass});
    applications.push_back({window.pid, described.bundleIdentifier, described.name});
  }
  return applications;
}

void Applications::observe(std::function<void(desktop::ApplicationChange, pid_t)> observer) {
  observers_.push_back(std::move(observer));
}

void Applications::windowChanged(WindowChange change, const Window& window) {
  if (window.pid == 0) return;
  switch (change) {
    case WindowChange::Present:
    case WindowChange::Added:
      if (++windowCounts_[window.pid] == 1 && change == WindowChange::Added) {
        tell(desktop::ApplicationChange::Launched, window.pid);
      }
      break;
    case WindowChange::Removed:
      if (--windowCounts_[window.pid] == 0) {
        windowCounts_.erase(window.pid);
        tell(desktop::ApplicationChange::Terminated, window.pid);
      }
      break;
    case WindowChange::Geometry:
    case WindowChange::Properties:
    case WindowChange::Activated:
      break;
  }
}

void Applications::tell(desktop::ApplicationChange change, pid_t pid) {
  ns::dispatchAsyncOnMainQueue([weak = std::weak_ptr(self_), change, pid] {
    const auto self = weak.lock();
    if (!self) return;
    if (change == desktop::ApplicationChange::Terminated) (*self)->identity_.forget(pid);
    // A copy: an observer may add another.
    for (const auto& observer : Observers((*self)->observers_)) observer(change, pid);
  });
}

}  // namespace x11
