// A person at a Mac: programs, their windows as Accessibility shows them, and the mouse.
#pragma once

#import <AppKit/AppKit.h>
#include <ApplicationServices/ApplicationServices.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/CFRef.h"

namespace desk {

/// Asks again and again, with the main run loop going on between; false when it did not become true within `seconds`.
bool waitFor(const std::function<bool()>& isTrue, double seconds = 5);

/// A program that runs while this exists, and never longer than the test's own process.
class Program {
 public:
  explicit Program(const std::vector<std::string>& command);
  /// Ends it, even when it is stopped.
  ~Program();
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  pid_t pid() const { return pid_; }
  NSRunningApplication* application() const;
  /// How often it has written this line.
  int count(const std::string& line);

 private:
  void read();

  NSTask* shell_;
  NSPipe* input_ = [NSPipe pipe];
  NSPipe* output_ = [NSPipe pipe];
  std::string written_;
  pid_t pid_ = 0;
};

CFRef<CFTypeRef> attribute(AXUIElementRef element, CFStringRef name);
std::vector<CFRef<AXUIElementRef>> windows(pid_t pid);
std::optional<CGRect> frame(AXUIElementRef element);
/// Empty for none.
std::vector<CFRef<AXUIElementRef>> children(AXUIElementRef element);
/// Empty for none.
std::string text(AXUIElementRef element, CFStringRef attribute);
/// The application's item in the menu bar; null while there is none.
CFRef<AXUIElementRef> statusItem(pid_t pid);
/// The middle of a window's button: kAXMinimizeButtonAttribute and its like.
CGPoint middleOfButton(AXUIElementRef window, CFStringRef button);

/// Moves the mouse there, and presses and releases its left button.
void click(CGPoint place, CGEventFlags flags = 0);

inline constexpr CGKeyCode escapeKey = 53;
void tapKey(CGKeyCode key);
/// Of the whole screen, into this file.
void takePicture(const std::string& path);

/// The event taps of a process, as the window server knows them.
std::vector<CGEventTapInformation> tapsOf(pid_t pid);

/// The preferences of an application, which get their former values back at the end.
class Preferences {
 public:
  explicit Preferences(NSString* bundleIdentifier);
  ~Preferences();
  Preferences(const Preferences&) = delete;
  Preferences& operator=(const Preferences&) = delete;
  /// These and no others.
  void set(NSDictionary<NSString*, id>* values) const;

 private:
  NSString* identifier_;
  NSDictionary* former_;
};

}  // namespace desk
