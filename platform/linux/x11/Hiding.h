// Hides applications: all windows of a process iconified together, and brought back together.
#pragma once

#include <sys/types.h>

#include <map>
#include <set>
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
    /// In their stacking order, the bottommost first.
    std::vector<xcb_window_t> windows;
    /// Those of them that have been seen iconified since. A window that has not been cannot have been brought back:
    /// what is still told about it is from before.
    std::set<xcb_window_t> gone;
  };

  void windowChanged(WindowChange change, const Window& window);
  void bringBack(const Hidden& hidden, xcb_window_t onTop);

  const Connection& connection_;
  const Atoms atoms_;
  WindowTracker& tracker_;
  mutable ns::Lock lock_;
  std::map<pid_t, Hidden> hidden_ GUARDED_BY(lock_);
};

}  // namespace x11
