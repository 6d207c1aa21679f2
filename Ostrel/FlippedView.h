// A view that counts from its top, so that what scrolls in it starts there.
#pragma once

#include "platform/View.h"

namespace ostrel {

class FlippedView : public ns::View {
 public:
  using ns::View::View;
  bool isFlipped() const override { return true; }
};

}  // namespace ostrel
