// Title bars that a window manager draws in its own process with the theme of GTK 3: metacity, muffin, mutter
// before 44.
#pragma once

#include "platform/linux/x11/WindowManagers/Decoration.h"

namespace x11 {

/// What such a title bar depends on; `desktop` is where the desktop keeps its settings, "org.gnome.desktop".
std::vector<Setting> gtkFrameSettings(const std::string& desktop);
/// None under another theme than GTK's own.
std::optional<Decoration> gtkFrames(const SettingValues& values, const std::string& desktop);

}  // namespace x11
