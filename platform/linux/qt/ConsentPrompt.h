// The dialog that asks for consent to Accessibility.
#pragma once

namespace qt {

/// Shows it, or raises the one that is open, and returns at once; the answer is recorded when it comes. With consent
/// given it offers to withdraw it. Main thread only.
void showConsentPrompt();

}  // namespace qt
