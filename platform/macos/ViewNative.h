// The framework's view inside ns::View, and what the bridge keeps beside it.
#pragma once

#import <AppKit/AppKit.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/View.h"

namespace ns {

struct View::Native {
  /// `nativeView` is laid out by constraints alone, but for the content view of a window.
  explicit Native(NSView* nativeView) : view(nativeView) { view.translatesAutoresizingMaskIntoConstraints = NO; }
  /// Views that keep more derive from this.
  virtual ~Native() = default;

  NSView* view;
  /// Not owned; the superview owns this view.
  View* superview = nullptr;
  std::vector<std::shared_ptr<View>> subviews;
  Layer layer;
  std::string identifier;
  /// Targets and delegates of `view`, which the framework holds weakly.
  id target = nil;
  id delegate = nil;
};

NSColor* toNSColor(const Color& color);

}  // namespace ns

/// Forwards the operations that C++ views override. `owner` is cleared by the C++ view's destructor.
@interface OstrelView : NSView {
 @public
  ns::View* owner;
}
- (void)passMouseDown;
@end
