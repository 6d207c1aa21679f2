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
      const auto found = tool.find(role, name);
      return found ? std::optional(found->place) : std::nullopt;
    };
    clickAt(restingPlace(role + ' ' + name, look), part);
  }
  void clickAt(const Frame& place, double part = 0.5) {
    x.click({place.x + place.width / 2, place.y + static_cast<int>(place.height * part)});
  }

  bool has(const std::string& role, const std::string& name) { return tool.find(role, name).has_value(); }
  Control control(const std::string& role, const std::string& name) {
    auto found = tool.find(role, name);
    if (!found) throw std::runtime_error("there is no " + role + ' ' + name);
    return std::move(*found);
  }
  std::string value(const std::string& role, const std::string& name) { return control(role, name).value; }

  void chooseFromTray(const std::string& item) {
    clickAt(restingPlace("icon", [&] { return x.trayIcon(); }));
    click("menu item", item);
  }

  void openSettings(const std::string& tab = "General") {
    startTray();
    desktop.startOstrel();
    chooseFromTray("Settings");
    click("page tab", tab);
    EXPECT_TRUE(happens([&] { return control("page tab", tab).is("selected"); }));
  }

  void flip(const std::string& name, bool on) {
    click("check box", name);
    EXPECT_TRUE(happens([&] { return control("check box", name).is("checked") == on; })) << name;
  }

  AssistiveTool tool{desktop};
};

TEST_F(SettingsTest, SwitchesDecideWhatTheNextClickDoes) {
  const Window window = openTerminal();
  openSettings();

  flip("Minimize button centers the window", false);
  desktop.click(window, Button::Minimise);
  expectNativeMinimise(window, startFrame);
  flip("Minimize button centers the window", true);
  desktop.click(window, Button::Minimise);
  EXPECT_TRUE(reaches(window, centred(window, 0, 1920)));
  desktop.place(window, otherFrame);

  flip("Maximize button fills the screen", false);
  desktop.click(window, Button::Zoom);
  EXPECT_TRUE(happens([&] { return x.isMaximised(window); }));
  desktop.click(window, Button::Zoom);
  EXPECT_TRUE(happens([&] { return !x.isMaximised(window); }));
  flip("Maximize button fills the screen", true);
  desktop.click(window, Button::Zoom);
  EXPECT_TRUE(reaches(window, {32, 56, 1856, 812}));
  desktop.place(window, startFrame);

  flip("Close button hides the app", true);
  desktop.click(window, Button::Close);
  EXPECT_TRUE(happens([&] { return x.isIconic(window); }));
  bringBack(window);
  flip("Close button hides the app", false);
  desktop.click(window, Button::Close);
  EXPECT_TRUE(happens([&] { return !x.frame(window); }));
}

TEST_F(SettingsTest, AMarginHoldsForTheNextZoom) {
  const Window window = openTerminal();
  openSettings("Displays");

  click("text", "Left");
  EXPECT_TRUE(happens([&] { return control("text", "Left").is("focused"); }));
  x.hold(Key::Control);
  x.type('a');
  x.letGo(Key::Control);
  for (const char digit : {'2', '0'}) x.type(static_cast<xcb_keysym_t>(digit));
  EXPECT_TRUE(happens([&] { return value("text", "Left") == "20"; }));
  x.type(returnKey);
  EXPECT_TRUE(happens([&] { return value("spin button", "Left") == "20"; }));
  desktop.click(window, Button::Zoom);
  EXPECT_TRUE(reaches(window, {20, 56, 1868, 812}));
  desktop.place(window, otherFrame);

  click("spin button", "Top", 0.25);
  EXPECT_TRUE(happens([&] { return value("text", "Top") == "57"; }));
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
  EXPECT_TRUE(happens([&] { return value("text", "Search applications") == "mousep"; }));
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

TEST_F(SettingsTest, AssistiveTechnologyReadsAndUsesEveryControl) {
  openSettings();
  // About stands apart from the others.
  const std::vector<std::string> window = {"frame Ostrel",     "page tab list ",    "page tab list ",
                                           "page tab General", "page tab Displays", "page tab Exclude",
                                           "page tab About"};
  const auto shows = [&](const std::string& tab, const std::vector<std::string>& controls) {
    std::vector<std::string> wanted = window;
    wanted.insert(wanted.end(), controls.begin(), controls.end());
    EXPECT_TRUE(tool.press("page tab", tab));
    std::vector<std::string> seen;
    EXPECT_TRUE(happens([&] {
      seen.clear();
      for (const Control& one : tool.controls()) seen.push_back(one.role + ' ' + one.name);
      return seen == wanted;
    })) << testing::PrintToString(seen);
    EXPECT_TRUE(control("page tab", tab).is("selected"));
  };

  const std::vector<std::string> margins = {"Top", "Left", "Right", "Bottom"};
  std::vector<std::string> displays{"combo box Choose display"};
  for (const std::string& margin : margins) {
    for (const char* role : {"text ", "spin button "}) displays.push_back(role + margin);
  }
  displays.push_back("push button Reset margins for this display");
  shows("Displays", displays);
  EXPECT_EQ(value("combo box", "Choose display"), "screen (main display)");
  for (const std::string& margin : margins) {
    const std::string before = value("text", margin);
    EXPECT_EQ(value("spin button", margin), before);
    EXPECT_TRUE(tool.press("spin button", margin));
    EXPECT_EQ(value("text", margin), std::to_string(std::stoi(before) + 1)) << margin;
  }
  EXPECT_TRUE(tool.press("push button", "Reset margins for this display"));
  EXPECT_TRUE(happens([&] { return value("text", "Top") == "56"; }));

  shows("Exclude", {"push button Add app…"});
  EXPECT_TRUE(tool.press("push button", "Add app…")) << "a dialog that opens keeps nobody waiting";
  EXPECT_TRUE(happens([&] { return has("list", "Applications") && has("push button", "Exclude"); }));
  EXPECT_TRUE(tool.press("push button", "Cancel"));
  shows("About", {"link ostrel.example"});

  const std::string titles[] = {"Open at login", "Minimize button centers the window",
                                "Maximize button fills the screen", "Close button hides the app"};
  std::vector<std::string> switches;
  for (const std::string& title : titles) switches.push_back("check box " + title);
  shows("General", switches);
  for (const std::string& title : titles) {
    const bool wasOn = control("check box", title).is("checked");
    EXPECT_TRUE(tool.press("check box", title));
    EXPECT_TRUE(happens([&] { return control("check box", title).is("checked") != wasOn; })) << title;
  }
  for (const char* stored : {"\"behavior.yellowButtonEnabled\": false", "\"behavior.greenButtonEnabled\": false",
                             "\"behavior.redButtonHidesWindow\": true"}) {
    EXPECT_TRUE(happens([&] { return desktop.preferences().find(stored) != std::string::npos; })) << stored;
  }
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
  EXPECT_EQ(desktop.ostrelLog().find("QThreadStorage"), std::string::npos) << "something outlives the toolkit";
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
  <property name="plugins" type="empty">
    <property name="plugin-1" type="string" value="systray">
      <property name="square-icons" type="bool" value="true"/>
    </property>
  </property>
</channel>
)");
  desktop.startPanel({"xfce4-panel"});
  desktop.startOstrel();
  const Arguments question{"dbus-send",
                           "--print-reply",
                           "--dest=org.kde.StatusNotifierWatcher",
                           "/StatusNotifierWatcher",
                           "org.freedesktop.DBus.Properties.Get",
                           "string:org.kde.StatusNotifierWatcher",
                           "string:RegisteredStatusNotifierItems"};
  const std::string item = "org.kde.StatusNotifierItem-" + std::to_string(desktop.ostrel().pid());
  EXPECT_TRUE(happens([&] { return desktop.command(question).output.find(item) != std::string::npos; }));
  const CommandResult doctor = desktop.ostrelCommand({"doctor"});
  EXPECT_EQ(doctor.status, 0) << doctor.output;
  EXPECT_NE(doctor.output.find("\n\nNothing is missing.\n"), std::string::npos) << doctor.output;
  // What is embedded here is the panel's own row of icons: slimmer than one icon while there is none.
  const auto row = [&] {
    const auto place = x.trayIcon();
    return place && place->width >= place->height ? place : std::nullopt;
  };
  clickAt(restingPlace("icon", row));
  // The panel told of the click, so that the toolkit has not seen the pointer yet: newer ones take its first movements
  // for trembling. A hand makes many.
  EXPECT_TRUE(happens([&] { return has("menu item", "Settings"); }));
  const Frame settings = control("menu item", "Settings").place;
  int step = 0;
  EXPECT_TRUE(happens([&] {
    x.movePointer({settings.x + 40 + step++ % 2, settings.y + settings.height / 2});
    return control("menu item", "Settings").is("focused");
  }));
  click("menu item", "Settings");
  EXPECT_TRUE(happens([&] { return has("frame", "Ostrel"); }));
}

}  // namespace
}  // namespace desktoptest
