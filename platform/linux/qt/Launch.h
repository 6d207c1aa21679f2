// The moment at which the application has finished launching.
#pragma once

#include <functional>

namespace qt {

/// Has `task` run once, when the application has finished launching; to be called while it launches. Main thread only.
void whenLaunched(std::function<void()> task);

}  // namespace qt
