#include "platform/Layout.h"

#import "platform/macos/Bridge.h"
#import "platform/macos/ViewNative.h"

namespace ns {
namespace {

NSLayoutAttribute toNSLayoutAttribute(LayoutAttribute attribute) {
  switch (attribute) {
    case LayoutAttribute::None:
      return NSLayoutAttributeNotAnAttribute;
    case LayoutAttribute::Leading:
      return NSLayoutAttributeLeading;
    case LayoutAttribute::Trailing:
      return NSLayoutAttributeTrailing;
    case LayoutAttribute::Top:
      return NSLayoutAttributeTop;
    case LayoutAttribute::Bottom:
      return NSLayoutAttributeBottom;
    case LayoutAttribute::Width:
      return NSLayoutAttributeWidth;
    case LayoutAttribute::Height:
      return NSLayoutAttributeHeight;
    case LayoutAttribute::CenterX:
      return NSLayoutAttributeCenterX;
    case LayoutAttribute::CenterY:
      return NSLayoutAttributeCenterY;
  }
  return NSLayoutAttributeNotAnAttribute;
}

NSLayoutRelation toNSLayoutRelation(LayoutRelation relation) {
  switch (relation) {
    case LayoutRelation::LessThanOrEqual:
      return NSLayoutRelationLessThanOrEqual;
    case LayoutRelation::Equal:
      return NSLayoutRelationEqual;
    case LayoutRelation::GreaterThanOrEqual:
      return NSLayoutRelationGreaterThanOrEqual;
  }
  return NSLayoutRelationEqual;
}

NSView* viewOf(const LayoutExpression& expression) {
  return expression.view != nullptr ? expression.view->native().view : nil;
}

}  // namespace

void activate(const std::vector<LayoutConstraint>& constraints) {
  assertMainThread();
  for (const LayoutConstraint& constraint : constraints) {
    NSView* first = viewOf(constraint.first);
    NSView* second = viewOf(constraint.second);
    // The framework throws for such a pair, and that would end the program; without the constraint a view is misplaced.
    const bool isRelated = first != nil && (second == nil || [first ancestorSharedWithView:second] != nil);
    assert(isRelated);
    if (!isRelated) continue;
    NSLayoutConstraint* native =
        [NSLayoutConstraint constraintWithItem:first
                                     attribute:toNSLayoutAttribute(constraint.first.attribute)
                                     relatedBy:toNSLayoutRelation(constraint.relation)
                                        toItem:second
                                     attribute:toNSLayoutAttribute(constraint.second.attribute)
                                    multiplier:1
                                      constant:constraint.second.constant - constraint.first.constant];
    // The priority must be set before activation: a required constraint cannot become an optional one afterwards.
    native.priority = constraint.level;
    native.active = YES;
  }
}

}  // namespace ns
