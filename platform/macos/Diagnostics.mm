#include "platform/Diagnostics.h"

#import "platform/macos/Bridge.h"

namespace ns {

std::vector<DiagnosticLine> desktopDiagnostics() {
  return {{"System", "macOS " + fromNSString(NSProcessInfo.processInfo.operatingSystemVersionString)},
          {"Window buttons", "found through the Accessibility interface"}};
}

std::vector<DiagnosticLine> titleBarButtonDiagnostics() {
  return {{"Title bars", "every application tells where its buttons are; none has to be learned"}};
}

std::optional<std::size_t> forgetTitleBarButtons(std::string_view) { return std::nullopt; }

std::vector<DiagnosticLine> desktopLacks() { return {}; }

std::optional<std::string> desktopUnavailableReason() { return std::nullopt; }

}  // namespace ns
