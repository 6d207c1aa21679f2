#include "platform/portable/ApplicationServices.h"

extern "C" {

bool CGRectContainsPoint(CGRect rect, CGPoint point) {
  return point.x >= CGRectGetMinX(rect) && point.x < CGRectGetMaxX(rect) && point.y >= CGRectGetMinY(rect) &&
         point.y < CGRectGetMaxY(rect);
}

bool CGRectEqualToRect(CGRect one, CGRect other) {
  return one.origin.x == other.origin.x && one.origin.y == other.origin.y && one.size.width == other.size.width &&
         one.size.height == other.size.height;
}

}  // extern "C"
