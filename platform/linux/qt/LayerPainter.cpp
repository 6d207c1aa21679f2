#include "platform/linux/qt/LayerPainter.h"

#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

#include "platform/linux/qt/Appearance.h"
#include "platform/linux/qt/ViewWidget.h"

namespace qt {
namespace {

/// How far a shadow reaches beyond what casts it, its offset apart.
double shadowReach(const ns::Shadow& shadow) { return 2 * shadow.radius; }

/// How far a point is outside a rounded rectangle around the origin; negative inside.
double distanceFrom(QPointF point, QSizeF size, double cornerRadius) {
  const double across = std::abs(point.x()) - size.width() / 2 + cornerRadius;
  const double down = std::abs(point.y()) - size.height() / 2 + cornerRadius;
  return std::min(std::max(across, down), 0.0) + std::hypot(std::max(across, 0.0), std::max(down, 0.0)) - cornerRadius;
}

/// A blurred rounded rectangle, pixel by pixel: of the few shades that a faint shadow has, none may be left out, or one
/// sees their edges.
void paintShadow(QPainter& painter, const ns::Shadow& shadow, const QRectF& bounds, double cornerRadius) {
  const double reach = shadowReach(shadow);
  // So that it has faded where it is cut off.
  const double spread = 0.8 * shadow.radius;
  const QRectF base = bounds.translated(shadow.offset.width, -shadow.offset.height);
  const QRectF area = base.adjusted(-reach, -reach, reach, reach);
  const double ratio = painter.device()->devicePixelRatioF();
  QImage picture((area.size() * ratio).toSize(), QImage::Format_ARGB32);
  picture.setDevicePixelRatio(ratio);
  const QColor tint = color(shadow.color);
  const double whole = 255 * tint.alphaF() * shadow.opacity;
  for (int y = 0; y < picture.height(); ++y) {
    auto* const line = reinterpret_cast<QRgb*>(picture.scanLine(y));
    for (int x = 0; x < picture.width(); ++x) {
      const QPointF fromCenter = area.topLeft() + QPointF(x + 0.5, y + 0.5) / ratio - base.center();
      const double share = std::erfc(distanceFrom(fromCenter, base.size(), cornerRadius) / spread / M_SQRT2) / 2;
      line[x] = qRgba(tint.red(), tint.green(), tint.blue(), static_cast<int>(whole * share + 0.5));
    }
  }
  painter.drawImage(area.topLeft(), picture);
}

void paintGradient(QPainter& painter, const ns::GradientLayer& gradient) {
  const QRectF frame(gradient.frame.origin.x, gradient.frame.origin.y, gradient.frame.size.width,
                     gradient.frame.size.height);
  const auto at = [&](CGPoint unit) {
    return QPointF(frame.left() + unit.x * frame.width(), frame.top() + unit.y * frame.height());
  };
  QLinearGradient fill(at(gradient.startPoint), at(gradient.endPoint));
  for (std::size_t i = 0; i < gradient.colors.size(); ++i) {
    const double place =
        gradient.colors.size() < 2 ? 0 : static_cast<double>(i) / static_cast<double>(gradient.colors.size() - 1);
    fill.setColorAt(place, color(gradient.colors[i]));
  }
  painter.setPen(Qt::NoPen);
  painter.setBrush(fill);
  painter.drawRoundedRect(frame, gradient.cornerRadius, gradient.cornerRadius);
}

}  // namespace

void paintLayer(QPainter& painter, const ns::Layer& layer, const QRectF& bounds) {
  if (layer.shadow) paintShadow(painter, *layer.shadow, bounds, layer.cornerRadius);
  if (layer.backgroundColor) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(fillColor(*layer.backgroundColor));
    painter.drawRoundedRect(bounds, layer.cornerRadius, layer.cornerRadius);
  }
  if (layer.sublayer) paintGradient(painter, *layer.sublayer);
  if (layer.borderWidth > 0 && layer.borderColor) {
    const double half = layer.borderWidth / 2;
    const double radius = std::max(0.0, layer.cornerRadius - half);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(color(*layer.borderColor), layer.borderWidth));
    painter.drawRoundedRect(bounds.adjusted(half, half, -half, -half), radius, radius);
  }
}

int shadowReach(const ns::Layer& layer) {
  if (!layer.shadow) return 0;
  const auto& shadow = *layer.shadow;
  return static_cast<int>(
      std::ceil(shadowReach(shadow) + std::max(std::abs(shadow.offset.width), std::abs(shadow.offset.height))));
}

void clipToAncestors(QPainter& painter, const ViewWidget& widget) {
  for (auto* parent = widget.parentWidget(); parent && !parent->isWindow(); parent = parent->parentWidget()) {
    const auto* ancestor = dynamic_cast<ViewWidget*>(parent);
    if (!ancestor || !ancestor->native()) return;
    const auto& layer = ancestor->native()->layer;
    if (!layer.masksToBounds || layer.cornerRadius <= 0) continue;
    // Inside the border, which would otherwise lie under what reaches the edge.
    const double inset = layer.borderWidth;
    const QRectF bounds = ancestor->contentBounds()
                              .translated(-QPointF(widget.mapTo(parent, QPoint())))
                              .adjusted(inset, inset, -inset, -inset);
    const double radius = std::max(0.0, layer.cornerRadius - inset);
    // Away from the corners and the border the widgets' own clipping does.
    const QRectF own = widget.rect();
    const bool besideCorners =
        bounds.adjusted(radius, 0, -radius, 0).contains(own) || bounds.adjusted(0, radius, 0, -radius).contains(own);
    if (besideCorners) continue;
    QPainterPath path;
    path.addRoundedRect(bounds, radius, radius);
    painter.setClipPath(path, Qt::IntersectClip);
  }
}

}  // namespace qt
