// System symbols at a wanted size.
#pragma once

#include <memory>
#include <string>

#include "platform/Font.h"
#include "platform/Image.h"

namespace ostrel {

/// Null when the system knows no symbol of this name.
inline std::shared_ptr<ns::Image> symbolImage(const std::string& name, double pointSize,
                                              ns::FontWeight weight = ns::FontWeight::Regular) {
  const auto image = ns::Image::imageWithSystemSymbolName(name);
  return image ? image->imageWithSymbolConfiguration({pointSize, weight}) : nullptr;
}

}  // namespace ostrel
