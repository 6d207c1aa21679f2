#import "tests/macos/Desk.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <stdexcept>

namespace desk {

bool waitFor(const std::function<bool()>& isTrue, double seconds) {
  const CFAbsoluteTime deadline = CFAbsoluteTimeGetCurrent() + seconds;
  while (!isTrue()) {
    if (CFAbsoluteTimeGetCurrent() > deadline) return false;
    CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.02, false);
  }
  return true;
}

Program::Program(const std::vector<std::string>& command) : shell_([[NSTask alloc] init]) {
  // The shell lives as long as its input is open, which ends with this process in any case, and takes the program
  // along.
  NSMutableArray<NSString*>* arguments =
      [NSMutableArray arrayWithObjects:@"-c", @"\"$@\" & echo $!; cat >/dev/null; kill -KILL $!", @"sh", nil];
  for (const std::string& word : command) [arguments addObject:@(word.c_str())];
  shell_.executableURL = [NSURL fileURLWithPath:@"/bin/sh"];
  shell_.arguments = arguments;
  shell_.standardInput = input_;
  shell_.standardOutput = output_;
  if (![shell_ launchAndReturnError:nil]) throw std::runtime_error("no shell");
  fcntl(output_.fileHandleForReading.fileDescriptor, F_SETFL, O_NONBLOCK);
  const bool hasStarted = waitFor([this] {
    read();
    return written_.find('\n') != std::string::npos;
  });
  if (!hasStarted) throw std::runtime_error("the shell says nothing");
  pid_ = std::stoi(written_);
}

Program::~Program() {
  [input_.fileHandleForWriting closeAndReturnError:nil];
  [shell_ waitUntilExit];
}

NSRunningApplication* Program::application() const {
  return [NSRunningApplication runningApplicationWithProcessIdentifier:pid_];
}

void Program::read() {
  std::array<char, 512> buffer{};
  while (true) {
    const ssize_t length = ::read(output_.fileHandleForReading.fileDescriptor, buffer.data(), buffer.size());
    if (length <= 0) return;
    written_.append(buffer.data(), static_cast<std::size_t>(length));
  }
}

int Program::count(const std::string& line) {
  read();
  int found = 0;
  const std::string wanted = '\n' + line + '\n';
  for (auto at = written_.find(wanted); at != std::string::npos; at = written_.find(wanted, at + 1)) ++found;
  return found;
}

CFRef<CFTypeRef> attribute(AXUIElementRef element, CFStringRef name) {
  CFTypeRef value = nullptr;
  AXUIElementCopyAttributeValue(element, name, &value);
  return CFRef<CFTypeRef>::adopt(value);
}

namespace {

std::vector<CFRef<AXUIElementRef>> elements(AXUIElementRef element, CFStringRef name) {
  std::vector<CFRef<AXUIElementRef>> found;
  const auto list = attribute(element, name);
  if (!list || CFGetTypeID(list.get()) != CFArrayGetTypeID()) return found;
  const auto array = static_cast<CFArrayRef>(list.get());
  for (CFIndex i = 0; i < CFArrayGetCount(array); ++i) {
    found.push_back(CFRef<AXUIElementRef>::retain(static_cast<AXUIElementRef>(CFArrayGetValueAtIndex(array, i))));
  }
  return found;
}

}  // namespace

std::vector<CFRef<AXUIElementRef>> windows(pid_t pid) {
  return elements(CFRef<AXUIElementRef>::adopt(AXUIElementCreateApplication(pid)).get(), kAXWindowsAttribute);
}

std::vector<CFRef<AXUIElementRef>> children(AXUIElementRef element) { return elements(element, kAXChildrenAttribute); }

std::string text(AXUIElementRef element, CFStringRef name) {
  const auto value = attribute(element, name);
  if (!value || CFGetTypeID(value.get()) != CFStringGetTypeID()) return {};
  return ((__bridge NSString*)value.get()).UTF8String;
}

CFRef<AXUIElementRef> statusItem(pid_t pid) {
  const auto application = CFRef<AXUIElementRef>::adopt(AXUIElementCreateApplication(pid));
  const auto bar = attribute(application.get(), CFSTR("AXExtrasMenuBar"));
  const auto items = bar ? children(static_cast<AXUIElementRef>(bar.get())) : std::vector<CFRef<AXUIElementRef>>{};
  return items.size() == 1 ? items[0] : CFRef<AXUIElementRef>{};
}

std::optional<CGRect> frame(AXUIElementRef element) {
  const auto position = attribute(element, kAXPositionAttribute);
  const auto size = attribute(element, kAXSizeAttribute);
  CGRect rect{};
  if (!position || !AXValueGetValue(static_cast<AXValueRef>(position.get()), kAXValueTypeCGPoint, &rect.origin))
    return std::nullopt;
  if (!size || !AXValueGetValue(static_cast<AXValueRef>(size.get()), kAXValueTypeCGSize, &rect.size))
    return std::nullopt;
  return rect;
}

CGPoint middleOfButton(AXUIElementRef window, CFStringRef button) {
  const auto element = attribute(window, button);
  const auto place = element ? frame(static_cast<AXUIElementRef>(element.get())) : std::nullopt;
  if (!place) throw std::runtime_error("the window has no such button");
  return CGPointMake(CGRectGetMidX(*place), CGRectGetMidY(*place));
}

void click(CGPoint place, CGEventFlags flags) {
  for (const CGEventType type : {kCGEventMouseMoved, kCGEventLeftMouseDown, kCGEventLeftMouseUp}) {
    const auto event = CFRef<CGEventRef>::adopt(CGEventCreateMouseEvent(nullptr, type, place, kCGMouseButtonLeft));
    CGEventSetFlags(event.get(), flags);
    CGEventPost(kCGHIDEventTap, event.get());
  }
}

void tapKey(CGKeyCode key) {
  for (const bool isDown : {true, false}) {
    CGEventPost(kCGHIDEventTap, CFRef<CGEventRef>::adopt(CGEventCreateKeyboardEvent(nullptr, key, isDown)).get());
  }
}

void takePicture(const std::string& path) {
  NSTask* camera = [[NSTask alloc] init];
  camera.executableURL = [NSURL fileURLWithPath:@"/usr/sbin/screencapture"];
  camera.arguments = @[ @"-x", @(path.c_str()) ];
  if ([camera launchAndReturnError:nil]) [camera waitUntilExit];
}

std::vector<CGEventTapInformation> tapsOf(pid_t pid) {
  std::uint32_t count = 0;
  CGGetEventTapList(0, nullptr, &count);
  std::vector<CGEventTapInformation> taps(count);
  CGGetEventTapList(count, taps.data(), &count);
  taps.resize(count);
  std::erase_if(taps, [pid](const CGEventTapInformation& tap) { return tap.tappingProcess != pid; });
  return taps;
}

Preferences::Preferences(NSString* bundleIdentifier)
    : identifier_(bundleIdentifier),
      former_(CFBridgingRelease(CFPreferencesCopyMultiple(nullptr, (__bridge CFStringRef)bundleIdentifier,
                                                          kCFPreferencesCurrentUser, kCFPreferencesAnyHost))) {}

Preferences::~Preferences() { set(former_); }

void Preferences::set(NSDictionary<NSString*, id>* values) const {
  const auto identifier = (__bridge CFStringRef)identifier_;
  const auto present =
      CFRef<CFArrayRef>::adopt(CFPreferencesCopyKeyList(identifier, kCFPreferencesCurrentUser, kCFPreferencesAnyHost));
  // Two calls: what a key means that is to be set and removed is not defined.
  CFPreferencesSetMultiple(nullptr, present.get(), identifier, kCFPreferencesCurrentUser, kCFPreferencesAnyHost);
  CFPreferencesSetMultiple((__bridge CFDictionaryRef)values, nullptr, identifier, kCFPreferencesCurrentUser,
                           kCFPreferencesAnyHost);
  CFPreferencesSynchronize(identifier, kCFPreferencesCurrentUser, kCFPreferencesAnyHost);
}

}  // namespace desk
