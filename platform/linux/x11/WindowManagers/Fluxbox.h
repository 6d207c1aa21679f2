#pragma once

#include "platform/linux/x11/WindowManagers/WindowManager.h"

namespace x11 {

/// What each button of a title bar does, in the order in which fluxbox makes them, by the text of its configuration
/// file; none for a button that Ostrel leaves alone.
std::vector<std::optional<ButtonRole>> fluxboxTitleButtons(const std::string& configuration);

}  // namespace x11
