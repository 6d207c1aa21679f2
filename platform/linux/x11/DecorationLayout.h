// In which order GTK, and programs that follow its settings, show the title-bar buttons that they draw.
#pragma once

#include <string_view>

#include "platform/linux/x11/Connection.h"

namespace x11 {

/// Whether a layout as GTK writes it ("menu:minimize,maximize,close") has these three on the right, in this order, with
/// nothing between or beside them.
bool isUsualLayout(std::string_view layout);

/// Whether the desktop and the person leave it at that, as far as the settings manager and GTK's files tell. Waits for
/// the X server and the disk; any thread.
bool hasUsualDecorationLayout(Connection& connection);

}  // namespace x11
