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

  std::vector<desktop::Application> running();
  /// `observer` is called on the main thread: an application is launched with its first window and quits with its last.
  void observe(std::function<void(desktop::ApplicationChange, pid_t)> observer);

 private:
  using Observers = std::vector<std::function<void(desktop::ApplicationChange, pid_t)>>;

  void windowChanged(WindowChange change, const Window& window);
  void tell(desktop::ApplicationChange change, pid_t pid);

  WindowTracker& tracker_;
  freedesktop::ApplicationIdentity& identity_;
  Observers observers_;
  /// Of the thread that the tracker reports on.
  std::map<pid_t, int> windowCounts_;
  /// What is still queued on the main queue when this object has gone finds it expired.
  std::shared_ptr<Applications*> self_;
};

}  // namespace x11
