#include "platform/portable/CoreFoundation.h"

#include <cmath>
#include <cstring>
#include <mutex>
#include <optional>
#include <string_view>
#include <unordered_map>

#include "platform/portable/CFObject.h"

namespace cf {

namespace {

std::atomic<std::size_t> liveCount{0};

class Boolean final : public Object {
 public:
  static constexpr Kind kind = Kind::Boolean;
  explicit Boolean(bool value) : Object(kind, Lifetime::Immortal), value_(value) {}
  bool value() const { return value_; }

 private:
  const bool value_;
};

class Dictionary final : public Object {
 public:
  static constexpr Kind kind = Kind::Dictionary;
  Dictionary(const void** keys, const void** values, CFIndex count) : Object(kind) {
    for (CFIndex i = 0; i < count; ++i) {
      if (find(keys[i]) != nullptr) continue;
      entries_.emplace_back(CFRetain(keys[i]), CFRetain(values[i]));
    }
  }
  ~Dictionary() override {
    for (const auto& [key, value] : entries_) {
      CFRelease(key);
      CFRelease(value);
    }
  }
  CFTypeRef find(CFTypeRef wanted) const {
    for (const auto& [key, value] : entries_) {
      if (CFEqual(key, wanted)) return value;
    }
    return nullptr;
  }

 private:
  std::vector<std::pair<CFTypeRef, CFTypeRef>> entries_;
};

/// How many UTF-16 code units a UTF-8 text stands for; none when it is malformed.
std::optional<CFIndex> utf16Length(std::string_view text) {
  CFIndex length = 0;
  for (std::size_t i = 0; i < text.size();) {
    const auto lead = static_cast<unsigned char>(text[i]);
    const std::size_t size = lead < 0x80   ? 1
                             : lead < 0xC2 ? 0
                             : lead < 0xE0 ? 2
                             : lead < 0xF0 ? 3
                             : lead < 0xF5 ? 4
                                           : 0;
    if (size == 0 || i + size > text.size()) return std::nullopt;
    std::uint32_t scalar = size == 1 ? lead : lead & (0xFFU >> (size + 1));
    for (std::size_t k = 1; k < size; ++k) {
      const auto next = static_cast<unsigned char>(text[i + k]);
      if ((next & 0xC0) != 0x80) return std::nullopt;
      scalar = (scalar << 6) | (next & 0x3FU);
    }
    const bool isOverlong = (size == 3 && scalar < 0x800) || (size == 4 && scalar < 0x10000);
    const bool isSurrogate = scalar >= 0xD800 && scalar < 0xE000;
    if (isOverlong || isSurrogate || scalar > 0x10FFFF) return std::nullopt;
    length += size == 4 ? 2 : 1;
    i += size;
  }
  return length;
}

const Boolean trueObject(true);
const Boolean falseObject(false);
const String commonModes("kCFRunLoopCommonModes", Lifetime::Immortal);

}  // namespace

std::size_t liveObjects() { return liveCount.load(); }

Object::Object(Kind kind, Lifetime lifetime) : kind_(kind), lifetime_(lifetime) {
  if (lifetime_ == Lifetime::Counted) liveCount.fetch_add(1, std::memory_order_relaxed);
}

Object::~Object() {
  if (lifetime_ == Lifetime::Counted) liveCount.fetch_sub(1, std::memory_order_relaxed);
}

void Object::retain() const {
  if (lifetime_ == Lifetime::Counted) references_.fetch_add(1, std::memory_order_relaxed);
}

void Object::release() const {
  if (lifetime_ == Lifetime::Counted && references_.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
}

bool String::equals(const Object& other) const {
  return other.kind() == kind && static_cast<const String&>(other).text_ == text_;
}

bool Number::equals(const Object& other) const {
  if (other.kind() != kind) return false;
  const auto& number = static_cast<const Number&>(other);
  return isInteger_ && number.isInteger_ ? integer_ == number.integer_ : real_ == number.real_;
}

}  // namespace cf

extern "C" {

const CFAllocatorRef kCFAllocatorDefault = nullptr;
const CFBooleanRef kCFBooleanTrue = cf::reference<CFBooleanRef>(&cf::trueObject);
const CFBooleanRef kCFBooleanFalse = cf::reference<CFBooleanRef>(&cf::falseObject);
const CFRunLoopMode kCFRunLoopCommonModes = cf::reference<CFRunLoopMode>(&cf::commonModes);
const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks{};
const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks{};

CFTypeRef CFRetain(CFTypeRef object) {
  cf::object(object)->retain();
  return object;
}

void CFRelease(CFTypeRef object) { cf::object(object)->release(); }

CFIndex CFGetRetainCount(CFTypeRef object) { return cf::object(object)->retainCount(); }

CFTypeID CFGetTypeID(CFTypeRef object) { return static_cast<CFTypeID>(cf::object(object)->kind()); }

Boolean CFEqual(CFTypeRef one, CFTypeRef other) { return one == other || cf::object(one)->equals(*cf::object(other)); }

CFTypeID CFStringGetTypeID() { return static_cast<CFTypeID>(cf::Kind::String); }

CFStringRef CFStringCreateWithCString(CFAllocatorRef, const char* text, CFStringEncoding encoding) {
  if (text == nullptr || encoding != kCFStringEncodingUTF8 || !cf::utf16Length(text)) return nullptr;
  return cf::reference<CFStringRef>(new cf::String(text));
}

CFIndex CFStringGetLength(CFStringRef string) {
  const auto* object = cf::as<cf::String>(string);
  return object != nullptr ? cf::utf16Length(object->text()).value_or(0) : 0;
}

CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding) { return length * 3; }

Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex bufferSize, CFStringEncoding encoding) {
  const auto* object = cf::as<cf::String>(string);
  if (object == nullptr || buffer == nullptr || encoding != kCFStringEncodingUTF8) return false;
  const std::string& text = object->text();
  if (bufferSize < 1 || text.size() >= static_cast<std::size_t>(bufferSize)) return false;
  std::memcpy(buffer, text.c_str(), text.size() + 1);
  return true;
}

CFStringRef __CFStringMakeConstantString(const char* literal) {
  // Never destroyed: the constants must outlive every static object that uses one.
  static auto& lock = *new std::mutex;
  static auto& constants = *new std::unordered_map<std::string, const cf::String*>;
  const std::lock_guard guard(lock);
  const cf::String*& constant = constants[literal];
  if (constant == nullptr) constant = new cf::String(literal, cf::Lifetime::Immortal);
  return cf::reference<CFStringRef>(constant);
}

CFTypeID CFBooleanGetTypeID() { return static_cast<CFTypeID>(cf::Kind::Boolean); }

Boolean CFBooleanGetValue(CFBooleanRef boolean) {
  const auto* object = cf::as<cf::Boolean>(boolean);
  return object != nullptr && object->value();
}

CFTypeID CFNumberGetTypeID() { return static_cast<CFTypeID>(cf::Kind::Number); }

CFNumberRef CFNumberCreate(CFAllocatorRef, CFNumberType type, const void* value) {
  if (value == nullptr) return nullptr;
  if (type == kCFNumberSInt64Type) {
    return cf::reference<CFNumberRef>(new cf::Number(*static_cast<const std::int64_t*>(value)));
  }
  if (type == kCFNumberDoubleType) {
    return cf::reference<CFNumberRef>(new cf::Number(*static_cast<const double*>(value)));
  }
  return nullptr;
}

Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void* value) {
  const auto* object = cf::as<cf::Number>(number);
  if (object == nullptr || value == nullptr) return false;
  if (type == kCFNumberDoubleType) {
    *static_cast<double*>(value) = object->real();
    return !object->isInteger() || static_cast<long double>(object->integer()) == object->real();
  }
  if (type != kCFNumberSInt64Type) return false;
  if (object->isInteger()) {
    *static_cast<std::int64_t*>(value) = object->integer();
    return true;
  }
  constexpr double limit = 9223372036854775808.0;  // 2^63: the first double that no longer fits
  const double real = object->real();
  std::int64_t nearest = 0;
  if (real >= limit) {
    nearest = INT64_MAX;
  } else if (real < -limit) {
    nearest = INT64_MIN;
  } else if (!std::isnan(real)) {
    nearest = static_cast<std::int64_t>(real);
  }
  *static_cast<std::int64_t*>(value) = nearest;
  return real >= -limit && real < limit && static_cast<double>(nearest) == real;
}

CFDictionaryRef CFDictionaryCreate(CFAllocatorRef, const void** keys, const void** values, CFIndex count,
                                   const CFDictionaryKeyCallBacks* keyCallBacks,
                                   const CFDictionaryValueCallBacks* valueCallBacks) {
  if (keyCallBacks != &kCFTypeDictionaryKeyCallBacks || valueCallBacks != &kCFTypeDictionaryValueCallBacks) {
    return nullptr;
  }
  return cf::reference<CFDictionaryRef>(new cf::Dictionary(keys, values, count));
}

const void* CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key) {
  const auto* object = cf::as<cf::Dictionary>(dictionary);
  return object != nullptr && key != nullptr ? object->find(key) : nullptr;
}

}  // extern "C"
