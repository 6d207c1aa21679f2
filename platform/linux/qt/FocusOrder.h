// Where the keyboard goes in a window: from view to view, and through what scrolls.
#pragma once

#include "platform/linux/qt/ViewNative.h"

namespace qt {

/// Gives the keyboard to the view after, or before, the one that has it, in the order of the tree, which is the order
/// of reading; scrolls it into sight. False when there is none.
bool moveFocus(ns::View::Native& root, bool forward);

/// Whether the keyboard is at the view, or at what edits in it, once its window has it.
bool hasFocus(const ns::View::Native& native);

/// Gives the keyboard to the view and scrolls it into sight.
void focus(ns::View::Native& native, Qt::FocusReason reason);

/// Lets the keyboard follow when `tab` is chosen by other means: if it was at another tab of the window, it goes there.
void followChosenTab(ns::View::Native& tab);

/// In a list of tabs the arrow keys choose the one above or below. True when `tab` is in one and the key is an arrow.
bool chooseTabByKey(ns::View::Native& tab, int key);

/// Arrows, Page Up and Down, Home and End move what scrolls in the tree. True when there is anything to scroll.
bool scrollByKey(const ns::View::Native& root, int key);

}  // namespace qt
