// What the settings of window managers say about their title bars. Nothing runs: settings and windows are made up here.
#include <gtest/gtest.h>

#include "platform/linux/x11/WindowManagers/Decoration.h"

namespace x11 {
namespace {

constexpr auto minimize = Slot::Minimize;
constexpr auto zoom = Slot::Zoom;
constexpr auto close = Slot::Close;
constexpr auto other = Slot::OtherButton;
constexpr auto unknown = Slot::Unknown;

TEST(ColonLayout, SaysWhatStandsFromTheCornersInwards) {
  struct Case {
    const char* text;
    std::optional<ButtonLayout> layout;
  };
  for (const auto& [text, layout] : {
           Case{"menu:minimize,maximize,close", ButtonLayout{{other}, {close, zoom, minimize}}},
           Case{"close,minimize,maximize:", ButtonLayout{{close, minimize, zoom}, {}}},
           Case{"appmenu:close", ButtonLayout{{unknown}, {close}}},
           Case{"close", ButtonLayout{{close}, {}}},
           Case{"", ButtonLayout{}},
           Case{":", ButtonLayout{}},
           Case{":minimize,spacer,close", ButtonLayout{{}, {close, unknown, minimize}}},
           Case{":minimize,,Close", ButtonLayout{{}, {unknown, unknown, minimize}}},
           Case{":minimize:close", ButtonLayout{{}, {unknown}}},
           Case{":close, minimize\n", ButtonLayout{{}, {unknown, close}}},
           Case{":close,minimize,close", std::nullopt},
           Case{"close:close", std::nullopt},
       }) {
    EXPECT_EQ(colonLayout(text), layout) << text;
  }
}

/// What a running kwin tells, shortened.
std::string kwinInformation(const std::string& left, const std::string& right, const std::string& plugin) {
  return "KWin Support Information:\n\nDecoration\n==========\nPlugin: " + plugin +
         "\nTheme: \nborderSize: 0\ndecorationButtonsLeft: " + left + "\ndecorationButtonsRight: " + right +
         "\ngridUnit: 10\nfont: Noto Sans,10,-1,5,50,0,0,0,0,0\nsmallSpacing: 2\n\nOptions\n=======\nPlugin: none\n";
}

TEST(KWin, HasTheLayoutThatItTellsAndNoOtherInItsFile) {
  const auto plain = kwinInformation("0, 2", "6, 3, 4, 5", "org.kde.breeze");
  struct Case {
    const char* what;
    std::string information;
    const char* configuration;
    const char* breeze;
    std::optional<ButtonLayout> layout;
  };
  const ButtonLayout usual{{unknown, unknown}, {close, zoom, minimize, unknown}};
  for (const auto& [what, information, configuration, breeze, layout] : {
           Case{"as installed", plain, "", "", usual},
           Case{"left", kwinInformation("5, 3, 4", "", "org.kde.breeze"), "", "",
                ButtonLayout{{close, minimize, zoom}, {}}},
           Case{"agreed", plain, "[org.kde.kdecoration2]\nButtonsOnRight=HIAX\nButtonsOnLeft=MS\n", "", usual},
           Case{"other group", plain, "[Else]\nButtonsOnRight=X\n", "[Common]\nButtonSize=ButtonSmall\n", usual},
           Case{"not taken up yet", plain, "[org.kde.kdecoration2]\nButtonsOnRight=HAIX\n", "", std::nullopt},
           Case{"twice", kwinInformation("5", "3, 5", "org.kde.breeze"), "", "", std::nullopt},
           Case{"unheard of", kwinInformation("", "12, 5, x", "org.kde.breeze"), "", "",
                ButtonLayout{{}, {unknown, close, unknown}}},
           Case{"another plugin", kwinInformation("", "3, 4, 5", "org.kde.oxygen"), "", "", std::nullopt},
           Case{"smaller buttons", plain, "", "[Windeco]\nButtonSize=ButtonSmall\n", std::nullopt},
           Case{"no number", plain.substr(0, plain.find("smallSpacing")) + "smallSpacing: 2x\n", "", "", std::nullopt},
           Case{"nothing", "", "", "", std::nullopt},
       }) {
    const auto settings = kwin().settings();
    const auto decoration =
        kwin().read({{settings[0], information}, {settings[1], configuration}, {settings[2], breeze}});
    EXPECT_EQ(decoration ? std::optional(decoration->layout) : std::nullopt, layout) << what;
  }
}

class KnownButtons : public testing::Test {
 protected:
  KnownButtons() {
    window.geometry.client = {100, 137, 600, 400};
    window.geometry.decoration = {0, 0, 37, 0};
    window.properties.minimizeIsAllowed = window.properties.maximizeIsAllowed = window.properties.closeIsAllowed = true;
  }

  static Setting setting(const std::string& place, const std::string& name) {
    return {Setting::Source::GSettings, place, name};
  }
  static SettingValues metacitySettings(const std::string& layout, const std::string& theme = "Adwaita") {
    return {{setting("org.gnome.metacity.theme", "type"), "gtk"},
            {setting("org.gnome.desktop.interface", "gtk-theme"), theme},
            {setting("org.gnome.desktop.wm.preferences", "button-layout"), layout}};
  }
  std::vector<StoredButton> buttons(const std::string& layout, int scale = 100) const {
    const auto decoration = metacity().read(metacitySettings(layout));
    const auto kind = kindOf(window, "Metacity", scale);
    return decoration && kind ? buttonsOf(*decoration, window, *kind) : std::vector<StoredButton>();
  }
  static std::string text(const std::vector<StoredButton>& buttons) {
    std::string text;
    for (const StoredButton& button : buttons) {
      text += "mzc"[static_cast<int>(button.role)];
      text += (button.corner == Corner::Left ? " left " : " right ") + std::to_string(button.across) + "; ";
    }
    return text;
  }

  Window window;
};

TEST_F(KnownButtons, StandWhereTheLayoutAndTheWindowHaveThem) {
  EXPECT_EQ(text(buttons("menu:minimize,maximize,close")), "c right 4; z right 38; m right 72; ");
  EXPECT_EQ(text(buttons("menu,close:menu")), "");
  EXPECT_EQ(text(buttons("menu,close:maximize,spacer,minimize")), "c left 38; m right 4; ");
  window.properties.maximizeIsAllowed = false;
  EXPECT_EQ(text(buttons(":minimize,maximize,close")), "c right 4; m right 38; ");
  window.properties.closeIsAllowed = false;
  EXPECT_EQ(text(buttons(":minimize,maximize,close")), "m right 4; ");
}

TEST_F(KnownButtons, OfKWinAreAsLargeAsItsFontMakesThem) {
  const auto decoration = kwin().read({{kwin().settings()[0], kwinInformation("0", "3, 4, 5", "org.kde.breeze")}});
  ASSERT_TRUE(decoration);
  for (const int scale : {100, 125}) {
    window.geometry.decoration = {0, 0, 29, 0};
    const auto buttons = buttonsOf(*decoration, window, *kindOf(window, "KWin", scale));
    EXPECT_EQ(text(buttons), "c right 4; z right 28; m right 52; ");
    EXPECT_EQ(buttons.at(0).width, 20);
    window.geometry.decoration.top = 33;
    EXPECT_TRUE(buttonsOf(*decoration, window, *kindOf(window, "KWin", scale)).empty());
  }
}

TEST_F(KnownButtons, AreNotKnownWhereAnythingDiffers) {
  const std::string layout = ":minimize,maximize,close";
  const Window usual = window;
  ASSERT_FALSE(buttons(layout).empty());
  EXPECT_TRUE(buttons(layout, 200).empty()) << "one scale's title bar at another";
  window.geometry.decoration.top = 38;
  EXPECT_TRUE(buttons(layout).empty()) << "another font or theme";
  window = usual;
  window.properties.isTransient = true;
  EXPECT_TRUE(buttons(layout).empty()) << "a dialog";
  window = usual;
  window.properties.closeIsAllowed.reset();
  EXPECT_TRUE(buttons(layout).empty()) << "nobody says which buttons there are";
  window = usual;
  window.geometry.client.width = 180;
  EXPECT_TRUE(buttons(layout).empty()) << "no room for all";
  window = usual;
  window.geometry.decoration = {0, 0, 74, 0};
  EXPECT_EQ(buttons(layout, 200)[0].width, 56);

  SettingValues values = metacitySettings(layout, "HighContrast");
  EXPECT_FALSE(metacity().read(values));
  values = metacitySettings(layout);
  values[metacity().settings()[2]] = "[Settings]\ngtk-theme-name = Arc\n";
  EXPECT_FALSE(metacity().read(values)) << "where no settings daemon runs";
  values[metacity().settings()[2]] = "[Settings]\ngtk-theme-name=Adwaita\n";
  EXPECT_TRUE(metacity().read(values));
  values[metacity().settings()[3]] = "headerbar { padding: 0 }";
  EXPECT_FALSE(metacity().read(values)) << "a style of the person's own";
  for (const char* name : {"Metacity", "Metacity (Marco)", "Mutter", "Mutter (Muffin)", "KWin"}) {
    const DrawnDecoration* known = drawnDecorationOf(name);
    ASSERT_NE(known, nullptr) << name;
    EXPECT_FALSE(known->read({})) << name;
  }
  EXPECT_EQ(drawnDecorationOf("Openbox"), nullptr);
}

}  // namespace
}  // namespace x11
