#include "Ostrel/Geometry.h"

#include <algorithm>

namespace ostrel {

namespace {

constexpr double half = 0.5;
constexpr double minimumFilledLength = 120;

double distanceOutside(double value, double minimum, double maximum) {
  if (value < minimum) return minimum - value;
  if (value > maximum) return value - maximum;
  return 0;
}

double squaredDistance(CGRect rect, CGPoint point) {
  const double dx = distanceOutside(point.x, CGRectGetMinX(rect), CGRectGetMaxX(rect));
  const double dy = distanceOutside(point.y, CGRectGetMinY(rect), CGRectGetMaxY(rect));
  return dx * dx + dy * dy;
}

}  // namespace

CGPoint centerOf(CGPoint position, CGSize size) {
  return CGPointMake(position.x + size.width * half, position.y + size.height * half);
}

std::optional<std::size_t> containingOrNearest(std::span<const CGRect> rects, CGPoint point) {
  for (std::size_t i = 0; i < rects.size(); ++i) {
    if (CGRectContainsPoint(rects[i], point)) return i;
  }
  if (rects.empty()) return std::nullopt;
  std::size_t best = 0;
  double bestDistance = squaredDistance(rects[0], point);
  for (std::size_t i = 1; i < rects.size(); ++i) {
    const double distance = squaredDistance(rects[i], point);
    if (distance < bestDistance) {
      best = i;
      bestDistance = distance;
    }
  }
  return best;
}

CGPoint horizontallyCentered(CGRect bounds, CGPoint position, CGSize size) {
  return CGPointMake(CGRectGetMinX(bounds) + (CGRectGetWidth(bounds) - size.width) * half, position.y);
}

CGRect filledFrame(CGRect bounds, const WindowMargins& margins) {
  const double width = std::max(CGRectGetWidth(bounds) - margins.left - margins.right, minimumFilledLength);
  const double height = std::max(CGRectGetHeight(bounds) - margins.top - margins.bottom, minimumFilledLength);
  return CGRectMake(CGRectGetMinX(bounds) + margins.left, CGRectGetMinY(bounds) + margins.top, width, height);
}

}  // namespace ostrel
