// Draws layers.
#pragma once

#include <QRectF>

class QPainter;

namespace ns {
struct Layer;
}

namespace qt {

class ViewWidget;

/// The shadow, background, gradient and border of a layer with these bounds.
void paintLayer(QPainter& painter, const ns::Layer& layer, const QRectF& bounds);
/// How far the layer's shadow reaches beyond its bounds.
int shadowReach(const ns::Layer& layer);
/// Confines drawing to the rounded ancestors that clip.
void clipToAncestors(QPainter& painter, const ViewWidget& widget);

}  // namespace qt
