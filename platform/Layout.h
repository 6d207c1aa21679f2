// Auto Layout: linear relations between the edges and sizes of views, solved by priority.
//
//   ns::activate({icon->leading() == row->leading() + 12, title->trailing() <= control->leading() - 12,
//                 (row->height() == 28).priority(250)});
//
// Leading and trailing are left and right, or the reverse in languages that are written from right to left.
#pragma once

#include <vector>

namespace ns {

class View;

enum class LayoutAttribute { None, Leading, Trailing, Top, Bottom, Width, Height, CenterX, CenterY };
enum class LayoutRelation { LessThanOrEqual, Equal, GreaterThanOrEqual };

/// From 1 to 1000; a relation at 1000 is required, all others give way to higher ones.
using LayoutPriority = float;
inline constexpr LayoutPriority LayoutPriorityRequired = 1000;
inline constexpr LayoutPriority LayoutPriorityDefaultHigh = 750;
inline constexpr LayoutPriority LayoutPriorityDefaultLow = 250;
enum class LayoutOrientation { Horizontal, Vertical };

/// An attribute of a view plus points, or points alone. The view is lent.
struct LayoutExpression {
  View* view = nullptr;
  LayoutAttribute attribute = LayoutAttribute::None;
  double constant = 0;

  constexpr LayoutExpression(View* item, LayoutAttribute itemAttribute) : view(item), attribute(itemAttribute) {}
  constexpr LayoutExpression(double points) : constant(points) {}  // NOLINT(google-explicit-constructor): width() == 70
};

/// One relation, first `relation` second, at a priority.
struct LayoutConstraint {
  LayoutExpression first;
  LayoutRelation relation;
  LayoutExpression second;
  LayoutPriority level = LayoutPriorityRequired;

  constexpr LayoutConstraint priority(LayoutPriority value) const {
    LayoutConstraint constraint = *this;
    constraint.level = value;
    return constraint;
  }
};

constexpr LayoutExpression operator+(LayoutExpression expression, double points) {
  expression.constant += points;
  return expression;
}
constexpr LayoutExpression operator-(LayoutExpression expression, double points) { return expression + -points; }
constexpr LayoutConstraint operator==(const LayoutExpression& first, const LayoutExpression& second) {
  return {first, LayoutRelation::Equal, second};
}
constexpr LayoutConstraint operator<=(const LayoutExpression& first, const LayoutExpression& second) {
  return {first, LayoutRelation::LessThanOrEqual, second};
}
constexpr LayoutConstraint operator>=(const LayoutExpression& first, const LayoutExpression& second) {
  return {first, LayoutRelation::GreaterThanOrEqual, second};
}

/// Puts constraints into force. Their views must share an ancestor (or be one another's) by now; a constraint ends with
/// either of its views or when one of them leaves that ancestor. Main thread only.
void activate(const std::vector<LayoutConstraint>& constraints);

}  // namespace ns
