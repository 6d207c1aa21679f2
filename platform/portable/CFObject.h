// What stands behind a Core Foundation reference here: one reference-counted base class, and the values.
#pragma once

#include <atomic>
#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "platform/portable/CoreFoundation.h"

namespace cf {

enum class Kind : CFTypeID {
  String = 1,
  Boolean,
  Number,
  Dictionary,
  Array,
  MachPort,
  RunLoop,
  RunLoopSource,
  Element,
  Value,
  Event,
};

enum class Lifetime { Counted, Immortal };

/// Counted objects that exist now in this process: what a test compares to find a leak. Any thread.
std::size_t liveObjects();

/// Starts with one reference, which belongs to its creator. Deletes itself with the last one.
class Object {
 public:
  explicit Object(Kind kind, Lifetime lifetime = Lifetime::Counted);
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;
  virtual ~Object();

  Kind kind() const { return kind_; }
  void retain() const;
  void release() const;
  CFIndex retainCount() const { return references_.load(std::memory_order_relaxed); }
  virtual bool equals(const Object& other) const { return this == &other; }

 private:
  const Kind kind_;
  const Lifetime lifetime_;
  mutable std::atomic<CFIndex> references_{1};
};

/// The object behind a reference. References always carry the address of the Object part.
inline const Object* object(CFTypeRef reference) { return static_cast<const Object*>(reference); }

/// The object behind a reference when it is a `T`; null for null and for every other type.
template <typename T>
const T* as(CFTypeRef reference) {
  const Object* found = object(reference);
  return found != nullptr && found->kind() == T::kind ? static_cast<const T*>(found) : nullptr;
}
template <typename T>
T* asMutable(CFTypeRef reference) {
  return const_cast<T*>(as<T>(reference));
}

/// The reference to an object, as the type that the interface calls it by.
template <typename Reference>
Reference reference(const Object* object) {
  const void* address = object;
  return static_cast<Reference>(const_cast<void*>(address));
}

class String final : public Object {
 public:
  static constexpr Kind kind = Kind::String;
  explicit String(std::string text, Lifetime lifetime = Lifetime::Counted)
      : Object(kind, lifetime), text_(std::move(text)) {}
  const std::string& text() const { return text_; }
  bool equals(const Object& other) const override;

 private:
  const std::string text_;
};

class Number final : public Object {
 public:
  static constexpr Kind kind = Kind::Number;
  explicit Number(std::int64_t integer)
      : Object(kind), isInteger_(true), integer_(integer), real_(static_cast<double>(integer)) {}
  explicit Number(double real) : Object(kind), real_(real) {}
  bool isInteger() const { return isInteger_; }
  std::int64_t integer() const { return integer_; }
  double real() const { return real_; }
  bool equals(const Object& other) const override;

 private:
  const bool isInteger_ = false;
  const std::int64_t integer_ = 0;
  const double real_;
};

/// A value that nothing here looks into.
class Array final : public Object {
 public:
  static constexpr Kind kind = Kind::Array;
  Array() : Object(kind) {}
};

}  // namespace cf
