// What the actions do to a window. Each runs as a task of its own after its click has been swallowed.
#include <vector>

#include "Ostrel/ElementAttributes.h"
#include "Ostrel/Geometry.h"
#include "Ostrel/OstrelController.h"

namespace ostrel {

namespace {

/// A write that the application refuses leaves the window as it is; nobody could act on the error.
void writeBoxed(AXUIElementRef window, CFStringRef name, AXValueType type, const void* value) {
  const auto boxed = CFRef<AXValueRef>::adopt(AXValueCreate(type, value));
  if (boxed) AXUIElementSetAttributeValue(window, name, boxed.get());
}

void writePosition(AXUIElementRef window, CGPoint position) {
  writeBoxed(window, kAXPositionAttribute, kAXValueTypeCGPoint, &position);
}

void writeSize(AXUIElementRef window, CGSize size) { writeBoxed(window, kAXSizeAttribute, kAXValueTypeCGSize, &size); }

struct PlacedWindow {
  CGPoint position;
  CGSize size;
  DisplayInfo display;
};

std::optional<PlacedWindow> placedWindow(AXUIElementRef window) {
  const auto position = cgPointAttribute(window, kAXPositionAttribute);
  if (!position) return std::nullopt;
  const auto size = cgSizeAttribute(window, kAXSizeAttribute);
  if (!size) return std::nullopt;
  auto display = displayContainingWindow(*position, *size);
  if (!display) return std::nullopt;
  return PlacedWindow{*position, *size, *std::move(display)};
}

}  // namespace

std::optional<DisplayInfo> displayContainingWindow(CGPoint position, CGSize size) {
  auto displays = activeDisplays();
  std::vector<CGRect> bounds;
  bounds.reserve(displays.size());
  for (const DisplayInfo& display : displays) bounds.push_back(display.bounds);
  const auto index = containingOrNearest(bounds, centerOf(position, size));
  if (!index) return std::nullopt;
  return std::move(displays[*index]);
}

void OstrelController::centerHorizontally(AXUIElementRef window) const {
  const auto placed = placedWindow(window);
  if (!placed) return;
  writePosition(window, horizontallyCentered(placed->display.bounds, placed->position, placed->size));
}

void OstrelController::fillWithMargins(AXUIElementRef window) const {
  const auto placed = placedWindow(window);
  if (!placed) return;
  const CGRect frame = filledFrame(placed->display.bounds, margins(placed->display.id));
  // The second move: an application that keeps its window on the screen may have shifted the first one, while the
  // window still had its old size.
  writePosition(window, frame.origin);
  writeSize(window, frame.size);
  writePosition(window, frame.origin);
}

void OstrelController::hide(AXUIElementRef window) const {
  pid_t pid = 0;
  AXUIElementGetPid(window, &pid);  // stays 0 when it fails
  if (pid >= 1) {
    const auto application = ns::RunningApplication::runningApplicationWithProcessIdentifier(pid);
    if (application != nullptr && application->hide()) return;
    const auto element = CFRef<AXUIElementRef>::adopt(AXUIElementCreateApplication(pid));
    if (AXUIElementSetAttributeValue(element.get(), kAXHiddenAttribute, kCFBooleanTrue) == kAXErrorSuccess) return;
  }
  AXUIElementSetAttributeValue(window, kAXMinimizedAttribute, kCFBooleanTrue);
}

}  // namespace ostrel
