// Where the title-bar buttons are and which they are: what to make of the numbers that toolkits report.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/atspi/ButtonNames.h"
#include "platform/linux/atspi/TitleBarButtons.h"

namespace atspi {

enum class Toolkit { Gtk3, Gtk4 };

/// How a toolkit's coordinates within a window become pixels from the visible frame's corner: times `scale`, plus
/// `offset`.
struct Placement {
  CGPoint offset{};
  double scale = 1;
};

/// `reported` is the toplevel's size as the toolkit has it, in its own coordinates. None when that does not fit the
/// window: then it is another window, or the application has not yet taken in a new size.
std::optional<Placement> placement(Toolkit toolkit, const Window& window, CGSize reported);

/// A push button that was found, in the toolkit's coordinates.
struct FoundButton {
  std::string name;
  CGRect rect{};
  bool enabled = true;
};

/// The push buttons that share one parent.
struct ButtonGroup {
  std::vector<FoundButton> buttons;
  /// Whether the parent also holds containers, or buttons that the application made. The toolkits keep the title
  /// buttons in a box of their own, so such a group is the application's, even when a button of it is called "Close".
  bool mixed = false;
};

/// The title-bar buttons among `groups`, in pixels from the visible frame's corner, grown to the area that takes
/// clicks, within the frame and not overlapping.
std::vector<TitleBarButton> titleBarButtons(const std::vector<ButtonGroup>& groups, const ButtonNames& names,
                                            std::string_view decorationLayout, Toolkit toolkit, const Window& window,
                                            const Placement& placement);

/// Gives each half of the room that two rectangles claim, whether they stand beside or above each other.
void splitOverlaps(std::vector<TitleBarButton>& buttons);

}  // namespace atspi
