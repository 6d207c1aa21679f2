#include "platform/linux/x11/Hiding.h"

#include <algorithm>
#include <utility>

#include "platform/linux/x11/Requests.h"

namespace x11 {

Hiding::Hiding(const Connection& connection, WindowTracker& tracker)
    : connection_(connection), atoms_(connection), tracker_(tracker) {
  tracker.observe([this](WindowChange change, const Window& window) { windowChanged(change, window); });
  tracker.observeWorkspace([this](std::uint32_t workspace) { workspaceEntered(workspace); });
}

bool Hiding::hide(pid_t pid) {
  std::vector<Window> windows = tracker_.windowsOfProcess(pid);
  std::erase_if(windows, [](const Window& window) { return window.properties.isFurniture; });
  if (windows.empty()) return false;
  const auto order = stackingOrder(connection_, atoms_);
  std::ranges::sort(windows, {}, [&order](const Window& window) { return std::ranges::find(order, window.client); });
  {
    const ns::LockGuard guard(lock_);
    Hidden& hidden = hidden_[pid];
    hidden.isBack = false;
    for (const Window& window : windows) {
      // What the person has iconified by hand stays as it is when the application comes back.
      if (window.properties.isIconic()) continue;
      forget(hidden, window.client);
      const WindowProperties& properties = window.properties;
      hidden.windows.push_back({window.client, properties.stateChanges + 2, properties.stateIsIconic()});
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
  if (!isHidden(pid)) return false;
  bringBack(pid, XCB_WINDOW_NONE);
  return true;
}

bool Hiding::isHidden(pid_t pid) const {
  const ns::LockGuard guard(lock_);
  const auto found = hidden_.find(pid);
  return found != hidden_.end() && !found->second.isBack;
}

void Hiding::windowChanged(WindowChange change, const Window& window) {
  if (change != WindowChange::Removed && change != WindowChange::Properties) return;
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
    if (member == known.windows.end()) return;
    const WindowProperties& properties = window.properties;
    if (member->isToBeIconified && (properties.isIconic() || !properties.stateIsIconic())) {
      member->isToBeIconified = false;
      member->changesWhenBack = properties.stateChanges + (properties.isIconic() ? 1 : 2);
      if (properties.isIconic()) return;
      requestIconify(connection_, atoms_, window.client);
      connection_.flush();
      return;
    }
    // Counted, because both changes may have come before either could be looked at.
    if (properties.isIconic() || properties.stateChanges < member->changesWhenBack) return;
  }
  bringBack(window.pid, window.client);
}

void Hiding::forget(Hidden& hidden, xcb_window_t client) {
  std::erase_if(hidden.windows, [client](const Hidden::Member& member) { return member.client == client; });
}

void Hiding::bringBack(pid_t pid, xcb_window_t chosen) {
  std::vector<xcb_window_t> windows;
  {
    const ns::LockGuard guard(lock_);
    const auto found = hidden_.find(pid);
    if (found == hidden_.end()) return;
    // The application counts as shown before its other windows are, so that their coming back is not taken for the
    // person's doing.
    Hidden& hidden = found->second;
    hidden.isBack = true;
    hidden.chosen = chosen;
    std::erase_if(hidden.windows,
                  [chosen](const Hidden::Member& member) { return member.client == chosen || member.isToBeIconified; });
    // The window manager may show the chosen window before it enters that window's workspace. To activate one of the
    // workspace that is current still would call it back.
    const std::uint32_t current = tracker_.currentWorkspace();
    const auto window = tracker_.window(chosen);
    const std::uint32_t aim = window ? window->properties.workspace : everyWorkspace;
    windows = takeMembersOf(aim == everyWorkspace || aim == current ? current : everyWorkspace, hidden);
    if (hidden.windows.empty()) hidden_.erase(found);
  }
  activate(windows, chosen);
}

void Hiding::workspaceEntered(std::uint32_t workspace) {
  std::vector<std::pair<std::vector<xcb_window_t>, xcb_window_t>> back;
  {
    const ns::LockGuard guard(lock_);
    for (auto& [pid, hidden] : hidden_) {
      if (!hidden.isBack) continue;
      const auto chosen = tracker_.window(hidden.chosen);
      const bool isHere = chosen && chosen->properties.workspace == workspace;
      back.emplace_back(takeMembersOf(workspace, hidden), isHere ? hidden.chosen : xcb_window_t{XCB_WINDOW_NONE});
    }
    std::erase_if(hidden_, [](const auto& entry) { return entry.second.windows.empty(); });
  }
  for (const auto& [windows, onTop] : back) activate(windows, onTop);
}

std::vector<xcb_window_t> Hiding::takeMembersOf(std::uint32_t workspace, Hidden& hidden) const {
  std::vector<xcb_window_t> taken;
  for (const Hidden::Member& member : hidden.windows) {
    const auto window = tracker_.window(member.client);
    const std::uint32_t own = window ? window->properties.workspace : everyWorkspace;
    if (own == everyWorkspace || own == workspace) taken.push_back(member.client);
  }
  for (const xcb_window_t client : taken) forget(hidden, client);
  return taken;
}

void Hiding::activate(const std::vector<xcb_window_t>& windows, xcb_window_t onTop) {
  if (windows.empty()) return;
  for (const xcb_window_t client : windows) requestActivate(connection_, atoms_, client);
  // Activating, unlike mapping, works with every window manager, but it takes the focus from the window that the person
  // has chosen: that one is activated again, after the others.
  if (onTop != XCB_WINDOW_NONE) requestActivate(connection_, atoms_, onTop);
  connection_.flush();
}

}  // namespace x11
