// What is known about one window manager that draws its title bars in one piece, without windows for the buttons: which
// of the person's settings decide where the buttons are, and what they say.
//
// To teach Ostrel another one: write a file beside this one with its settings and a function that reads them, and name
// it in the table in Registry.cpp. tests/desktop/ButtonScan.cpp measures where a theme has its buttons.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/x11/TitleBars/ButtonEvidence.h"

namespace x11 {

/// A piece of a title bar beside one of its corners. Of the last kind is whatever has no width that is known.
enum class Slot { Minimize, Zoom, Close, OtherButton, Unknown };

/// What stands beside the two corners, from the corner inwards.
struct ButtonLayout {
  std::vector<Slot> left;
  std::vector<Slot> right;
  friend bool operator==(const ButtonLayout&, const ButtonLayout&) = default;
};

/// Where one theme has its buttons in title bars of exactly these extents, in pixels: the first one of each side, and
/// how far it is from each button to the next. All buttons are of one size.
struct ButtonStrip {
  TitleBarState state = TitleBarState::Normal;
  Extents extents;
  int fromLeft = 0;
  int fromRight = 0;
  int down = 0;
  int width = 0;
  int height = 0;
  int pitch = 0;
  /// Pixels for a hundred points; anyScale where the numbers have been worked out from what the window manager tells.
  int scale = 100;
  static constexpr int anyScale = 0;
};

struct Decoration {
  /// Theme and layout, to be told apart from others; of no other meaning.
  std::string look;
  ButtonLayout layout;
  std::vector<ButtonStrip> strips;
};

/// The rectangles of the buttons of a window that looks like this. Empty when anything about it is not known for
/// certain: other extents than the theme has, a dialog, a window so narrow that some buttons may be missing, a window
/// manager that does not tell what the window allows. Pure.
std::vector<StoredButton> buttonsOf(const Decoration& decoration, const Window& window, const TitleBarKind& kind);

/// Something that title bars depend on.
struct Setting {
  /// GSettings: `place` is the schema, `name` the key. File: `place` is a path. KWin: what the running kwin tells of
  /// itself.
  enum class Source { GSettings, File, KWin };
  Source source = Source::GSettings;
  std::string place;
  std::string name;
  auto operator<=>(const Setting&) const = default;
};

/// What is set; what cannot be found out is missing. A string is the string itself, any other value as GVariant prints
/// it.
using SettingValues = std::map<Setting, std::string>;

struct DrawnDecoration {
  std::vector<Setting> (*settings)();
  /// None when the settings say nothing certain. Pure: any text may come.
  std::optional<Decoration> (*read)(const SettingValues& values);
};

/// The knowledge of the window manager that calls itself `name`; null when there is none. Any thread.
const DrawnDecoration* drawnDecorationOf(std::string_view name);

// One for each file beside this one.
const DrawnDecoration& kwin();
const DrawnDecoration& marco();
const DrawnDecoration& metacity();
const DrawnDecoration& muffin();
const DrawnDecoration& mutter();

/// The value of a setting; empty when it is missing.
std::string valueOf(const SettingValues& values, const Setting& setting);

/// The layout in the form that metacity and its kin share, "menu:minimize,maximize,close": the left side before the
/// colon, from left to right. None for one that names a button twice. What stands there and is not known is kept as
/// such, as nobody can tell whether it is shown.
std::optional<ButtonLayout> colonLayout(std::string_view text);

}  // namespace x11
