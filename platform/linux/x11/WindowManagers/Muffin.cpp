// Muffin, Cinnamon's window manager, draws as the mutter does that it comes from, and has settings of its own.
#include "platform/linux/x11/WindowManagers/GtkFrames.h"

namespace x11 {

namespace {

const std::string desktop = "org.cinnamon.desktop";

std::vector<Setting> settings() { return gtkFrameSettings(desktop); }
std::optional<Decoration> read(const SettingValues& values) { return gtkFrames(values, desktop); }

}  // namespace

const DrawnDecoration& muffin() {
  static constexpr DrawnDecoration instance{settings, read};
  return instance;
}

}  // namespace x11
