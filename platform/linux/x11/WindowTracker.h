// Every managed window and the window manager itself, kept current by events.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <unordered_map>
#include <vector>

#include "platform/Lock.h"
#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/Wakeup.h"
#include "platform/linux/x11/Window.h"

namespace x11 {

/// Present: it was there already when the tracker started. Activated: it has become the active window.
enum class WindowChange { Present, Added, Removed, Geometry, Properties, Activated };

struct RunningWindowManager {
  /// As it calls itself; empty while none runs.
  std::string name;
  pid_t pid = 0;
  friend bool operator==(const RunningWindowManager&, const RunningWindowManager&) = default;
};

/// Follows the desktop on a connection and a thread of its own. Answers come from memory, on any thread.
class WindowTracker {
 public:
  /// Called on the tracker's thread, with the window as it is after the change (or was before its removal), and without
  /// the tracker's lock.
  using Observer = std::function<void(WindowChange, const Window&)>;
  /// Called with every event that arrives, on the tracker's thread.
  using EventObserver = std::function<void(const xcb_generic_event_t&)>;
  /// Called on the tracker's thread, without its lock, when another workspace has been entered.
  using WorkspaceObserver = std::function<void(std::uint32_t workspace)>;
  /// Called on the tracker's thread, without its lock, when another window manager runs, or none.
  using WindowManagerObserver = std::function<void(const RunningWindowManager&)>;
  /// Called on the tracker's thread, which ends afterwards, when the X server has gone.
  using LossHandler = std::function<void()>;

  /// Takes a connection that nobody else reads events from. Nothing is known before `start`.
  explicit WindowTracker(std::unique_ptr<Connection> connection);
  ~WindowTracker();
  WindowTracker(const WindowTracker&) = delete;
  WindowTracker& operator=(const WindowTracker&) = delete;

  /// Before `start` only.
  void observe(Observer observer) { observers_.push_back(std::move(observer)); }
  void observeEvents(EventObserver observer) { eventObserver_ = std::move(observer); }
  void observeWorkspace(WorkspaceObserver observer) { workspaceObserver_ = std::move(observer); }
  void observeWindowManager(WindowManagerObserver observer) { windowManagerObserver_ = std::move(observer); }
  void onLoss(LossHandler handler) { lossHandler_ = std::move(handler); }
  /// Reads the desktop as it is now, reporting its windows to the observers on this thread, and then follows it.
  void start();
  /// Ends the thread; no call of an observer follows.
  void stop();

  std::optional<Window> window(xcb_window_t client) const;
  /// The managed window inside a child of the root window; of several, as tabs in one frame, the visible one.
  std::optional<Window> windowOfFrame(xcb_window_t rootChild) const;
  std::vector<Window> windows() const;
  std::vector<Window> windowsOfProcess(pid_t pid) const;
  RunningWindowManager windowManager() const;
  /// 0 where the window manager has no workspaces.
  std::uint32_t currentWorkspace() const;

 private:
  void run();
  void handle(const xcb_generic_event_t& event);
  void handleProperty(const xcb_property_notify_event_t& event);
  void refreshWindowManager();
  void refreshClients();
  void refreshWorkspace();
  void refreshActive();
  void refreshDirty();
  void add(xcb_window_t client);
  void remove(xcb_window_t client);
  void forgetFrame(const Window& window) REQUIRES(lock_);
  void refreshVisible(xcb_window_t client);
  void markFrameDirty(xcb_window_t rootChild);
  void notify(WindowChange change, const Window& window) const;

  const std::unique_ptr<Connection> connection_;
  const Atoms atoms_;
  std::vector<Observer> observers_;
  EventObserver eventObserver_;
  WorkspaceObserver workspaceObserver_;
  WindowManagerObserver windowManagerObserver_;
  LossHandler lossHandler_;
  Wakeup stop_;
  std::thread thread_;

  // Of the tracker's thread, and before that runs, of the one that starts it.
  bool isFollowing_ = false;
  xcb_window_t checkWindow_ = XCB_WINDOW_NONE;
  bool windowManagerDirty_ = true;
  bool clientsDirty_ = true;
  bool workspaceDirty_ = true;
  bool activeDirty_ = false;
  std::set<xcb_window_t> frameDirty_;
  std::set<xcb_window_t> geometryDirty_;
  /// With the number of changes of WM_STATE that have not been read yet.
  std::map<xcb_window_t, std::uint32_t> propertiesDirty_;

  mutable ns::Lock lock_;
  std::map<xcb_window_t, Window> windows_ GUARDED_BY(lock_);
  /// Of several clients in a frame, the visible one.
  std::unordered_map<xcb_window_t, xcb_window_t> clientOfFrame_ GUARDED_BY(lock_);
  RunningWindowManager windowManager_ GUARDED_BY(lock_);
  std::uint32_t currentWorkspace_ GUARDED_BY(lock_) = 0;
};

}  // namespace x11
