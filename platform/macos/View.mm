#include "platform/View.h"

#include <QuartzCore/QuartzCore.h>

#include <algorithm>

#import "platform/macos/Bridge.h"
#import "platform/macos/ViewNative.h"

namespace ns {
namespace {

OstrelView* makeNativeView(View* owner, CGRect frame) {
  assertMainThread();
  OstrelView* view = [[OstrelView alloc] initWithFrame:frame];
  view->owner = owner;
  return view;
}

OstrelView* bridgingView(const View& view) {
  NSView* native = view.native().view;
  return [native isKindOfClass:OstrelView.class] ? static_cast<OstrelView*>(native) : nil;
}

/// For the view rather than its layer, whose shadow the view resets.
NSShadow* toNSShadow(const std::optional<Shadow>& look) {
  if (!look) return nil;
  NSShadow* shadow = [[NSShadow alloc] init];
  shadow.shadowColor = toNSColor(look->color.colorWithAlphaComponent(look->color.alphaComponent() * look->opacity));
  shadow.shadowOffset = look->offset;
  shadow.shadowBlurRadius = look->radius;
  return shadow;
}

/// Has an edit in the view end as when the keyboard focus goes elsewhere, so that what was typed counts.
void endEditing(NSView* view) {
  NSResponder* responder = view.window.firstResponder;
  const bool isWithin = [responder isKindOfClass:NSView.class] && [static_cast<NSView*>(responder) isDescendantOf:view];
  if (isWithin) [view.window makeFirstResponder:nil];
}

NSLayoutConstraintOrientation toNSOrientation(LayoutOrientation orientation) {
  return orientation == LayoutOrientation::Horizontal ? NSLayoutConstraintOrientationHorizontal
                                                      : NSLayoutConstraintOrientationVertical;
}

}  // namespace

View::View() : View(CGRectZero) {}
View::View(CGRect frame) : native_(std::make_unique<Native>(makeNativeView(this, frame))) {}
View::View(std::unique_ptr<Native> native) : native_(std::move(native)) { assertMainThread(); }

View::~View() {
  if (OstrelView* view = bridgingView(*this)) view->owner = nullptr;
  for (const auto& subview : native_->subviews) {
    subview->native().superview = nullptr;
    [subview->native().view removeFromSuperview];
  }
}

void View::addSubview(const std::shared_ptr<View>& view) {
  const auto kept = view;
  kept->removeFromSuperview();
  native_->subviews.push_back(kept);
  kept->native().superview = this;
  [native_->view addSubview:kept->native().view];
}

void View::removeFromSuperview() {
  View* const parent = native_->superview;
  if (parent == nullptr) return;
  endEditing(native_->view);
  native_->superview = nullptr;
  [native_->view removeFromSuperview];
  // Last, because the superview may hold the only reference.
  std::erase_if(parent->native_->subviews, [this](const auto& subview) { return subview.get() == this; });
}

const std::vector<std::shared_ptr<View>>& View::subviews() const { return native_->subviews; }
View* View::superview() const { return native_->superview; }

CGRect View::frame() const { return native_->view.frame; }
CGRect View::bounds() const { return native_->view.bounds; }
void View::layoutSubtreeIfNeeded() { [native_->view layoutSubtreeIfNeeded]; }

void View::setContentHuggingPriority(LayoutPriority priority, LayoutOrientation orientation) {
  [native_->view setContentHuggingPriority:priority forOrientation:toNSOrientation(orientation)];
}
void View::setContentCompressionResistancePriority(LayoutPriority priority, LayoutOrientation orientation) {
  [native_->view setContentCompressionResistancePriority:priority forOrientation:toNSOrientation(orientation)];
}

void View::setHidden(bool hidden) { native_->view.hidden = hidden; }
bool View::isHidden() const { return native_->view.hidden; }

void View::setLayer(const Layer& layer) {
  native_->layer = layer;
  native_->view.wantsLayer = YES;
  native_->view.shadow = toNSShadow(layer.shadow);
  native_->view.needsDisplay = YES;
}
const Layer& View::layer() const { return native_->layer; }

void View::setIdentifier(const std::string& identifier) {
  native_->identifier = identifier;
  native_->view.identifier = identifier.empty() ? nil : toNSString(identifier);
}
const std::string& View::identifier() const { return native_->identifier; }

void View::setAccessibilityLabel(const std::string& label) { native_->view.accessibilityLabel = toNSString(label); }
void View::setAccessibilityButton(bool selected) {
  native_->view.accessibilityElement = YES;
  native_->view.accessibilityRole = NSAccessibilityButtonRole;
  native_->view.accessibilitySelected = selected;
}

void View::mouseDown(const MouseEvent&) { [bridgingView(*this) passMouseDown]; }
void View::layout() {}
bool View::isFlipped() const { return false; }
void View::resetCursorRects() {}

void View::addCursorRect(CGRect rect, Cursor cursor) {
  [native_->view addCursorRect:rect
                        cursor:cursor == Cursor::PointingHand ? NSCursor.pointingHandCursor : NSCursor.arrowCursor];
}

}  // namespace ns

@implementation OstrelView {
  NSEvent* _mouseDown;
  CAGradientLayer* _gradient;
}

- (BOOL)isFlipped {
  return owner != nullptr && owner->isFlipped();
}

- (void)layout {
  [super layout];
  if (owner == nullptr) return;
  ns::callBack([&] { owner->layout(); });
}

- (void)resetCursorRects {
  [super resetCursorRects];
  if (owner != nullptr) ns::callBack([&] { owner->resetCursorRects(); });
}

// Labels and pictures take presses without using them; they are their container's.
- (NSView*)hitTest:(NSPoint)point {
  NSView* hit = [super hitTest:point];
  const bool isLabel = [hit isKindOfClass:NSTextField.class] && !static_cast<NSTextField*>(hit).selectable;
  return isLabel || [hit isKindOfClass:NSImageView.class] ? self : hit;
}

- (void)mouseDown:(NSEvent*)event {
  if (owner == nullptr) return;
  // The handler may release the view.
  const auto kept = owner->weak_from_this().lock();
  const CGPoint location = [self convertPoint:event.locationInWindow fromView:nil];
  _mouseDown = event;
  ns::callBack([&] { owner->mouseDown({location}); });
  _mouseDown = nil;
}

- (void)passMouseDown {
  if (_mouseDown != nil) [super mouseDown:_mouseDown];
}

// Whether setAccessibilityButton() made it one.
- (BOOL)isPressable {
  return [self.accessibilityRole isEqualToString:NSAccessibilityButtonRole];
}

// Like the system's own buttons: only for people who move between all controls by keyboard.
- (BOOL)acceptsFirstResponder {
  return self.isPressable && NSApp.fullKeyboardAccessEnabled;
}

- (void)keyDown:(NSEvent*)event {
  if (![event.characters isEqualToString:@" "] || ![self accessibilityPerformPress]) [super keyDown:event];
}

- (NSRect)focusRingMaskBounds {
  return self.bounds;
}

- (void)drawFocusRingMask {
  const CGFloat radius = owner != nullptr ? owner->layer().cornerRadius : 0;
  [[NSBezierPath bezierPathWithRoundedRect:self.bounds xRadius:radius yRadius:radius] fill];
}

- (BOOL)accessibilityPerformPress {
  if (owner == nullptr || !self.isPressable) return NO;
  const auto kept = owner->weak_from_this().lock();
  ns::callBack([&] { owner->mouseDown({CGPointMake(NSMidX(self.bounds), NSMidY(self.bounds))}); });
  return YES;
}

- (BOOL)wantsUpdateLayer {
  return YES;
}

// Called again whenever the look of the desktop changes, with the new look current, so that the layer's colours, which
// cannot follow by themselves, are made anew from the named ones.
- (void)updateLayer {
  if (owner == nullptr) return;
  const ns::Layer& look = owner->layer();
  CALayer* layer = self.layer;
  layer.backgroundColor = look.backgroundColor ? ns::toNSColor(*look.backgroundColor).CGColor : nil;
  layer.cornerRadius = look.cornerRadius;
  layer.borderWidth = look.borderWidth;
  layer.borderColor = look.borderColor ? ns::toNSColor(*look.borderColor).CGColor : nil;
  layer.masksToBounds = look.masksToBounds;
  // A layer without a view fades from one look to the next unless told not to.
  [CATransaction begin];
  CATransaction.disableActions = YES;
  [self updateGradient];
  [CATransaction commit];
}

- (void)viewDidChangeEffectiveAppearance {
  [super viewDidChangeEffectiveAppearance];
  self.needsDisplay = YES;
}

- (void)updateGradient {
  const auto& look = owner->layer().sublayer;
  if (!look) {
    [_gradient removeFromSuperlayer];
    _gradient = nil;
    return;
  }
  if (_gradient == nil) {
    _gradient = [CAGradientLayer layer];
    [self.layer insertSublayer:_gradient atIndex:0];
  }
  NSMutableArray* colors = [NSMutableArray array];
  for (const ns::Color& color : look->colors) [colors addObject:(__bridge id)ns::toNSColor(color).CGColor];
  _gradient.colors = colors;
  _gradient.startPoint = look->startPoint;
  _gradient.endPoint = look->endPoint;
  _gradient.cornerRadius = look->cornerRadius;
  _gradient.masksToBounds = look->masksToBounds;
  _gradient.frame = look->frame;
}

@end
