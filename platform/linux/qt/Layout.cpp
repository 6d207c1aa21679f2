// From constraints between views to frames.
#include "platform/Layout.h"

#include <QGuiApplication>
#include <QtGlobal>
#include <algorithm>
#include <cmath>
#include <string>

#include "platform/linux/qt/FocusRing.h"
#include "platform/linux/qt/LayoutSolver.h"
#include "platform/linux/qt/ViewNative.h"
#include "platform/linux/qt/ViewWidget.h"

namespace qt {
namespace {

using ns::LayoutAttribute;
using ns::LayoutConstraint;
using ns::LayoutExpression;
using ns::LayoutRelation;
using Native = ns::View::Native;

enum Axis : std::size_t { Horizontal, Vertical };

/// A window keeps its size even when its content needs more, which then ends beyond its trailing and bottom edges.
constexpr ns::LayoutPriority rootSizePriority = 999;

std::optional<Axis> axisOf(const LayoutExpression& expression) {
  switch (expression.attribute) {
    case LayoutAttribute::None:
      return {};
    case LayoutAttribute::Leading:
    case LayoutAttribute::Trailing:
    case LayoutAttribute::Width:
    case LayoutAttribute::CenterX:
      return Horizontal;
    case LayoutAttribute::Top:
    case LayoutAttribute::Bottom:
    case LayoutAttribute::Height:
    case LayoutAttribute::CenterY:
      return Vertical;
  }
  return {};
}

const char* nameOf(LayoutAttribute attribute) {
  constexpr const char* names[] = {"", "leading", "trailing", "top", "bottom", "width", "height", "centerX", "centerY"};
  return names[static_cast<std::size_t>(attribute)];
}

std::string describe(const LayoutExpression& expression) {
  if (!expression.view) return std::to_string(expression.constant);
  const Native& native = expression.view->native();
  std::string name = native.identifier.empty() ? native.accessibleFacts().name.toStdString() : native.identifier;
  return "\"" + name + "\"." + nameOf(expression.attribute) + " + " + std::to_string(expression.constant);
}

void report(HeldConstraint& held) {
  if (std::exchange(held.isReported, true)) return;
  constexpr const char* relations[] = {" <= ", " == ", " >= "};
  const auto& constraint = held.constraint;
  qWarning("Layout: left out, since it contradicts what was required before: %s%s%s",
           describe(constraint.first).c_str(), relations[static_cast<std::size_t>(constraint.relation)],
           describe(constraint.second).c_str());
}

/// One layout of a whole tree. Widths do not depend on heights, so that the axes are solved one after the other, and a
/// label that wraps is asked for its height at the width that it got.
class LayoutPass {
 public:
  explicit LayoutPass(Native& root) : root_(root) { gather(root); }

  void run() {
    std::sort(held_.begin(), held_.end(),
              [](const HeldConstraint* one, const HeldConstraint* other) { return one->order < other->order; });
    solve(Horizontal);
    solve(Vertical);
    if (QGuiApplication::layoutDirection() == Qt::RightToLeft) mirror();
    const auto changed = apply(root_, QPointF(), QPoint());
    for (auto* native : changed) {
      native->cursorRects.clear();
      native->view->resetCursorRects();
      native->view->layout();
    }
    for (const auto& item : items_) item.native->laidOut();
  }

 private:
  struct Span {
    double start = 0;
    double length = 0;
  };
  struct Item {
    Native* native;
    std::array<Span, 2> spans;
  };

  void gather(Native& native) {
    native.layoutIndex = items_.size();
    items_.push_back({&native, {}});
    native.arrange(arranged_);
    for (auto& held : native.heldConstraints) held_.push_back(&held);
    for (const auto& subview : native.subviews) gather(subview->native());
  }

  void addTerms(std::vector<LayoutSolver::Term>& terms, const LayoutExpression& expression, double sign) const {
    if (!expression.view) return;
    const auto start = static_cast<LayoutSolver::Variable>(2 * expression.view->native().layoutIndex);
    const LayoutSolver::Variable length = start + 1;
    switch (expression.attribute) {
      case LayoutAttribute::None:
        break;
      case LayoutAttribute::Leading:
      case LayoutAttribute::Top:
        terms.push_back({start, sign});
        break;
      case LayoutAttribute::Trailing:
      case LayoutAttribute::Bottom:
        terms.push_back({start, sign});
        terms.push_back({length, sign});
        break;
      case LayoutAttribute::CenterX:
      case LayoutAttribute::CenterY:
        terms.push_back({start, sign});
        terms.push_back({length, sign / 2});
        break;
      case LayoutAttribute::Width:
      case LayoutAttribute::Height:
        terms.push_back({length, sign});
        break;
    }
  }

  bool add(LayoutSolver& solver, const LayoutConstraint& constraint) const {
    std::vector<LayoutSolver::Term> terms;
    addTerms(terms, constraint.first, 1);
    addTerms(terms, constraint.second, -1);
    return solver.add(terms, constraint.first.constant - constraint.second.constant, constraint.relation,
                      constraint.level);
  }

  void solve(Axis axis) {
    LayoutSolver solver;
    for (std::size_t i = 0; i < items_.size(); ++i) {
      solver.addPosition();
      solver.addLength();
    }
    const auto pin = [&](LayoutSolver::Variable variable, double value, LayoutRelation relation,
                         ns::LayoutPriority priority) {
      const LayoutSolver::Term term{variable, 1};
      solver.add({&term, 1}, -value, relation, priority);
    };
    pin(0, 0, LayoutRelation::Equal, ns::LayoutPriorityRequired);
    if (root_.rootSize) {
      const double size = axis == Horizontal ? root_.rootSize->width() : root_.rootSize->height();
      pin(1, size, LayoutRelation::Equal, rootSizePriority);
    }
    const auto isOfAxis = [axis](const LayoutConstraint& constraint) {
      const auto own = axisOf(constraint.first);
      return (own ? own : axisOf(constraint.second)) == axis;
    };
    for (const auto& constraint : arranged_) {
      if (isOfAxis(constraint)) add(solver, constraint);
    }
    for (auto* held : held_) {
      if (isOfAxis(held->constraint) && !add(solver, held->constraint)) report(*held);
    }
    for (std::size_t i = 0; i < items_.size(); ++i) {
      const Native& native = *items_[i].native;
      const auto natural =
          axis == Horizontal ? native.naturalWidth() : native.naturalHeight(items_[i].spans[Horizontal].length);
      if (!natural) continue;
      const auto length = static_cast<LayoutSolver::Variable>(2 * i + 1);
      pin(length, *natural, LayoutRelation::LessThanOrEqual, native.priorities[axis].hugging);
      pin(length, *natural, LayoutRelation::GreaterThanOrEqual, native.priorities[axis].compression);
    }
    solver.solve();
    for (std::size_t i = 0; i < items_.size(); ++i) {
      const auto start = static_cast<LayoutSolver::Variable>(2 * i);
      items_[i].spans[axis] = {solver.value(start), solver.value(start + 1)};
    }
  }

  void mirror() {
    const double width = items_.front().spans[Horizontal].length;
    for (auto& item : items_) {
      auto& span = item.spans[Horizontal];
      span.start = width - span.start - span.length;
    }
  }

  /// Gives the views their frames and the widgets theirs, with edges on whole pixels of 1x. Returns the views whose
  /// size has changed, outer ones first.
  std::vector<Native*> apply(Native& native, QPointF parentOrigin, QPoint parentWidget) const {
    std::vector<Native*> changed;
    const auto& [across, down] = items_[native.layoutIndex].spans;
    const QRectF old = std::exchange(native.frame, QRectF(across.start - parentOrigin.x(),
                                                          down.start - parentOrigin.y(), across.length, down.length));
    const QPoint topLeft(qRound(across.start), qRound(down.start));
    const QPoint bottomRight(qRound(across.start + across.length), qRound(down.start + down.length));
    const QMargins margins(native.outset, native.outset, native.outset, native.outset);
    const QRect placed = QRect(topLeft, bottomRight - QPoint(1, 1)).marginsAdded(margins);
    const int scrolled = native.superview ? qRound(native.superview->native().scrollOffset()) : 0;
    native.widget->setGeometry(placed.translated(-parentWidget - QPoint(0, scrolled)));
    if (old.size() != native.frame.size()) changed.push_back(&native);
    for (const auto& subview : native.subviews) {
      const auto below = apply(subview->native(), QPointF(across.start, down.start), placed.topLeft());
      changed.insert(changed.end(), below.begin(), below.end());
    }
    return changed;
  }

  Native& root_;
  std::vector<Item> items_;
  std::vector<LayoutConstraint> arranged_;
  std::vector<HeldConstraint*> held_;
};

}  // namespace

void layOut(Native& root) {
  // A view may change the tree while it is told of its new size; it should come to rest.
  for (int round = 0; round < 4 && std::exchange(root.needsLayout, false); ++round) LayoutPass(root).run();
  followFocus();
}

}  // namespace qt

namespace ns {

void activate(const std::vector<LayoutConstraint>& constraints) {
  static std::uint64_t order = 0;
  for (const auto& constraint : constraints) {
    const auto ancestorsOf = [](View* view) {
      std::vector<View*> chain;
      for (; view; view = view->superview()) chain.push_back(view);
      return chain;
    };
    View* const first = constraint.first.view ? constraint.first.view : constraint.second.view;
    View* const second = constraint.second.view ? constraint.second.view : first;
    const auto chain = ancestorsOf(first);
    const auto others = ancestorsOf(second);
    const auto common = std::find_first_of(chain.begin(), chain.end(), others.begin(), others.end());
    if (common == chain.end()) {
      qWarning("Layout: left out, since the views share no ancestor: %s, %s", qt::describe(constraint.first).c_str(),
               qt::describe(constraint.second).c_str());
      continue;
    }
    (*common)->native().heldConstraints.push_back({constraint, order++});
    (*common)->native().setNeedsLayout();
  }
}

}  // namespace ns
