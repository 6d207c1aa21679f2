// Hides applications: all windows of a process iconified together, and brought back together.
#pragma once

#include <sys/types.h>

#include <map>
#include <vector>

#include "platform/Lock.h"
#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/WindowTracker.h"

namespace x11 {

/// Any thread.
class Hiding {
 public:
  /// Sends on `connection`, whose events it does not touch; observes `tracker`, which must not have started yet and
  /// must stop before this object goes away. Both are lent.
  Hiding(const Connection& connection, WindowTracker& tracker);

  /// Iconifies every window of the process that is not iconified already; false when it has no window.
  bool hide(pid_t pid);
  /// Brings back what `hide` took away; false when the process is not hidden.
  bool unhide(pid_t pid);
  bool isHidden(pid_t pid) const;

 private:
  struct Hidden {
    struct Member {
      xcb_window_t client;
      /// Of its WM_STATE, as known when it was hidden. One change iconifies it and another brings it back; a window
      /// that is shown after less than that has not been taken away yet.
      std::uint32_t stateChanges;
    };
    /// In their stacking order, the bottommost first.
    std::vector<Member> windows;
  };

  void windowChanged(WindowChange change, const Window& window);
  static void forget(Hidden& hidden, xcb_window_t client);
  void bringBack(const Hidden& hidden, xcb_window_t onTop);

  const Connection& connection_;
  const Atoms atoms_;
  WindowTracker& tracker_;
  mutable ns::Lock lock_;
  std::map<pid_t, Hidden> hidden_ GUARDED_BY(lock_);
};

}  // namespace x11
