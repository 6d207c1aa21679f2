// Which window button a click hit, and what that means. All of this runs while the system holds the click.
#include <string_view>

#include "Ostrel/ElementAttributes.h"
#include "Ostrel/OstrelController.h"

namespace ostrel {

namespace {

constexpr std::string_view yellowButtonEnabledKey = "behavior.yellowButtonEnabled";
constexpr std::string_view greenButtonEnabledKey = "behavior.greenButtonEnabled";
constexpr std::string_view redButtonHidesWindowKey = "behavior.redButtonHidesWindow";

// Bounds on the questions asked of the application while the click waits.
constexpr int buttonSearchLimit = 6;
constexpr int windowSearchLimit = 12;

bool attributeEquals(AXUIElementRef element, CFStringRef name, CFStringRef wanted) {
  const auto value = copyAttribute(element, name);
  return value && CFEqual(value.get(), wanted);
}

bool isWindowButton(AXUIElementRef element) {
  if (!attributeEquals(element, kAXRoleAttribute, CFSTR("AXButton"))) return false;
  const auto subrole = copyAttribute(element, kAXSubroleAttribute);
  if (!subrole) return false;
  for (const CFStringRef each :
       {CFSTR("AXMinimizeButton"), CFSTR("AXFullScreenButton"), CFSTR("AXZoomButton"), CFSTR("AXCloseButton")}) {
    if (CFEqual(subrole.get(), each)) return true;
  }
  return false;
}

bool isWindow(AXUIElementRef element) { return attributeEquals(element, kAXRoleAttribute, CFSTR("AXWindow")); }

/// The first of at most `limit` elements, upwards from `start`, that passes the test. The parent of the last one is not
/// asked for.
CFRef<AXUIElementRef> firstUpwards(AXUIElementRef start, int limit, bool (*test)(AXUIElementRef)) {
  auto element = CFRef<AXUIElementRef>::retain(start);
  for (int examined = 1; element; ++examined) {
    if (test(element.get())) return element;
    if (examined == limit) break;
    element = elementAttribute(element.get(), kAXParentAttribute);
  }
  return {};
}

bool isTrueUnlessStored(const ns::UserDefaults& defaults, std::string_view key) {
  return !defaults.objectForKey(key) || defaults.boolForKey(key);
}

}  // namespace

std::optional<WindowAction> OstrelController::actionForClick(CGEventType type, CGPoint location) const {
  if (type != kCGEventLeftMouseDown && type != kCGEventRightMouseDown) return std::nullopt;

  AXUIElementRef hit = nullptr;
  if (AXUIElementCopyElementAtPosition(systemWideElement_.get(), static_cast<float>(location.x),
                                       static_cast<float>(location.y), &hit) != kAXErrorSuccess) {
    return std::nullopt;
  }
  const auto hitElement = CFRef<AXUIElementRef>::adopt(hit);
  if (!hitElement) return std::nullopt;

  const auto button = windowButtonElement(hitElement.get());
  if (!button) return std::nullopt;
  const auto subrole = stringAttribute(button.get(), kAXSubroleAttribute);
  if (!subrole) return std::nullopt;
  const auto window = containingWindow(button.get());
  if (!window) return std::nullopt;
  if (isWindowExcluded(window.get())) return std::nullopt;
  if (type != kCGEventLeftMouseDown) return std::nullopt;

  if (*subrole == "AXMinimizeButton") {
    if (interceptsYellowButton()) return WindowAction{WindowAction::Kind::CenterHorizontally, window};
  } else if (*subrole == "AXFullScreenButton" || *subrole == "AXZoomButton") {
    if (interceptsGreenButton()) return WindowAction{WindowAction::Kind::FillWithMargins, window};
  } else if (*subrole == "AXCloseButton") {
    // The preference first: most people leave it off, and then the window is not asked anything.
    if (defaults_->boolForKey(redButtonHidesWindowKey) && windowCanBeMinimized(window.get())) {
      return WindowAction{WindowAction::Kind::Hide, window};
    }
  }
  return std::nullopt;
}

bool OstrelController::interceptsYellowButton() const { return isTrueUnlessStored(*defaults_, yellowButtonEnabledKey); }

bool OstrelController::interceptsGreenButton() const { return isTrueUnlessStored(*defaults_, greenButtonEnabledKey); }

bool OstrelController::isWindowExcluded(AXUIElementRef window) const {
  const auto excluded = excludedPIDs();
  if (excluded.empty()) return false;
  pid_t pid = 0;
  if (AXUIElementGetPid(window, &pid) != kAXErrorSuccess || pid < 1) return false;
  return excluded.contains(pid);
}

CFRef<AXUIElementRef> windowButtonElement(AXUIElementRef start) {
  return firstUpwards(start, buttonSearchLimit, isWindowButton);
}

CFRef<AXUIElementRef> containingWindow(AXUIElementRef start) {
  return firstUpwards(start, windowSearchLimit, isWindow);
}

bool windowCanBeMinimized(AXUIElementRef window) {
  const auto button = elementAttribute(window, kAXMinimizeButtonAttribute);
  return button && boolAttribute(button.get(), kAXEnabledAttribute).value_or(false);
}

}  // namespace ostrel
