// The monitors of an X11 screen as displays.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/x11/Connection.h"
#include "platform/portable/Desktop.h"

namespace x11 {

/// One active monitor. Bounds are in the root window's coordinates, as every position of the X11 backing is. They are
/// the global display space's own except that the origin is the root window's corner, which lies at the main display's
/// corner only when that display is the leftmost and topmost one.
struct Monitor {
  /// Made from the connector's name, so that it survives unplugging, reordering and restarts; never 0.
  CGDirectDisplayID identifier = 0;
  std::string connector;
  /// The name in the EDID; without one, the connector's name made readable.
  std::string localizedName;
  desktop::Display display;
};

/// A monitor as the X server lists it.
struct ListedMonitor {
  std::string connector;
  std::int16_t x = 0;
  std::int16_t y = 0;
  std::uint16_t width = 0;
  std::uint16_t height = 0;
  bool primary = false;
  std::vector<std::uint8_t> edid;
};
/// The displays for what the server lists: the main one first and marked, the others in the server's order. Monitors
/// without area are left out, and so is a mirror, which shows the very rectangle of an earlier one.
std::vector<Monitor> monitorsFromList(std::vector<ListedMonitor> listed);

/// The displays of one X screen: read when first asked for, and again after an event said that they changed. A list
/// that is empty (a moment after waking up) is asked for again at the next question. Not thread-safe.
class DisplayList {
 public:
  /// `connection` is lent for the life of this object. Asks for RandR's events on the root window; the owner of the
  /// connection selects StructureNotify there, because monitors that are only declared to the server announce
  /// themselves by nothing but a ConfigureNotify of the root window.
  explicit DisplayList(Connection& connection);

  /// To be given every event of the connection. True when the displays may have changed.
  bool handleEvent(const xcb_generic_event_t& event);

  const std::vector<Monitor>& monitors();
  /// Null for an identifier that is not active. Valid until the next call.
  const Monitor* monitor(CGDirectDisplayID identifier);
  /// The answers in the shape the desktop gives them.
  std::vector<CGDirectDisplayID> activeDisplays();
  std::vector<desktop::Screen> screens();

 private:
  std::vector<ListedMonitor> readList() const;
  std::vector<std::uint8_t> readEdid(std::uint32_t output) const;

  Connection& connection_;
  /// Of RandR; none when the server lacks version 1.5, where the whole screen counts as one display.
  std::optional<std::uint8_t> firstRandrEvent_;
  std::vector<Monitor> monitors_;
  bool stale_ = true;
};

}  // namespace x11
