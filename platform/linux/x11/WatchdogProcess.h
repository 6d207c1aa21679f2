// The watchdog's own side.
#pragma once

#include <sys/types.h>

#include "platform/linux/x11/WatchdogMessages.h"

namespace x11 {

/// Watches over the process at the other end of `socket`, as that asks for, and returns when it is gone, with its press
/// passed on. `process` is its number.
void runWatchdog(int socket, pid_t process, WatchdogNotes& notes);

/// The same for a process that was started for it by its parent, with the socket as its standard input.
void runWatchdogForParent();

}  // namespace x11
