// Everything that people do with the first mouse button but clicking a title-bar button works as ever.
#include "tests/desktop/DesktopTest.h"
#include "tests/support/ProcessFiles.h"

namespace desktoptest {
namespace {

/// How often the thread of that name has woken up; 0 when there is none.
long wakeUps(pid_t process, const std::string& thread) {
  for (const auto& task : std::filesystem::directory_iterator(support::folder(process) / "task")) {
    if (support::name(task.path()) == thread)
      return support::number(task.path() / "status", "voluntary_ctxt_switches:");
  }
  return 0;
}

class PassThrough : public EachWindowManager {};

TEST_P(PassThrough, TitleBarsAreDraggedAndDoubleClicked) {
  const Window window = openEditor();
  desktop.startOstrel();

  dragWindow(window, desktop.titleBar(window), {150, 100});

  x.doubleClick(desktop.titleBar(window));
  EXPECT_TRUE(happens([&] { return x.isMaximised(window); }));
}

TEST_P(PassThrough, TextIsSelectedByDraggingAndByDoubleClick) {
  desktop.home().write("words", std::string(2000, 'w'));
  const Window window = desktop.open(
      {"xterm", "-xrm", "*wmTimeout: 200", "-e", "cat " + desktop.home() / "words" + "; sleep 1000"}, startFrame);
  desktop.startOstrel();
  const Frame text = x.rectangle(window).value();
  const Point start{text.x + 40, text.y + 40};
  // The terminal may not have drawn its text yet, and then there is nothing to select.
  EXPECT_TRUE(happens([&] {
    x.drag({start, {start.x + 60, start.y}, {start.x + 100, start.y + 20}});
    return x.waitUntil([&] { return x.primarySelectionOwner() != XCB_NONE; }, std::chrono::milliseconds(500));
  }));

  const Window editor = openEditor({700, 300, 500, 340});
  const Frame field = x.rectangle(editor).value();
  for (const xcb_keysym_t letter : {0x6fU, 0x73U, 0x74U}) x.type(letter);  // o, s, t
  const Point word{field.x + 30, field.y + 60};
  const Window terminal = x.primarySelectionOwner();
  EXPECT_TRUE(happens([&] {
    x.doubleClick(word);
    return x.waitUntil(
        [&] {
          const Window owner = x.primarySelectionOwner();
          return owner != terminal && owner != XCB_NONE;
        },
        std::chrono::milliseconds(500));
  }));
}

TEST_P(PassThrough, ClicksThatRaiseAWindowLeaveTheToolkitAsleep) {
  const Window windows[] = {openTerminal({100, 120, 500, 340}), openTerminal({700, 120, 500, 340})};
  desktop.startOstrel();
  desktop.settle();
  const long before = wakeUps(desktop.ostrel().pid(), "QXcbEventQueue");
  ASSERT_GT(before, 0);
  constexpr int clicks = 10;
  for (int i = 0; i < clicks; ++i) {
    const Frame text = x.rectangle(windows[i % 2]).value();
    x.click({text.x + text.width / 2, text.y + text.height / 2});
    desktop.settle();
  }
  EXPECT_LT(wakeUps(desktop.ostrel().pid(), "QXcbEventQueue") - before, clicks);
}

INSTANTIATE_TEST_SUITE_P(, PassThrough, windowManagers(), parameterName);

}  // namespace
}  // namespace desktoptest
