// What the system answers about consent, taps and displays, from the desktop in memory. A program's own definitions
// come before those of the frameworks, for itself alone: the frameworks go on with theirs.
#include <ApplicationServices/ApplicationServices.h>

#include <algorithm>
#include <map>
#include <memory>
#include <vector>

#include "platform/portable/Desktop.h"

namespace {

using desktop::Desktop;

std::map<CFMachPortRef, std::unique_ptr<desktop::EventTap>>& taps() {
  static std::map<CFMachPortRef, std::unique_ptr<desktop::EventTap>> taps;
  return taps;
}

desktop::Display known(CGDirectDisplayID display) {
  return Desktop::current().display(display).value_or(desktop::Display{});
}

}  // namespace

extern "C" {

Boolean AXIsProcessTrusted(void) { return Desktop::current().isProcessTrusted(); }

Boolean AXIsProcessTrustedWithOptions(CFDictionaryRef options) {
  const bool isTrusted = Desktop::current().isProcessTrusted();
  const void* prompt = options != nullptr ? CFDictionaryGetValue(options, kAXTrustedCheckOptionPrompt) : nullptr;
  if (!isTrusted && prompt == kCFBooleanTrue) Desktop::current().promptForTrust();
  return isTrusted;
}

CFMachPortRef CGEventTapCreate(CGEventTapLocation, CGEventTapPlacement, CGEventTapOptions, CGEventMask eventsOfInterest,
                               CGEventTapCallBack, void*) {
  auto tap = Desktop::current().createEventTap(eventsOfInterest, [](const desktop::MouseDown&) { return true; });
  if (!tap) return nullptr;
  CFMachPortRef port = CFMachPortCreate(kCFAllocatorDefault, nullptr, nullptr, nullptr);
  taps().emplace(port, std::move(tap));
  CFMachPortSetInvalidationCallBack(port, [](CFMachPortRef invalid, void*) { taps().erase(invalid); });
  return port;
}
void CGEventTapEnable(CFMachPortRef tap, bool enable) { taps().at(tap)->setEnabled(enable); }
bool CGEventTapIsEnabled(CFMachPortRef tap) { return taps().at(tap)->isEnabled(); }

CGError CGGetActiveDisplayList(uint32_t maxDisplays, CGDirectDisplayID* activeDisplays, uint32_t* displayCount) {
  std::vector<CGDirectDisplayID> displays;
  const CGError error = Desktop::current().activeDisplays(displays);
  if (activeDisplays != nullptr) {
    displays.resize(std::min<std::size_t>(displays.size(), maxDisplays));
    std::ranges::copy(displays, activeDisplays);
  }
  *displayCount = static_cast<uint32_t>(displays.size());
  return error;
}
CGRect CGDisplayBounds(CGDirectDisplayID display) { return known(display).bounds; }
boolean_t CGDisplayIsMain(CGDirectDisplayID display) { return known(display).isMain; }
uint32_t CGDisplayVendorNumber(CGDirectDisplayID display) { return known(display).vendor; }
uint32_t CGDisplayModelNumber(CGDirectDisplayID display) { return known(display).model; }
uint32_t CGDisplaySerialNumber(CGDirectDisplayID display) { return known(display).serial; }

}  // extern "C"
