// What a click on a window button makes Ostrel do.
#pragma once

#include "platform/CFRef.h"

namespace ostrel {

/// One action and the window it is for, which it keeps alive. No action is an absent value.
struct WindowAction {
  enum class Kind { CenterHorizontally, Hide, FillWithMargins };
  Kind kind;
  CFRef<AXUIElementRef> window;
};

}  // namespace ostrel
