// Moves and resizes windows without anybody waiting for it.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <thread>
#include <unordered_map>

#include "platform/Lock.h"
#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/Wakeup.h"
#include "platform/linux/x11/Window.h"

namespace x11 {

/// Where a window's visible frame is wanted. What is absent stays as it is.
struct PlacementGoal {
  std::optional<CGPoint> position;
  std::optional<CGSize> size;
  /// `frame` with what is wanted put in, in whole pixels.
  Rect appliedTo(const Rect& frame) const;
  /// This goal, overridden by a later one.
  void merge(const PlacementGoal& later);
};

/// Carries goals out on a connection and a thread of its own: restores a window that is maximised, shaded or full
/// screen, asks the window manager, reads back what came of it, and asks once more if that is off.
class Placement {
 public:
  /// Takes a connection that nobody else reads events from. Should that end alone, another one to $DISPLAY takes its
  /// place.
  explicit Placement(std::unique_ptr<Connection> connection);
  /// Drops what has not been carried out.
  ~Placement();
  Placement(const Placement&) = delete;
  Placement& operator=(const Placement&) = delete;

  /// Adds to the window's goal. Nothing is asked of the window manager before the current task of the main queue has
  /// ended, so that position, size and position again, written one after the other, become one request. `known` is the
  /// window as last seen: the first request is reckoned with it instead of being read anew, as a person waits for it.
  /// Main thread.
  void want(xcb_window_t client, const PlacementGoal& goal, const WindowGeometry& known);
  /// `actual` as it will be once what is wanted has been carried out; `actual` itself when nothing is under way, when
  /// the window manager leaves a request unanswered and when somebody else has moved the window since. A second click
  /// that comes before the first one's move is done reckons with its outcome. Any thread.
  Rect expectedFrame(xcb_window_t client, const Rect& actual) const;

 private:
  using Clock = std::chrono::steady_clock;
  enum class Phase { Restoring, Verifying, Watching };
  struct Job {
    Phase phase = Phase::Verifying;
    Rect target;
    /// The extents that the last request was reckoned with.
    WindowGeometry asked;
    int requests = 0;
    bool wasConfined = false;
    /// Whether the window has been where the last request wants it, even if it has gone on since.
    bool wasThere = false;
    bool dirty = false;
    /// When to go on even if no event comes.
    Clock::time_point deadline;
  };
  struct Order;
  struct Shared;

  explicit Placement(const std::shared_ptr<const Connection>& connection);
  void run();
  void reconnect();
  void takeOrders();
  void handle(const xcb_generic_event_t& event);
  void handleMove(const xcb_configure_notify_event_t& move);
  void aim(xcb_window_t client, Job& job, const Rect& target);
  static void noteRequest(Job& job, const WindowGeometry& now);
  /// Each answers whether the job goes on.
  bool begin(xcb_window_t client, Job& job, const PlacementGoal& goal);
  bool advance(xcb_window_t client, Job& job, bool timedOut);
  bool ask(xcb_window_t client, Job& job, const WindowGeometry& now);
  bool arrived(xcb_window_t client, Job& job);
  bool finish(xcb_window_t client);
  void forgetExpectation(xcb_window_t client);
  bool isAsGoodAsItGets(xcb_window_t client, const Job& job, const WindowGeometry& now) const;
  int untilNextDeadline() const;

  /// Outlives this object in the tasks that are queued on the main queue.
  const std::shared_ptr<Shared> shared_;
  const Atoms& atoms_;
  // Of the worker's thread.
  std::shared_ptr<const Connection> connection_;
  std::unordered_map<xcb_window_t, Job> jobs_;
  std::thread thread_;
};

}  // namespace x11
