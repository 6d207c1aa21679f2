// What only Qt's side does: text from right to left, constraints that contradict each other, layout during layout, and
// a window that the program cannot make too small either.
#include <QApplication>
#include <QTest>
#include <QWidget>

#include "tests/interface/Fixture.h"
#include "tests/interface/Person.h"
#include "tests/interface/ViewTree.h"

namespace {

class LayoutTest : public ViewTree {
 protected:
  ~LayoutTest() override { QGuiApplication::setLayoutDirection(Qt::LeftToRight); }
};

TEST_F(LayoutTest, LeadingAndTrailingMirrorWhereOneWritesFromRightToLeft) {
  const auto view = adopt(box(50, 20));
  ns::activate({view->leading() == root->leading() + 12, view->top() == root->top() + 8});
  EXPECT_EQ(laidOut(*view), CGRectMake(12, 8, 50, 20));
  QGuiApplication::setLayoutDirection(Qt::RightToLeft);
  root->setContentHuggingPriority(1, ns::LayoutOrientation::Horizontal);  // asks for a new layout
  EXPECT_EQ(laidOut(*view), CGRectMake(238, 8, 50, 20));
}

TEST_F(LayoutTest, TheLaterOfTwoContradictingConstraintsYields) {
  const auto view = adopt(box(50, 20));
  ns::activate({view->width() == 80, view->leading() == root->leading()});
  EXPECT_EQ(laidOut(*view).size.width, 50);
  EXPECT_EQ(laidOut(*view).origin.x, 0);
}

/// Changes the tree while it is told of its size.
class Restless : public ns::View {
 public:
  void layout() override {
    View::layout();
    ++layouts;
    if (layouts == 1) ns::activate({height() == bounds().size.width});
  }
  int layouts = 0;
};

TEST_F(LayoutTest, ViewThatAsksForMoreDuringLayoutGetsItInTheSameLayout) {
  const auto view = adopt(std::make_shared<Restless>());
  ns::activate(
      {view->leading() == root->leading(), view->trailing() == root->trailing() - 100, view->top() == root->top()});
  EXPECT_EQ(laidOut(*view).size.height, 200);
  const int before = view->layouts;
  root->layoutSubtreeIfNeeded();
  EXPECT_EQ(view->layouts, before) << "nothing has changed";
}

using WindowTest = SettingsTest;

TEST_F(WindowTest, CannotBeMadeTooSmall) {
  present(ostrel::Tab::General);
  EXPECT_EQ(root().bounds(), (CGRect{{0, 0}, {700, 750}}));
  settings->window()->setContentSize({200, 200});
  root().layoutSubtreeIfNeeded();
  EXPECT_EQ(root().bounds().size.width, 650);
  EXPECT_GE(root().bounds().size.height, 700);
  EXPECT_LE(root().bounds().size.height, 728);
}

TEST_F(WindowTest, ClosingStoresAnEditedFieldThoughAnotherWindowIsActive) {
  present(ostrel::Tab::Displays);
  auto& stepper = *controlInRow<ns::Stepper>(document(), "Top");
  person::type(*allOf<ns::TextField>(*stepper.superview()).at(0), "22");
  QWidget other;
  other.show();
  other.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
  settings->window()->close();
  EXPECT_EQ(controller->margins(1).top, 22);
}

}  // namespace
