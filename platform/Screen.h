// Screens as the user-interface side of the desktop describes them.
#pragma once

#include <string>
#include <vector>

#include "platform/PropertyList.h"

namespace ns {

struct Screen {
  /// The name that people know the monitor by.
  std::string localizedName;
  /// Holds the display identifier as a number under "NSScreenNumber".
  Dictionary deviceDescription;
  /// How many pixels make a point.
  double backingScaleFactor = 1;

  /// All screens now, the main one first. Main thread only.
  static std::vector<Screen> screens();
};

}  // namespace ns
