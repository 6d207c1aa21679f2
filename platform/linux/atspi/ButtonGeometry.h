// Where the title-bar buttons are and which they are: what to make of the numbers that toolkits report.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/atspi/ButtonNames.h"
#include "platform/linux/atspi/TitleBarButtons.h"

namespace atspi {

enum class Toolkit {
  Gtk3,
  /// Before 4.10.
  Gtk4,
  /// GTK 4 since 4.10. It adds up the places of an object and of all that it is in, each counted from where its
  /// parent's content begins, and forgets how far that is from the parent's own corner.
  Gtk4Nested
};

/// How a toolkit's coordinates within a window become pixels from the visible frame's corner: times `scale`, plus
/// `offset`.
struct Placement {
  CGPoint offset{};
  double scale = 1;
};

/// `reported` is the toplevel's size as the toolkit has it, in its own coordinates. None when that does not fit the
/// window: then it is another window, or the application has not yet taken in a new size.
std::optional<Placement> placement(Toolkit toolkit, const Window& window, CGSize reported);

/// Where the content of the box `outer` begins within it, as far as can be told from its children: padding is the same
/// on opposite sides, and some child reaches to its end. All are rectangles as Gtk4Nested reports them.
CGPoint contentInset(CGRect outer, const std::vector<CGRect>& children);

/// Whether a child of a box with this content size is stretched over it rather than as small as it can be; only then
/// its own content reaches from end to end. What is higher than a title bar may be one of several columns.
bool isStretched(CGRect child, CGSize content);

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
