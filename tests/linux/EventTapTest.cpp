// The event tap against a real X server: what reaches the window under the pointer, and what reaches the handler.
#include "platform/linux/x11/EventTap.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <QSocketNotifier>
#include <QTimer>
#include <algorithm>
#include <atomic>
#include <thread>

#include "platform/RunLoop.h"
#include "tests/support/XvfbSession.h"

namespace {

using support::Hands;
using support::JournalWindow;
using support::XvfbSession;
using Words = std::vector<std::string>;

constexpr xcb_keysym_t capsLock = 0xffe5;
constexpr xcb_keysym_t numLock = 0xff7f;
constexpr auto leftMouseDown = CGEventMaskBit(kCGEventLeftMouseDown);

class EventTapTest : public testing::Test {
 protected:
  EventTapTest() {
    hands.move(300, 300);
    window.journalOf(1);
    window.clear();
  }

  void startTap() {
    tap = x11::EventTap::create(
        leftMouseDown | CGEventMaskBit(kCGEventRightMouseDown),
        [this](const desktop::MouseDown& event) {
          if (event.type == kCGEventTapDisabledByTimeout) {
            ++notices;
            tap->setEnabled(true);
            return true;
          }
          seen.push_back(event);
          return answer();
        },
        [this](xcb_window_t child, CGPoint) { return child == window.window() && interesting; });
    ASSERT_TRUE(tap);
    tap->setEnabled(true);
  }

  /// Runs the main loop until `done` holds; false when it does not in time. Events on `window` wake it.
  bool runUntil(const std::function<bool()>& done, std::chrono::milliseconds bound = support::patience) {
    bool expired = false;
    QTimer::singleShot(bound, &application, [&] { expired = true; });
    const QSocketNotifier notifier(window.connection().fileDescriptor(), QSocketNotifier::Read);
    while (!done() && !expired) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    return done();
  }
  bool runUntilJournal(const Words& expected) {
    return runUntil([&] { return window.journal().size() >= expected.size(); }) && window.journal() == expected;
  }

  /// Three clicks, a drag, a right click; each once `window` has all of the one before. Clicks that pile up while the
  /// pointer is frozen are merged by the server when the button happens to be down as they are played back; no person
  /// is that fast.
  void useMouse(const std::function<void(std::size_t)>& waitFor) {
    for (std::size_t clicks = 1; clicks <= 3; ++clicks) {
      hands.click();
      waitFor(2 * clicks);
    }
    hands.press();
    waitFor(7);
    hands.move(310, 310);
    hands.move(330, 320);
    hands.release();
    waitFor(10);
    hands.click(3);
    waitFor(12);
    const Words expected{"press1", "release1", "press1", "release1", "press1", "release1",
                         "press1", "motion",   "motion", "release1", "press3", "release3"};
    EXPECT_EQ(window.journal(), expected);
  }

  int argumentCount = 1;
  char name[2] = "t";
  char* arguments[2] = {name, nullptr};
  XvfbSession session;
  QCoreApplication application{argumentCount, arguments};
  Hands hands;
  JournalWindow window{100, 100, 600, 400};

  /// As the controller does: the action is queued for later, and the press swallowed.
  bool act() {
    ns::dispatchAsyncOnMainQueue([this] { ++actions; });
    return false;
  }

  std::function<bool()> answer = [] { return true; };
  std::atomic<bool> interesting = true;
  std::vector<desktop::MouseDown> seen;
  int notices = 0;
  int actions = 0;
  std::unique_ptr<desktop::EventTap> tap;
};

TEST_F(EventTapTest, PassedClicksArriveUnchanged) {
  startTap();
  useMouse([this](std::size_t count) { runUntil([&] { return window.journal().size() >= count; }); });
  EXPECT_EQ(seen.size(), 4U) << "left presses only";
  EXPECT_EQ(seen.at(0).location.x, 300);
  EXPECT_EQ(seen.at(0).location.y, 300);

  for (const bool disabled : {false, true}) {
    SCOPED_TRACE(disabled ? "disabled" : "filtered");
    hands.move(300, 300);
    window.journalOf(13);
    window.clear();
    seen.clear();
    tap->setEnabled(!disabled);
    interesting = disabled;
    useMouse([this](std::size_t count) { window.journalOf(count); });  // the main loop stands still
    QCoreApplication::processEvents();
    EXPECT_TRUE(seen.empty());
  }
}

TEST_F(EventTapTest, SwallowedClickLeavesNothingBehind) {
  answer = [] { return false; };
  startTap();
  hands.press();
  ASSERT_TRUE(runUntil([&] { return seen.size() == 1; }));
  hands.move(320, 320);
  hands.click(3);  // pressed meanwhile, it belongs to the same grab
  hands.release();
  answer = [] { return true; };
  hands.move(340, 340);
  hands.click();
  EXPECT_TRUE(runUntilJournal({"motion", "press1", "release1"}));
  EXPECT_EQ(seen.size(), 2U);
}

TEST_F(EventTapTest, MissedDeadlinePassesTheClickOnAndDisablesTheTap) {
  bool enabledWhenLate = true;
  answer = [&] {
    window.journalOf(1);  // the main thread is stuck here until the press has been passed on
    enabledWhenLate = tap->isEnabled();
    return act();
  };
  startTap();
  hands.click();
  ASSERT_TRUE(runUntil([&] { return notices == 1; }));
  EXPECT_TRUE(runUntilJournal({"press1", "release1"}));
  EXPECT_FALSE(enabledWhenLate);
  EXPECT_TRUE(tap->isEnabled()) << "the handler has enabled it again";

  answer = [this] { return act(); };
  hands.click();
  ASSERT_TRUE(runUntil([&] { return actions > 0; }));
  EXPECT_EQ(window.journal().size(), 2U) << "the late answer must not spoil the next one";
  EXPECT_EQ(notices, 1);
  EXPECT_EQ(seen.size(), 2U) << "only the second press was acted upon";
  EXPECT_EQ(actions, 1);
}

TEST_F(EventTapTest, PressIsNotActedOnWhenTheServerAnswersNobodyInTime) {
  answer = [this] {
    window.connection().synchronise();  // as any question to the server would, this lasts as long as the grab
    return act();
  };
  startTap();
  xcb_grab_server(hands.connection().get());
  hands.click();
  std::thread grabber([this] {
    while (tap->isEnabled()) std::this_thread::yield();
    xcb_ungrab_server(hands.connection().get());
    hands.connection().flush();
  });
  EXPECT_TRUE(runUntil([&] { return notices == 1; }));
  grabber.join();
  EXPECT_TRUE(runUntilJournal({"press1", "release1"}));
  bool isDone = false;
  ns::dispatchAsyncOnMainQueue([&isDone] { isDone = true; });  // behind whatever the handler has queued
  EXPECT_TRUE(runUntil([&isDone] { return isDone; }));
  EXPECT_EQ(seen.size(), 1U);
  EXPECT_EQ(actions, 0);
}

TEST_F(EventTapTest, PressThatOutlivedItsDeadlineIsNotActedOn) {
  startTap();
  hands.click();
  EXPECT_EQ(window.journalOf(2), (Words{"press1", "release1"})) << "while the main loop does not run at all";
  ASSERT_TRUE(runUntil([&] { return notices == 1; }));
  EXPECT_TRUE(seen.empty());
}

TEST_F(EventTapTest, IsRefusedWhenItCannotWork) {
  const auto create = [](CGEventMask mask, const std::string& display) {
    return x11::EventTap::create(
        mask, [](const auto&) { return true; }, [](xcb_window_t, CGPoint) { return true; }, display);
  };
  EXPECT_FALSE(create(CGEventMaskBit(kCGEventRightMouseDown), {}));
  EXPECT_FALSE(create(leftMouseDown, ":nowhere"));
  auto first = create(leftMouseDown, {});
  ASSERT_TRUE(first);
  EXPECT_FALSE(create(leftMouseDown, {})) << "somebody else has the grab";
  first.reset();
  EXPECT_TRUE(create(leftMouseDown, {}));
}

TEST_F(EventTapTest, LockKeysDoNotMatterAndModifiersBypass) {
  answer = [] { return false; };
  startTap();
  const auto handled = [&](CGEventFlags flags) {
    const auto before = seen.size();
    hands.click();
    return runUntil([&] { return seen.size() > before; }) && seen.back().flags == flags;
  };
  EXPECT_TRUE(handled(0));
  hands.tapKey(numLock);
  EXPECT_TRUE(handled(0));
  hands.tapKey(capsLock);
  EXPECT_TRUE(handled(kCGEventFlagMaskAlphaShift));
  hands.tapKey(numLock);
  EXPECT_TRUE(handled(kCGEventFlagMaskAlphaShift));
  EXPECT_EQ(window.journal(), Words{});

  const auto count = seen.size();
  Words expected;
  for (const xcb_keysym_t key : {0xffe1U, 0xffe3U, 0xffe9U, 0xffebU}) {  // Shift, Control, Alt, Super on the left
    hands.keyDown(key);
    hands.click();
    hands.keyUp(key);
    expected.insert(expected.end(), {"press1", "release1"});
    EXPECT_TRUE(runUntilJournal(expected)) << std::hex << key;
  }
  EXPECT_EQ(seen.size(), count);
}

TEST_F(EventTapTest, FollowsNumLockToAnotherModifier) {
  startTap();
  auto& connection = hands.connection();
  const auto mapping = connection.reply(xcb_get_modifier_mapping_reply, xcb_get_modifier_mapping(connection.get()));
  const auto width = mapping->keycodes_per_modifier;
  xcb_keycode_t* const codes = xcb_get_modifier_mapping_keycodes(mapping.get());
  std::swap_ranges(codes + 4 * width, codes + 5 * width, codes + 5 * width);  // Mod2 with Mod3
  connection.reply(xcb_set_modifier_mapping_reply, xcb_set_modifier_mapping(connection.get(), width, codes));
  hands.tapKey(numLock);
  // The tap learns of it by an event: clicks go past it until it has.
  EXPECT_TRUE(runUntil([&] {
    hands.click();
    return !seen.empty();
  }));
}

TEST_F(EventTapTest, LocksOfALevelAreLockKeysAndItsModifierIsNone) {
  constexpr xcb_keysym_t level3Shift = 0xfe03;
  constexpr xcb_keysym_t level3Lock = 0xfe05;
  constexpr xcb_keysym_t level5Lock = 0xfe13;
  answer = [] { return false; };
  startTap();
  // Each click comes to an end before the next: the tap learns of a key by an event, and clicks go past it until it
  // has.
  const auto isHandledInTime = [this] {
    const auto deadline = std::chrono::steady_clock::now() + support::patience;
    const auto before = seen.size();
    while (seen.size() == before && std::chrono::steady_clock::now() < deadline) {
      const auto arrived = window.journal().size();
      hands.click();
      runUntil([&] { return seen.size() > before || window.journal().size() >= arrived + 2; });
    }
    return seen.size() > before;
  };
  for (const xcb_keysym_t lock : {level3Lock, level5Lock}) {
    hands.assignKey(lock);
    hands.tapKey(lock);
    EXPECT_TRUE(isHandledInTime()) << std::hex << lock;
  }
  hands.tapKey(level3Lock);  // off
  window.journal();          // the clicks before the tap had learnt of the key
  window.clear();
  hands.keyDown(level3Shift);
  hands.click();
  EXPECT_TRUE(runUntilJournal({"press1", "release1"}));
  hands.keyUp(level3Shift);
}

TEST_F(EventTapTest, DestroyedInTheMiddleOfAPressItPassesThePressOn) {
  answer = [this] {
    tap.reset();
    return act();
  };
  startTap();
  hands.click();
  EXPECT_TRUE(runUntilJournal({"press1", "release1"}));
  EXPECT_EQ(actions, 0);
  hands.click();
  EXPECT_TRUE(runUntilJournal({"press1", "release1", "press1", "release1"})) << "nobody holds a grab any more";
  EXPECT_EQ(seen.size(), 1U);
}

TEST_F(EventTapTest, LosesNoneOfAThousandClicks) {
  startTap();
  for (std::size_t i = 1; i <= 1000; ++i) {
    interesting = i % 3 != 0;
    hands.click();
    ASSERT_TRUE(runUntil([&] { return window.journal().size() >= 2 * i; })) << i;
  }
  EXPECT_EQ(window.journal().size(), 2000U);
  EXPECT_EQ(seen.size(), 667U);
  EXPECT_EQ(notices, 0);
}

}  // namespace
