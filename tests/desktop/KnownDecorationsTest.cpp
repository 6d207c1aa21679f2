// Title bars that a window manager draws with a theme that is known: their buttons are taken from the first click on.
#include "tests/desktop/DesktopTest.h"

namespace desktoptest {
namespace {

class KnownDecorations : public DesktopTest {
 protected:
  KnownDecorations() : DesktopTest(WindowManager::Metacity) {}

  /// The middle of a button, counted from a corner inwards.
  Point fromRight(Window window, int number) {
    const Frame frame = x.frame(window).value_or(Frame{});
    return {frame.x + frame.width - 1 - middle(number), frame.y + 18};
  }
  Point fromLeft(Window window, int number) {
    const Frame frame = x.frame(window).value_or(Frame{});
    return {frame.x + middle(number), frame.y + 18};
  }
  bool ostrelSays(const std::string& ofMinimise) {
    const auto listed = desktop.ostrelCommand({"buttons"}).output;
    return listed.find(" minimise           " + ofMinimise + '\n') != std::string::npos;
  }
  void start() {
    desktop.startOstrel();
    ASSERT_TRUE(happens([&] { return ostrelSays("known decoration"); }));
  }
  /// Waits until the window manager and Ostrel have both followed.
  void arrange(Window window, const std::string& layout, const std::string& ofMinimise) {
    desktop.settle();
    const Frame frame = x.frame(window).value_or(Frame{});
    const Frame titleBar{frame.x, frame.y, frame.width, 37};
    const auto before = x.picture(titleBar);
    desktop.arrangeTitleBars(layout);
    ASSERT_TRUE(happens([&] { return x.picture(titleBar) != before; }));
    ASSERT_TRUE(happens([&] { return ostrelSays(ofMinimise); }));
  }
  void click(Point point) {
    desktop.settle();
    x.click(point);
  }
  /// A press that was taken has no native effect, from which something would be learned.
  void expectNothingLearned() {
    desktop.settle();
    EXPECT_EQ(desktop.home().read("STATE_HOME/ostrel/title-bars.json"), "");
  }

 private:
  static int middle(int number) { return 18 + 34 * number; }
};

TEST_F(KnownDecorations, EveryButtonDoesTheRightThingAtTheFirstClick) {
  const Window window = openEditor();
  start();
  click(fromRight(window, 2));
  EXPECT_TRUE(reaches(window, centred(window)));
  EXPECT_FALSE(x.isIconic(window));
  click(fromRight(window, 1));
  EXPECT_TRUE(reaches(window, filledFrame));
  x.setState(window, {"_NET_WM_STATE_MAXIMIZED_HORZ", "_NET_WM_STATE_MAXIMIZED_VERT"}, true);
  ASSERT_TRUE(happens([&] { return x.isMaximised(window); }));
  click(fromRight(window, 1));
  EXPECT_TRUE(reaches(window, filledFrame));
  expectNothingLearned();
  click(fromRight(window, 0));
  EXPECT_TRUE(happens([&] { return x.clients().empty(); })) << "closing is left alone";
}

TEST_F(KnownDecorations, FollowTheLayoutThatThePersonChooses) {
  const Window window = openEditor();
  start();
  arrange(window, "close:menu", "not known yet");
  arrange(window, "close,maximize,minimize:menu", "known decoration");
  click(fromLeft(window, 1));
  EXPECT_TRUE(reaches(window, filledFrame));
  desktop.place(window, startFrame);
  click(fromLeft(window, 2));
  EXPECT_TRUE(reaches(window, centred(window)));
  desktop.place(window, startFrame);
  // Where a button was, the title is now: two clicks there are a double click on it.
  desktop.settle();
  x.doubleClick(fromRight(window, 1));
  EXPECT_TRUE(happens([&] { return x.isMaximised(window); }));
  expectNothingLearned();
}

}  // namespace
}  // namespace desktoptest
