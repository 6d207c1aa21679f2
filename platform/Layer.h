// What is drawn behind a view's content.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "platform/ApplicationServices.h"
#include "platform/Color.h"

namespace ns {

/// A shadow under a view; lengths in points, y growing upwards.
struct Shadow {
  Color color;
  CGSize offset;
  double radius;
  double opacity;
};

/// A gradient between two unit points. Plain state; drawn by the view whose layer holds it.
struct GradientLayer {
  std::vector<Color> colors;
  CGPoint startPoint;
  CGPoint endPoint;
  double cornerRadius = 0;
  bool masksToBounds = false;
  /// In the coordinates of the view that draws it.
  CGRect frame;
};

/// The look of a layer-backed view. Plain state: after changing it tell the view with View::setLayer().
struct Layer {
  std::optional<Color> backgroundColor;
  double cornerRadius = 0;
  double borderWidth = 0;
  std::optional<Color> borderColor;
  /// Whether subviews are clipped to the rounded bounds.
  bool masksToBounds = false;
  std::optional<Shadow> shadow;
  std::shared_ptr<GradientLayer> sublayer;
};

}  // namespace ns
