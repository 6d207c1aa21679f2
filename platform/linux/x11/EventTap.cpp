#include "platform/linux/x11/EventTap.h"

#include <poll.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <optional>
#include <utility>

#include "platform/Lock.h"
#include "platform/RunLoop.h"
#include "platform/linux/HeldTasks.h"
#include "platform/linux/x11/ButtonGrab.h"
#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/Wakeup.h"
#include "platform/linux/x11/Watchdog.h"

namespace x11 {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr auto answerTime = milliseconds(50);
constexpr auto firstRetry = milliseconds(10);
constexpr auto lastRetry = milliseconds(500);
constexpr unsigned anyButton =
    XCB_BUTTON_MASK_1 | XCB_BUTTON_MASK_2 | XCB_BUTTON_MASK_3 | XCB_BUTTON_MASK_4 | XCB_BUTTON_MASK_5;

CGEventFlags flagsOf(unsigned state) {
  CGEventFlags flags = 0;
  if ((state & XCB_MOD_MASK_LOCK) != 0) flags |= kCGEventFlagMaskAlphaShift;
  if ((state & XCB_MOD_MASK_SHIFT) != 0) flags |= kCGEventFlagMaskShift;
  if ((state & XCB_MOD_MASK_CONTROL) != 0) flags |= kCGEventFlagMaskControl;
  if ((state & XCB_MOD_MASK_1) != 0) flags |= kCGEventFlagMaskAlternate;
  if ((state & XCB_MOD_MASK_4) != 0) flags |= kCGEventFlagMaskCommand;
  return flags;
}

}  // namespace

/// What the tap, its thread and the tasks queued for the main thread share; lives until the last of them is done.
class EventTap::Worker : public std::enable_shared_from_this<Worker> {
 public:
  Worker(desktop::EventTapHandler handler, HitFilter filter, std::string displayName)
      : handler_(std::move(handler)), filter_(std::move(filter)), displayName_(std::move(displayName)) {}

  // --- Main thread ---

  void setEnabled(bool enabled) { enabled_ = enabled; }
  bool isEnabled() const { return enabled_ && attached_; }
  bool reconsider(const desktop::MouseDown& mouseDown) {
    ns::HeldTasks consequences;
    if (closed_ || !enabled_ || handler_(mouseDown)) return false;
    consequences.release();
    return true;
  }
  void stop() {
    closed_ = true;
    stopping_ = true;
    wake_.signal();
  }

  // --- The tap's thread; attach() also before it runs ---

  /// Connects and grabs; false when either is refused.
  bool attach() {
    std::shared_ptr<Connection> connection = Connection::open(displayName_);
    if (!connection) return false;
    // The watchdog comes first: a press between the grab and its watch would freeze the mouse for good if we were
    // stopped just then.
    auto* const watchdog = Watchdog::shared();
    if (watchdog != nullptr) watchdog->watch(connection.get());
    grab_ = ButtonGrab::acquire(*connection);
    if (!grab_) {
      if (watchdog != nullptr) watchdog->watch(nullptr);
      return false;
    }
    connection_ = std::move(connection);
    attached_ = true;
    return true;
  }

  void run() {
    auto retry = firstRetry;
    while (!stopping_) {
      if (!connection_ && !attach()) {
        wait(std::exchange(retry, std::min(retry * 2, lastRetry)));
        continue;
      }
      retry = firstRetry;
      while (const auto event = connection_->pollEvent()) take(*event);
      if (connection_->isBroken()) {
        lose();
      } else {
        wait(expire());
      }
    }
    if (connection_) detach();
  }

 private:
  /// The press that the pointer is frozen for.
  struct Pending {
    std::uint64_t number;
    xcb_timestamp_t time;
    Clock::time_point deadline;
    std::shared_ptr<Connection> connection;
  };

  void take(const xcb_generic_event_t& event) {
    const auto type = event.response_type & 0x7f;
    if (type == XCB_BUTTON_PRESS) press(reinterpret_cast<const xcb_button_press_event_t&>(event));
    grab_->follow(event);
  }

  void press(const xcb_button_press_event_t& event) {
    // With a button down already it belongs to a swallowed click: our grab still runs and nothing is frozen.
    if ((event.state & anyButton) != 0) return;
    const CGPoint position{static_cast<CGFloat>(event.root_x), static_cast<CGFloat>(event.root_y)};
    // Taken over: an old press, read after a long stop, that has gone on its way already.
    if (!enabled_ || isTakenOver() || !filter_(event.child, position) || grab_->isModifierHeld(event.state)) {
      settle(*connection_, event.time, true);
      return;
    }
    const auto number = ++presses_;
    {
      const ns::LockGuard guard(lock_);
      pending_ = Pending{number, event.time, Clock::now() + answerTime, connection_};
    }
    const desktop::MouseDown mouseDown{kCGEventLeftMouseDown, flagsOf(event.state), position};
    ns::dispatchAsyncOnMainQueue([self = shared_from_this(), number, mouseDown] { self->decide(number, mouseDown); });
  }

  /// Main thread. Answers the server from here: one change of threads less for the person who waits.
  void decide(std::uint64_t number, const desktop::MouseDown& mouseDown) {
    if (!isPending(number)) return;  // passed on already; to act on it too would be worse than not to act
    // What the handler queues follows from its answer, so it waits until that answer counts, and is dropped if the
    // press has gone on its way in the meantime.
    ns::HeldTasks consequences;
    const bool pass = closed_ || !enabled_ || handler_(mouseDown);
    const auto press = takePending(number);
    const bool counts = press && settle(*press->connection, press->time, pass);
    if (pass || counts) consequences.release();
    if (press) wake_.signal();  // sending may also have read events, which poll() then does not report
  }

  static bool isTakenOver() {
    const auto* const watchdog = Watchdog::shared();
    return watchdog != nullptr && watchdog->hasTakenOver();
  }

  /// Any thread. Whether this is the answer that the press gets.
  static bool settle(const Connection& connection, xcb_timestamp_t press, bool pass) {
    if (pass) {
      replay(connection, press);
    } else {
      swallow(connection, press);
    }
    // The watchdog says that it takes over before it sends an answer of its own over the same socket. So while it has
    // not said so, ours is ahead.
    const bool isFirst = !connection.isBroken() && !isTakenOver();
    if (auto* watchdog = Watchdog::shared()) watchdog->settled(press);
    return isFirst;
  }

  /// Whether the press waits for its answer still. Past its deadline it is the tap's thread that gives one.
  bool isAwaited(std::uint64_t number) const REQUIRES(lock_) {
    return pending_ && pending_->number == number && Clock::now() < pending_->deadline && !isTakenOver();
  }

  bool isPending(std::uint64_t number) {
    const ns::LockGuard guard(lock_);
    return isAwaited(number);
  }

  std::optional<Pending> takePending(std::uint64_t number) {
    const ns::LockGuard guard(lock_);
    return isAwaited(number) ? std::exchange(pending_, {}) : std::nullopt;
  }

  /// Gives up on a press whose time is over. Returns how long to wait for the next one, none without end.
  std::optional<milliseconds> expire() {
    {
      const ns::LockGuard guard(lock_);
      if (!pending_) return std::nullopt;
      const auto left = std::chrono::ceil<milliseconds>(pending_->deadline - Clock::now());
      if (left > milliseconds(0)) return left;
      if (isTakenOver()) return std::nullopt;  // the connection is about to end, and lose() mends that
      enabled_ = false;
      settle(*pending_->connection, pending_->time, true);
      pending_.reset();
    }
    notifyDisabled();
    return milliseconds(0);  // sending may have read events: look for them before sleeping
  }

  void lose() {
    {
      const ns::LockGuard guard(lock_);
      pending_.reset();
    }
    attached_ = false;
    grab_.reset();
    connection_.reset();
    enabled_ = false;
    notifyDisabled();
  }

  void notifyDisabled() {
    ns::dispatchAsyncOnMainQueue([self = shared_from_this()] {
      if (!self->closed_) self->handler_({kCGEventTapDisabledByTimeout, 0, {}});
    });
  }

  void detach() {
    {
      const ns::LockGuard guard(lock_);
      if (pending_) settle(*connection_, pending_->time, true);
      pending_.reset();
    }
    if (auto* watchdog = Watchdog::shared()) watchdog->watch(nullptr);
    grab_.reset();
    connection_.reset();
    attached_ = false;
  }

  void wait(std::optional<milliseconds> timeout) {
    auto* watchdog = Watchdog::shared();
    const auto nextStart = watchdog != nullptr ? watchdog->keepAlive(connection_.get()) : std::nullopt;
    if (nextStart && (!timeout || *nextStart < *timeout)) timeout = nextStart;
    pollfd sources[] = {{connection_ ? connection_->fileDescriptor() : -1, POLLIN, 0},
                        {wake_.fileDescriptor(), POLLIN, 0},
                        {watchdog != nullptr ? watchdog->fileDescriptor() : -1, POLLIN, 0}};
    if (poll(sources, std::size(sources), timeout ? static_cast<int>(timeout->count()) : -1) <= 0) return;
    if (sources[1].revents != 0) wake_.clear();
    if (watchdog != nullptr && sources[2].revents != 0) {
      const ns::LockGuard guard(lock_);
      watchdog->answer(pending_.has_value());
    }
  }

  const desktop::EventTapHandler handler_;
  const HitFilter filter_;
  const std::string displayName_;
  Wakeup wake_;
  std::atomic<bool> enabled_ = false;
  std::atomic<bool> attached_ = false;
  std::atomic<bool> stopping_ = false;
  bool closed_ = false;  // main thread only

  // The tap's thread only.
  std::shared_ptr<Connection> connection_;
  std::unique_ptr<ButtonGrab> grab_;
  std::uint64_t presses_ = 0;

  ns::Lock lock_;
  std::optional<Pending> pending_ GUARDED_BY(lock_);
};

std::unique_ptr<EventTap> EventTap::create(CGEventMask mask, desktop::EventTapHandler handler, HitFilter filter,
                                           const std::string& displayName) {
  if ((mask & CGEventMaskBit(kCGEventLeftMouseDown)) == 0) return nullptr;
  auto worker = std::make_shared<Worker>(std::move(handler), std::move(filter), displayName);
  if (!worker->attach()) return nullptr;
  return std::unique_ptr<EventTap>(new EventTap(std::move(worker)));
}

EventTap::EventTap(std::shared_ptr<Worker> worker)
    : worker_(std::move(worker)), thread_([running = worker_] { running->run(); }) {}

EventTap::~EventTap() {
  worker_->stop();
  thread_.join();
}

void EventTap::setEnabled(bool enabled) { worker_->setEnabled(enabled); }
bool EventTap::isEnabled() const { return worker_->isEnabled(); }

EventTap::Reconsider EventTap::reconsider() const {
  return [weak = std::weak_ptr(worker_)](const desktop::MouseDown& mouseDown) {
    const auto worker = weak.lock();
    return worker && worker->reconsider(mouseDown);
  };
}

}  // namespace x11
