// What scrolls, to what is inside it.
#pragma once

#include "platform/linux/qt/ViewNative.h"

namespace qt {

struct Scrolling : ns::View::Native {
  /// Scrolls until these heights of the document show, as far as there is room.
  virtual void reveal(double top, double bottom) = 0;
};

}  // namespace qt
