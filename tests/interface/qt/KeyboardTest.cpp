// A window used by keyboard alone, and what assistive technology is told about it.
#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QLineEdit>
#include <QTest>
#include <QWidget>

#include "platform/Containers.h"
#include "platform/Controls.h"
#include "platform/Window.h"
#include "platform/linux/qt/ViewWidget.h"

namespace {

/// Counts what its controls send, and drops one of them in the middle of its own action.
class Listener : public ns::TextFieldDelegate, public ns::WindowDelegate {
 public:
  void used(ns::Control&) { ++actions; }
  void pressed(ns::Button& sender) {
    ++actions;
    sender.removeFromSuperview();
    dropped.reset();
  }
  void typed(ns::TextField&) { ++actions; }
  void controlTextDidEndEditing(ns::TextField& field) override { endings.push_back(field.stringValue()); }
  void windowWillClose() override { ++closings; }
  void windowDidBecomeKey() override {}

  int actions = 0;
  int closings = 0;
  std::vector<std::string> endings;
  std::shared_ptr<ns::Button> dropped;
};

/// A button by its own account.
class Tile : public ns::View {
 public:
  void mouseDown(const ns::MouseEvent&) override { ++presses; }
  int presses = 0;
};

/// A page that is longer than the window.
class Tall : public ns::View {
 public:
  bool isFlipped() const override { return true; }
};

class KeyboardTest : public testing::Test {
 protected:
  KeyboardTest() {
    tile->setAccessibilityButton(true);
    tile->setAccessibilityLabel("Tile");
    toggle->setAccessibilityLabel("Toggle");
    field->setFormatter({0, 1000});
    field->setDoubleValue(7);
    field->setDelegate(listener);
    field->setTarget<Listener>(listener, &Listener::typed);
    toggle->setTarget<Listener, ns::Control>(listener, &Listener::used);
    stepper->setTarget<Listener, ns::Control>(listener, &Listener::used);
    listener->dropped->setTarget<Listener>(listener, &Listener::pressed);
    double top = 10;
    for (const std::shared_ptr<ns::View>& view :
         {std::shared_ptr<ns::View>(tile), std::shared_ptr<ns::View>(toggle), std::shared_ptr<ns::View>(field),
          std::shared_ptr<ns::View>(stepper), std::shared_ptr<ns::View>(listener->dropped)}) {
      root->addSubview(view);
      ns::activate({view->leading() == root->leading() + 10, view->top() == root->top() + top});
      top += 40;
    }
    ns::activate({tile->width() == 40, tile->height() == 30, field->width() == 70});
    window.setDelegate(listener);
    window.setContentView(root);
    window.makeKeyAndOrderFront();
    QApplication::processEvents();
  }

  QWidget& shown() const { return *root->native().widget->window(); }
  void key(Qt::Key code, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QWidget* const focus = shown().focusWidget();
    QTest::keyClick(focus ? focus : &shown(), code, modifiers);
  }
  void type(const char* text) { QTest::keyClicks(shown().focusWidget(), QLatin1String(text)); }
  bool hasFocus(const ns::View& view) const {
    const QWidget* const widget = view.native().widget;
    return shown().focusWidget() == widget || widget->isAncestorOf(shown().focusWidget());
  }
  static QAccessibleInterface* accessible(const ns::View& view) {
    return QAccessible::queryAccessibleInterface(view.native().widget);
  }

  std::shared_ptr<Listener> listener = [] {
    auto made = std::make_shared<Listener>();
    made->dropped = std::make_shared<ns::Button>("Remove");
    return made;
  }();
  std::shared_ptr<ns::View> root = std::make_shared<ns::View>(CGRectMake(0, 0, 300, 300));
  std::shared_ptr<Tile> tile = std::make_shared<Tile>();
  std::shared_ptr<ns::Switch> toggle = std::make_shared<ns::Switch>();
  std::shared_ptr<ns::TextField> field = std::make_shared<ns::TextField>();
  std::shared_ptr<ns::Stepper> stepper = std::make_shared<ns::Stepper>(0, 2, 1);
  ns::Window window{CGRectMake(0, 0, 300, 300), 11};
};

TEST_F(KeyboardTest, TabVisitsTheViewsInTheirOrderAndComesRound) {
  EXPECT_TRUE(shown().focusWidget() == nullptr || shown().focusWidget() == &shown()) << "nothing is lit at first";
  for (const ns::View* view : {static_cast<ns::View*>(tile.get()), static_cast<ns::View*>(toggle.get()),
                               static_cast<ns::View*>(field.get()), static_cast<ns::View*>(stepper.get()),
                               static_cast<ns::View*>(listener->dropped.get()), static_cast<ns::View*>(tile.get())}) {
    key(Qt::Key_Tab);
    EXPECT_TRUE(hasFocus(*view));
  }
  key(Qt::Key_Backtab, Qt::ShiftModifier);
  EXPECT_TRUE(hasFocus(*listener->dropped));
  field->setHidden(true);
  key(Qt::Key_Backtab, Qt::ShiftModifier);
  key(Qt::Key_Backtab, Qt::ShiftModifier);
  EXPECT_TRUE(hasFocus(*toggle)) << "what is hidden is passed over";
}

TEST_F(KeyboardTest, SpaceAndArrowsDoWhatTheMouseDoes) {
  key(Qt::Key_Tab);
  key(Qt::Key_Space);
  EXPECT_EQ(tile->presses, 1);
  key(Qt::Key_Tab);
  key(Qt::Key_Space);
  EXPECT_TRUE(toggle->isOn());
  key(Qt::Key_Right);
  EXPECT_EQ(listener->actions, 1) << "it is on already";
  key(Qt::Key_Left);
  EXPECT_FALSE(toggle->isOn());
  key(Qt::Key_Tab);
  key(Qt::Key_Tab);
  for (const double value : {1, 2, 0}) {
    key(Qt::Key_Up);
    EXPECT_EQ(stepper->doubleValue(), value);
  }
  for (const double value : {2, 1}) {
    key(Qt::Key_Down);
    EXPECT_EQ(stepper->doubleValue(), value);
  }
}

TEST_F(KeyboardTest, ControlMayRemoveItselfInItsOwnAction) {
  const std::weak_ptr<ns::Button> button = listener->dropped;
  for (int i = 0; i < 5; ++i) key(Qt::Key_Tab);
  key(Qt::Key_Space);
  EXPECT_EQ(listener->actions, 1);
  EXPECT_TRUE(button.expired());
  QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_TRUE(hasFocus(*tile)) << "the next one has the keyboard";
}

TEST_F(KeyboardTest, ReturnSendsAndEndsWhileEscapePutsBackAndThenCloses) {
  for (int i = 0; i < 3; ++i) key(Qt::Key_Tab);
  type("42");
  key(Qt::Key_Return);
  EXPECT_EQ(listener->actions, 1);
  EXPECT_EQ(listener->endings, std::vector<std::string>{"42"});
  type("99");
  key(Qt::Key_Escape);
  EXPECT_EQ(field->stringValue(), "42");
  EXPECT_EQ(listener->closings, 0);
  key(Qt::Key_Escape);
  EXPECT_EQ(listener->closings, 1);
  EXPECT_FALSE(window.isVisible());
}

TEST_F(KeyboardTest, CommandWCloses) {
  key(Qt::Key_W, Qt::ControlModifier);
  EXPECT_EQ(listener->closings, 1);
}

TEST_F(KeyboardTest, ArrowsChooseTheNextTab) {
  const auto other = std::make_shared<Tile>();
  other->setAccessibilityButton(false);
  root->addSubview(other);
  key(Qt::Key_Tab);
  key(Qt::Key_Up);
  EXPECT_TRUE(hasFocus(*tile)) << "there is none above";
  key(Qt::Key_Down);
  EXPECT_TRUE(hasFocus(*other));
  EXPECT_EQ(other->presses, 1);
  key(Qt::Key_Up);
  EXPECT_TRUE(hasFocus(*tile));
  EXPECT_EQ(tile->presses, 1);
}

TEST_F(KeyboardTest, KeysThatNoControlTakesScroll) {
  const auto scroll = std::make_shared<ns::ScrollView>();
  const auto tall = std::make_shared<Tall>();
  scroll->setDocumentView(tall);
  root->addSubview(scroll);
  ns::activate({scroll->leading() == root->leading(), scroll->trailing() == root->trailing(),
                scroll->top() == root->top(), scroll->bottom() == root->bottom(), tall->top() == scroll->top(),
                tall->width() == 100, tall->height() == 1000});
  root->layoutSubtreeIfNeeded();
  const auto top = [&] { return tall->native().widget->y(); };
  key(Qt::Key_PageDown);
  EXPECT_LT(top(), -200);
  EXPECT_GT(top(), -300) << "something of the last page stays";
  key(Qt::Key_Down);
  const int lower = top();
  key(Qt::Key_Up);
  EXPECT_GT(top(), lower);
  key(Qt::Key_End);
  EXPECT_EQ(top(), -700);
  key(Qt::Key_Home);
  EXPECT_EQ(top(), 0);
}

TEST_F(KeyboardTest, AssistiveTechnologyReadsAndUsesEveryControl) {
  auto* const seenTile = accessible(*tile);
  EXPECT_EQ(seenTile->role(), QAccessible::PageTab);
  EXPECT_EQ(seenTile->text(QAccessible::Name), "Tile");
  EXPECT_TRUE(seenTile->state().selected);
  tile->setAccessibilityButton(false);
  EXPECT_FALSE(seenTile->state().selected);
  seenTile->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_EQ(tile->presses, 0) << "nobody waits for what a press leads to";
  QCoreApplication::processEvents();
  EXPECT_EQ(tile->presses, 1);

  auto* const seenSwitch = accessible(*toggle);
  EXPECT_EQ(seenSwitch->role(), QAccessible::CheckBox);
  EXPECT_EQ(seenSwitch->text(QAccessible::Name), "Toggle");
  seenSwitch->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
  QCoreApplication::processEvents();
  EXPECT_TRUE(toggle->isOn());
  EXPECT_TRUE(seenSwitch->state().checked);

  auto* const seenStepper = accessible(*stepper);
  EXPECT_EQ(seenStepper->role(), QAccessible::SpinBox);
  ASSERT_NE(seenStepper->valueInterface(), nullptr);
  seenStepper->valueInterface()->setCurrentValue(5);
  EXPECT_EQ(stepper->doubleValue(), 2) << "its end";

  EXPECT_EQ(accessible(*listener->dropped)->role(), QAccessible::Button);
  EXPECT_EQ(accessible(*listener->dropped)->text(QAccessible::Name), "Remove");
}

}  // namespace
