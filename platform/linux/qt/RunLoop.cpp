// The main run loop, on Qt's.
#include "platform/RunLoop.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QSocketNotifier>
#include <QTimer>
#include <chrono>
#include <deque>
#include <utility>

#include "platform/Lock.h"
#include "platform/linux/HeldTasks.h"

namespace ns {
namespace {

/// The tasks and a semaphore that counts them. A queue of our own instead of Qt's posted events: a task from another
/// thread then costs one lock and one write, tasks may be queued before the application object exists, and a thread
/// checker sees the hand-over.
class MainQueue {
 public:
  /// Never destroyed: other threads may queue a last task while the program ends.
  static MainQueue& shared() {
    static auto* const queue = new MainQueue;
    return *queue;
  }

  void push(std::function<void()> task) {
    const LockGuard guard(lock_);
    tasks_.push_back(std::move(task));
    eventfd_write(semaphore_, 1);
  }

  /// Has the application's loop run one task at each turn, while there are any. One at a time, so that a loop nested in
  /// a task (an alert) goes on with those behind it, and a task that queues another cannot starve everything else.
  void attach() {
    const auto* notifier = new QSocketNotifier(semaphore_, QSocketNotifier::Read, QCoreApplication::instance());
    QObject::connect(notifier, &QSocketNotifier::activated, notifier, [this] {
      if (const auto task = pop()) task();
    });
  }

 private:
  std::function<void()> pop() {
    const LockGuard guard(lock_);
    eventfd_t one = 0;
    if (eventfd_read(semaphore_, &one) != 0 || tasks_.empty()) return {};
    auto task = std::move(tasks_.front());
    tasks_.pop_front();
    return task;
  }

  const int semaphore_ = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK | EFD_SEMAPHORE);
  Lock lock_;
  std::deque<std::function<void()>> tasks_ GUARDED_BY(lock_);
};

void attachMainQueue() { MainQueue::shared().attach(); }
Q_COREAPP_STARTUP_FUNCTION(attachMainQueue)

class QtTimer final : public Timer {
 public:
  QtTimer(double interval, std::function<void()> block) {
    QObject::connect(&timer_, &QTimer::timeout, &timer_, [block = std::move(block)] { block(); });
    timer_.start(std::chrono::milliseconds(static_cast<std::int64_t>(interval * 1000)));
  }
  void invalidate() override { timer_.stop(); }

 private:
  QTimer timer_;
};

thread_local HeldTasks* holder = nullptr;

}  // namespace

HeldTasks::HeldTasks() : outer_(std::exchange(holder, this)) {}
HeldTasks::~HeldTasks() { holder = outer_; }
HeldTasks* HeldTasks::current() { return holder; }
void HeldTasks::release() {
  for (auto& task : std::exchange(tasks_, {})) MainQueue::shared().push(std::move(task));
}

void dispatchAsyncOnMainQueue(std::function<void()> task) {
  if (auto* const held = HeldTasks::current()) return held->add(std::move(task));
  MainQueue::shared().push(std::move(task));
}

bool isMainThread() { return gettid() == getpid(); }

std::shared_ptr<Timer> Timer::scheduledTimer(double interval, std::function<void()> block) {
  return std::make_shared<QtTimer>(interval, std::move(block));
}

}  // namespace ns
