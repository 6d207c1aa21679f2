#include "Ostrel/OstrelController.h"

#include <cstdint>
#include <utility>

#include "platform/AutoreleasePool.h"
#include "platform/RunLoop.h"

namespace ostrel {

namespace {

/// A click with one of these held is the button's own. Caps Lock is not among them.
constexpr CGEventFlags bypassModifiers =
    kCGEventFlagMaskShift | kCGEventFlagMaskControl | kCGEventFlagMaskAlternate | kCGEventFlagMaskCommand;

bool isTapDisabledNotice(CGEventType type) {
  return static_cast<std::uint32_t>(type) >= static_cast<std::uint32_t>(kCGEventTapDisabledByTimeout);
}

}  // namespace

std::shared_ptr<OstrelController> OstrelController::create() {
  const std::shared_ptr<OstrelController> controller(new OstrelController);
  controller->setUpExclusions();  // the observers need a weak reference, which construction cannot give
  return controller;
}

OstrelController::OstrelController()
    : defaults_(ns::UserDefaults::standardUserDefaults()),
      systemWideElement_(CFRef<AXUIElementRef>::adopt(AXUIElementCreateSystemWide())) {}

OstrelController::~OstrelController() {
  for (const auto observer : workspaceObservers_) {
    ns::Workspace::sharedWorkspace()->notificationCenter().removeObserver(observer);
  }
  stop();
}

bool OstrelController::startIfPossible() {
  if (!isEnabled_) {
    stop();
    return false;
  }
  if (!AXIsProcessTrusted()) {
    stop();
    lastError_ = "waiting for Accessibility";
    return false;
  }
  // A tap can end without a notice, over sleep or a restart of the desktop.
  if (eventTap_ && !CFMachPortIsValid(eventTap_.get())) stop();
  if (eventTap_) {
    if (!CGEventTapIsEnabled(eventTap_.get())) CGEventTapEnable(eventTap_.get(), true);
    lastError_.reset();
    return true;
  }

  const CGEventMask mouseDowns = CGEventMaskBit(kCGEventLeftMouseDown) | CGEventMaskBit(kCGEventRightMouseDown);
  auto tap = CFRef<CFMachPortRef>::adopt(CGEventTapCreate(
      kCGSessionEventTap, kCGHeadInsertEventTap, kCGEventTapOptionDefault, mouseDowns, ostrelEventTapCallback, this));
  if (!tap) {
    lastError_ = "event tap could not start";
    return false;
  }
  auto source = CFRef<CFRunLoopSourceRef>::adopt(CFMachPortCreateRunLoopSource(kCFAllocatorDefault, tap.get(), 0));
  if (!source) {
    CFMachPortInvalidate(tap.get());
    lastError_ = "run loop source could not start";
    return false;
  }

  eventTap_ = std::move(tap);
  runLoopSource_ = std::move(source);
  CFRunLoopAddSource(CFRunLoopGetMain(), runLoopSource_.get(), kCFRunLoopCommonModes);
  CGEventTapEnable(eventTap_.get(), true);
  lastError_.reset();
  return true;
}

void OstrelController::stop() {
  if (runLoopSource_) {
    CFRunLoopRemoveSource(CFRunLoopGetMain(), runLoopSource_.get(), kCFRunLoopCommonModes);
    runLoopSource_ = {};
  }
  if (eventTap_) {
    CFMachPortInvalidate(eventTap_.get());
    eventTap_ = {};
  }
}

CGEventRef ostrelEventTapCallback(CGEventTapProxy, CGEventType type, CGEventRef event, void* refcon) {
  if (refcon == nullptr) return event;
  const ns::AutoreleasePool pool;
  const auto controller = static_cast<OstrelController*>(refcon)->shared_from_this();
  return controller->handleEvent(type, event);
}

CGEventRef OstrelController::handleEvent(CGEventType type, CGEventRef event) {
  if (isTapDisabledNotice(type)) {
    // Without consent it stays off until the next start: macOS lets every click wait for a tap whose process is no
    // longer trusted, and one that comes on again at each notice takes the mouse from the whole desktop.
    if (eventTap_ && AXIsProcessTrusted()) CGEventTapEnable(eventTap_.get(), true);
    return event;
  }
  if (!isEnabled_) return event;
  if (!AXIsProcessTrusted()) return event;
  if ((CGEventGetFlags(event) & bypassModifiers) != 0) return event;

  auto action = actionForClick(type, CGEventGetLocation(event));
  if (!action) return event;
  // Queued, so that the window changes only after its mouse-down has been swallowed and the callback has returned.
  ns::dispatchAsyncOnMainQueue([weakSelf = weak_from_this(), action = *std::move(action)] {
    if (const auto self = weakSelf.lock()) self->perform(action);
  });
  return nullptr;
}

void OstrelController::perform(const WindowAction& action) const {
  switch (action.kind) {
    case WindowAction::Kind::CenterHorizontally:
      return centerHorizontally(action.window.get());
    case WindowAction::Kind::Hide:
      return hide(action.window.get());
    case WindowAction::Kind::FillWithMargins:
      return fillWithMargins(action.window.get());
  }
}

}  // namespace ostrel
