#include "platform/linux/x11/Applications.h"

#include <algorithm>
#include <set>
#include <utility>

#include "platform/RunLoop.h"

namespace x11 {

namespace {

freedesktop::WindowOwner ownerOf(const Window& window) {
  const WindowProperties& properties = window.properties;
  return {window.pid, properties.gtkApplicationId, properties.windowInstance, properties.windowClass};
}

}  // namespace

Applications::Applications(WindowTracker& tracker, freedesktop::ApplicationIdentity& identity)
    : tracker_(tracker), identity_(identity), self_(std::make_shared<Applications*>(this)) {
  tracker.observe([this](WindowChange change, const Window& window) { windowChanged(change, window); });
}

std::vector<desktop::Application> Applications::running() {
  std::vector<desktop::Application> applications;
  std::set<freedesktop::WindowOwner> seen;
  for (const Window& window : tracker_.windows()) {
    const freedesktop::WindowOwner owner = ownerOf(window);
    if (owner.pid == 0 || !seen.insert(owner).second) continue;
    const auto described = identity_.describe(owner);
    applications.push_back({owner.pid, described.bundleIdentifier, described.name});
  }
  return applications;
}

void Applications::observe(std::function<void(desktop::ApplicationChange, pid_t)> observer) {
  observers_.push_back(std::move(observer));
}

void Applications::windowChanged(WindowChange change, const Window& window) {
  if (window.pid == 0 || change == WindowChange::Geometry || change == WindowChange::Activated) return;
  if (change == WindowChange::Removed) {
    const auto known = owners_.extract(window.client);
    if (known) discount(known.mapped());
    return;
  }
  Owner owner = ownerOf(window);
  const auto [known, isNew] = owners_.try_emplace(window.client, owner);
  if (!isNew && known->second == owner) return;
  // The new one first, so that the process is not taken for ended in between.
  count(owner, change != WindowChange::Present);
  if (!isNew) discount(std::exchange(known->second, std::move(owner)));
}

void Applications::count(const Owner& owner, bool isNews) {
  if (++windowCounts_[owner] == 1 && isNews) tell(desktop::ApplicationChange::Launched, owner.pid);
}

void Applications::discount(const Owner& owner) {
  const auto known = windowCounts_.find(owner);
  if (--known->second > 0) return;
  const pid_t pid = owner.pid;
  windowCounts_.erase(known);
  const bool hasEnded = std::ranges::none_of(windowCounts_, [pid](const auto& each) { return each.first.pid == pid; });
  tell(desktop::ApplicationChange::Terminated, pid, hasEnded);
}

void Applications::tell(desktop::ApplicationChange change, pid_t pid, bool hasEnded) {
  ns::dispatchAsyncOnMainQueue([weak = std::weak_ptr(self_), change, pid, hasEnded] {
    const auto self = weak.lock();
    if (!self) return;
    if (hasEnded) (*self)->identity_.forget(pid);
    // A copy: an observer may add another.
    for (const auto& observer : Observers((*self)->observers_)) observer(change, pid);
  });
}

}  // namespace x11
