// The one widget class behind all views.
#pragma once

#include <QWidget>

#include "platform/linux/qt/ViewNative.h"

namespace qt {

/// Passes events and painting to the view's native part. The view may be gone while the widget still finishes an event
/// of its own: the native part then is null and the widget does nothing more.
class ViewWidget final : public QWidget {
 public:
  explicit ViewWidget(ns::View::Native& native);

  ns::View::Native* native() const { return native_; }
  /// Takes the widget out of its window. Not to the top: there the toolkit would give it a window of its own.
  void leave();
  /// Leaves the tree at once and dies as soon as it may.
  void release();
  /// The bounds of the view within the widget.
  QRectF contentBounds() const;
  /// Applies the view's cursor rectangles.
  void updateCursor(QPointF point);

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;

 private:
  QPointF local(QPointF point) const;

  ns::View::Native* native_;
};

}  // namespace qt
