// The order in which the Tab key visits the views of a window.
#pragma once

#include "platform/linux/qt/ViewNative.h"

namespace qt {

/// Gives the keyboard to the view after, or before, the one that has it, in the order of the tree, which is the order
/// of reading; scrolls it into sight. False when there is none.
bool moveFocus(ns::View::Native& root, bool forward);

}  // namespace qt
