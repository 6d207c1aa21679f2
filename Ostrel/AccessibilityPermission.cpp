#include "Ostrel/AccessibilityPermission.h"

#include "platform/ApplicationServices.h"
#include "platform/CFRef.h"
#include "platform/Workspace.h"

namespace ostrel {

void promptForAccessibility() {
  const void* keys[] = {kAXTrustedCheckOptionPrompt};
  const void* values[] = {kCFBooleanTrue};
  const auto options = CFRef<CFDictionaryRef>::adopt(CFDictionaryCreate(
      kCFAllocatorDefault, keys, values, 1, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
  AXIsProcessTrustedWithOptions(options.get());
}

void openAccessibilityPrivacyPane() {
  ns::Workspace::sharedWorkspace()->openURL(
      "x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility");
}

}  // namespace ostrel
