// Hides applications: all windows of a process iconified together, and brought back together.
#pragma once

#include <sys/types.h>

#include <map>
#include <vector>

#include "platform/Lock.h"
#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/WindowTracker.h"

namespace x11 {

/// Of an application that comes back, a window on another workspace waits until that is entered: window managers enter
/// it themselves when its window is activated, and would carry the person off. Any thread.
class Hiding {
 public:
  /// Sends on `connection`, whose events it does not touch; observes `tracker`, which must not have started yet and
  /// must stop before this object goes away. Both are lent.
  Hiding(const Connection& connection, WindowTracker& tracker);

  /// Iconifies every window of the process that is not iconified already, but for panels and the desktop itself; false
  /// when it has no other window.
  bool hide(pid_t pid);
  /// Brings back what `hide` took away; false when the process is not hidden.
  bool unhide(pid_t pid);
  bool isHidden(pid_t pid) const;

 private:
  struct Hidden {
    struct Member {
      xcb_window_t client;
      /// With this many changes of its WM_STATE it can be back: one iconifies it and another brings it back. A window
      /// that is shown earlier has not been taken away yet.
      std::uint32_t changesWhenBack;
      /// Out of sight on another workspace when it was to be iconified. Some window managers set WM_STATE to iconic
      /// for that and then iconify it no further: it is asked for again when the window is shown.
      bool isToBeIconified;
    };
    /// In their stacking order, the bottommost first.
    std::vector<Member> windows;
    /// The application is back, but for these windows, which are on other workspaces.
    bool isBack = false;
    /// The window that the person brought back, to be on top; none when there is no such window.
    xcb_window_t chosen = XCB_WINDOW_NONE;
  };

  void windowChanged(WindowChange change, const Window& window);
  static void forget(Hidden& hidden, xcb_window_t client);
  void bringBack(pid_t pid, xcb_window_t chosen);
  /// Takes those out of `hidden` that may come back while this workspace is current.
  std::vector<xcb_window_t> takeMembersOf(std::uint32_t workspace, Hidden& hidden) const;
  void workspaceEntered(std::uint32_t workspace);
  void activate(const std::vector<xcb_window_t>& windows, xcb_window_t onTop);

  const Connection& connection_;
  const Atoms atoms_;
  WindowTracker& tracker_;
  mutable ns::Lock lock_;
  std::map<pid_t, Hidden> hidden_ GUARDED_BY(lock_);
};

}  // namespace x11
