// Buttons that nobody describes: handled from the first click on, taken as soon as they are known, and nothing else.
#include <csignal>
#include <random>
#include <sstream>

#include "tests/desktop/DesktopTest.h"

namespace desktoptest {
namespace {

class Learning : public EachWindowManager {
 protected:
  Window open(const std::string& mode = "") { return desktop.open({OSTREL_SELF_DRAWN_WINDOW, mode}, startFrame); }

  /// From the right.
  Point at(Window window, int across, int down = 15) {
    const Frame frame = x.frame(window).value_or(Frame{});
    return {frame.x + frame.width - 1 - across, frame.y + down};
  }
  Point minimise(Window window) { return at(window, 75); }
  Point zoom(Window window) { return at(window, 45); }
  Point close(Window window) { return at(window, 15); }

  void click(Point point) {
    desktop.settle();
    x.click(point);
    desktop.settle();
  }

  /// How many presses the program that was opened last has seen.
  std::size_t arrived() {
    std::istringstream lines(desktop.applicationLog());
    std::size_t count = 0;
    for (std::string line; std::getline(lines, line);) count += line.starts_with("press ") ? 1 : 0;
    return count;
  }

  void quit() {
    desktop.application().signal(SIGTERM);
    ASSERT_TRUE(happens([&] { return x.clients().empty(); }));
  }

  /// A click on minimise or zoom that does what a known button does, from another place each time: two clicks in one
  /// place would be a double click.
  void expectHandled(Window window, int round) {
    const Frame frame{100 + 40 * round, 120 + 10 * round, 500, 340};
    desktop.place(window, frame);
    click(minimise(window));
    EXPECT_TRUE(reaches(window, {470, frame.y, 500, 340}));
    EXPECT_TRUE(happens([&] { return !x.isIconic(window); }));
    desktop.place(window, frame);
    click(zoom(window));
    EXPECT_TRUE(reaches(window, filledFrame));
    EXPECT_FALSE(x.isMaximised(window));
  }
};

TEST_P(Learning, EveryClickIsHandledAndFromTheThirdOnTaken) {
  const Window window = open();
  desktop.startOstrel();
  for (int round = 0; round < 2; ++round) expectHandled(window, round);
  EXPECT_EQ(arrived(), 4U);
  expectHandled(window, 2);
  EXPECT_EQ(arrived(), 4U) << "known buttons are taken";

  // What was learned outlives both programs.
  desktop.stopOstrel();
  quit();
  const Window next = open();
  desktop.startOstrel();
  expectHandled(next, 0);
  EXPECT_EQ(arrived(), 0U);
}

TEST_P(Learning, WhatIsKnownIsToldAndCanBeForgotten) {
  openTerminal();
  desktop.open({"gtk3-demo"});
  const Window window = open();
  desktop.startOstrel();
  const auto says = [&](const std::string& text) {
    const auto listed = desktop.ostrelCommand({"buttons"});
    EXPECT_EQ(listed.status, 0);
    return listed.output.find(text) != std::string::npos ? testing::AssertionSuccess()
                                                         : testing::AssertionFailure() << listed.output;
  };
  EXPECT_TRUE(says("Title bars          none learned yet\n"));
  EXPECT_TRUE(says(" close              a button window of the window manager\n"));
  EXPECT_TRUE(happens([&] { return says(" close              AT-SPI\n") == true; }));
  EXPECT_TRUE(says("SelfDrawn           \n minimise           not known yet\n"));
  expectHandled(window, 0);
  EXPECT_TRUE(says(" minimise           still learning, 1 of 2\n zoom               still learning, 1 of 2\n"));
  expectHandled(window, 1);
  EXPECT_TRUE(says("Title bars          learned of SelfDrawn\n"));
  EXPECT_TRUE(says(" minimise           learned\n zoom               learned\n close              not known yet\n"));

  EXPECT_EQ(desktop.ostrelCommand({"buttons", "forget", "Nobody"}).status, 1);
  EXPECT_EQ(desktop.ostrelCommand({"buttons", "forget", "SelfDrawn"}).output, "Forgotten: 1 kind of title bars.\n");
  EXPECT_TRUE(says(" minimise           not known yet\n"));
  expectHandled(window, 2);
  EXPECT_EQ(arrived(), 6U);

  // What lies on the disk can be forgotten without a running Ostrel.
  desktop.stopOstrel();
  EXPECT_EQ(desktop.ostrelCommand({"buttons"}).status, 1);
  EXPECT_EQ(desktop.ostrelCommand({"buttons", "forget"}).output, "Forgotten: 1 kind of title bars.\n");
  desktop.startOstrel();
  EXPECT_TRUE(says("Title bars          none learned yet\n"));
}

TEST_P(Learning, WhatIsShippedHoldsFromTheFirstClickOnWhereItFits) {
  const Window window = open("chromium");
  desktop.startOstrel();
  expectHandled(window, 0);
  EXPECT_EQ(arrived(), 0U);

  // Buttons in another order are not where those shipped are.
  desktop.stopOstrel();
  desktop.home().write("CONFIG_HOME/gtk-4.0/settings.ini", "[Settings]\ngtk-decoration-layout = close,minimize:menu\n");
  desktop.startOstrel();
  expectHandled(window, 1);
  EXPECT_EQ(arrived(), 2U);
}

TEST_P(Learning, PreferencesHoldBeforeAButtonIsKnown) {
  desktop.writePreferences(R"({"behavior.yellowButtonEnabled": false})");
  const Window window = open();
  desktop.startOstrel();
  click(minimise(window));
  expectNativeMinimise(window, startFrame);
}

TEST_P(Learning, CloseHidesFromTheFourthClickOn) {
  desktop.writePreferences(R"({"behavior.redButtonHidesWindow": true})");
  desktop.startOstrel();
  for (int round = 0; round < 3; ++round) {
    const Window window = open();
    if (round < 2) expectHandled(window, round);  // only a window that can be minimised is hidden
    desktop.place(window, {100 + 40 * round, 300, 500, 340});
    click(close(window));
    ASSERT_TRUE(happens([&] { return x.clients().empty(); })) << round;
  }
  const Window window = open();
  click(close(window));
  EXPECT_TRUE(happens([&] { return x.isIconic(window); }));
  EXPECT_EQ(arrived(), 0U);
}

TEST_P(Learning, NothingIsLearnedFromBadBehaviour) {
  for (const std::string mode : {"moving", "late", "menu", "keyboard"}) {
    SCOPED_TRACE(mode);
    const Window window = open(mode);
    desktop.startOstrel();
    for (int round = 0; round < 4; ++round) {
      desktop.place(window, {100 + 40 * round, 120, 500, 340});
      const std::size_t before = arrived();
      const bool isLeft = mode == "moving" && round % 2 == 1;
      const Point place = isLeft ? at(window, 485) : minimise(window);
      desktop.settle();
      x.click(place);
      EXPECT_TRUE(happens([&] { return arrived() == before + 1; })) << "every press arrives";
      if (mode == "menu") x.click(place);
      if (mode == "keyboard") x.type('m');
      if (mode == "moving") {
        // It was a button for once, and is made good.
        EXPECT_TRUE(reaches(window, {470, 120, 500, 340}));
      } else {
        EXPECT_TRUE(happens([&] { return x.isIconic(window); }));
        desktop.settle();
        EXPECT_TRUE(x.isIconic(window)) << "and what came of it stays";
      }
      bringBack(window);
    }
    desktop.stopOstrel();
    quit();
  }
}

TEST_P(Learning, NoPressBesideAButtonIsTaken) {
  const Window window = open();
  desktop.startOstrel();
  for (int round = 0; round < 2; ++round) expectHandled(window, round);
  desktop.place(window, startFrame);
  const std::size_t before = arrived();
  std::mt19937 random(20);
  constexpr std::size_t presses = 500;
  for (std::size_t i = 1; i <= presses; ++i) {
    // The band of the title bar but for the buttons, and their surroundings most of all.
    const bool isBelow = random() % 2 == 0;
    const int across = isBelow ? static_cast<int>(random() % 220) : 90 + static_cast<int>(random() % 130);
    const int down = isBelow ? 30 + static_cast<int>(random() % 34) : static_cast<int>(random() % 30);
    x.click(at(window, across, down));
    ASSERT_TRUE(happens([&] { return arrived() == before + i; })) << across << ", " << down;
  }
}

INSTANTIATE_TEST_SUITE_P(, Learning, windowManagers(), parameterName);

}  // namespace
}  // namespace desktoptest
