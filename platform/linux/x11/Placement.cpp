#include "platform/linux/x11/Placement.h"

#include <poll.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "platform/RunLoop.h"
#include "platform/linux/x11/Properties.h"
#include "platform/linux/x11/Requests.h"

namespace x11 {

namespace {

using std::chrono::milliseconds;

/// How long the window manager has to take a state away.
constexpr milliseconds restoringTime{500};
/// How long it has to begin moving a window.
constexpr milliseconds answeringTime{250};
/// No event for so long, and what came of a request is final.
constexpr milliseconds quietTime{40};
/// A window that was restored may still change its shadow, and with it its visible frame, once its program has drawn.
constexpr milliseconds watchingTime{400};
/// How long to leave a server that takes no connection alone.
constexpr milliseconds reconnectingTime{500};
/// The first request, the one that corrects it, and two for a decoration and a shadow that change in the meantime.
constexpr int mostRequests = 4;

int wholePixels(CGFloat value) {
  // Beyond what the protocol can say there is no screen; clamped before the conversion, which would be undefined.
  return static_cast<int>(std::lround(std::clamp(std::isnan(value) ? 0.0 : value, -32768.0, 32767.0)));
}

bool sameExtents(const WindowGeometry& one, const WindowGeometry& other) {
  return one.decoration == other.decoration && one.shadow == other.shadow;
}

/// Whether a length is what the window's own limits make of the wanted one. WM_NORMAL_HINTS without a flag has 0 there.
bool isLimited(int wanted, int actual, int increment, int minimum, int maximum) {
  if (actual > wanted) return minimum > 0 && actual <= minimum;
  return wanted - actual < std::max(increment, 1) || (maximum > 0 && actual >= maximum);
}

}  // namespace

Rect PlacementGoal::appliedTo(const Rect& frame) const {
  Rect result = frame;
  if (position) {
    result.x = wholePixels(position->x);
    result.y = wholePixels(position->y);
  }
  if (size) {
    // The edges are rounded, not the lengths: opposite margins that are equal stay so, to the pixel.
    const CGPoint corner = position.value_or(CGPointMake(frame.x, frame.y));
    result.width = std::max(wholePixels(corner.x + size->width) - result.x, 1);
    result.height = std::max(wholePixels(corner.y + size->height) - result.y, 1);
  }
  return result;
}

void PlacementGoal::merge(const PlacementGoal& later) {
  if (later.position) position = later.position;
  if (later.size) size = later.size;
}

struct Placement::Order {
  PlacementGoal goal;
  /// The window as last seen by who gives the order.
  WindowGeometry known;
  /// Whether the window manager has been asked already, reckoning with `known`.
  bool isAsked = false;
};

struct Placement::Shared {
  explicit Shared(std::shared_ptr<const Connection> newConnection)
      : atoms(*newConnection), connection(std::move(newConnection)) {}

  const Atoms atoms;
  Wakeup wakeup;
  ns::Lock lock;
  std::shared_ptr<const Connection> connection GUARDED_BY(lock);
  /// Given by the main thread's current task.
  std::unordered_map<xcb_window_t, Order> wanted GUARDED_BY(lock);
  /// Handed to the worker.
  std::unordered_map<xcb_window_t, Order> handed GUARDED_BY(lock);
  std::unordered_map<xcb_window_t, Rect> underWay GUARDED_BY(lock);
  bool stopped GUARDED_BY(lock) = false;

  void handOver() {
    std::shared_ptr<const Connection> used;
    {
      const ns::LockGuard guard(lock);
      used = connection;
      for (auto& [client, order] : std::exchange(wanted, {})) {
        const auto [earlier, isFirst] = handed.try_emplace(client, order);
        if (isFirst) {
          earlier->second.isAsked = askAtOnce(client, order);
        } else {
          earlier->second.goal.merge(order.goal);
          earlier->second.isAsked = false;
        }
      }
    }
    used->flush();
    wakeup.signal();
  }

  /// The plain case, without waiting for the worker to wake up: a window that stands free and has no other order.
  bool askAtOnce(xcb_window_t client, const Order& order) REQUIRES(lock) {
    const Rect target = order.goal.appliedTo(order.known.frame());
    if (underWay.contains(client) || order.known.isConfined() || target == order.known.frame()) return false;
    underWay[client] = target;
    follow(*connection, client);
    requestMoveResize(*connection, atoms, client, requestForFrame(target, order.known.decoration, order.known.shadow));
    return true;
  }

  static void follow(const Connection& connection, xcb_window_t client) {
    const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(connection.get(), client, XCB_CW_EVENT_MASK, &mask);
  }
};

Placement::Placement(std::unique_ptr<Connection> connection)
    : Placement(std::shared_ptr<const Connection>(std::move(connection))) {}

Placement::Placement(const std::shared_ptr<const Connection>& connection)
    : shared_(std::make_shared<Shared>(connection)), atoms_(shared_->atoms), connection_(connection) {
  thread_ = std::thread([this] { run(); });
}

Placement::~Placement() {
  {
    const ns::LockGuard guard(shared_->lock);
    shared_->stopped = true;
  }
  shared_->wakeup.signal();
  thread_.join();
}

void Placement::want(xcb_window_t client, const PlacementGoal& goal, const WindowGeometry& known) {
  bool isFirst = false;
  {
    const ns::LockGuard guard(shared_->lock);
    isFirst = shared_->wanted.empty();
    Order& order = shared_->wanted[client];
    order.goal.merge(goal);
    order.known = known;
  }
  if (isFirst) ns::dispatchAsyncOnMainQueue([shared = shared_] { shared->handOver(); });
}

Rect Placement::expectedFrame(xcb_window_t client, const Rect& actual) const {
  const ns::LockGuard guard(shared_->lock);
  Rect frame = actual;
  if (const auto found = shared_->underWay.find(client); found != shared_->underWay.end()) frame = found->second;
  if (const auto found = shared_->handed.find(client); found != shared_->handed.end()) {
    frame = found->second.goal.appliedTo(frame);
  }
  if (const auto found = shared_->wanted.find(client); found != shared_->wanted.end()) {
    frame = found->second.goal.appliedTo(frame);
  }
  return frame;
}

void Placement::run() {
  for (;;) {
    shared_->wakeup.clear();  // before looking for what it may have been about
    {
      const ns::LockGuard guard(shared_->lock);
      if (shared_->stopped) return;
    }
    takeOrders();  // before the events, which may be the answer to what has been asked already
    while (const Event event = connection_->pollEvent()) handle(*event);
    if (connection_->isBroken()) {
      reconnect();
      continue;
    }
    for (auto entry = jobs_.begin(); entry != jobs_.end();) {
      auto& [client, job] = *entry;
      const bool timedOut = Clock::now() >= job.deadline;
      const bool goesOn = (!std::exchange(job.dirty, false) && !timedOut) || advance(client, job, timedOut);
      entry = goesOn ? std::next(entry) : jobs_.erase(entry);
    }
    connection_->flush();
    // Replies that were waited for may have brought events along, for which the socket will not become readable again.
    if (const Event event = connection_->pollEvent()) {
      handle(*event);
      continue;
    }
    std::array<pollfd, 2> descriptors{pollfd{connection_->fileDescriptor(), POLLIN, 0},
                                      pollfd{shared_->wakeup.fileDescriptor(), POLLIN, 0}};
    poll(descriptors.data(), descriptors.size(), untilNextDeadline());
  }
}

/// Somebody may have had the server close this connection alone, and clicks would be swallowed to no effect. What was
/// under way on it is asked for anew.
void Placement::reconnect() {
  std::shared_ptr<const Connection> connection = Connection::open();
  if (!connection) {
    // The server has gone, or takes no more for now.
    pollfd wakeup{shared_->wakeup.fileDescriptor(), POLLIN, 0};
    poll(&wakeup, 1, static_cast<int>(reconnectingTime.count()));
    return;
  }
  const ns::LockGuard guard(shared_->lock);
  connection_ = shared_->connection = std::move(connection);
  shared_->underWay.clear();
  for (auto& [client, order] : shared_->handed) order.isAsked = false;
  for (const auto& [client, job] : std::exchange(jobs_, {})) {
    if (job.phase == Phase::Watching) continue;
    const Rect& target = job.target;
    shared_->handed.try_emplace(
        client, Order{{CGPointMake(target.x, target.y), CGSizeMake(target.width, target.height)}, job.asked});
  }
}

void Placement::takeOrders() {
  std::unordered_map<xcb_window_t, Order> orders;
  {
    const ns::LockGuard guard(shared_->lock);
    orders = std::exchange(shared_->handed, {});
  }
  for (const auto& [client, order] : orders) {
    const auto [entry, isNew] = jobs_.try_emplace(client);
    Job& job = entry->second;
    if (isNew) Shared::follow(*connection_, client);
    if (order.isAsked) {
      aim(client, job, order.goal.appliedTo(order.known.frame()));
      job.requests = 0;
      noteRequest(job, order.known);
    } else if (!begin(client, job, order.goal)) {
      jobs_.erase(entry);
    }
  }
}

void Placement::handle(const xcb_generic_event_t& event) {
  xcb_window_t window = XCB_WINDOW_NONE;
  switch (event.response_type & 0x7f) {
    case XCB_CONFIGURE_NOTIFY:
      window = reinterpret_cast<const xcb_configure_notify_event_t&>(event).window;
      // Only those that a window manager sends on are about the root window's coordinates.
      if ((event.response_type & 0x80) != 0) handleMove(reinterpret_cast<const xcb_configure_notify_event_t&>(event));
      break;
    case XCB_PROPERTY_NOTIFY: {
      const auto& property = reinterpret_cast<const xcb_property_notify_event_t&>(event);
      if (property.atom != atoms_.netFrameExtents && property.atom != atoms_.gtkFrameExtents &&
          property.atom != atoms_.netWmState) {
        return;
      }
      window = property.window;
      break;
    }
    case XCB_DESTROY_NOTIFY:
      window = reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window;
      break;
    default:
      return;
  }
  if (const auto job = jobs_.find(window); job != jobs_.end()) job->second.dirty = true;
}

void Placement::handleMove(const xcb_configure_notify_event_t& move) {
  const auto found = jobs_.find(move.window);
  if (found == jobs_.end() || found->second.phase == Phase::Restoring) return;
  Job& job = found->second;
  const Rect wanted = job.target;
  const Rect frame = visibleFrame({move.x, move.y, move.width, move.height}, job.asked.decoration, job.asked.shadow);
  if (frame.x == wanted.x && frame.y == wanted.y) job.wasThere = true;
}

bool Placement::begin(xcb_window_t client, Job& job, const PlacementGoal& goal) {
  const auto now = GeometryRequest(*connection_, atoms_, client).receive();
  if (!now) return finish(client);
  const bool isUnderWay = job.requests > 0 || job.wasConfined;
  aim(client, job, goal.appliedTo(isUnderWay && job.phase != Phase::Watching ? job.target : now->frame()));
  if (isUnderWay && job.phase == Phase::Restoring) return true;
  job.requests = 0;
  if (now->frame() == job.target) return arrived(client, job);
  if (!now->isConfined()) return ask(client, job, *now);
  requestUnconfined(*connection_, atoms_, client, *now);
  job.phase = Phase::Restoring;
  job.wasConfined = true;
  job.deadline = Clock::now() + restoringTime;
  return true;
}

void Placement::aim(xcb_window_t client, Job& job, const Rect& target) {
  job.target = target;
  const ns::LockGuard guard(shared_->lock);
  shared_->underWay[client] = target;
}

bool Placement::advance(xcb_window_t client, Job& job, bool timedOut) {
  const auto now = GeometryRequest(*connection_, atoms_, client).receive();
  if (!now || (timedOut && job.phase == Phase::Watching)) return finish(client);
  if (job.phase == Phase::Restoring) return (now->isConfined() && !timedOut) || ask(client, job, *now);
  // Confined again by somebody else's wish, or for good: nothing more to be had.
  if (now->isConfined()) return finish(client);
  const Rect frame = now->frame();
  if (frame == job.target) return job.phase == Phase::Watching || arrived(client, job);
  // Not every window manager tells of a move that comes with a new size.
  if (frame.x == job.target.x && frame.y == job.target.y) job.wasThere = true;
  // It has been there and is gone: somebody else moves it, and is not to be fought. Where it was before, it may not
  // have moved yet: some tell of a move before they make it.
  const bool isElsewhere = (frame.x != job.target.x || frame.y != job.target.y) && frame != job.asked.frame();
  if (job.wasThere && isElsewhere && sameExtents(*now, job.asked)) return finish(client);
  if (!sameExtents(*now, job.asked) && job.requests < mostRequests) return ask(client, job, *now);
  if (job.phase == Phase::Watching) return true;
  if (!timedOut) {
    job.deadline = Clock::now() + quietTime;
    return true;
  }
  forgetExpectation(client);
  if (job.requests == 1 && !isAsGoodAsItGets(client, job, *now)) return ask(client, job, *now);
  return arrived(client, job);
}

bool Placement::ask(xcb_window_t client, Job& job, const WindowGeometry& now) {
  requestMoveResize(*connection_, atoms_, client, requestForFrame(job.target, now.decoration, now.shadow));
  noteRequest(job, now);
  return true;
}

void Placement::noteRequest(Job& job, const WindowGeometry& now) {
  job.phase = Phase::Verifying;
  job.asked = now;
  job.wasThere = false;
  ++job.requests;
  job.deadline = Clock::now() + answeringTime;
}

bool Placement::arrived(xcb_window_t client, Job& job) {
  if (!job.wasConfined) return finish(client);
  job.phase = Phase::Watching;
  job.deadline = Clock::now() + watchingTime;
  forgetExpectation(client);
  return true;
}

bool Placement::finish(xcb_window_t client) {
  const std::uint32_t none = XCB_EVENT_MASK_NO_EVENT;
  xcb_change_window_attributes(connection_->get(), client, XCB_CW_EVENT_MASK, &none);
  forgetExpectation(client);
  return false;
}

void Placement::forgetExpectation(xcb_window_t client) {
  const ns::LockGuard guard(shared_->lock);
  shared_->underWay.erase(client);
}

bool Placement::isAsGoodAsItGets(xcb_window_t client, const Job& job, const WindowGeometry& now) const {
  const Rect frame = now.frame();
  if (frame.x != job.target.x || frame.y != job.target.y) return false;
  const Rect wanted = requestForFrame(job.target, now.decoration, now.shadow);
  auto hints =
      propertyItems(receiveProperty(*connection_, requestProperty(*connection_, client, XCB_ATOM_WM_NORMAL_HINTS)));
  hints.resize(18);
  const auto hint = [&hints](std::uint32_t flag, std::size_t index) {
    return (hints[0] & flag) != 0 ? static_cast<int>(std::min(hints[index], 0x7fffU)) : 0;
  };
  // Flags and places of the ICCCM: minimum 16, maximum 32, increment 64, aspect ratio 128.
  const bool keepsAspect = (hints[0] & 128) != 0;
  return keepsAspect || (isLimited(wanted.width, now.client.width, hint(64, 9), hint(16, 5), hint(32, 7)) &&
                         isLimited(wanted.height, now.client.height, hint(64, 10), hint(16, 6), hint(32, 8)));
}

int Placement::untilNextDeadline() const {
  if (jobs_.empty()) return -1;
  const auto first = std::min_element(jobs_.begin(), jobs_.end(), [](const auto& one, const auto& other) {
    return one.second.deadline < other.second.deadline;
  });
  const auto left = std::chrono::ceil<milliseconds>(first->second.deadline - Clock::now());
  return static_cast<int>(std::max(left.count(), milliseconds::rep{0}));
}

}  // namespace x11
