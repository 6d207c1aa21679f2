// Running applications: processes that have managed windows.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <vector>

#include "platform/Lock.h"
#include "platform/linux/freedesktop/ApplicationIdentity.h"
#include "platform/linux/x11/WindowTracker.h"
#include "platform/portable/Desktop.h"

namespace x11 {

/// Main thread only.
class Applications {
 public:
  /// Observes `tracker`, which must not have started yet and must stop before this object goes away. Both are lent.
  Applications(WindowTracker& tracker, freedesktop::ApplicationIdentity& identity);

  /// One process may be several applications: an office suite, a browser with web applications.
  std::vector<desktop::Application> running();
  /// `observer` is called on the main thread: an application is launched with its first window and quits with its last,
  /// and when a window says who it belongs to later than it appears, it goes from one application to another.
  void observe(std::function<void(desktop::ApplicationChange, pid_t)> observer);

 private:
  using Observers = std::vector<std::function<void(desktop::ApplicationChange, pid_t)>>;

  /// What a window tells about its owner.
  using Owner = freedesktop::WindowOwner;

  void windowChanged(WindowChange change, const Window& window);
  void count(const Owner& owner, bool isNews);
  void discount(const Owner& owner);
  void tell(desktop::ApplicationChange change, pid_t pid, bool hasEnded = false);

  WindowTracker& tracker_;
  freedesktop::ApplicationIdentity& identity_;
  Observers observers_;
  // Of the thread that the tracker reports on.
  std::map<xcb_window_t, Owner> owners_;
  std::map<Owner, int> windowCounts_;
  /// What is still queued on the main queue when this object has gone finds it expired.
  std::shared_ptr<Applications*> self_;
};

}  // namespace x11
