// Which title bars look alike: all windows of one kind have their buttons in the same places.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>

#include "platform/linux/x11/Window.h"
#include "platform/linux/x11/WindowManagers/WindowManager.h"

namespace x11 {

enum class TitleBarState : std::uint8_t { Normal, Maximized, HalfMaximized };

struct TitleBarKind {
  /// Who draws it: the window manager by its own name, or the class of the application that decorates itself.
  std::string painter;
  /// What the painter was seen to add around the window. Another theme seldom keeps all four.
  Extents extents;
  TitleBarState state = TitleBarState::Normal;
  /// What decides which buttons there are: where one is missing, the others move up.
  bool minimizes = true;
  bool maximizes = true;
  bool isDialog = false;
  /// Pixels for a hundred points.
  int scale = 100;
  /// The theme and the layout that the painter is known to have; empty when that is not known.
  std::string look{};
  auto operator<=>(const TitleBarKind&) const = default;
};

enum class Corner : std::uint8_t { Left, Right };

/// A place in a title bar, in pixels from the nearest top corner of the visible frame, inwards and downwards. Buttons
/// stay with their corner when the window changes its size.
struct Spot {
  Corner corner = Corner::Left;
  int across = 0;
  int down = 0;
  friend bool operator==(const Spot&, const Spot&) = default;
};

/// None for a window without a title bar: full screen, shaded or of no known painter.
std::optional<TitleBarKind> kindOf(const Window& window, const std::string& windowManager, int scale);

/// The spot of a point of the root window; none when it is in no place where a title bar's buttons can be: in the
/// topmost 64 points of the visible frame (in the title bar itself when the window manager draws one), within 220 of a
/// corner.
std::optional<Spot> spotOf(const Window& window, CGPoint position, int scale);

}  // namespace x11
