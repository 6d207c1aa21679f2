#include "platform/linux/qt/Bezel.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>

#include "platform/linux/qt/Appearance.h"

namespace qt {

void paintBezel(QPainter& painter, const QRectF& bounds, double cornerRadius, bool isPressed) {
  painter.setPen(Qt::NoPen);
  painter.setBrush(color(isPressed ? ControlColor::PressedFace : ControlColor::Face));
  painter.drawRoundedRect(bounds, cornerRadius, cornerRadius);
  painter.setBrush(Qt::NoBrush);
  // A little stronger at the bottom, as if light came from above.
  QLinearGradient edge(bounds.topLeft(), bounds.bottomLeft());
  edge.setColorAt(0, color(ControlColor::Edge));
  edge.setColorAt(0.85, color(ControlColor::Edge));
  edge.setColorAt(1, color(ControlColor::LowerEdge));
  painter.setPen(QPen(edge, 1));
  painter.drawRoundedRect(bounds.adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius - 0.5, cornerRadius - 0.5);
}

void paintChevron(QPainter& painter, QPointF center, double width, bool pointsUp, const QColor& tint) {
  const double half = width / 2;
  const double rise = (pointsUp ? -1 : 1) * half / 2;
  QPainterPath path(center + QPointF(-half, -rise));
  path.lineTo(center + QPointF(0, rise));
  path.lineTo(center + QPointF(half, -rise));
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(tint, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.drawPath(path);
}

}  // namespace qt
