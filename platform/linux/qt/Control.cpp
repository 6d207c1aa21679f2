#include <QKeyEvent>

#include "platform/Controls.h"
#include "platform/linux/qt/ViewNative.h"
#include "platform/linux/qt/ViewWidget.h"

namespace qt {

void ControlNative::send() const {
  const auto keep = keepAlive();
  if (action) action();
}

bool PressableNative::isInside(QPointF point) const {
  return widget->contentBounds().translated(-outset, -outset).contains(point);
}

bool PressableNative::mousePressed(QPointF) {
  isTracking = isPressed = true;
  repaint();
  return true;
}

void PressableNative::mouseMoved(QPointF point) {
  const bool isPressedNow = isTracking && isInside(point);
  if (std::exchange(isPressed, isPressedNow) != isPressedNow) repaint();
}

void PressableNative::mouseReleased(QPointF) {
  isTracking = false;
  if (!std::exchange(isPressed, false)) return;
  repaint();
  press();
}

bool PressableNative::keyPressed(QKeyEvent& event) {
  if (event.key() != Qt::Key_Space) return false;
  if (!event.isAutoRepeat()) isPressed = true;
  repaint();
  return true;
}

void PressableNative::keyReleased(QKeyEvent& event) {
  if (event.key() != Qt::Key_Space || event.isAutoRepeat() || !std::exchange(isPressed, false)) return;
  repaint();
  press();
}

}  // namespace qt

namespace ns {

void Control::performClick() { native().press(); }

void Control::setAction(std::function<void()> action) {
  qt::nativeOf<qt::ControlNative>(*this).action = std::move(action);
}

}  // namespace ns
