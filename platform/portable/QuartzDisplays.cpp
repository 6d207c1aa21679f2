// The display services over the desktop's list.
#include <algorithm>
#include <vector>

#include "platform/portable/ApplicationServices.h"
#include "platform/portable/Desktop.h"

namespace {

/// What the desktop knows of a display; all zeros for one that is not active.
desktop::Display known(CGDirectDisplayID display) {
  return desktop::Desktop::current().display(display).value_or(desktop::Display{});
}

}  // namespace

extern "C" {

CGError CGGetActiveDisplayList(std::uint32_t maxDisplays, CGDirectDisplayID* activeDisplays,
                               std::uint32_t* displayCount) {
  std::vector<CGDirectDisplayID> displays;
  const CGError error = desktop::Desktop::current().activeDisplays(displays);
  if (error != kCGErrorSuccess) return error;
  auto count = static_cast<std::uint32_t>(displays.size());
  if (activeDisplays != nullptr) {
    count = std::min(count, maxDisplays);
    std::copy_n(displays.begin(), count, activeDisplays);
  }
  if (displayCount != nullptr) *displayCount = count;
  return kCGErrorSuccess;
}

CGRect CGDisplayBounds(CGDirectDisplayID display) { return known(display).bounds; }
std::uint32_t CGDisplayIsMain(CGDirectDisplayID display) { return known(display).isMain ? 1 : 0; }
std::uint32_t CGDisplayVendorNumber(CGDirectDisplayID display) { return known(display).vendor; }
std::uint32_t CGDisplayModelNumber(CGDirectDisplayID display) { return known(display).model; }
std::uint32_t CGDisplaySerialNumber(CGDirectDisplayID display) { return known(display).serial; }

}  // extern "C"
