// The main run loop: tasks, timers and which thread one is on.
#pragma once

#include <functional>
#include <memory>

namespace ns {

/// Queues `task` to run on the main thread, after the work that is going on there. Any thread.
void dispatchAsyncOnMainQueue(std::function<void()> task);

/// True on the thread that runs the main run loop. Any thread.
bool isMainThread();

/// A repeating timer of the main run loop. Main thread only.
class Timer {
 public:
  /// Calls `block` every `interval` seconds until invalidated or released.
  static std::shared_ptr<Timer> scheduledTimer(double interval, std::function<void()> block);
  virtual ~Timer() = default;
  /// After this the block is not called again. Safe to call twice.
  virtual void invalidate() = 0;
};

}  // namespace ns
