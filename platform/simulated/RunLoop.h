// The main queue and its timers, run by hand.
#pragma once

#include <cstddef>

namespace simulated {

/// Main thread only, which is the thread that the program started on.
class RunLoop {
 public:
  /// Runs the queued tasks, and those that they queue.
  static void runPending();
  /// Runs what is pending, then lets the time pass, calling each timer when it is due and what it queues after it.
  static void advance(double seconds);
  static std::size_t pendingCount();
};

}  // namespace simulated
