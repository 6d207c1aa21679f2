#include "platform/linux/qt/LayerPainter.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

#include "platform/linux/qt/Appearance.h"
#include "platform/linux/qt/ViewWidget.h"

namespace qt {
namespace {

/// A blurred rounded rectangle, as rings that add up to a smooth fall-off.
void paintShadow(QPainter& painter, const ns::Shadow& shadow, const QRectF& bounds, double cornerRadius) {
  QColor tint = color(shadow.color);
  const double reach = 2 * shadow.radius;
  constexpr int rings = 12;
  // Rings lie over each other, so that each adds the same small part of what the middle has.
  const double whole = tint.alphaF() * shadow.opacity;
  tint.setAlphaF(static_cast<float>(1 - std::pow(1 - std::min(whole, 0.99), 1.0 / rings)));
  painter.setPen(Qt::NoPen);
  painter.setBrush(tint);
  const QRectF base = bounds.translated(shadow.offset.width, -shadow.offset.height);
  for (int ring = 0; ring < rings; ++ring) {
    const double grow = reach * (1 - 2 * (ring + 0.5) / rings) * 0.75;
    const double radius = std::max(0.0, cornerRadius + grow);
    painter.drawRoundedRect(base.adjusted(-grow, -grow, grow, grow), radius, radius);
  }
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
    painter.setBrush(color(*layer.backgroundColor));
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
      std::ceil(2 * shadow.radius + std::max(std::abs(shadow.offset.width), std::abs(shadow.offset.height))));
}

void clipToAncestors(QPainter& painter, const ViewWidget& widget) {
  for (auto* parent = widget.parentWidget(); parent && !parent->isWindow(); parent = parent->parentWidget()) {
    const auto* ancestor = dynamic_cast<ViewWidget*>(parent);
    if (!ancestor || !ancestor->native()) return;
    const auto& layer = ancestor->native()->layer;
    if (!layer.masksToBounds || layer.cornerRadius <= 0) continue;
    const QRectF bounds = ancestor->contentBounds().translated(-QPointF(widget.mapTo(parent, QPoint())));
    // Away from the corners the widgets' own clipping does.
    const double radius = layer.cornerRadius;
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
