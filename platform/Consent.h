// The person's consent to Accessibility, as the command line shows and changes it.
#pragma once

#include <optional>
#include <string>

namespace ns {

/// The answer of AXIsProcessTrusted, for a process that may have no desktop (a terminal on another machine).
bool isAccessibilityGranted();

/// Records or withdraws the consent; running instances follow within two seconds. None on success, otherwise why not,
/// in words for the person: the system's own for a failed write, or where to go when only the system may change it.
std::optional<std::string> setAccessibilityGranted(bool granted);

}  // namespace ns
