// The settings window among other windows: where it opens, and that it stays where a person puts it.
#include <cstdlib>

#include "tests/desktop/AssistiveTool.h"
#include "tests/desktop/DesktopTest.h"

namespace desktoptest {
namespace {

class SettingsWindowTest : public EachWindowManager {
 protected:
  using EachWindowManager::EachWindowManager;

  /// Once the window is there and nobody has anything to do any more.
  Window openSettings() {
    EXPECT_EQ(desktop.ostrelCommand({"settings"}).status, 0);
    EXPECT_TRUE(happens([&] { return x.clients().size() == 1; }));
    desktop.settle();
    const auto clients = x.clients();
    return clients.empty() ? Window{XCB_NONE} : clients.front();
  }

  testing::AssertionResult isInTheMiddle(Window window) {
    const auto content = x.rectangle(window);
    const auto frame = x.frame(window);
    if (!content || !frame) return testing::AssertionFailure() << "it is gone";
    const auto isNear = [](int space, int size, int start) { return std::abs((space - size) / 2 - start) <= 2; };
    if (content->width == 700 && content->height == 750 && isNear(1440, frame->width, frame->x) &&
        isNear(900, frame->height, frame->y)) {
      return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << "its frame is at " << *frame << ", its content at " << *content;
  }
};

TEST_P(SettingsWindowTest, OpensInTheMiddleEachTime) {
  desktop.startOstrel();
  for (int opening = 1; opening <= 40; ++opening) {
    const Window window = openSettings();
    EXPECT_TRUE(isInTheMiddle(window)) << "opening " << opening;
    x.close(window);
    ASSERT_TRUE(happens([&] { return x.clients().empty(); }));
  }
}

class SettingsOnASmallScreen : public SettingsWindowTest {
 protected:
  SettingsOnASmallScreen() : SettingsWindowTest(1024, 600) {}
};

TEST_P(SettingsOnASmallScreen, OpenWithTheirTitleBarInSight) {
  desktop.startOstrel();
  for (int opening = 1; opening <= 2; ++opening) {
    const Window window = openSettings();
    const Frame frame = x.frame(window).value_or(Frame{});
    EXPECT_EQ(frame.y, 0);
    EXPECT_EQ(x.rectangle(window).value_or(Frame{}).width, 700);
    EXPECT_GE(frame.height, 728) << "the window's minimum";
    x.close(window);
    ASSERT_TRUE(happens([&] { return x.clients().empty(); }));
  }
}

TEST_P(SettingsWindowTest, StaysWhereAPersonPutsIt) {
  desktop.startOstrel();
  const Window window = openSettings();
  const Frame start = x.frame(window).value_or(Frame{});
  const Frame content = x.rectangle(window).value_or(Frame{});
  dragWindow(window, {content.x + 200, content.y - 8}, {-210, 40});
  const Frame moved{start.x - 210, start.y + 40, start.width, start.height};
  const std::vector<std::vector<std::string>> states = {
      {"_NET_WM_STATE_MAXIMIZED_HORZ", "_NET_WM_STATE_MAXIMIZED_VERT"}, {"_NET_WM_STATE_FULLSCREEN"}};
  for (const auto& state : states) {
    x.setState(window, state, true);
    EXPECT_TRUE(happens([&] { return x.rectangle(window).value_or(Frame{}).width >= 1430; })) << state[0];
    desktop.settle();
    x.setState(window, state, false);
    EXPECT_TRUE(reaches(window, moved)) << state[0];
    desktop.settle();
    EXPECT_EQ(x.frame(window), moved) << state[0];
  }
  EXPECT_EQ(openSettings(), window);
  EXPECT_TRUE(isInTheMiddle(window));

  x.setState(window, states[0], true);
  EXPECT_TRUE(happens([&] { return x.isMaximised(window); }));
  desktop.settle();
  x.close(window);
  ASSERT_TRUE(happens([&] { return x.clients().empty(); }));
  EXPECT_TRUE(isInTheMiddle(openSettings()));
}

TEST_P(SettingsWindowTest, ShowsConsentAtOnceAndHasTheKeyboardAgainAfterItsDialog) {
  AssistiveTool tool{desktop};
  const auto has = [&](const std::string& button) { return tool.find("push button", button).has_value(); };
  const auto click = [&](const std::string& button) {
    desktop.settle();
    const Frame place = tool.find("push button", button).value().place;
    x.click({place.x + place.width / 2, place.y + place.height / 2});
  };
  desktop.startOstrel({"settings", "general"});
  EXPECT_TRUE(happens([&] { return x.clients().size() == 1; })) << "the first start opens them, too";
  const Window window = x.clients().at(0);
  EXPECT_EQ(desktop.ostrelCommand({"accessibility", "revoke"}).status, 0);
  EXPECT_TRUE(happens([&] { return has("Grant access…"); }));

  click("Grant access…");
  EXPECT_TRUE(happens([&] { return has("Allow") && x.clients().size() == 2; }));
  for (const Window client : x.clients()) {
    if (client == window) continue;
    EXPECT_EQ(x.property(client, "WM_TRANSIENT_FOR"), std::vector{window});
  }
  click("Allow");
  EXPECT_TRUE(happens([&] { return !has("Grant access…"); }));
  EXPECT_TRUE(happens([&] {
    const auto active = x.property(x.root(), "_NET_ACTIVE_WINDOW");
    return !active.empty() && active[0] == window;
  }));
}

INSTANTIATE_TEST_SUITE_P(, SettingsWindowTest, windowManagers(), parameterName);
INSTANTIATE_TEST_SUITE_P(, SettingsOnASmallScreen, windowManagers(), parameterName);

}  // namespace
}  // namespace desktoptest
