#include "platform/View.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QRegion>
#include <algorithm>

#include "platform/linux/qt/FocusOrder.h"
#include "platform/linux/qt/FocusRing.h"
#include "platform/linux/qt/LayerPainter.h"
#include "platform/linux/qt/ViewNative.h"
#include "platform/linux/qt/ViewWidget.h"
#include "platform/linux/qt/Words.h"

namespace ns {
namespace {

bool isWithin(const View* view, const View* ancestor) {
  while (view && view != ancestor) view = view->superview();
  return view != nullptr;
}

void dropConstraintsInto(const View& leaving) {
  for (View* ancestor = leaving.superview(); ancestor; ancestor = ancestor->superview()) {
    std::erase_if(ancestor->native().heldConstraints, [&](const qt::HeldConstraint& held) {
      return isWithin(held.constraint.first.view, &leaving) || isWithin(held.constraint.second.view, &leaving);
    });
  }
}

void detach(View::Native& native) {
  native.superview = nullptr;
  native.needsLayout = true;
  native.widget->leave();
}

/// From a rectangle or point that is counted from the top to one of the view's own coordinates.
double flipped(const View::Native& within, double y, double height) {
  return within.view->isFlipped() ? y : within.frame.height() - y - height;
}

}  // namespace

View::Native::Native() : widget(new qt::ViewWidget(*this)) {}

View::Native::~Native() {
  qt::hideFocusRing(*this);
  widget->release();
}

bool View::Native::mousePressed(QPointF point) {
  view->mouseDown({CGPointMake(point.x(), flipped(*this, point.y(), 0))});
  return true;
}

bool View::Native::keyPressed(QKeyEvent& event) {
  if (!isAccessibilityButton) return false;
  if (qt::chooseTabByKey(*this, event.key())) return true;
  if (event.key() != Qt::Key_Space && event.key() != Qt::Key_Return && event.key() != Qt::Key_Enter) return false;
  press();
  return true;
}

void View::Native::takeFocus(Qt::FocusReason reason) { widget->setFocus(reason); }

qt::AccessibleFacts View::Native::accessibleFacts() const {
  qt::AccessibleFacts facts;
  facts.name = accessibilityLabel;
  facts.role = QAccessible::Grouping;
  if (isAccessibilityButton) {
    facts.role = QAccessible::PageTab;
    facts.isSelected = isAccessibilitySelected;
    facts.canPress = true;
  } else if (std::ranges::any_of(subviews, [](const auto& one) { return one->native().isAccessibilityButton; })) {
    facts.role = QAccessible::PageTabList;
  }
  return facts;
}

void View::Native::press() { view->mouseDown({CGPointMake(frame.width() / 2, frame.height() / 2)}); }

View::Native& View::Native::root() {
  Native* top = this;
  while (top->superview) top = &top->superview->native();
  return *top;
}

void View::Native::setNeedsLayout() {
  Native& top = root();
  if (std::exchange(top.needsLayout, true) || !top.widget->isVisible()) return;
  QCoreApplication::postEvent(top.widget, new QEvent(QEvent::LayoutRequest));
}

void View::Native::contentChanged() {
  setNeedsLayout();
  repaint();
}

void View::Native::repaint() { widget->update(); }

void View::Native::updateOutset() {
  const int wanted = qt::shadowReach(layer);
  if (std::exchange(outset, wanted) != wanted) setNeedsLayout();
}

void View::Native::notifyAccessible(QAccessible::Event event) const {
  if (!QAccessible::isActive()) return;
  QAccessibleEvent notification(widget, event);
  QAccessible::updateAccessibility(&notification);
}

std::shared_ptr<View> View::Native::keepAlive() const { return view->weak_from_this().lock(); }

View::View() : View(std::make_unique<Native>()) {}

View::View(CGRect frame) : View() {
  native_->rootSize = QSizeF(frame.size.width, frame.size.height);
  native_->frame = QRectF(0, 0, frame.size.width, frame.size.height);
}

View::View(std::unique_ptr<Native> native) : native_(std::move(native)) {
  native_->view = this;
  native_->widget->setFocusPolicy(native_->canFocus() ? Qt::TabFocus : Qt::NoFocus);
}

View::~View() {
  for (const auto& subview : native_->subviews) detach(subview->native());
}

void View::addSubview(const std::shared_ptr<View>& view) {
  view->removeFromSuperview();
  Native& added = view->native();
  added.superview = this;
  native_->subviews.push_back(view);
  added.widget->setParent(native_->widget);
  added.widget->setVisible(!added.isHidden);
  native_->setNeedsLayout();
}

void View::removeFromSuperview() {
  View* const parent = native_->superview;
  if (!parent) return;
  const auto keep = native_->keepAlive();
  dropConstraintsInto(*this);
  parent->native().removing(*this);
  parent->native().setNeedsLayout();
  detach(*native_);
  std::erase_if(parent->native().subviews, [this](const std::shared_ptr<View>& view) { return view.get() == this; });
}

const std::vector<std::shared_ptr<View>>& View::subviews() const { return native_->subviews; }

View* View::superview() const { return native_->superview; }

CGRect View::frame() const {
  const QRectF& frame = native_->frame;
  double y = frame.y();
  if (const View* parent = superview()) y = flipped(parent->native(), y, frame.height());
  return CGRectMake(frame.x(), y, frame.width(), frame.height());
}

CGRect View::bounds() const { return CGRectMake(0, 0, native_->frame.width(), native_->frame.height()); }

void View::layoutSubtreeIfNeeded() { qt::layOut(native_->root()); }

void View::setContentHuggingPriority(LayoutPriority priority, LayoutOrientation orientation) {
  native_->priorities[static_cast<std::size_t>(orientation)].hugging = priority;
  native_->setNeedsLayout();
}

void View::setContentCompressionResistancePriority(LayoutPriority priority, LayoutOrientation orientation) {
  native_->priorities[static_cast<std::size_t>(orientation)].compression = priority;
  native_->setNeedsLayout();
}

void View::setHidden(bool hidden) {
  if (std::exchange(native_->isHidden, hidden) == hidden) return;
  if (native_->superview) native_->widget->setVisible(!hidden);
  native_->setNeedsLayout();
}

bool View::isHidden() const { return native_->isHidden; }

void View::setLayer(const Layer& layer) {
  native_->layer = layer;
  native_->updateOutset();
  native_->repaint();
}

const Layer& View::layer() const { return native_->layer; }

void View::setIdentifier(const std::string& identifier) {
  native_->identifier = identifier;
  native_->widget->setObjectName(QString::fromStdString(identifier));
}

const std::string& View::identifier() const { return native_->identifier; }

void View::setAccessibilityLabel(const std::string& label) {
  native_->accessibilityLabel = qt::inWordsOfThisDesktop(QString::fromStdString(label));
  native_->notifyAccessible(QAccessible::NameChanged);
}

void View::setAccessibilityButton(bool selected) {
  native_->isAccessibilityButton = true;
  native_->widget->setFocusPolicy(Qt::TabFocus);
  if (selected) qt::followChosenTab(*native_);
  if (std::exchange(native_->isAccessibilitySelected, selected) != selected) {
    native_->notifyAccessible(QAccessible::SelectionWithin);
  }
}

void View::mouseDown(const MouseEvent& event) {
  View* const parent = superview();
  if (!parent) return;
  const CGRect own = frame();
  const double y = isFlipped() == parent->isFlipped() ? event.location.y : own.size.height - event.location.y;
  parent->mouseDown({CGPointMake(own.origin.x + event.location.x, own.origin.y + y)});
}

void View::layout() {}

bool View::isFlipped() const { return false; }

void View::resetCursorRects() {}

void View::addCursorRect(CGRect rect, Cursor cursor) {
  rect.origin.y = flipped(*native_, rect.origin.y, rect.size.height);
  native_->cursorRects.emplace_back(rect, cursor);
  native_->widget->setAttribute(Qt::WA_Hover);
}

}  // namespace ns
