// Marco draws title bars with themes in a format of its own. How high a title bar is depends on the font of its title,
// and the buttons grow with it.
#include <algorithm>
#include <iterator>

#include "platform/linux/x11/WindowManagers/Decoration.h"

namespace x11 {

namespace {

const Setting layoutSetting{Setting::Source::GSettings, "org.mate.Marco.general", "button-layout"};
const Setting themeSetting{Setting::Source::GSettings, "org.mate.Marco.general", "theme"};

/// In pixels; all buttons are square, and their side is the height of the title bar less something.
struct Frame {
  /// The top is to be added.
  Extents borders;
  int fromLeft;
  int fromRight;
  int down;
  int heightLessSide;
  int gap;
};

struct Theme {
  std::string_view name;
  Frame normal;
  Frame maximized;
};

constexpr Theme themes[] = {
    {"BlackMATE", {{1, 1, 0, 1}, 1, 0, 1, 3, 0}, {{0, 0, 0, 0}, 0, 0, 1, 3, 0}},
    {"Menta", {{1, 1, 0, 1}, 4, 1, 1, 3, 0}, {{0, 0, 0, 0}, 5, 0, 0, 2, 0}},
    {"TraditionalOk", {{4, 4, 0, 4}, 5, 5, 2, 4, 2}, {{0, 0, 0, 1}, 2, 2, 2, 4, 2}},
};

ButtonStrip stripOf(TitleBarState state, const Frame& frame, int height) {
  Extents extents = frame.borders;
  extents.top = height;
  const int side = height - frame.heightLessSide;
  return {state, extents, frame.fromLeft, frame.fromRight, frame.down, side, side, side + frame.gap};
}

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
  Decoration decoration{themeName + ' ' + layoutText, *layout, {}};
  constexpr int lowest = 20, highest = 50;
  for (int height = lowest; height <= highest; ++height) {
    decoration.strips.push_back(stripOf(TitleBarState::Normal, theme->normal, height));
    decoration.strips.push_back(stripOf(TitleBarState::HalfMaximized, theme->normal, height));
    decoration.strips.push_back(stripOf(TitleBarState::Maximized, theme->maximized, height));
  }
  return decoration;
}

}  // namespace

const DrawnDecoration& marco() {
  static constexpr DrawnDecoration instance{settings, read};
  return instance;
}

}  // namespace x11
