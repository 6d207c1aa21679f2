// The free space around a filled window.
#pragma once

namespace ostrel {

/// Distances from the edges of a display, in points.
struct WindowMargins {
  double top = 0;
  double left = 0;
  double right = 0;
  double bottom = 0;
  friend bool operator==(const WindowMargins&, const WindowMargins&) = default;
};

}  // namespace ostrel
