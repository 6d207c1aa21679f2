// Marco draws title bars with themes in a format of its own.
#include <algorithm>
#include <iterator>

#include "platform/linux/x11/WindowManagers/Decoration.h"

namespace x11 {

namespace {

const Setting layoutSetting{Setting::Source::GSettings, "org.mate.Marco.general", "button-layout"};
const Setting themeSetting{Setting::Source::GSettings, "org.mate.Marco.general", "theme"};

struct Theme {
  std::string_view name;
  std::vector<ButtonStrip> strips;
};

const Theme themes[] = {
    {"BlackMATE",
     {{TitleBarState::Normal, {1, 1, 30, 1}, 1, 0, 1, 27, 27, 27},
      {TitleBarState::HalfMaximized, {1, 1, 30, 1}, 1, 0, 1, 27, 27, 27},
      {TitleBarState::Maximized, {0, 0, 29, 0}, 0, 0, 1, 26, 26, 26}}},
    {"Menta",
     {{TitleBarState::Normal, {1, 1, 29, 1}, 4, 1, 1, 26, 26, 26},
      {TitleBarState::HalfMaximized, {1, 1, 29, 1}, 4, 1, 1, 26, 26, 26},
      {TitleBarState::Maximized, {0, 0, 29, 0}, 5, 0, 0, 27, 27, 27}}},
    {"TraditionalOk",
     {{TitleBarState::Normal, {4, 4, 25, 4}, 5, 5, 2, 21, 21, 23},
      {TitleBarState::HalfMaximized, {4, 4, 25, 4}, 5, 5, 2, 21, 21, 23},
      {TitleBarState::Maximized, {0, 0, 25, 1}, 2, 2, 2, 21, 21, 23}}},
};

std::vector<Setting> settings() { return {layoutSetting, themeSetting}; }

std::optional<Decoration> read(const SettingValues& values) {
  const std::string themeName = valueOf(values, themeSetting);
  const std::string layoutText = valueOf(values, layoutSetting);
  auto layout = colonLayout(layoutText);
  const auto* theme = std::find_if(std::begin(themes), std::end(themes),
                                   [&themeName](const Theme& one) { return one.name == themeName; });
  if (!layout || theme == std::end(themes)) return std::nullopt;
  // A menu's button has a size of its own.
  for (auto* side : {&layout->left, &layout->right}) {
    std::replace(side->begin(), side->end(), Slot::OtherButton, Slot::Unknown);
  }
  return Decoration{themeName + ' ' + layoutText, *layout, theme->strips};
}

}  // namespace

const DrawnDecoration& marco() {
  static constexpr DrawnDecoration instance{settings, read};
  return instance;
}

}  // namespace x11
