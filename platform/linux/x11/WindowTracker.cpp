#include "platform/linux/x11/WindowTracker.h"

#include <poll.h>

#include <algorithm>
#include <array>
#include <utility>

#include "platform/linux/freedesktop/Files.h"
#include "platform/linux/x11/Properties.h"

namespace x11 {

namespace {

// The high bit only tells that another client sent the event.
std::uint8_t typeOf(const xcb_generic_event_t& event) { return event.response_type & 0x7f; }

template <typename T>
const T& as(const xcb_generic_event_t& event) {
  return reinterpret_cast<const T&>(event);
}

void select(const Connection& connection, xcb_window_t window, std::uint32_t mask) {
  xcb_change_window_attributes(connection.get(), window, XCB_CW_EVENT_MASK, &mask);
}

}  // namespace

WindowTracker::WindowTracker(std::unique_ptr<Connection> connection)
    : connection_(std::move(connection)), atoms_(*connection_) {}

WindowTracker::~WindowTracker() { stop(); }

void WindowTracker::start() {
  // Selecting first and reading afterwards: a change in between is seen twice rather than never.
  // The root window's own structure is for those who are only told of the events.
  select(*connection_, connection_->root(),
         XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE);
  refreshDirty();
  isFollowing_ = true;
  thread_ = std::thread([this] { run(); });
}

void WindowTracker::stop() {
  if (!thread_.joinable()) return;
  stop_.signal();
  thread_.join();
}

void WindowTracker::run() {
  for (;;) {
    while (const Event event = connection_->pollEvent()) handle(*event);
    if (connection_->isBroken()) {
      if (lossHandler_) lossHandler_();
      return;
    }
    if (windowManagerDirty_ || clientsDirty_ || workspaceDirty_ || activeDirty_ || !frameDirty_.empty() ||
        !geometryDirty_.empty() || !propertiesDirty_.empty()) {
      // Only now, so that a hundred moves of a window that is being dragged are asked about once. The replies may bring
      // further events along, hence no waiting yet.
      refreshDirty();
      continue;
    }
    connection_->flush();
    std::array<pollfd, 2> descriptors{pollfd{connection_->fileDescriptor(), POLLIN, 0},
                                      pollfd{stop_.fileDescriptor(), POLLIN, 0}};
    poll(descriptors.data(), descriptors.size(), -1);
    if (descriptors[1].revents != 0) return;
  }
}

void WindowTracker::handle(const xcb_generic_event_t& event) {
  if (eventObserver_) eventObserver_(event);
  switch (typeOf(event)) {
    case XCB_PROPERTY_NOTIFY:
      handleProperty(as<xcb_property_notify_event_t>(event));
      break;
    case XCB_CONFIGURE_NOTIFY: {
      const auto& configure = as<xcb_configure_notify_event_t>(event);
      if (configure.event == connection_->root()) {
        markFrameDirty(configure.window);
      } else {
        geometryDirty_.insert(configure.window);
      }
      break;
    }
    case XCB_MAP_NOTIFY:
    case XCB_UNMAP_NOTIFY: {
      // Alike in what both begin with. Some window managers unmap the tabs that are not to be seen.
      const auto& map = as<xcb_map_notify_event_t>(event);
      if (map.event == map.window) geometryDirty_.insert(map.window);
      break;
    }
    case XCB_REPARENT_NOTIFY: {
      const auto& reparent = as<xcb_reparent_notify_event_t>(event);
      if (reparent.event == reparent.window) frameDirty_.insert(reparent.window);
      break;
    }
    case XCB_DESTROY_NOTIFY: {
      const auto& destroy = as<xcb_destroy_notify_event_t>(event);
      if (destroy.event != destroy.window) break;
      if (destroy.window == checkWindow_) windowManagerDirty_ = true;
      remove(destroy.window);
      break;
    }
    default:
      break;
  }
}

void WindowTracker::handleProperty(const xcb_property_notify_event_t& event) {
  if (event.window == connection_->root()) {
    if (event.atom == atoms_.netClientList) clientsDirty_ = true;
    if (event.atom == atoms_.netCurrentDesktop) workspaceDirty_ = true;
    if (event.atom == atoms_.netActiveWindow) activeDirty_ = true;
    if (event.atom == atoms_.netSupportingWmCheck) windowManagerDirty_ = true;
    return;
  }
  if (event.window == checkWindow_) {
    if (event.atom == atoms_.netWmName) windowManagerDirty_ = true;
    return;
  }
  const auto is = [&event](const auto&... atoms) { return ((event.atom == atoms) || ...); };
  if (is(atoms_.netFrameExtents, atoms_.gtkFrameExtents, atoms_.netWmState)) {
    geometryDirty_.insert(event.window);
    if (event.atom == atoms_.netWmState) propertiesDirty_.try_emplace(event.window);
  } else if (event.atom == atoms_.wmState) {
    ++propertiesDirty_[event.window];
  } else if (is(XCB_ATOM_WM_TRANSIENT_FOR, atoms_.netWmWindowType, atoms_.motifWmHints, atoms_.netWmAllowedActions,
                atoms_.netWmDesktop, XCB_ATOM_WM_CLASS, atoms_.gtkApplicationId)) {
    propertiesDirty_.try_emplace(event.window);
  } else if (event.atom == atoms_.netWmName) {
    // Terminals change their titles all day; only for a window that draws its own title bar does it matter.
    const ns::LockGuard guard(lock_);
    const auto found = windows_.find(event.window);
    if (found != windows_.end() && found->second.drawsItsTitleBar()) propertiesDirty_.try_emplace(event.window);
  }
}

void WindowTracker::refreshDirty() {
  if (std::exchange(windowManagerDirty_, false)) refreshWindowManager();
  if (std::exchange(clientsDirty_, false)) refreshClients();
  if (std::exchange(workspaceDirty_, false)) refreshWorkspace();

  for (const xcb_window_t client : std::exchange(frameDirty_, {})) {
    const auto frame = rootChildOf(*connection_, client);
    if (!frame) continue;
    const ns::LockGuard guard(lock_);
    const auto found = windows_.find(client);
    if (found == windows_.end()) continue;
    forgetFrame(found->second);
    found->second.frame = *frame;
    clientOfFrame_[*frame] = client;
    geometryDirty_.insert(client);
  }

  for (const xcb_window_t client : std::exchange(geometryDirty_, {})) {
    const auto geometry = GeometryRequest(*connection_, atoms_, client).receive();
    refreshVisible(client);
    Window changed;
    {
      const ns::LockGuard guard(lock_);
      const auto found = windows_.find(client);
      if (!geometry || found == windows_.end() || found->second.geometry == *geometry) continue;
      found->second.geometry = *geometry;
      changed = found->second;
    }
    notify(WindowChange::Geometry, changed);
  }

  for (const auto& [client, stateChanges] : std::exchange(propertiesDirty_, {})) {
    WindowProperties properties = PropertiesRequest(*connection_, atoms_, client).receive();
    Window changed;
    {
      const ns::LockGuard guard(lock_);
      const auto found = windows_.find(client);
      if (found == windows_.end()) continue;
      properties.stateChanges = found->second.properties.stateChanges + stateChanges;
      if (found->second.properties == properties) continue;
      found->second.properties = properties;
      changed = found->second;
    }
    notify(WindowChange::Properties, changed);
  }
  if (std::exchange(activeDirty_, false)) refreshActive();
}

void WindowTracker::refreshWindowManager() {
  RunningWindowManager manager;
  const auto check = readItems(*connection_, connection_->root(), atoms_.netSupportingWmCheck);
  const xcb_window_t window = check.empty() ? xcb_window_t{XCB_WINDOW_NONE} : check[0];
  if (window != XCB_WINDOW_NONE) {
    if (window != checkWindow_) {
      select(*connection_, window, XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE);
    }
    // A window manager that was killed leaves the root's property behind; only a check window that names itself counts.
    if (readItems(*connection_, window, atoms_.netSupportingWmCheck) == std::vector<std::uint32_t>{window}) {
      manager.name =
          propertyText(receiveProperty(*connection_, requestProperty(*connection_, window, atoms_.netWmName)));
      manager.pid = processOfWindow(*connection_, atoms_, window);
      // Window Maker has no name for itself.
      const std::string program = "/proc/" + std::to_string(manager.pid);
      if (manager.name.empty() && freedesktop::executableOf(program).ends_with("/wmaker")) {
        manager.name = "Window Maker";
      }
    }
  }
  checkWindow_ = window;
  {
    const ns::LockGuard guard(lock_);
    if (std::exchange(windowManager_, manager) == manager) return;
  }
  if (windowManagerObserver_) windowManagerObserver_(manager);
}

void WindowTracker::refreshClients() {
  const auto listed = readItems(*connection_, connection_->root(), atoms_.netClientList);
  const std::set<xcb_window_t> current(listed.begin(), listed.end());
  std::set<xcb_window_t> known;
  {
    const ns::LockGuard guard(lock_);
    for (const auto& [client, window] : windows_) known.insert(client);
  }
  for (const xcb_window_t client : known) {
    if (!current.contains(client)) {
      select(*connection_, client, XCB_EVENT_MASK_NO_EVENT);
      remove(client);
    }
  }
  for (const xcb_window_t client : current) {
    if (!known.contains(client)) add(client);
  }
}

void WindowTracker::refreshWorkspace() {
  const auto items = readItems(*connection_, connection_->root(), atoms_.netCurrentDesktop);
  const std::uint32_t workspace = items.empty() ? 0 : items[0];
  {
    const ns::LockGuard guard(lock_);
    if (std::exchange(currentWorkspace_, workspace) == workspace) return;
  }
  if (workspaceObserver_) workspaceObserver_(workspace);
}

void WindowTracker::refreshActive() {
  const auto active = readItems(*connection_, connection_->root(), atoms_.netActiveWindow);
  if (active.empty()) return;
  if (const auto known = window(active[0])) notify(WindowChange::Activated, *known);
}

void WindowTracker::add(xcb_window_t client) {
  select(*connection_, client, XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE);
  Window window;
  window.client = client;
  GeometryRequest geometry(*connection_, atoms_, client);
  PropertiesRequest properties(*connection_, atoms_, client);
  window.properties = properties.receive();
  const auto known = geometry.receive();
  const auto frame = rootChildOf(*connection_, client);
  // Listed, but gone already.
  if (!known || !frame) return;
  window.geometry = *known;
  window.frame = *frame;
  window.pid = processOfWindow(*connection_, atoms_, client);
  {
    const ns::LockGuard guard(lock_);
    windows_[client] = window;
    clientOfFrame_[*frame] = client;
  }
  refreshVisible(client);
  notify(isFollowing_ ? WindowChange::Added : WindowChange::Present, window);
}

void WindowTracker::remove(xcb_window_t client) {
  frameDirty_.erase(client);
  geometryDirty_.erase(client);
  propertiesDirty_.erase(client);
  Window removed;
  {
    const ns::LockGuard guard(lock_);
    const auto found = windows_.find(client);
    if (found == windows_.end()) return;
    removed = std::move(found->second);
    windows_.erase(found);
    forgetFrame(removed);
  }
  notify(WindowChange::Removed, removed);
}

void WindowTracker::forgetFrame(const Window& window) {
  const auto frame = clientOfFrame_.find(window.frame);
  // The number may have become another window's already.
  if (frame == clientOfFrame_.end() || frame->second != window.client) return;
  clientOfFrame_.erase(frame);
  for (const auto& [client, other] : windows_) {
    if (client == window.client || other.frame != window.frame) continue;
    clientOfFrame_[window.frame] = client;
    geometryDirty_.insert(client);  // whether it or yet another one is visible is seen then
    break;
  }
}

void WindowTracker::refreshVisible(xcb_window_t client) {
  xcb_window_t frame = XCB_WINDOW_NONE;
  std::vector<xcb_window_t> clients;
  {
    const ns::LockGuard guard(lock_);
    const auto found = windows_.find(client);
    if (found == windows_.end()) return;
    frame = found->second.frame;
    for (const auto& [other, window] : windows_) {
      if (window.frame == frame) clients.push_back(other);
    }
  }
  if (clients.size() < 2) return;
  const xcb_window_t visible = visibleAmong(*connection_, clients);
  const ns::LockGuard guard(lock_);
  clientOfFrame_[frame] = visible;
}

void WindowTracker::markFrameDirty(xcb_window_t rootChild) {
  const ns::LockGuard guard(lock_);
  if (const auto found = clientOfFrame_.find(rootChild); found != clientOfFrame_.end()) {
    geometryDirty_.insert(found->second);
  }
}

void WindowTracker::notify(WindowChange change, const Window& window) const {
  for (const Observer& observer : observers_) observer(change, window);
}

std::optional<Window> WindowTracker::window(xcb_window_t client) const {
  const ns::LockGuard guard(lock_);
  const auto found = windows_.find(client);
  return found == windows_.end() ? std::nullopt : std::optional(found->second);
}

std::optional<Window> WindowTracker::windowOfFrame(xcb_window_t rootChild) const {
  const ns::LockGuard guard(lock_);
  const auto frame = clientOfFrame_.find(rootChild);
  if (frame == clientOfFrame_.end()) return std::nullopt;
  const auto found = windows_.find(frame->second);
  return found == windows_.end() ? std::nullopt : std::optional(found->second);
}

std::vector<Window> WindowTracker::windows() const {
  const ns::LockGuard guard(lock_);
  std::vector<Window> windows;
  windows.reserve(windows_.size());
  for (const auto& [client, window] : windows_) windows.push_back(window);
  return windows;
}

std::vector<Window> WindowTracker::windowsOfProcess(pid_t pid) const {
  std::vector<Window> all = windows();
  std::erase_if(all, [pid](const Window& window) { return window.pid != pid; });
  return all;
}

RunningWindowManager WindowTracker::windowManager() const {
  const ns::LockGuard guard(lock_);
  return windowManager_;
}

std::uint32_t WindowTracker::currentWorkspace() const {
  const ns::LockGuard guard(lock_);
  return currentWorkspace_;
}

}  // namespace x11
