// What an X server tells about its monitors, by whichever of its extensions can.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/linux/x11/Connection.h"

namespace x11 {

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

/// What there is to ask, the best last. Of an older server monitors that are only declared to it are not to be had, nor
/// is a monitor of several tiles one; by Xinerama no monitor has a name or an identification of its own; and without
/// either the screen counts as one monitor.
enum class MonitorSource { Screen, Xinerama, Outputs, Monitors };

/// The best that this server has. Waits for the server.
MonitorSource bestMonitorSource(const Connection& connection);
/// Asks that source, which the server must have. Empty when it does not answer.
std::vector<ListedMonitor> listMonitors(Connection& connection, MonitorSource source);

}  // namespace x11
