// The process that looks after the mouse when the application cannot.
#pragma once

namespace ns {

/// Splits off the small process that frees the mouse should this one be stopped or hang while it holds a click. To be
/// called once, on the way into main, before anything starts a thread. It ends with this process. When it cannot be
/// started, or where the system itself lets such clicks go, the application runs without it.
void startHelperProcess();

}  // namespace ns
