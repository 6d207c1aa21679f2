// What a click on each of the three buttons does, with which keys, preferences and exclusions.
#include <tuple>

#include "tests/desktop/DesktopTest.h"

namespace desktoptest {
namespace {

struct Application {
  std::string name;
  Arguments command;
};

using WindowManagerAndApplication = std::tuple<WindowManager, Application>;

class EachApplication : public DesktopTest, public testing::WithParamInterface<WindowManagerAndApplication> {
 protected:
  EachApplication() : DesktopTest(std::get<0>(GetParam())) {}
};

TEST_P(EachApplication, IsCentredThenFillsItsDisplay) {
  const Application& application = std::get<1>(GetParam());
  const Window window = desktop.open(application.command, startFrame);
  desktop.startOstrel();

  const Frame wanted = centred(window);
  desktop.click(window, Button::Minimise);
  EXPECT_TRUE(reaches(window, wanted));

  desktop.click(window, Button::Zoom);
  EXPECT_TRUE(reaches(window, filledFrame));
  EXPECT_FALSE(x.isIconic(window));
  EXPECT_FALSE(x.isMaximised(window));
}

std::string applicationName(const testing::TestParamInfo<WindowManagerAndApplication>& info) {
  return name(std::get<0>(info.param)) + "_" + std::get<1>(info.param).name;
}

INSTANTIATE_TEST_SUITE_P(, EachApplication,
                         testing::Combine(windowManagers(),
                                          testing::Values(Application{"xterm", {"xterm", "-xrm", "*wmTimeout: 200"}},
                                                          Application{"gtk", {"mousepad", "--disable-server"}},
                                                          Application{"gtk_own_title_bar", {"gtk3-demo"}},
                                                          Application{"qt", {OSTREL_QT_WINDOW}})),
                         applicationName);

class Buttons : public EachWindowManager {};

TEST_P(Buttons, ZoomRestoresAMaximisedWindowFirst) {
  const Window window = openEditor();
  desktop.click(window, Button::Zoom);
  ASSERT_TRUE(happens([&] { return x.isMaximised(window); }));
  desktop.startOstrel();
  desktop.click(window, Button::Zoom);
  EXPECT_TRUE(reaches(window, filledFrame));
  EXPECT_FALSE(x.isMaximised(window));
}

TEST_P(Buttons, CloseHidesTheWholeApplicationWhenAsked) {
  desktop.home().write("one", "one\n");
  desktop.home().write("two", "two\n");
  desktop.writePreferences(R"({"behavior.redButtonHidesWindow": true})");
  const Window first = desktop.open(
      {"mousepad", "--disable-server", "--opening-mode=window", desktop.home() / "one", desktop.home() / "two"});
  ASSERT_TRUE(happens([&] { return x.clients().size() == 2; }));
  const Window second = x.clients()[0] == first ? x.clients()[1] : x.clients()[0];
  desktop.place(first, startFrame);
  desktop.place(second, {700, 400, 500, 340});
  desktop.startOstrel();

  desktop.click(second, Button::Close);
  EXPECT_TRUE(happens([&] { return x.isIconic(first) && x.isIconic(second); }));

  desktop.settle();
  x.activate(first);
  EXPECT_TRUE(happens([&] { return !x.isIconic(first) && !x.isIconic(second); }))
      << "one brings back all; the first is " << (x.isIconic(first) ? "hidden" : "back");

  desktop.writePreferences(R"({"behavior.redButtonHidesWindow": false})");
  desktop.click(second, Button::Close);
  EXPECT_TRUE(happens([&] { return x.clients() == std::vector<Window>{first}; }));
}

TEST_P(Buttons, ModifiersGiveTheNativeBehaviourAndLocksDoNot) {
  const Window window = openTerminal();
  const Frame before = x.frame(window).value();
  desktop.startOstrel();
  for (const Key modifier : {Key::Shift, Key::Control, Key::Super}) {
    SCOPED_TRACE(static_cast<unsigned>(modifier));
    x.hold(modifier);
    desktop.click(window, Button::Minimise);
    x.letGo(modifier);
    expectNativeMinimise(window, before);
  }
  x.hold(Key::Alt);  // moves windows, wherever it grips them
  dragWindow(window, desktop.button(window, Button::Minimise), {90, 60});
  x.letGo(Key::Alt);

  const auto toggle = [&](Key lock, bool on) {
    x.hold(lock);
    x.letGo(lock);
    EXPECT_TRUE(happens([&] { return x.isOn(lock) == on; }));
  };
  const auto expectCentred = [&] {
    desktop.place(window, startFrame);
    desktop.click(window, Button::Minimise);
    EXPECT_TRUE(reaches(window, centred(window)));
    EXPECT_FALSE(x.isIconic(window));
  };
  toggle(Key::CapsLock, true);
  expectCentred();
  toggle(Key::NumLock, true);
  expectCentred();
  toggle(Key::CapsLock, false);
  expectCentred();
  toggle(Key::NumLock, false);
}

TEST_P(Buttons, PreferencesSwitchEachButtonAtOnce) {
  const Window window = openEditor();
  desktop.startOstrel();
  desktop.writePreferences(R"({"behavior.yellowButtonEnabled": false})");
  desktop.click(window, Button::Minimise);
  expectNativeMinimise(window, startFrame);

  desktop.writePreferences(R"({"behavior.greenButtonEnabled": false})");
  desktop.click(window, Button::Minimise);
  EXPECT_TRUE(reaches(window, centred(window)));
  desktop.click(window, Button::Zoom);
  EXPECT_TRUE(happens([&] { return x.isMaximised(window); }));
  desktop.click(window, Button::Zoom);
  EXPECT_TRUE(happens([&] { return !x.isMaximised(window); }));

  desktop.writePreferences(R"({"margins.top": 10, "margins.left": "20", "margins.right": 30.0, "margins.bottom": 40})");
  desktop.click(window, Button::Zoom);
  EXPECT_TRUE(reaches(window, {20, 10, 1390, 850}));

  desktop.click(window, Button::Close);
  EXPECT_TRUE(happens([&] { return x.clients().empty(); }));
}

TEST_P(Buttons, ExcludedApplicationsKeepTheirButtons) {
  desktop.writePreferences(R"({"behavior.excludedApps": [{"bundleID": "org.xfce.mousepad", "name": "Mousepad"}]})");
  const Window excluded = openEditor();
  const Window other = openTerminal({800, 500, 500, 340});
  desktop.startOstrel();
  desktop.click(excluded, Button::Minimise);
  expectNativeMinimise(excluded, startFrame);
  desktop.click(other, Button::Minimise);
  EXPECT_TRUE(reaches(other, centred(other)));
  // An application that is launched later is excluded as well.
  const Window later = openEditor({100, 500, 500, 340});
  desktop.click(later, Button::Minimise);
  expectNativeMinimise(later, {100, 500, 500, 340});
}

TEST_P(Buttons, TheRightMouseButtonIsNative) {
  const Window window = openEditor();
  desktop.startOstrel();
  desktop.click(window, Button::Zoom, 3);
  // Both window managers widen the window to the screen and leave its height.
  EXPECT_TRUE(happens([&] { return x.isMaximised(window); }));
  EXPECT_TRUE(reaches(window, {0, startFrame.y, 1440, startFrame.height}));
}

INSTANTIATE_TEST_SUITE_P(, Buttons, windowManagers(), parameterName);

}  // namespace
}  // namespace desktoptest
