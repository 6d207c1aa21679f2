// Faces and small glyphs that several controls share.
#pragma once

#include <QRectF>

class QPainter;
class QColor;

namespace qt {

/// The raised rounded face of a push button.
void paintBezel(QPainter& painter, const QRectF& bounds, double cornerRadius, bool isPressed);
/// An arrow head of this width around `center`, pointing up or down.
void paintChevron(QPainter& painter, QPointF center, double width, bool pointsUp, const QColor& tint);

}  // namespace qt
