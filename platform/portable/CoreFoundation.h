// The subset of Core Foundation that Ostrel uses, for systems that do not bring it. Names, values and ownership follow
// the platform: functions with Create or Copy in their name give the caller a reference to release, all others lend.
// CFRetain and CFRelease are thread-safe; the run loop functions belong to the main thread.
#pragma once

#include <cstddef>
#include <cstdint>

extern "C" {

using Boolean = unsigned char;
using SInt32 = std::int32_t;
using CFIndex = long;
using CFTypeID = unsigned long;
using CFTypeRef = const void*;
using CFStringEncoding = std::uint32_t;

using CFAllocatorRef = const struct __CFAllocator*;
using CFStringRef = const struct __CFString*;
using CFBooleanRef = const struct __CFBoolean*;
using CFNumberRef = const struct __CFNumber*;
using CFDictionaryRef = const struct __CFDictionary*;
using CFMachPortRef = struct __CFMachPort*;
using CFRunLoopRef = struct __CFRunLoop*;
using CFRunLoopSourceRef = struct __CFRunLoopSource*;
using CFRunLoopMode = CFStringRef;

extern const CFAllocatorRef kCFAllocatorDefault;
extern const CFBooleanRef kCFBooleanTrue;
extern const CFBooleanRef kCFBooleanFalse;
extern const CFRunLoopMode kCFRunLoopCommonModes;

CFTypeRef CFRetain(CFTypeRef object);
void CFRelease(CFTypeRef object);
CFIndex CFGetRetainCount(CFTypeRef object);
CFTypeID CFGetTypeID(CFTypeRef object);
/// Value equality for texts, numbers, Booleans and Accessibility elements; identity for everything else.
Boolean CFEqual(CFTypeRef one, CFTypeRef other);

enum : CFStringEncoding { kCFStringEncodingUTF8 = 0x08000100 };

CFTypeID CFStringGetTypeID();
/// `text` is NUL-terminated UTF-8, the only encoding known here; null when it is malformed.
CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char* text, CFStringEncoding encoding);
/// The length in UTF-16 code units.
CFIndex CFStringGetLength(CFStringRef string);
CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding);
/// Writes the text with its NUL; false, with `buffer` unspecified, when it does not fit.
Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex bufferSize, CFStringEncoding encoding);
/// One immortal string for each literal: what CFSTR expands to.
CFStringRef __CFStringMakeConstantString(const char* literal);

CFTypeID CFBooleanGetTypeID();
Boolean CFBooleanGetValue(CFBooleanRef boolean);

using CFNumberType = CFIndex;
enum : CFNumberType { kCFNumberSInt64Type = 4, kCFNumberDoubleType = 13 };
CFTypeID CFNumberGetTypeID();
CFNumberRef CFNumberCreate(CFAllocatorRef allocator, CFNumberType type, const void* value);
/// Writes the nearest value of the wanted type; false when the conversion loses something.
Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void* value);

struct CFDictionaryKeyCallBacks {
  CFIndex version;
};
struct CFDictionaryValueCallBacks {
  CFIndex version;
};
extern const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks;
extern const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks;
/// A dictionary that retains its keys and values; both call-back arguments must be the kCFType ones.
CFDictionaryRef CFDictionaryCreate(CFAllocatorRef allocator, const void** keys, const void** values, CFIndex count,
                                   const CFDictionaryKeyCallBacks* keyCallBacks,
                                   const CFDictionaryValueCallBacks* valueCallBacks);
/// Lends the value for a key that is equal by CFEqual; null when there is none.
const void* CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key);

/// A source through which `port` delivers once it is added to a run loop; null when the desktop refuses one.
CFRunLoopSourceRef CFMachPortCreateRunLoopSource(CFAllocatorRef allocator, CFMachPortRef port, CFIndex order);
/// Ends delivery for good. Safe to call twice.
void CFMachPortInvalidate(CFMachPortRef port);
Boolean CFMachPortIsValid(CFMachPortRef port);

CFRunLoopRef CFRunLoopGetMain();
void CFRunLoopAddSource(CFRunLoopRef loop, CFRunLoopSourceRef source, CFRunLoopMode mode);
void CFRunLoopRemoveSource(CFRunLoopRef loop, CFRunLoopSourceRef source, CFRunLoopMode mode);

}  // extern "C"

// The platform's own spelling of a constant string. Each use looks its string up once: the click path is full of them.
// NOLINTNEXTLINE(cppcoreguidelines-macro-usage)
#define CFSTR(literal)                                                                     \
  ([] {                                                                                    \
    static const CFStringRef constantString = __CFStringMakeConstantString("" literal ""); \
    return constantString;                                                                 \
  }())
