// Pixels of the root window and points of the global display space.
#pragma once

#include <cmath>

#include "platform/portable/ApplicationServices.h"

namespace x11 {

/// Everything in this folder reckons in pixels, as the X server does; whoever asks the desktop reckons in points. At a
/// scale of 1 all of these are the identity.
class Points {
 public:
  /// How many pixels a point is wide; more than 0.
  explicit constexpr Points(double scale) : scale_(scale) {}
  double scale() const { return scale_; }

  CGPoint fromPixels(CGPoint point) const { return {point.x / scale_, point.y / scale_}; }
  CGSize fromPixels(CGSize size) const { return {size.width / scale_, size.height / scale_}; }
  CGRect fromPixels(CGRect rect) const { return {fromPixels(rect.origin), fromPixels(rect.size)}; }

  /// Not rounded: where an edge falls is decided when position and size are known together.
  CGPoint toPixels(CGPoint point) const { return {point.x * scale_, point.y * scale_}; }
  CGSize toPixels(CGSize size) const { return {size.width * scale_, size.height * scale_}; }
  /// The pixel that a point came from, even if it has been a single-precision number on its way.
  CGPoint pixelAt(CGPoint point) const { return {std::round(point.x * scale_), std::round(point.y * scale_)}; }

 private:
  double scale_;
};

}  // namespace x11
