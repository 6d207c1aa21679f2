// The event tap of an X11 desktop.
#pragma once

#include <xcb/xcb.h>

#include <functional>
#include <memory>
#include <string>
#include <thread>

#include "platform/portable/Desktop.h"

namespace x11 {

/// Says whether a press could matter: `child` is the child of the root window that it happened in (a frame, a client
/// without one, or none), `position` is in root coordinates. Called on the tap's thread while the pointer is frozen, so
/// it answers from memory. False passes the press on without troubling the main thread.
using HitFilter = std::function<bool(xcb_window_t child, CGPoint position)>;

/// Watches left presses that carry no modifier key, on a connection and a thread of its own. A press that its filter
/// lets through waits for the main thread, at most 50 ms: then it is passed on, the tap is disabled and its handler is
/// told so with kCGEventTapDisabledByTimeout. The same notice comes when the server has thrown the connection out; the
/// tap then connects and grabs again by itself. A disabled tap passes everything on.
class EventTap final : public desktop::EventTap {
 public:
  /// A disabled tap. Null when `mask` asks for no left mouse-downs, when there is no server, or when another client
  /// has the same grab. `handler` is called on the main thread. `displayName`: empty for $DISPLAY.
  static std::unique_ptr<EventTap> create(CGEventMask mask, desktop::EventTapHandler handler, HitFilter filter,
                                          const std::string& displayName = {});
  ~EventTap() override;
  EventTap(const EventTap&) = delete;
  EventTap& operator=(const EventTap&) = delete;

  void setEnabled(bool enabled) override;
  /// False, too, while there is no connection.
  bool isEnabled() const override;

  /// Decides once more about a press that was passed on: true when the handler would have swallowed it, and what it
  /// queued is then carried out. Main thread; outlives the tap, and then answers false.
  using Reconsider = std::function<bool(const desktop::MouseDown&)>;
  Reconsider reconsider() const;

 private:
  class Worker;
  explicit EventTap(std::shared_ptr<Worker> worker);

  std::shared_ptr<Worker> worker_;
  std::thread thread_;
};

}  // namespace x11
