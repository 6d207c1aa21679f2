// Asking the person for the Accessibility permission.
#pragma once

namespace ostrel {

/// Has the system show its prompt, unless the permission is there. Main thread only.
void promptForAccessibility();
/// Opens the system's list of applications with the permission. Main thread only.
void openAccessibilityPrivacyPane();

}  // namespace ostrel
