// What presses teach about title bars, without a desktop: time, windows and the person's hands are made up here.
#include <gtest/gtest.h>

#include <string>

#include "platform/linux/x11/DecorationLayout.h"
#include "platform/linux/x11/TitleBars/ButtonBook.h"
#include "platform/linux/x11/TitleBars/PressWatch.h"
#include "platform/linux/x11/TitleBars/ShippedButtons.h"

namespace x11 {
namespace {

using std::chrono::milliseconds;

constexpr Spot right(int across, int down) { return {Corner::Right, across, down}; }

bool has(const ButtonEvidence& evidence, ButtonRole role, const Spot& spot) {
  for (const StoredButton& button : evidence.buttons()) {
    if (button.role == role && button.contains(spot, 0)) return true;
  }
  return false;
}

TEST(ButtonEvidence, TwoPressesMakeAButtonAndThreeMakeClose) {
  ButtonEvidence evidence(100);
  EXPECT_FALSE(evidence.add({ButtonRole::Minimize, right(84, 16)}));
  EXPECT_TRUE(evidence.add({ButtonRole::Minimize, right(78, 12)}));
  EXPECT_TRUE(has(evidence, ButtonRole::Minimize, right(81, 14)));
  EXPECT_FALSE(evidence.add({ButtonRole::Close, right(19, 16)}));
  EXPECT_FALSE(evidence.add({ButtonRole::Close, right(20, 16)}));
  EXPECT_TRUE(evidence.add({ButtonRole::Close, right(18, 16)}));
  EXPECT_TRUE(has(evidence, ButtonRole::Close, right(19, 16)));
}

TEST(ButtonEvidence, AButtonIsAsLargeAsItsPressesAndNeverTinyOrHuge) {
  for (const int scale : {100, 200}) {
    ButtonEvidence evidence(scale);
    const int point = scale / 100;
    evidence.add({ButtonRole::Zoom, right(50 * point, 16 * point)});
    evidence.add({ButtonRole::Zoom, right(50 * point, 16 * point)});
    ASSERT_EQ(evidence.buttons().size(), 1U) << scale;
    EXPECT_EQ(evidence.buttons()[0].width, 14 * point);
    EXPECT_EQ(evidence.buttons()[0].height, 14 * point);
    evidence.add({ButtonRole::Zoom, right(62 * point, 16 * point)});
    evidence.add({ButtonRole::Zoom, right(38 * point, 16 * point)});
    ASSERT_EQ(evidence.buttons().size(), 1U) << scale;
    EXPECT_EQ(evidence.buttons()[0].width, 24 * point + 1);
    // 36 from one end and 12 from the other: such a button would be too large to be one.
    evidence.add({ButtonRole::Zoom, right(84 * point, 16 * point)});
    EXPECT_TRUE(evidence.buttons().empty()) << scale;
  }
}

TEST(ButtonEvidence, WhatContradictsItselfIsForgotten) {
  struct Case {
    const char* what;
    Observation contradiction;
  };
  for (const auto& [what, contradiction] :
       {Case{"nothing there", {std::nullopt, right(86, 20)}},
        Case{"another role there", {ButtonRole::Close, right(80, 16)}},
        Case{"moved away", {ButtonRole::Minimize, right(150, 16)}},
        Case{"at the other corner", {ButtonRole::Minimize, {Corner::Left, 84, 16}}}}) {
    ButtonEvidence evidence(100);
    evidence.add({ButtonRole::Minimize, right(84, 16)});
    evidence.add({ButtonRole::Minimize, right(84, 16)});
    ASSERT_TRUE(has(evidence, ButtonRole::Minimize, right(84, 16))) << what;
    EXPECT_TRUE(evidence.add(contradiction)) << what;
    EXPECT_FALSE(has(evidence, ButtonRole::Minimize, right(84, 16))) << what;
    // Once is not enough to be believed again, twice is.
    evidence.add({ButtonRole::Minimize, right(84, 16)});
    EXPECT_FALSE(has(evidence, ButtonRole::Minimize, right(84, 16))) << what;
    evidence.add({ButtonRole::Minimize, right(84, 16)});
    EXPECT_TRUE(has(evidence, ButtonRole::Minimize, right(84, 16))) << what;
  }
}

TEST(ButtonEvidence, AButtonThatJumpsOrWorksEveryOtherTimeIsNeverLearned) {
  ButtonEvidence jumping(100);
  ButtonEvidence moody(100);
  for (int i = 0; i < 10; ++i) {
    jumping.add({ButtonRole::Minimize, right(i % 2 == 0 ? 84 : 184, 16)});
    moody.add({i % 2 == 0 ? std::optional(ButtonRole::Minimize) : std::nullopt, right(84, 16)});
    EXPECT_TRUE(jumping.buttons().empty());
    EXPECT_TRUE(moody.buttons().empty());
  }
}

TEST(ButtonEvidence, ManyIdlePressesCostNoMemoryAndNoKnowledge) {
  ButtonEvidence evidence(100);
  evidence.add({ButtonRole::Minimize, right(84, 16)});
  evidence.add({ButtonRole::Minimize, right(84, 16)});
  for (int i = 0; i < 1000; ++i) evidence.add({std::nullopt, right(120 + i % 90, i % 60)});
  EXPECT_TRUE(has(evidence, ButtonRole::Minimize, right(84, 16)));
  EXPECT_LE(evidence.observations().size(), 32U);
}

TitleBarKind kind(const std::string& painter) { return {painter, {4, 4, 0, 4}}; }

TEST(ButtonBook, ReadsBackWhatItWrote) {
  ButtonBook book;
  book.add(kind("Chromium"), {ButtonRole::Minimize, right(84, 16)});
  book.add(kind("Chromium"), {ButtonRole::Minimize, right(80, 14)});
  book.add(kind("Chromium"), {std::nullopt, right(150, 14)});
  book.add(kind("a \"name\"\xff"), {ButtonRole::Zoom, {Corner::Left, 30, 9}});
  book.add(kind("only idle presses"), {std::nullopt, right(150, 14)});
  const auto read = ButtonBook::parse(book.text());
  ASSERT_TRUE(read);
  EXPECT_EQ(read->size(), 2U);
  ASSERT_NE(read->evidence(kind("Chromium")), nullptr);
  EXPECT_EQ(read->evidence(kind("Chromium"))->observations(), book.evidence(kind("Chromium"))->observations());
  EXPECT_EQ(read->evidence(kind("Chromium"))->buttons(), book.evidence(kind("Chromium"))->buttons());
  TitleBarKind maximized = kind("Chromium");
  maximized.state = TitleBarState::Maximized;
  EXPECT_EQ(read->evidence(maximized), nullptr);
}

TEST(ButtonBook, TakesNothingFromADamagedText) {
  for (const char* text : {"", "[]", "{", "{\"version\": 2, \"titleBars\": []}", "{\"version\": 1}", "null"}) {
    EXPECT_FALSE(ButtonBook::parse(text)) << text;
  }
  const auto read = ButtonBook::parse(
      R"({"version": 1, "titleBars": [7, {"painter": 1}, {"painter": "a", "presses": 3},
          {"painter": "a", "extents": {"left": 0, "right": 0, "top": 20, "bottom": 0}, "state": "normal", "scale": 0,
           "presses": []},
          {"painter": "b", "extents": {"left": 0, "right": 0, "top": 20, "bottom": 0}, "state": "normal",
           "maximizes": true, "scale": 100,
           "presses": [{"did": "fly", "corner": "left", "across": 1, "down": 1},
                       {"did": "zoom", "corner": "left", "across": 99999999999, "down": 1},
                       {"did": "zoom", "corner": "left", "across": 9, "down": -1},
                       {"did": "zoom", "corner": "left", "across": 9, "down": 9}]}]})");
  ASSERT_TRUE(read);
  EXPECT_EQ(read->size(), 1U);
  const auto* evidence = read->evidence({"b", {0, 0, 20, 0}, TitleBarState::Normal, false, true});
  ASSERT_NE(evidence, nullptr);
  EXPECT_EQ(evidence->observations(), (std::vector<Observation>{{ButtonRole::Zoom, {Corner::Left, 9, 9}}}));
}

TEST(ButtonBook, StaysBoundedAndForgets) {
  ButtonBook book;
  for (std::size_t i = 0; i < ButtonBook::mostKinds + 50; ++i) {
    book.add(kind("first"), {ButtonRole::Zoom, right(50, 16)});
    book.add(kind(std::to_string(i)), {ButtonRole::Zoom, right(50, 16)});
  }
  EXPECT_EQ(book.size(), ButtonBook::mostKinds);
  EXPECT_NE(book.evidence(kind("first")), nullptr);
  EXPECT_EQ(book.evidence(kind("0")), nullptr);
  EXPECT_EQ(book.forget("first"), 1U);
  EXPECT_EQ(book.forget(""), ButtonBook::mostKinds - 1);
}

TEST(ShippedButtons, BecomeRowsLikeAnyOthers) {
  for (const int scale : {100, 200}) {
    const int point = scale / 100;
    TitleBarKind chromium = kind("Chromium");
    chromium.extents = {16 * point, 16 * point, 10 * point, 32 * point};
    chromium.scale = scale;
    const auto shipped = shippedWith(chromium);
    ASSERT_EQ(shipped.size(), 2U);
    EXPECT_EQ(shipped[1].kind.state, TitleBarState::Maximized);
    for (const auto& [one, presses] : shipped) {
      ButtonBook book;
      book.ship(one, presses);
      // Where its icons are, from the right: normal 16, 48, 80 and maximised 18, 50, 82.
      const int icon = one.state == TitleBarState::Normal ? 16 : 18;
      const ButtonRole roles[] = {ButtonRole::Close, ButtonRole::Zoom, ButtonRole::Minimize};
      for (int i = 0; i < 3; ++i) {
        const Spot spot = right((icon + 32 * i) * point, 20 * point);
        EXPECT_TRUE(has(*book.evidence(one), roles[i], spot)) << scale << ' ' << i;
        EXPECT_TRUE(book.isShipped(one, roles[i]));
      }
      EXPECT_EQ(ButtonBook::parse(book.text())->size(), 0U) << "nothing has been learned";

      // Contradicted it is forgotten for good, until the person says otherwise.
      book.add(one, {std::nullopt, right((icon + 64) * point, 20 * point)});
      book.add(one, {std::nullopt, right((icon + 69) * point, 29 * point)});
      auto read = ButtonBook::parse(book.text());
      ASSERT_TRUE(read);
      for (ButtonBook* after : {&book, &*read}) {
        after->ship(one, presses);
        EXPECT_FALSE(after->evidence(one)->has(ButtonRole::Minimize));
        EXPECT_TRUE(after->isShipped(one, ButtonRole::Zoom));
      }
      EXPECT_EQ(read->forget("Chromium"), 1U);
      read->ship(one, presses);
      EXPECT_TRUE(read->isShipped(one, ButtonRole::Minimize));
    }
  }
}

TEST(ShippedButtons, AreOnlyForTheFrameThatWasMeasured) {
  TitleBarKind chromium = kind("Chromium");
  EXPECT_FALSE(shippedWith(chromium).empty());
  const auto without = [&](void (*change)(TitleBarKind&)) {
    TitleBarKind changed = chromium;
    change(changed);
    return shippedWith(changed).empty();
  };
  EXPECT_TRUE(without([](TitleBarKind& one) { one.painter = "SelfDrawn"; }));
  EXPECT_TRUE(without([](TitleBarKind& one) { one.extents = {5, 5, 5, 5}; })) << "a GTK theme";
  EXPECT_TRUE(without([](TitleBarKind& one) { one.state = TitleBarState::Maximized; })) << "any theme";
  EXPECT_TRUE(without([](TitleBarKind& one) { one.maximizes = false; }));
  EXPECT_TRUE(without([](TitleBarKind& one) { one.scale = 150; }));
}

TEST(DecorationLayout, IsUsualWithThreeButtonsOnTheRight) {
  for (const char* usual :
       {"menu:minimize,maximize,close", "icon,appmenu:minimize,maximize,close", ":minimize,maximize,close"}) {
    EXPECT_TRUE(isUsualLayout(usual)) << usual;
  }
  for (const char* other :
       {"", "menu:close", "close:minimize,maximize", "close:minimize,maximize,close", "menu:maximize,minimize,close",
        "minimize,maximize,close", "menu:minimize,maximize,close,icon"}) {
    EXPECT_FALSE(isUsualLayout(other)) << other;
  }
}

class PressWatchTest : public testing::Test {
 protected:
  PressWatchTest() {
    window.client = 7;
    window.pid = 100;
    window.geometry.client = {0, 0, 600, 400};
    window.properties.isDecorated = false;
    window.properties.wmState = 1;
    window.properties.windowClass = "Chromium";
  }

  PassedPress press(milliseconds after = {}) const {
    const CGPoint position{516, 16};
    return {window, *kindOf(window, "Openbox", 100), *spotOf(window, position, 100), position, 5, start + after};
  }
  /// Of a new watch: a second one in the same place would be half of a double click.
  void firstPress() {
    watch = PressWatch();
    EXPECT_FALSE(watch.pressed(press()));
  }
  /// The person has clicked and holds still, as it looks 300 ms after the press.
  Hands still() const {
    return {{517, 16}, false, milliseconds(220), milliseconds(5000), 5, start + milliseconds(300)};
  }
  Window iconic() const {
    Window now = window;
    now.properties.wmState = 3;
    now.properties.isHidden = true;
    return now;
  }
  Window maximized() const {
    Window now = window;
    now.geometry.maximizedHorizontally = now.geometry.maximizedVertically = true;
    return now;
  }

  const std::chrono::steady_clock::time_point start{milliseconds(1'000'000)};
  Window window;
  PressWatch watch;
};

TEST_F(PressWatchTest, TellsTheThreeEffects) {
  struct Case {
    std::optional<Window> now;
    ButtonRole role;
  };
  for (const auto& [now, role] : {Case{iconic(), ButtonRole::Minimize}, Case{maximized(), ButtonRole::Zoom},
                                  Case{std::nullopt, ButtonRole::Close}}) {
    firstPress();
    // A step on the way there is no effect, and does not end the watch.
    EXPECT_FALSE(watch.changed(window.client, window, still()));
    const auto outcome = watch.changed(window.client, now, still());
    ASSERT_TRUE(outcome);
    EXPECT_EQ(outcome->role, role);
    EXPECT_EQ(outcome->press.spot, right(83, 16));
    EXPECT_FALSE(watch.changed(window.client, now, still())) << "one effect for each press";
  }
}

TEST_F(PressWatchTest, LearnsNothingFromWhatThePressNeedNotHaveCaused) {
  struct Case {
    const char* what;
    void (*change)(Hands&);
  };
  for (const auto& [what, change] :
       {Case{"a drag", [](Hands& hands) { hands.pointer.x += 9; }},
        Case{"the button is still down", [](Hands& hands) { hands.anyButtonDown = true; }},
        Case{"a key just after", [](Hands& hands) { hands.keyboardIdle = milliseconds(150); }},
        Case{"a key at the same moment", [](Hands& hands) { hands.keyboardIdle = milliseconds(302); }},
        Case{"another press since, in a menu", [](Hands& hands) { hands.presses = 6; }},
        Case{"too late after the release", [](Hands& hands) { hands.pointerIdle = milliseconds(1001); }},
        Case{"a long press", [](Hands& hands) { hands.time += milliseconds(2000); }}}) {
    firstPress();
    Hands hands = still();
    change(hands);
    EXPECT_FALSE(watch.changed(window.client, iconic(), hands)) << what;
    EXPECT_FALSE(watch.isEffect(window.client, iconic())) << what;
  }
  firstPress();
  EXPECT_FALSE(watch.changed(window.client + 1, iconic(), still())) << "another window";
  watch.giveUp();
  EXPECT_FALSE(watch.changed(window.client, iconic(), still())) << "a press elsewhere, a menu";
  firstPress();
  watch.windowAppeared(window.pid);
  EXPECT_FALSE(watch.changed(window.client, std::nullopt, still())) << "a question came up";
  firstPress();
  Window fullScreen = maximized();
  fullScreen.geometry.fullscreen = true;
  EXPECT_FALSE(watch.changed(window.client, fullScreen, still())) << "full screen";
}

TEST_F(PressWatchTest, DoubleClicksAreNeitherButtonsNorIdle) {
  watch.pressed(press());
  EXPECT_FALSE(watch.pressed(press(milliseconds(200))));
  EXPECT_FALSE(watch.changed(window.client, maximized(), still()));
  // Nor when a tooltip or a menu came up between the two.
  watch.pressed(press(milliseconds(5000)));
  watch.giveUp();
  watch.pressed(press(milliseconds(5200)));
  EXPECT_FALSE(watch.isEffect(window.client, maximized()));
}

TEST_F(PressWatchTest, APressThatDidNothingIsToldOfWhenTheNextOneComes) {
  watch.pressed(press());
  const auto outcome = watch.pressed(press(milliseconds(2500)));
  ASSERT_TRUE(outcome);
  EXPECT_FALSE(outcome->role);
  EXPECT_EQ(outcome->press.time, start);
  // What the second one does may still be to come.
  EXPECT_FALSE(watch.pressed(press(milliseconds(3500))));
}

TEST(TitleBarKind, CountsWhereATitleBarsButtonsCanBe) {
  Window drawn;
  drawn.geometry.client = {100, 137, 600, 400};
  drawn.geometry.decoration = {0, 0, 37, 0};
  EXPECT_EQ(spotOf(drawn, {699, 100}, 100), right(0, 0));
  EXPECT_EQ(spotOf(drawn, {100, 136}, 100), (Spot{Corner::Left, 0, 36}));
  EXPECT_FALSE(spotOf(drawn, {699, 137}, 100)) << "content";
  EXPECT_FALSE(spotOf(drawn, {400, 110}, 100)) << "the middle of the title";
  Window itself = drawn;
  itself.geometry.decoration = {};
  itself.properties.isDecorated = false;
  itself.properties.windowClass = "Chromium";
  EXPECT_EQ(spotOf(itself, {690, 200}, 100), right(9, 63));
  EXPECT_FALSE(spotOf(itself, {690, 201}, 100));
  EXPECT_EQ(spotOf(itself, {690, 201}, 200), right(9, 64));
  EXPECT_EQ(kindOf(itself, "Mutter", 100)->painter, "Chromium");
  EXPECT_EQ(kindOf(drawn, "Mutter", 100)->painter, "Mutter");
  Window fixed = drawn;
  fixed.properties.maximizeIsAllowed = false;
  Window dialog = drawn;
  dialog.properties.isTransient = true;
  EXPECT_NE(kindOf(fixed, "Mutter", 100), kindOf(drawn, "Mutter", 100)) << "its other buttons move up";
  EXPECT_NE(kindOf(dialog, "Mutter", 100), kindOf(drawn, "Mutter", 100));
  EXPECT_FALSE(kindOf(drawn, "", 100));
  itself.geometry.fullscreen = true;
  EXPECT_FALSE(kindOf(itself, "Mutter", 100));
}

}  // namespace
}  // namespace x11
