// What the macOS files share: texts, the objects that carry actions and delegates over, and the boundary rules.
//
// The C++ object owns the Objective-C objects that call back into it, and they know it only through closures that hold
// it weakly or that its destructor disarms; the frameworks hold targets and delegates weakly. So there is no cycle and
// no call into something gone. No exception crosses: a closure called from the frameworks is noexcept in effect, since
// callBack() ends the program rather than unwinding through frames that cannot be unwound.
#pragma once

#import <AppKit/AppKit.h>

#include <cassert>
#include <functional>
#include <string>
#include <string_view>

#include "platform/PropertyList.h"

namespace ns {

/// Checked in debug builds wherever the user interface is touched.
inline void assertMainThread() { assert(NSThread.isMainThread); }

/// Malformed UTF-8 becomes the empty text.
inline NSString* toNSString(std::string_view text) {
  NSString* string = [[NSString alloc] initWithBytes:text.data() length:text.size() encoding:NSUTF8StringEncoding];
  return string != nil ? string : @"";
}

/// Nil becomes the empty text.
inline std::string fromNSString(NSString* string) {
  const char* text = string.UTF8String;
  return text != nullptr ? text : "";
}

id toPropertyListObject(const PropertyList& value);
/// A kind of object that PropertyList does not know (a date, data) reads as foreignValue().
PropertyList fromPropertyListObject(id object);

/// Calls from the frameworks into our code go through here. With a pool of their own, because an application without
/// events empties its pool only when one comes, and timers and queues go on all the time.
inline void callBack(const std::function<void()>& function) noexcept {
  @autoreleasepool {
    if (function) function();
  }
}

}  // namespace ns

/// Carries an action message to a closure.
@interface OstrelTarget : NSObject
- (instancetype)initWithAction:(std::function<void()>)action;
- (void)callClosure:(id)sender;
/// That of controls and menu items whose target this is.
+ (SEL)action;
@end
