// Whole-pixel geometry of windows, in the root window's coordinates.
#pragma once

#include <compare>

#include "platform/portable/ApplicationServices.h"

namespace x11 {

struct Rect {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
  friend bool operator==(const Rect&, const Rect&) = default;
  bool contains(CGPoint point) const {
    return point.x >= x && point.x < x + width && point.y >= y && point.y < y + height;
  }
};

/// In the order of the properties that hold them.
struct Extents {
  int left = 0;
  int right = 0;
  int top = 0;
  int bottom = 0;
  friend auto operator<=>(const Extents&, const Extents&) = default;
};

/// The frame that a person sees: the client grown by the window manager's decoration and less the shadow that the
/// client draws around itself. The frame window's own rectangle will not do: some window managers give it invisible
/// borders.
constexpr Rect visibleFrame(const Rect& client, const Extents& decoration, const Extents& shadow) {
  return {client.x - decoration.left + shadow.left, client.y - decoration.top + shadow.top,
          client.width + decoration.left + decoration.right - shadow.left - shadow.right,
          client.height + decoration.top + decoration.bottom - shadow.top - shadow.bottom};
}

/// What the window manager is to be asked for, with north-west gravity, so that `frame` becomes the visible frame: the
/// decoration's corner and the client's size.
constexpr Rect requestForFrame(const Rect& frame, const Extents& decoration, const Extents& shadow) {
  return {frame.x - shadow.left, frame.y - shadow.top,
          frame.width - decoration.left - decoration.right + shadow.left + shadow.right,
          frame.height - decoration.top - decoration.bottom + shadow.top + shadow.bottom};
}

}  // namespace x11
