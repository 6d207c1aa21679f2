#include "platform/Diagnostics.h"

#import "platform/macos/Bridge.h"

namespace ns {

std::vector<DiagnosticLine> desktopDiagnostics() {
  return {{"System", "macOS " + fromNSString(NSProcessInfo.processInfo.operatingSystemVersionString)},
          {"Window buttons", "found through the Accessibility interface"}};
}

std::optional<std::string> desktopUnavailableReason() { return std::nullopt; }

}  // namespace ns
