// An owner for one Core Foundation reference.
#pragma once

#include <utility>

#include "platform/ApplicationServices.h"

/// Owns one reference to a Core Foundation object, or nothing. `T` is the platform's reference type (CFStringRef, …).
template <typename T>
class CFRef {
 public:
  CFRef() = default;
  /// Takes over a reference that a Create or Copy function gave.
  static CFRef adopt(T object) {
    CFRef ref;
    ref.object_ = object;
    return ref;
  }
  /// Adds a reference of its own to a lent object.
  static CFRef retain(T object) {
    if (object != nullptr) CFRetain(object);
    return adopt(object);
  }

  CFRef(const CFRef& other) : CFRef(retain(other.object_)) {}
  CFRef(CFRef&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  CFRef& operator=(CFRef other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~CFRef() {
    if (object_ != nullptr) CFRelease(object_);
  }

  /// Lends the object; null when there is none.
  T get() const { return object_; }
  /// Hands the reference over to the caller.
  T release() { return std::exchange(object_, nullptr); }
  explicit operator bool() const { return object_ != nullptr; }

 private:
  T object_ = nullptr;
};
