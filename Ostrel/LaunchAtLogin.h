// Opening at login. The system's registration is the only record of it.
#pragma once

namespace ostrel::LaunchAtLogin {

/// Registers or unregisters the application, unless that is so already. Throws sm::Error when the system refuses, and
/// then has changed nothing. Main thread only.
void setEnabled(bool isEnabled);

}  // namespace ostrel::LaunchAtLogin
