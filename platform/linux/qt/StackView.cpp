#include <QPainter>

#include "platform/Containers.h"
#include "platform/linux/qt/ViewNative.h"

namespace ns {
namespace {

/// Stronger than nothing, weaker than every wish of a content.
constexpr LayoutPriority stackHugging = 200;

struct StackNative final : View::Native {
  StackNative(LayoutOrientation o, StackAlignment a, double s) : orientation(o), alignment(a), spacing(s) {}

  /// Hidden views take no room.
  void arrange(std::vector<LayoutConstraint>& constraints) override {
    View* before = nullptr;
    for (const auto& item : arranged) {
      if (item->isHidden() || item->superview() != view) continue;
      constraints.push_back(before ? start(*item) == end(*before) + spacing : start(*item) == start(*view));
      align(*item, constraints);
      before = item.get();
    }
    if (before) constraints.push_back(end(*before) == end(*view));
    constraints.push_back((across(*view) == 0).priority(stackHugging));
    if (!before) constraints.push_back((along(*view) == 0).priority(stackHugging));
  }

  void removing(const View& subview) override {
    std::erase_if(arranged, [&](const std::shared_ptr<View>& item) { return item.get() == &subview; });
  }

  bool isVertical() const { return orientation == LayoutOrientation::Vertical; }
  LayoutExpression start(View& of) const { return isVertical() ? of.top() : of.leading(); }
  LayoutExpression end(View& of) const { return isVertical() ? of.bottom() : of.trailing(); }
  LayoutExpression along(View& of) const { return isVertical() ? of.height() : of.width(); }
  LayoutExpression across(View& of) const { return isVertical() ? of.width() : of.height(); }

  void align(View& item, std::vector<LayoutConstraint>& constraints) const {
    const LayoutExpression itemStart = isVertical() ? item.leading() : item.top();
    const LayoutExpression itemEnd = isVertical() ? item.trailing() : item.bottom();
    const LayoutExpression ownStart = isVertical() ? view->leading() : view->top();
    const LayoutExpression ownEnd = isVertical() ? view->trailing() : view->bottom();
    if (alignment == StackAlignment::Leading) {
      constraints.push_back(itemStart == ownStart);
    } else {
      constraints.push_back(isVertical() ? item.centerX() == view->centerX() : item.centerY() == view->centerY());
      constraints.push_back(itemStart >= ownStart);
    }
    constraints.push_back(itemEnd <= ownEnd);
  }

  LayoutOrientation orientation;
  StackAlignment alignment;
  double spacing;
  std::vector<std::shared_ptr<View>> arranged;
};

}  // namespace

StackView::StackView(LayoutOrientation orientation, StackAlignment alignment, double spacing)
    : View(std::make_unique<StackNative>(orientation, alignment, spacing)) {}

void StackView::addArrangedSubview(const std::shared_ptr<View>& view) {
  addSubview(view);
  qt::nativeOf<StackNative>(*this).arranged.push_back(view);
}

const std::vector<std::shared_ptr<View>>& StackView::arrangedSubviews() const {
  return qt::nativeOf<StackNative>(*this).arranged;
}

}  // namespace ns
