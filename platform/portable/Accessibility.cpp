// Accessibility: boxes the desktop's values and elements.
#include <string>
#include <type_traits>
#include <utility>
#include <variant>

#include "platform/CFRef.h"
#include "platform/portable/ApplicationServices.h"
#include "platform/portable/CFObject.h"
#include "platform/portable/Desktop.h"

namespace {

using desktop::Desktop;

class Element final : public cf::Object {
 public:
  static constexpr cf::Kind kind = cf::Kind::Element;
  explicit Element(const desktop::Element& element) : Object(kind), element_(element) {}
  const desktop::Element& element() const { return element_; }
  bool equals(const Object& other) const override {
    return other.kind() == kind && static_cast<const Element&>(other).element_ == element_;
  }

 private:
  const desktop::Element element_;
};

/// A point or a size.
class BoxedValue final : public cf::Object {
 public:
  static constexpr cf::Kind kind = cf::Kind::Value;
  explicit BoxedValue(CGPoint point) : Object(kind), value_(point) {}
  explicit BoxedValue(CGSize size) : Object(kind), value_(size) {}
  const std::variant<CGPoint, CGSize>& value() const { return value_; }
  AXValueType type() const {
    return std::holds_alternative<CGPoint>(value_) ? kAXValueTypeCGPoint : kAXValueTypeCGSize;
  }

 private:
  const std::variant<CGPoint, CGSize> value_;
};

AXUIElementRef boxed(const desktop::Element& element) { return cf::reference<AXUIElementRef>(new Element(element)); }

CFTypeRef boxed(const desktop::Value& value) {
  return std::visit(
      [](const auto& held) -> CFTypeRef {
        using T = std::decay_t<decltype(held)>;
        if constexpr (std::is_same_v<T, desktop::ForeignValue>) {
          return new cf::Array;
        } else if constexpr (std::is_same_v<T, bool>) {
          return held ? kCFBooleanTrue : kCFBooleanFalse;
        } else if constexpr (std::is_same_v<T, std::string>) {
          return new cf::String(held);
        } else if constexpr (std::is_same_v<T, desktop::Element>) {
          return new Element(held);
        } else if constexpr (std::is_arithmetic_v<T>) {
          return new cf::Number(held);
        } else {
          return new BoxedValue(held);
        }
      },
      value);
}

desktop::Value unboxed(CFTypeRef value) {
  if (const auto* string = cf::as<cf::String>(value)) return string->text();
  if (const auto* number = cf::as<cf::Number>(value)) {
    if (number->isInteger()) return number->integer();
    return number->real();
  }
  if (const auto* element = cf::as<Element>(value)) return element->element();
  if (const auto* box = cf::as<BoxedValue>(value)) {
    return std::visit([](const auto& held) { return desktop::Value(held); }, box->value());
  }
  if (CFGetTypeID(value) == CFBooleanGetTypeID()) return CFBooleanGetValue(static_cast<CFBooleanRef>(value)) != 0;
  return desktop::ForeignValue{};
}

}  // namespace

extern "C" {

const CFStringRef kAXTrustedCheckOptionPrompt = CFSTR("AXTrustedCheckOptionPrompt");

Boolean AXIsProcessTrusted() { return Desktop::current().isProcessTrusted(); }

Boolean AXIsProcessTrustedWithOptions(CFDictionaryRef options) {
  const bool isTrusted = Desktop::current().isProcessTrusted();
  const void* prompt = options != nullptr ? CFDictionaryGetValue(options, kAXTrustedCheckOptionPrompt) : nullptr;
  if (!isTrusted && prompt == kCFBooleanTrue) Desktop::current().promptForTrust();
  return isTrusted;
}

CFTypeID AXUIElementGetTypeID() { return static_cast<CFTypeID>(cf::Kind::Element); }

AXUIElementRef AXUIElementCreateSystemWide() { return boxed(Desktop::current().systemWideElement()); }

AXUIElementRef AXUIElementCreateApplication(pid_t pid) { return boxed(Desktop::current().applicationElement(pid)); }

AXError AXUIElementCopyElementAtPosition(AXUIElementRef application, float x, float y, AXUIElementRef* element) {
  const auto* asked = cf::as<Element>(application);
  if (asked == nullptr || element == nullptr) return kAXErrorIllegalArgument;
  if (asked->element() != Desktop::current().systemWideElement()) return kAXErrorNotImplemented;
  desktop::Element found;
  const AXError error = Desktop::current().elementAtPosition({x, y}, found);
  if (error == kAXErrorSuccess) *element = boxed(found);
  return error;
}

AXError AXUIElementCopyAttributeValue(AXUIElementRef element, CFStringRef attribute, CFTypeRef* value) {
  const auto* asked = cf::as<Element>(element);
  const auto* name = cf::as<cf::String>(attribute);
  if (asked == nullptr || name == nullptr || value == nullptr) return kAXErrorIllegalArgument;
  desktop::Value found;
  const AXError error = Desktop::current().attribute(asked->element(), name->text(), found);
  if (error == kAXErrorSuccess) *value = boxed(found);
  return error;
}

AXError AXUIElementSetAttributeValue(AXUIElementRef element, CFStringRef attribute, CFTypeRef value) {
  const auto* asked = cf::as<Element>(element);
  const auto* name = cf::as<cf::String>(attribute);
  if (asked == nullptr || name == nullptr || value == nullptr) return kAXErrorIllegalArgument;
  return Desktop::current().setAttribute(asked->element(), name->text(), unboxed(value));
}

AXError AXUIElementGetPid(AXUIElementRef element, pid_t* pid) {
  const auto* asked = cf::as<Element>(element);
  if (asked == nullptr || pid == nullptr) return kAXErrorIllegalArgument;
  return Desktop::current().processIdentifier(asked->element(), *pid);
}

CFTypeID AXValueGetTypeID() { return static_cast<CFTypeID>(cf::Kind::Value); }

AXValueRef AXValueCreate(AXValueType type, const void* value) {
  if (value == nullptr) return nullptr;
  if (type == kAXValueTypeCGPoint) {
    return cf::reference<AXValueRef>(new BoxedValue(*static_cast<const CGPoint*>(value)));
  }
  if (type == kAXValueTypeCGSize) {
    return cf::reference<AXValueRef>(new BoxedValue(*static_cast<const CGSize*>(value)));
  }
  return nullptr;
}

AXValueType AXValueGetType(AXValueRef value) {
  const auto* box = cf::as<BoxedValue>(value);
  return box != nullptr ? box->type() : AXValueType{};
}

Boolean AXValueGetValue(AXValueRef boxedValue, AXValueType type, void* value) {
  const auto* box = cf::as<BoxedValue>(boxedValue);
  if (box == nullptr || value == nullptr || box->type() != type) return false;
  if (const auto* point = std::get_if<CGPoint>(&box->value())) {
    *static_cast<CGPoint*>(value) = *point;
  } else {
    *static_cast<CGSize*>(value) = std::get<CGSize>(box->value());
  }
  return true;
}

}  // extern "C"
