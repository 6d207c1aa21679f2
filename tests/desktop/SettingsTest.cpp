// The status item, its menu and the settings window as a person uses them, and what the next click on another
// program's window then does.
#include "tests/desktop/AssistiveTool.h"
#include "tests/desktop/DesktopTest.h"

namespace desktoptest {
namespace {

constexpr xcb_keysym_t returnKey = 0xff0d;
/// A window that is put back to exactly where it was before the click is taken for one that has not moved yet.
constexpr Frame otherFrame{60, 90, 500, 340};

/// Wide enough for a window at startFrame beside the settings.
class SettingsTest : public DesktopTest {
 protected:
  SettingsTest() : DesktopTest(WindowManager::Openbox, 1920) {}

  void startTray() {
    const std::string settings = desktop.home().write(
        "tint2rc",
        "panel_items = S\npanel_size = 300 30\npanel_position = bottom left\nsystray_padding = 3 3 3\n"
        "systray_icon_size = 24\nstrut_policy = none\n");
    desktop.startPanel({"tint2", "-c", settings});
  }

  /// Where something is once that no longer changes.
  template <typename Look>
  Frame restingPlace(const std::string& what, Look look) {
    std::optional<Frame> place;
    x.waitUntil([&] {
      const std::optional<Frame> before = look();
      if (!before) return false;
      desktop.settle();
      place = look();
      return place == before;
    });
    if (!place) throw std::runtime_error("there is no " + what);
    return *place;
  }

  /// Clicks a control in the middle of its width, at this part of its height.
  void click(const std::string& role, const std::string& name, double part = 0.5) {
    const auto look = [&] {
      const auto control = tool.find(role, name);
      return control ? std::optional(control->place) : std::nullopt;
    };
    clickAt(restingPlace(role + ' ' + name, look), part);
  }
  void clickAt(const Frame& place, double part = 0.5) {
    x.click({place.x + place.width / 2, place.y + static_cast<int>(place.height * part)});
  }

  bool has(const std::string& role, const std::string& name) { return tool.find(role, name).has_value(); }

  void chooseFromTray(const std::string& item) {
    clickAt(restingPlace("icon", [&] { return x.trayIcon(); }));
    click("menu item", item);
  }

  void openSettings(const std::string& tab = "General") {
    startTray();
    desktop.startOstrel();
    chooseFromTray("Settings");
    click("page tab", tab);
    EXPECT_TRUE(happens([&] { return tool.find("page tab", tab)->is("selected"); }));
  }

  void flip(const std::string& name, bool on) {
    click("check box", name);
    EXPECT_TRUE(happens([&] { return tool.find("check box", name)->is("checked") == on; })) << name;
  }

  AssistiveTool tool{desktop};
};

TEST_F(SettingsTest, SwitchesDecideWhatTheNextClickDoes) {
  const Window window = openTerminal();
  openSettings();

  flip("Yellow button centers the window", false);
  desktop.click(window, Button::Minimise);
  expectNativeMinimise(window, startFrame);
  flip("Yellow button centers the window", true);
  desktop.click(window, Button::Minimise);
  EXPECT_TRUE(reaches(window, centred(window, 0, 1920)));
  desktop.place(window, otherFrame);

  flip("Green button fills the screen", false);
  desktop.click(window, Button::Zoom);
  EXPECT_TRUE(happens([&] { return x.isMaximised(window); }));
  desktop.click(window, Button::Zoom);
  EXPECT_TRUE(happens([&] { return !x.isMaximised(window); }));
  flip("Green button fills the screen", true);
  desktop.click(window, Button::Zoom);
  EXPECT_TRUE(reaches(window, {32, 56, 1856, 812}));
  desktop.place(window, startFrame);

  flip("Red button hides the app", true);
  desktop.click(window, Button::Close);
  EXPECT_TRUE(happens([&] { return x.isIconic(window); }));
  bringBack(window);
  flip("Red button hides the app", false);
  desktop.click(window, Button::Close);
  EXPECT_TRUE(happens([&] { return !x.frame(window); }));
}

TEST_F(SettingsTest, AMarginHoldsForTheNextZoom) {
  const Window window = openTerminal();
  openSettings("Displays");

  click("text", "Left");
  EXPECT_TRUE(happens([&] { return tool.find("text", "Left")->is("focused"); }));
  x.hold(Key::Control);
  x.type('a');
  x.letGo(Key::Control);
  for (const char digit : {'2', '0'}) x.type(static_cast<xcb_keysym_t>(digit));
  EXPECT_TRUE(happens([&] { return tool.find("text", "Left")->value == "20"; }));
  x.type(returnKey);
  EXPECT_TRUE(happens([&] { return tool.find("spin button", "Left")->value == "20"; }));
  desktop.click(window, Button::Zoom);
  EXPECT_TRUE(reaches(window, {20, 56, 1868, 812}));
  desktop.place(window, otherFrame);

  click("spin button", "Top", 0.25);
  EXPECT_TRUE(happens([&] { return tool.find("text", "Top")->value == "57"; }));
  desktop.click(window, Button::Zoom);
  EXPECT_TRUE(reaches(window, {20, 57, 1868, 811}));
}

TEST_F(SettingsTest, AnApplicationIsExcludedAndTakenBack) {
  const Window window = openEditor();
  openSettings("Exclude");

  click("push button", "Add app…");
  EXPECT_TRUE(happens([&] {
    const auto search = tool.find("text", "Search applications");
    return search && search->is("focused");
  }));
  for (const char letter : {'m', 'o', 'u', 's', 'e', 'p'}) x.type(static_cast<xcb_keysym_t>(letter));
  EXPECT_TRUE(happens([&] { return tool.find("text", "Search applications")->value == "mousep"; }));
  click("list item", "Mousepad");
  click("push button", "Exclude");
  EXPECT_TRUE(happens([&] { return has("push button", "Remove Mousepad"); }));
  desktop.click(window, Button::Minimise);
  expectNativeMinimise(window, startFrame);

  click("push button", "Remove Mousepad");
  EXPECT_TRUE(happens([&] { return !has("push button", "Remove Mousepad"); }));
  desktop.click(window, Button::Minimise);
  EXPECT_TRUE(reaches(window, centred(window, 0, 1920)));
}

TEST_F(SettingsTest, TheIconComesBackWithThePanel) {
  startTray();
  desktop.startOstrel();
  chooseFromTray("Settings");
  EXPECT_TRUE(happens([&] { return has("frame", "Ostrel"); }));
  desktop.stopPanel();
  EXPECT_TRUE(happens([&] { return !x.trayIcon(); }));
  startTray();
  chooseFromTray("Quit Ostrel");
  EXPECT_EQ(desktop.ostrel().waitForExit(support::patience), 0);
}

TEST_F(SettingsTest, APanelOnTheSessionBusShowsTheIcon) {
  desktop.home().write("CONFIG_HOME/xfce4/xfconf/xfce-perchannel-xml/xfce4-panel.xml", R"(<?xml version="1.0"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array">
    <value type="int" value="1"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p=8;x=0;y=0"/>
      <property name="length" type="uint" value="100"/>
      <property name="plugin-ids" type="array"><value type="int" value="1"/></property>
    </property>
  </property>
  <property name="plugins" type="empty"><property name="plugin-1" type="string" value="systray"/></property>
</channel>
)");
  desktop.startPanel({"xfce4-panel"});
  desktop.startOstrel();
  // What is embedded here is the panel's own row of icons, as long as it is empty a line.
  const auto row = [&] {
    const auto place = x.trayIcon();
    return place && place->width > 10 ? place : std::nullopt;
  };
  clickAt(restingPlace("icon", row));
  click("menu item", "Settings");
  EXPECT_TRUE(happens([&] { return has("frame", "Ostrel"); }));
}

}  // namespace
}  // namespace desktoptest
