// The process that looks after the mouse when the application cannot.
#pragma once

#include <optional>
#include <string_view>

namespace ns {

/// To be called first in main, with the name that the program was called by. In a helper process that is this program
/// started anew, as one is when the first has died, it does the helper's work and does not return.
void becomeHelperProcess(std::string_view calledAs);

/// Splits off the small process that frees the mouse should this one be stopped or hang while it holds a click. To be
/// called once, on the way into main, before anything starts a thread. It ends with this process, and is started again
/// when it ends earlier. When it cannot be started, or where the system itself lets such clicks go, the application
/// runs without it.
void startHelperProcess();

/// Whether it runs now; none where none is needed. Any thread.
std::optional<bool> isHelperProcessRunning();

}  // namespace ns
