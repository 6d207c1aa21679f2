// Metacity draws title bars with the theme of GTK 3; of those with a format of its own none is known here.
#include "platform/linux/x11/WindowManagers/GtkFrames.h"

namespace x11 {

namespace {

const Setting themeType{Setting::Source::GSettings, "org.gnome.metacity.theme", "type"};

std::vector<Setting> settings() {
  auto settings = gtkFrameSettings("org.gnome.desktop");
  settings.push_back(themeType);
  return settings;
}

std::optional<Decoration> read(const SettingValues& values) {
  if (valueOf(values, themeType) != "gtk") return std::nullopt;
  return gtkFrames(values, "org.gnome.desktop");
}

}  // namespace

const DrawnDecoration& metacity() {
  static constexpr DrawnDecoration instance{settings, read};
  return instance;
}

}  // namespace x11
