#include "platform/Containers.h"

#import "platform/macos/Bridge.h"
#import "platform/macos/ViewNative.h"

namespace ns {
namespace {

std::unique_ptr<View::Native> makeStackNative(LayoutOrientation orientation, StackAlignment alignment, double spacing) {
  assertMainThread();
  NSStackView* stack = [[NSStackView alloc] initWithFrame:NSZeroRect];
  stack.orientation = orientation == LayoutOrientation::Vertical ? NSUserInterfaceLayoutOrientationVertical
                                                                 : NSUserInterfaceLayoutOrientationHorizontal;
  stack.alignment = alignment == StackAlignment::Leading ? NSLayoutAttributeLeading : NSLayoutAttributeCenterY;
  stack.spacing = spacing;
  // Exactly as long as its views and the spacing; the default leaves that to priorities.
  stack.distribution = NSStackViewDistributionFill;
  return std::make_unique<View::Native>(stack);
}

struct ScrollNative final : View::Native {
  using Native::Native;
  std::shared_ptr<View> clip;
  std::shared_ptr<View> document;
};

ScrollNative& scrollNative(const ScrollView& view) { return static_cast<ScrollNative&>(view.native()); }

std::unique_ptr<View::Native> makeScrollNative() {
  assertMainThread();
  NSScrollView* scroll = [[NSScrollView alloc] initWithFrame:NSZeroRect];
  scroll.hasVerticalScroller = YES;
  scroll.autohidesScrollers = YES;
  scroll.borderType = NSNoBorder;
  scroll.drawsBackground = NO;
  return std::make_unique<ScrollNative>(scroll);
}

/// The scroll view's own clip view, as a view that constraints can name.
class ClipView final : public View {
 public:
  explicit ClipView(NSClipView* view) : View(std::make_unique<Native>(view)) {
    // The scroll view places it.
    view.translatesAutoresizingMaskIntoConstraints = YES;
  }
};

}  // namespace

StackView::StackView(LayoutOrientation orientation, StackAlignment alignment, double spacing)
    : View(makeStackNative(orientation, alignment, spacing)) {}

void StackView::addArrangedSubview(const std::shared_ptr<View>& view) {
  addSubview(view);
  [static_cast<NSStackView*>(native().view) addArrangedSubview:view->native().view];
}

// Every subview of a stack is arranged, in order.
const std::vector<std::shared_ptr<View>>& StackView::arrangedSubviews() const { return subviews(); }

ScrollView::ScrollView() : View(makeScrollNative()) {
  auto& scroll = scrollNative(*this);
  scroll.clip = std::make_shared<ClipView>(static_cast<NSScrollView*>(scroll.view).contentView);
  // The scroll view has it already.
  scroll.subviews.push_back(scroll.clip);
  scroll.clip->native().superview = this;
}

void ScrollView::setDocumentView(const std::shared_ptr<View>& document) {
  auto& scroll = scrollNative(*this);
  if (scroll.document) scroll.document->removeFromSuperview();
  scroll.document = document;
  scroll.clip->native().subviews = {document};
  document->native().superview = scroll.clip.get();
  static_cast<NSScrollView*>(scroll.view).documentView = document->native().view;
}
std::shared_ptr<View> ScrollView::documentView() const { return scrollNative(*this).document; }
View& ScrollView::contentView() const { return *scrollNative(*this).clip; }

}  // namespace ns
