#include "platform/Consent.h"

#include "platform/ApplicationServices.h"

namespace ns {

bool isAccessibilityGranted() { return AXIsProcessTrusted(); }

std::optional<std::string> setAccessibilityGranted(bool) {
  return "macOS lets only you change this: System Settings › Privacy & Security › Accessibility.";
}

}  // namespace ns
