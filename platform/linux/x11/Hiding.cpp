#include "platform/linux/x11/Hiding.h"

#include <algorithm>
#include <utility>

#include "platform/linux/x11/Requests.h"

namespace x11 {

Hiding::Hiding(const Connection& connection, WindowTracker& tracker)
    : connection_(connection), atoms_(connection), tracker_(tracker) {
  tracker.observe([this](WindowChange change, const Window& window) { windowChanged(change, window); });
}

bool Hiding::hide(pid_t pid) {
  std::vector<Window> windows = tracker_.windowsOfProcess(pid);
  if (windows.empty()) return false;
  const auto order = stackingOrder(connection_, atoms_);
  std::ranges::sort(windows, {}, [&order](const Window& window) { return std::ranges::find(order, window.client); });
  {
    const ns::LockGuard guard(lock_);
    Hidden& hidden = hidden_[pid];
    for (const Window& window : windows) {
      // What the person has iconified by hand stays as it is when the application comes back.
      if (window.properties.isIconic()) continue;
      forget(hidden, window.client);
      hidden.windows.push_back({window.client, window.properties.stateChanges});
    }
    if (hidden.windows.empty()) hidden_.erase(pid);
  }
  for (const Window& window : windows) {
    if (!window.properties.isIconic()) requestIconify(connection_, atoms_, window.client);
  }
  connection_.flush();
  return true;
}

bool Hiding::unhide(pid_t pid) {
  Hidden hidden;
  {
    const ns::LockGuard guard(lock_);
    const auto found = hidden_.find(pid);
    if (found == hidden_.end()) return false;
    hidden = std::move(found->second);
    hidden_.erase(found);
  }
  bringBack(hidden, XCB_WINDOW_NONE);
  return true;
}

bool Hiding::isHidden(pid_t pid) const {
  const ns::LockGuard guard(lock_);
  return hidden_.contains(pid);
}

void Hiding::windowChanged(WindowChange change, const Window& window) {
  if (change != WindowChange::Removed && change != WindowChange::Properties) return;
  Hidden hidden;
  {
    const ns::LockGuard guard(lock_);
    const auto found = hidden_.find(window.pid);
    if (found == hidden_.end()) return;
    Hidden& known = found->second;
    if (change == WindowChange::Removed) {
      forget(known, window.client);
      if (known.windows.empty()) hidden_.erase(found);
      return;
    }
    const auto member = std::find_if(known.windows.begin(), known.windows.end(),
                                     [&](const Hidden::Member& one) { return one.client == window.client; });
    if (member == known.windows.end() || window.properties.isIconic()) return;
    // Counted, because both changes may have come before either could be looked at.
    if (window.properties.stateChanges - member->stateChanges < 2) return;
    // The application counts as shown before its other windows are, so that their coming back is not taken for the
    // person's doing.
    hidden = std::move(known);
    hidden_.erase(found);
  }
  bringBack(hidden, window.client);
}

void Hiding::forget(Hidden& hidden, xcb_window_t client) {
  std::erase_if(hidden.windows, [client](const Hidden::Member& member) { return member.client == client; });
}

void Hiding::bringBack(const Hidden& hidden, xcb_window_t onTop) {
  for (const Hidden::Member& member : hidden.windows) {
    if (member.client != onTop) requestActivate(connection_, atoms_, member.client);
  }
  // Activating, unlike mapping, works with every window manager, but it takes the focus from the window that the person
  // has chosen: that one is activated again, after the others.
  if (onTop != XCB_WINDOW_NONE) requestActivate(connection_, atoms_, onTop);
  connection_.flush();
}

}  // namespace x11
