// How a failed expectation shows a title-bar button.
#pragma once

#include <ostream>

#include "platform/linux/atspi/TitleBarButtons.h"

namespace atspi {

inline std::ostream& operator<<(std::ostream& stream, const TitleBarButton& button) {
  return stream << static_cast<int>(button.role) << " at " << button.rect.origin.x << "," << button.rect.origin.y << " "
                << button.rect.size.width << "x" << button.rect.size.height << (button.enabled ? "" : " disabled");
}

}  // namespace atspi
