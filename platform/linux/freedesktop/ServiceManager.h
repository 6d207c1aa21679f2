// What a program tells the service manager that started it.
#pragma once

namespace freedesktop {

/// Says that the application is ready, to a service manager that waits for it (NOTIFY_SOCKET in the environment, which
/// is taken out, so that no other program is mistaken for this one). Main thread only.
void tellServiceManagerOfReadiness();

}  // namespace freedesktop
