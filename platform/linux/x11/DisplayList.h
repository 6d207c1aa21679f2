// The monitors of an X11 screen as displays.
#pragma once

#include <atomic>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/MonitorSources.h"
#include "platform/portable/Desktop.h"

namespace x11 {

/// One active monitor. Bounds are in the root window's coordinates, in pixels, as every position of the X11 backing is.
/// They are the global display space's own except for the scale, and that the origin is the root window's corner, which
/// lies at the main display's corner only when that display is the leftmost and topmost one.
struct Monitor {
  /// Made from the connector's name, so that it survives unplugging, reordering and restarts; never 0.
  CGDirectDisplayID identifier = 0;
  std::string connector;
  /// The name in the EDID; without one, the connector's name made readable.
  std::string localizedName;
  desktop::Display display;
};

/// The displays for what the server lists: the main one first and marked, the others in the server's order. Monitors
/// without area are left out, and so is a mirror, which shows the very rectangle of an earlier one.
std::vector<Monitor> monitorsFromList(std::vector<ListedMonitor> listed);

/// The displays of one X screen: read when first asked for, and again after an event said that they changed. A list
/// that is empty (a moment after waking up) is asked for again at the next question. Main thread, but for handleEvent.
class DisplayList {
 public:
  /// `connection` is asked, and lent for the life of this object. On `events` RandR's are selected on the root window;
  /// the owner of that connection selects StructureNotify there, because monitors that are only declared to the server
  /// announce themselves by nothing but a ConfigureNotify of the root window.
  DisplayList(Connection& connection, const Connection& events);

  /// To be given every event of `events`. True when the displays may have changed. Any thread.
  bool handleEvent(const xcb_generic_event_t& event);

  const std::vector<Monitor>& monitors();
  /// Null for an identifier that is not active. Valid until the next call.
  const Monitor* monitor(CGDirectDisplayID identifier);
  /// The answers in the shape the desktop gives them.
  std::vector<CGDirectDisplayID> activeDisplays();
  std::vector<desktop::Screen> screens();

 private:
  Connection& connection_;
  const MonitorSource source_;
  /// Of RandR, unless the server has none that can tell of outputs. Without it nothing but a new size of the screen is
  /// noticed.
  std::optional<std::uint8_t> firstRandrEvent_;
  std::vector<Monitor> monitors_;
  std::atomic<bool> stale_ = true;
};

}  // namespace x11
