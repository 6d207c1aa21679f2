// Typed reads of Accessibility attributes. A read that fails, has no value or has one of another type gives none. Each
// call is one question to the element's application. Main thread only.
#pragma once

#include <optional>
#include <string>

#include "platform/CFRef.h"

namespace ostrel {

/// The value of whatever type; null when there is none.
CFRef<CFTypeRef> copyAttribute(AXUIElementRef element, CFStringRef name);

CFRef<AXUIElementRef> elementAttribute(AXUIElementRef element, CFStringRef name);
std::optional<std::string> stringAttribute(AXUIElementRef element, CFStringRef name);
/// A number counts as a Boolean when it is exactly 0 or 1.
std::optional<bool> boolAttribute(AXUIElementRef element, CFStringRef name);
std::optional<CGPoint> cgPointAttribute(AXUIElementRef element, CFStringRef name);
std::optional<CGSize> cgSizeAttribute(AXUIElementRef element, CFStringRef name);

}  // namespace ostrel
