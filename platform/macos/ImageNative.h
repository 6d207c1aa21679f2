// The framework's image inside ns::Image.
#pragma once

#import <AppKit/AppKit.h>

#include "platform/Font.h"
#include "platform/Image.h"

namespace ns {

struct Image::Native {
  NSImage* image;
};

/// Nil for null.
inline NSImage* toNSImage(const std::shared_ptr<Image>& image) { return image ? image->native().image : nil; }
NSFontWeight toNSFontWeight(FontWeight weight);

}  // namespace ns
