// The ring around the view that has the keyboard.
#pragma once

#include "platform/linux/qt/ViewNative.h"

namespace qt {

/// Puts the one ring around a view. It lies over everything in the same scrolled document or window, since a view
/// cannot draw beyond the views that hold it.
void showFocusRing(const ns::View::Native& native);
/// Does nothing when the ring is around another view.
void hideFocusRing(const ns::View::Native& native);
/// After a layout.
void followFocus();

}  // namespace qt
