// Views and their layout, without the application: what a constraint, a stack, a label or a scroll view does.
#include <gtest/gtest.h>

#include "platform/Containers.h"
#include "platform/Controls.h"
#include "platform/Window.h"
#include "tests/interface/ViewTree.h"

namespace {

using ns::LayoutOrientation;
using ns::StackAlignment;

constexpr const char* longText =
    "A sentence that is long enough to need several lines in a column of this width, whatever the font.";

class ViewsTest : public ViewTree {
 protected:
  ViewsTest() { window.setContentView(root); }

  /// Not on the screen.
  ns::Window window{CGRectMake(0, 0, 300, 200), ns::WindowStyleMaskTitled};
};

TEST_F(ViewsTest, FramesCountFromTheBottomUnlessTheSuperviewIsFlipped) {
  const auto view = adopt(box(50, 20));
  ns::activate({view->leading() == root->leading(), view->top() == root->top() + 8});
  root->layoutSubtreeIfNeeded();
  EXPECT_EQ(view->frame(), CGRectMake(0, 172, 50, 20));
}

TEST_F(ViewsTest, ConstraintsGoWithTheViewThatLeaves) {
  const auto view = adopt(box(50, 20));
  const auto inner = box(10, 10);
  view->addSubview(inner);
  ns::activate({view->leading() == root->leading() + 12, inner->trailing() == root->trailing(),
                inner->top() == view->top() + 3});
  EXPECT_EQ(laidOut(*inner).origin.x, 290);
  view->removeFromSuperview();
  root->addSubview(view);
  ns::activate({view->trailing() == root->trailing(), inner->leading() == view->leading() + 1});
  EXPECT_EQ(laidOut(*view).origin.x, 250) << "the old leading edge no longer holds";
  EXPECT_EQ(laidOut(*inner).origin.x, 251) << "nor does one between root and what the view holds";
  EXPECT_EQ(laidOut(*inner).origin.y, laidOut(*view).origin.y + 3) << "one within the view stays";
}

TEST_F(ViewsTest, StackSkipsWhatIsHiddenAndFitsWhatIsLeft) {
  const auto stack = adopt(std::make_shared<ns::StackView>(LayoutOrientation::Vertical, StackAlignment::Leading, 7));
  ns::activate({stack->leading() == root->leading(), stack->top() == root->top()});
  const auto first = box(40, 10), second = box(90, 20), third = box(60, 30);
  for (const auto& item : {first, second, third}) stack->addArrangedSubview(item);
  EXPECT_EQ(laidOut(*stack), CGRectMake(0, 0, 90, 74));
  EXPECT_EQ(laidOut(*third), CGRectMake(0, 44, 60, 30));
  second->setHidden(true);
  EXPECT_EQ(laidOut(*stack), CGRectMake(0, 0, 60, 47));
  first->removeFromSuperview();
  EXPECT_EQ(stack->arrangedSubviews().size(), 2U);
  EXPECT_EQ(laidOut(*third), CGRectMake(0, 0, 60, 30));
}

TEST_F(ViewsTest, WrappingLabelGrowsTallerAsItGetsNarrower) {
  const auto label = adopt(ns::TextField::wrappingLabelWithString(longText));
  const auto below = adopt(box(10, 10));
  const auto column = adopt(box(280, 1));
  ns::activate({column->leading() == root->leading(), column->top() == root->top(), label->leading() == root->leading(),
                label->trailing() <= column->trailing(), label->top() == root->top(), below->top() == label->bottom(),
                below->leading() == root->leading()});
  const double wide = laidOut(*label).size.height;
  EXPECT_EQ(laidOut(*below).origin.y, wide);
  column->removeFromSuperview();
  ns::activate({label->width() == 90});
  const double narrow = laidOut(*label).size.height;
  EXPECT_GE(narrow, 2 * wide);
  label->setStringValue("Short");
  EXPECT_LT(laidOut(*label).size.height, wide);
  EXPECT_EQ(laidOut(*below).origin.y, laidOut(*label).size.height);
}

TEST_F(ViewsTest, LabelYieldsBeforeTheButtonBesideIt) {
  const auto label = adopt(ns::TextField::wrappingLabelWithString(longText));
  const auto button = adopt(std::make_shared<ns::Button>("Remove"));
  ns::activate({label->leading() == root->leading(), label->trailing() <= button->leading() - 12,
                button->trailing() == root->trailing(), label->top() == root->top(), button->top() == root->top()});
  const double natural = laidOut(*button).size.width;
  EXPECT_EQ(right(laidOut(*label)), 300 - natural - 12);
  label->setStringValue("Short");
  EXPECT_EQ(laidOut(*button).size.width, natural);
  EXPECT_LT(right(laidOut(*label)), 100) << "it hugs its text when there is room";
}

TEST_F(ViewsTest, ScrolledDocumentIsAsWideAsTheWindowOntoItAndAsHighAsItsContent) {
  const auto scroll = adopt(std::make_shared<ns::ScrollView>());
  const auto document = std::make_shared<ns::View>();
  scroll->setDocumentView(document);
  ns::View& clip = scroll->contentView();
  ns::activate({scroll->leading() == root->leading(), scroll->trailing() == root->trailing(),
                scroll->top() == root->top(), scroll->bottom() == root->bottom(), document->top() == clip.top(),
                document->leading() == clip.leading(), document->trailing() == clip.trailing()});
  const auto content = box(20, 900);
  document->addSubview(content);
  ns::activate({content->leading() == document->leading(), content->top() == document->top(),
                content->bottom() == document->bottom()});
  EXPECT_EQ(laidOut(*document), CGRectMake(0, 0, 300, 900));
  EXPECT_EQ(laidOut(clip), CGRectMake(0, 0, 300, 200));
}

}  // namespace
