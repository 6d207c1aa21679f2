// Where a window belongs and where an action puts it: pure functions of frames in the global display space (points,
// origin at the top-left corner of the main display, y growing downwards).
#pragma once

#include <cstddef>
#include <optional>
#include <span>

#include "Ostrel/WindowMargins.h"
#include "platform/ApplicationServices.h"

namespace ostrel {

CGPoint centerOf(CGPoint position, CGSize size);

/// The index of the first rectangle that contains the point (maximum edges are outside) or, when none does, of the
/// nearest one, the earlier of equally near ones. None only for an empty list.
std::optional<std::size_t> containingOrNearest(std::span<const CGRect> rects, CGPoint point);

/// Centres a width on a display, keeping y. A window wider than the display overhangs both sides equally.
CGPoint horizontallyCentered(CGRect bounds, CGPoint position, CGSize size);

/// A display less its margins, never smaller than 120 by 120 points even where that reaches past the margins.
CGRect filledFrame(CGRect bounds, const WindowMargins& margins);

}  // namespace ostrel
