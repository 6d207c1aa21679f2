// The subset of Accessibility, Quartz events and Quartz displays that Ostrel uses, for systems that do not bring it.
// Coordinates are points in the global display space: origin at the top-left of the main display, y growing downwards.
// Every function here is to be called on the main thread. An Accessibility function answers kAXErrorIllegalArgument to
// a null argument and to an object of the wrong type.
#pragma once

#include <sys/types.h>

#include "platform/portable/CoreFoundation.h"

extern "C" {

// --- Geometry -------------------------------------------------------------------------------------------------------

using CGFloat = double;
struct CGPoint {
  CGFloat x;
  CGFloat y;
};
struct CGSize {
  CGFloat width;
  CGFloat height;
};
struct CGRect {
  CGPoint origin;
  CGSize size;
};
/// Minimum edges are inside, maximum edges outside.
bool CGRectContainsPoint(CGRect rect, CGPoint point);
bool CGRectEqualToRect(CGRect one, CGRect other);
constexpr CGPoint CGPointMake(CGFloat x, CGFloat y) { return {x, y}; }
constexpr CGSize CGSizeMake(CGFloat width, CGFloat height) { return {width, height}; }
constexpr CGRect CGRectMake(CGFloat x, CGFloat y, CGFloat width, CGFloat height) { return {{x, y}, {width, height}}; }
constexpr CGFloat CGRectGetMinX(CGRect rect) { return rect.origin.x; }
constexpr CGFloat CGRectGetMinY(CGRect rect) { return rect.origin.y; }
constexpr CGFloat CGRectGetMaxX(CGRect rect) { return rect.origin.x + rect.size.width; }
constexpr CGFloat CGRectGetMaxY(CGRect rect) { return rect.origin.y + rect.size.height; }
constexpr CGFloat CGRectGetWidth(CGRect rect) { return rect.size.width; }
constexpr CGFloat CGRectGetHeight(CGRect rect) { return rect.size.height; }

// --- Accessibility --------------------------------------------------------------------------------------------------

enum AXError : SInt32 {
  kAXErrorSuccess = 0,
  kAXErrorFailure = -25200,
  kAXErrorIllegalArgument = -25201,
  kAXErrorInvalidUIElement = -25202,
  kAXErrorCannotComplete = -25204,
  kAXErrorAttributeUnsupported = -25205,
  kAXErrorNotImplemented = -25208,
  kAXErrorAPIDisabled = -25211,
  kAXErrorNoValue = -25212,
};

using AXUIElementRef = const struct __AXUIElement*;
using AXValueRef = const struct __AXValue*;
enum AXValueType : std::uint32_t { kAXValueTypeCGPoint = 1, kAXValueTypeCGSize = 2 };

extern const CFStringRef kAXTrustedCheckOptionPrompt;

Boolean AXIsProcessTrusted();
/// The same answer; with kAXTrustedCheckOptionPrompt true in `options` an untrusted process also has the desktop ask.
/// Returns at once, before the person has answered.
Boolean AXIsProcessTrustedWithOptions(CFDictionaryRef options);

CFTypeID AXUIElementGetTypeID();
AXUIElementRef AXUIElementCreateSystemWide();
AXUIElementRef AXUIElementCreateApplication(pid_t pid);
/// The deepest element known at the position. Costs no question to another process. Only the system-wide element can be
/// asked here; an application's answers kAXErrorNotImplemented.
AXError AXUIElementCopyElementAtPosition(AXUIElementRef application, float x, float y, AXUIElementRef* element);
AXError AXUIElementCopyAttributeValue(AXUIElementRef element, CFStringRef attribute, CFTypeRef* value);
/// Success means that the desktop has taken the request; the change itself happens without anybody waiting for it.
AXError AXUIElementSetAttributeValue(AXUIElementRef element, CFStringRef attribute, CFTypeRef value);
AXError AXUIElementGetPid(AXUIElementRef element, pid_t* pid);

CFTypeID AXValueGetTypeID();
AXValueRef AXValueCreate(AXValueType type, const void* value);
AXValueType AXValueGetType(AXValueRef value);
/// False, with `value` untouched, when `type` is not the type of `boxed`.
Boolean AXValueGetValue(AXValueRef boxed, AXValueType type, void* value);

// --- Quartz events --------------------------------------------------------------------------------------------------

using CGEventRef = struct __CGEvent*;
using CGEventTapProxy = struct __CGEventTapProxy*;
using CGEventMask = std::uint64_t;
using CGEventFlags = std::uint64_t;
enum CGEventType : std::uint32_t {
  kCGEventLeftMouseDown = 1,
  kCGEventRightMouseDown = 3,
  kCGEventTapDisabledByTimeout = 0xFFFFFFFE,
  kCGEventTapDisabledByUserInput = 0xFFFFFFFF,
};
enum : CGEventFlags {
  kCGEventFlagMaskAlphaShift = 0x10000,
  kCGEventFlagMaskShift = 0x20000,
  kCGEventFlagMaskControl = 0x40000,
  kCGEventFlagMaskAlternate = 0x80000,
  kCGEventFlagMaskCommand = 0x100000,
};
enum CGEventTapLocation : std::uint32_t { kCGSessionEventTap = 1 };
enum CGEventTapPlacement : std::uint32_t { kCGHeadInsertEventTap = 0 };
enum CGEventTapOptions : std::uint32_t { kCGEventTapOptionDefault = 0 };

/// Returns `event` to pass it on, null to swallow it. `event` is lent for the call.
using CGEventTapCallBack = CGEventRef (*)(CGEventTapProxy proxy, CGEventType type, CGEventRef event, void* refcon);

constexpr CGEventMask CGEventMaskBit(CGEventType type) { return CGEventMask{1} << type; }
/// Null when the desktop refuses the tap (no consent, or another program holds the same grab).
CFMachPortRef CGEventTapCreate(CGEventTapLocation tap, CGEventTapPlacement place, CGEventTapOptions options,
                               CGEventMask eventsOfInterest, CGEventTapCallBack callback, void* refcon);
void CGEventTapEnable(CFMachPortRef tap, bool enable);
bool CGEventTapIsEnabled(CFMachPortRef tap);
CGEventFlags CGEventGetFlags(CGEventRef event);
CGPoint CGEventGetLocation(CGEventRef event);

// --- Quartz displays ------------------------------------------------------------------------------------------------

enum CGError : SInt32 { kCGErrorSuccess = 0, kCGErrorFailure = 1000 };
using CGDirectDisplayID = std::uint32_t;

/// Writes up to `maxDisplays` identifiers and how many were written; with a null list, how many there are.
CGError CGGetActiveDisplayList(std::uint32_t maxDisplays, CGDirectDisplayID* activeDisplays,
                               std::uint32_t* displayCount);
CGRect CGDisplayBounds(CGDirectDisplayID display);
/// Nonzero for the main display.
std::uint32_t CGDisplayIsMain(CGDirectDisplayID display);
/// 0 when unknown, as for the next two.
std::uint32_t CGDisplayVendorNumber(CGDirectDisplayID display);
std::uint32_t CGDisplayModelNumber(CGDirectDisplayID display);
std::uint32_t CGDisplaySerialNumber(CGDirectDisplayID display);

}  // extern "C"

// NOLINTBEGIN(cppcoreguidelines-macro-usage): the platform's own spelling of its attribute names
#define kAXRoleAttribute CFSTR("AXRole")
#define kAXSubroleAttribute CFSTR("AXSubrole")
#define kAXParentAttribute CFSTR("AXParent")
#define kAXEnabledAttribute CFSTR("AXEnabled")
#define kAXMinimizeButtonAttribute CFSTR("AXMinimizeButton")
#define kAXMinimizedAttribute CFSTR("AXMinimized")
#define kAXHiddenAttribute CFSTR("AXHidden")
#define kAXPositionAttribute CFSTR("AXPosition")
#define kAXSizeAttribute CFSTR("AXSize")
// NOLINTEND(cppcoreguidelines-macro-usage)
