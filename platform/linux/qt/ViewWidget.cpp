#include "platform/linux/qt/ViewWidget.h"

#include <QHoverEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include "platform/linux/qt/FocusRing.h"
#include "platform/linux/qt/LayerPainter.h"

namespace qt {

namespace {

/// Where widgets are that are in no window. Never shown, and never destroyed before a view.
QWidget* nowhere() {
  static auto* const widget = new QWidget;
  return widget;
}

}  // namespace

ViewWidget::ViewWidget(ns::View::Native& native) : QWidget(nowhere()), native_(&native) {}

void ViewWidget::leave() { setParent(nowhere()); }

void ViewWidget::release() {
  native_ = nullptr;
  hide();
  leave();
  deleteLater();
}

QRectF ViewWidget::contentBounds() const {
  const int outset = native_ ? native_->outset : 0;
  return QRectF(rect()).adjusted(outset, outset, -outset, -outset);
}

QPointF ViewWidget::local(QPointF point) const { return point - contentBounds().topLeft(); }

void ViewWidget::updateCursor(QPointF point) {
  for (const auto& [area, cursor] : native_->cursorRects) {
    if (!QRectF(area.origin.x, area.origin.y, area.size.width, area.size.height).contains(point)) continue;
    setCursor(cursor == ns::Cursor::PointingHand ? Qt::PointingHandCursor : Qt::ArrowCursor);
    return;
  }
  unsetCursor();
}

bool ViewWidget::event(QEvent* event) {
  if (!native_) return QWidget::event(event);
  switch (event->type()) {
    case QEvent::LayoutRequest:
      // The toolkit sends these to parents of what appears, too.
      layOut(native_->root());
      return true;
    case QEvent::PaletteChange:
      native_->appearanceChanged();
      break;
    case QEvent::Show:
      native_->appeared();
      break;
    case QEvent::FocusIn:
      if (native_->canFocus()) showFocusRing(*native_);
      break;
    case QEvent::FocusOut:
      hideFocusRing(*native_);
      break;
    case QEvent::HoverEnter:
    case QEvent::HoverMove:
      if (!native_->cursorRects.empty()) updateCursor(local(static_cast<QHoverEvent*>(event)->position()));
      break;
    default:
      break;
  }
  return QWidget::event(event);
}

void ViewWidget::paintEvent(QPaintEvent*) {
  if (!native_) return;
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  clipToAncestors(painter, *this);
  const QRectF content = contentBounds();
  painter.translate(content.topLeft());
  const QRectF bounds(QPointF(), content.size());
  paintLayer(painter, native_->layer, bounds);
  native_->paint(painter, bounds);
}

void ViewWidget::mousePressEvent(QMouseEvent* event) {
  event->ignore();
  if (!native_ || event->button() != Qt::LeftButton || !contentBounds().contains(event->position())) return;
  const auto keep = native_->keepAlive();
  if (native_->mousePressed(local(event->position()))) event->accept();
}

void ViewWidget::mouseMoveEvent(QMouseEvent* event) {
  if (native_) native_->mouseMoved(local(event->position()));
}

void ViewWidget::mouseReleaseEvent(QMouseEvent* event) {
  if (!native_ || event->button() != Qt::LeftButton) return;
  const auto keep = native_->keepAlive();
  native_->mouseReleased(local(event->position()));
}

void ViewWidget::wheelEvent(QWheelEvent* event) {
  // A wheel click is 120 units and moves by three lines of 16 points; touch pads tell pixels.
  const double pixels = event->pixelDelta().isNull() ? event->angleDelta().y() * 48.0 / 120 : event->pixelDelta().y();
  if (!native_ || !native_->scrolled(pixels)) event->ignore();
}

void ViewWidget::keyPressEvent(QKeyEvent* event) {
  const auto keep = native_ ? native_->keepAlive() : nullptr;
  if (!native_ || !native_->keyPressed(*event)) QWidget::keyPressEvent(event);
}

void ViewWidget::keyReleaseEvent(QKeyEvent* event) {
  const auto keep = native_ ? native_->keepAlive() : nullptr;
  if (native_) native_->keyReleased(*event);
}

}  // namespace qt
