#include "Ostrel/ElementAttributes.h"

#include <cstring>

namespace ostrel {

namespace {

bool isOfType(const CFRef<CFTypeRef>& value, CFTypeID type) { return value && CFGetTypeID(value.get()) == type; }

template <typename T>
std::optional<T> boxedAttribute(AXUIElementRef element, CFStringRef name, AXValueType type) {
  const auto value = copyAttribute(element, name);
  T unboxed{};
  if (!isOfType(value, AXValueGetTypeID()) || !AXValueGetValue(static_cast<AXValueRef>(value.get()), type, &unboxed)) {
    return std::nullopt;
  }
  return unboxed;
}

}  // namespace

CFRef<CFTypeRef> copyAttribute(AXUIElementRef element, CFStringRef name) {
  CFTypeRef value = nullptr;
  if (AXUIElementCopyAttributeValue(element, name, &value) != kAXErrorSuccess) return {};
  return CFRef<CFTypeRef>::adopt(value);
}

CFRef<AXUIElementRef> elementAttribute(AXUIElementRef element, CFStringRef name) {
  const auto value = copyAttribute(element, name);
  if (!isOfType(value, AXUIElementGetTypeID())) return {};
  return CFRef<AXUIElementRef>::retain(static_cast<AXUIElementRef>(value.get()));
}

std::optional<std::string> stringAttribute(AXUIElementRef element, CFStringRef name) {
  const auto value = copyAttribute(element, name);
  if (!isOfType(value, CFStringGetTypeID())) return std::nullopt;
  const auto string = static_cast<CFStringRef>(value.get());
  const CFIndex size = CFStringGetMaximumSizeForEncoding(CFStringGetLength(string), kCFStringEncodingUTF8) + 1;
  std::string text(static_cast<std::size_t>(size), '\0');
  if (!CFStringGetCString(string, text.data(), size, kCFStringEncodingUTF8)) return std::nullopt;
  text.resize(std::strlen(text.c_str()));
  return text;
}

std::optional<bool> boolAttribute(AXUIElementRef element, CFStringRef name) {
  const auto value = copyAttribute(element, name);
  if (isOfType(value, CFBooleanGetTypeID())) return CFBooleanGetValue(static_cast<CFBooleanRef>(value.get())) != 0;
  if (!isOfType(value, CFNumberGetTypeID())) return std::nullopt;
  double number = 0;
  CFNumberGetValue(static_cast<CFNumberRef>(value.get()), kCFNumberDoubleType, &number);
  if (number == 0) return false;
  if (number == 1) return true;
  return std::nullopt;
}

std::optional<CGPoint> cgPointAttribute(AXUIElementRef element, CFStringRef name) {
  return boxedAttribute<CGPoint>(element, name, kAXValueTypeCGPoint);
}

std::optional<CGSize> cgSizeAttribute(AXUIElementRef element, CFStringRef name) {
  return boxedAttribute<CGSize>(element, name, kAXValueTypeCGSize);
}

}  // namespace ostrel
