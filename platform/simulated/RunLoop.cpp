#include "platform/simulated/RunLoop.h"

#include <algorithm>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "platform/Lock.h"
#include "platform/RunLoop.h"
#include "platform/simulated/Clock.h"

namespace simulated {

namespace {

class ManualTimer final : public ns::Timer {
 public:
  ManualTimer(double interval, std::function<void()> block)
      : interval_(interval), due_(Clock::now() + interval), block_(std::move(block)) {}
  void invalidate() override { isValid_ = false; }
  bool isValid() const { return isValid_; }
  double due() const { return due_; }
  void fire() {
    due_ += interval_;
    block_();
  }

 private:
  const double interval_;
  double due_;
  const std::function<void()> block_;
  bool isValid_ = true;
};

const std::thread::id mainThread = std::this_thread::get_id();

ns::Lock queueLock;
std::deque<std::function<void()>> queue GUARDED_BY(queueLock);
std::vector<std::weak_ptr<ManualTimer>> timers;

std::function<void()> nextTask() {
  const ns::LockGuard guard(queueLock);
  if (queue.empty()) return nullptr;
  auto task = std::move(queue.front());
  queue.pop_front();
  return task;
}

std::shared_ptr<ManualTimer> nextTimer(double until) {
  std::shared_ptr<ManualTimer> next;
  for (const auto& weakTimer : timers) {
    const auto timer = weakTimer.lock();
    if (timer == nullptr || !timer->isValid() || timer->due() > until) continue;
    if (next == nullptr || timer->due() < next->due()) next = timer;
  }
  return next;
}

}  // namespace

void RunLoop::runPending() {
  while (const auto task = nextTask()) task();
}

void RunLoop::advance(double seconds) {
  runPending();
  const double end = Clock::now() + seconds;
  while (const auto timer = nextTimer(end)) {
    Clock::pass(std::max(timer->due() - Clock::now(), 0.0));
    timer->fire();
    runPending();
  }
  Clock::pass(std::max(end - Clock::now(), 0.0));
}

std::size_t RunLoop::pendingCount() {
  const ns::LockGuard guard(queueLock);
  return queue.size();
}

}  // namespace simulated

namespace ns {

void dispatchAsyncOnMainQueue(std::function<void()> task) {
  const LockGuard guard(simulated::queueLock);
  simulated::queue.push_back(std::move(task));
}

bool isMainThread() { return std::this_thread::get_id() == simulated::mainThread; }

std::shared_ptr<Timer> Timer::scheduledTimer(double interval, std::function<void()> block) {
  auto timer = std::make_shared<simulated::ManualTimer>(interval, std::move(block));
  std::erase_if(simulated::timers, [](const auto& each) { return each.expired(); });
  simulated::timers.push_back(timer);
  return timer;
}

}  // namespace ns
