// A window that is clicked on, and the finger that does it, with as little between the two and the clock as possible.
#pragma once

#include <xcb/xcb.h>

#include <memory>
#include <optional>
#include <string>

#include "bench/Figures.h"
#include "platform/linux/x11/Connection.h"

namespace bench {

/// Unmanaged: nobody but the server is concerned with the window. Decorated: with a frame by the window manager. Bare:
/// managed, but its program is supposed to draw the title bar.
enum class TargetKind { Unmanaged, Decorated, Bare };

class ClickTarget {
 public:
  /// Of the class "Target". Throws.
  ClickTarget(const std::string& display, TargetKind kind);

  xcb_window_t window() const { return window_; }
  /// Sends one event as if from the hardware. Returns the time just before.
  Clock::time_point post(std::uint8_t type, std::uint8_t detail, int x = 0, int y = 0);
  /// When the window got the next event of this type; none within the bound.
  std::optional<Clock::time_point> next(std::uint8_t type, Clock::duration bound);
  /// Forgets what has arrived.
  void clear();

 private:
  std::unique_ptr<x11::Connection> finger_;
  std::unique_ptr<x11::Connection> application_;
  xcb_window_t window_ = XCB_WINDOW_NONE;
};

}  // namespace bench
