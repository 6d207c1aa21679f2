// Mutter draws title bars in its own process up to 43, and from 44 on leaves that to a program of its own.
#include "platform/linux/x11/WindowManagers/GtkFrames.h"

namespace x11 {

namespace {

const std::string desktop = "org.gnome.desktop";

std::vector<Setting> settings() { return gtkFrameSettings(desktop); }
std::optional<Decoration> read(const SettingValues& values) { return gtkFrames(values, desktop); }

}  // namespace

const DrawnDecoration& mutter() {
  static constexpr DrawnDecoration instance{settings, read};
  return instance;
}

}  // namespace x11
