// Keeping back what would be queued on the main queue.
#pragma once

#include <functional>
#include <utility>
#include <vector>

namespace ns {

/// While it lives, the tasks that its thread queues on the main queue wait here: until released, or dropped with it.
/// Other threads' tasks go their way. One that is made while another lives holds in its place.
class HeldTasks {
 public:
  HeldTasks();
  ~HeldTasks();
  HeldTasks(const HeldTasks&) = delete;
  HeldTasks& operator=(const HeldTasks&) = delete;

  /// The one that holds the calling thread's tasks; null when they are not held.
  static HeldTasks* current();
  void add(std::function<void()> task) { tasks_.push_back(std::move(task)); }
  /// Queues what it holds so far, in its order.
  void release();

 private:
  HeldTasks* const outer_;
  std::vector<std::function<void()>> tasks_;
};

}  // namespace ns
