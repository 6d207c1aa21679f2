#include "platform/Window.h"

#import "platform/macos/Bridge.h"
#import "platform/macos/ViewNative.h"

@interface OstrelWindowDelegate : NSObject <NSWindowDelegate> {
 @public
  std::weak_ptr<ns::WindowDelegate> delegate;
}
@end

@implementation OstrelWindowDelegate

// Closing alone leaves the field editor where it is, with what was typed.
- (void)windowWillClose:(NSNotification*)notification {
  [static_cast<NSWindow*>(notification.object) makeFirstResponder:nil];
  if (const auto strong = delegate.lock()) ns::callBack([&] { strong->windowWillClose(); });
}

- (void)windowDidBecomeKey:(NSNotification*)__unused notification {
  if (const auto strong = delegate.lock()) ns::callBack([&] { strong->windowDidBecomeKey(); });
}

@end

/// Without a main menu nothing carries the usual command keys out: this window does.
@interface OstrelWindow : NSWindow
@end

@implementation OstrelWindow

- (BOOL)performKeyEquivalent:(NSEvent*)event {
  if ([super performKeyEquivalent:event]) return YES;
  constexpr NSEventModifierFlags modifierKeys =
      NSEventModifierFlagCommand | NSEventModifierFlagShift | NSEventModifierFlagOption | NSEventModifierFlagControl;
  if ((event.modifierFlags & modifierKeys) != NSEventModifierFlagCommand) return NO;
  NSDictionary<NSString*, NSString*>* actions = @{
    @"w" : @"performClose:",
    @"x" : @"cut:",
    @"c" : @"copy:",
    @"v" : @"paste:",
    @"a" : @"selectAll:",
  };
  NSString* action = actions[event.characters.lowercaseString];
  return action != nil && [NSApp sendAction:NSSelectorFromString(action) to:nil from:self];
}

@end

namespace ns {

struct Window::Native {
  NSWindow* window;
  OstrelWindowDelegate* delegate;
  std::shared_ptr<View> contentView;
};

Window::Window(CGRect contentRect, WindowStyleMask styleMask) : native_(std::make_unique<Native>()) {
  assertMainThread();
  native_->window = [[OstrelWindow alloc] initWithContentRect:contentRect
                                                    styleMask:styleMask
                                                      backing:NSBackingStoreBuffered
                                                        defer:NO];
  // Closing hides it; this object owns it.
  native_->window.releasedWhenClosed = NO;
  // Wherever it was left, it comes to the person and does not take them to another space.
  native_->window.collectionBehavior = NSWindowCollectionBehaviorMoveToActiveSpace;
  // Views come and go while it is open.
  native_->window.autorecalculatesKeyViewLoop = YES;
  native_->delegate = [[OstrelWindowDelegate alloc] init];
  native_->window.delegate = native_->delegate;
}

Window::~Window() {
  native_->window.delegate = nil;
  [native_->window close];
}

void Window::setTitle(const std::string& title) { native_->window.title = toNSString(title); }
void Window::setDelegate(std::weak_ptr<WindowDelegate> delegate) { native_->delegate->delegate = std::move(delegate); }

void Window::setContentView(const std::shared_ptr<View>& view) {
  native_->contentView = view;
  NSView* contentView = view->native().view;
  // The window sizes its content view by its frame, not by constraints.
  contentView.translatesAutoresizingMaskIntoConstraints = YES;
  contentView.autoresizingMask = NSViewWidthSizable | NSViewHeightSizable;
  native_->window.contentView = contentView;
}
std::shared_ptr<View> Window::contentView() const { return native_->contentView; }

void Window::setContentSize(CGSize size) { [native_->window setContentSize:size]; }
void Window::setContentMinSize(CGSize size) { native_->window.contentMinSize = size; }
void Window::setMinSize(CGSize size) { native_->window.minSize = size; }
void Window::center() { [native_->window center]; }
void Window::makeKeyAndOrderFront() {
  [native_->window makeKeyAndOrderFront:nil];
  // The system may refuse to activate an application that no event of the person's has reached, and then leaves its
  // windows behind those of others.
  [native_->window orderFrontRegardless];
}
void Window::close() { [native_->window performClose:nil]; }
bool Window::isVisible() const { return native_->window.visible; }
bool Window::isFirstResponder(const View& view) const { return native_->window.firstResponder == view.native().view; }
void Window::makeFirstResponder(View& view) { [native_->window makeFirstResponder:view.native().view]; }

}  // namespace ns
