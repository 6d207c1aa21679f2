#include "platform/linux/x11/WindowManagers/GtkFrames.h"

#include "platform/linux/freedesktop/BaseFolders.h"

namespace x11 {

namespace {

constexpr std::string_view knownTheme = "Adwaita";
constexpr std::string_view itsDarkVariant = "Adwaita-dark";

Setting layoutOf(const std::string& desktop) {
  return {Setting::Source::GSettings, desktop + ".wm.preferences", "button-layout"};
}
Setting themeOf(const std::string& desktop) {
  return {Setting::Source::GSettings, desktop + ".interface", "gtk-theme"};
}
/// What GTK goes by where no settings daemon tells it of the desktop's theme.
Setting ownSettings() { return {Setting::Source::File, freedesktop::configHome() + "/gtk-3.0/settings.ini", ""}; }
Setting ownStyle() { return {Setting::Source::File, freedesktop::configHome() + "/gtk-3.0/gtk.css", ""}; }

bool isKnownTheme(std::string_view name) { return name == knownTheme || name == itsDarkVariant; }

/// None where no theme is named.
std::optional<std::string_view> themeIn(std::string_view iniFile) {
  constexpr std::string_view key = "gtk-theme-name";
  const std::size_t place = iniFile.find(key);
  if (place == std::string_view::npos) return std::nullopt;
  std::string_view rest = iniFile.substr(place + key.size());
  rest = rest.substr(0, rest.find('\n'));
  rest.remove_prefix(std::min(rest.find_first_not_of(" \t="), rest.size()));
  return rest.substr(0, rest.find_last_not_of(" \t\r") + 1);
}

}  // namespace

std::vector<Setting> gtkFrameSettings(const std::string& desktop) {
  return {layoutOf(desktop), themeOf(desktop), ownSettings(), ownStyle()};
}

std::optional<Decoration> gtkFrames(const SettingValues& values, const std::string& desktop) {
  const std::string theme = valueOf(values, themeOf(desktop));
  const std::string own = valueOf(values, ownSettings());
  const std::string layoutText = valueOf(values, layoutOf(desktop));
  const auto layout = colonLayout(layoutText);
  if (!layout || !isKnownTheme(theme) || !isKnownTheme(themeIn(own).value_or(knownTheme))) return std::nullopt;
  // A style of the person's own may have moved anything.
  if (!valueOf(values, ownStyle()).empty()) return std::nullopt;
  constexpr Extents extents{0, 0, 37, 0};
  constexpr int across = 4, down = 4, side = 28, pitch = 34;
  Decoration decoration{theme + ' ' + layoutText, *layout, {}};
  for (const auto state : {TitleBarState::Normal, TitleBarState::HalfMaximized, TitleBarState::Maximized}) {
    decoration.strips.push_back({state, extents, across, across, down, side, side, pitch});
  }
  return decoration;
}

}  // namespace x11
