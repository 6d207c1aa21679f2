#include "platform/Application.h"

#import "platform/macos/Bridge.h"
#import "platform/macos/Reopening.h"

@interface OstrelApplicationDelegate : NSObject <NSApplicationDelegate>
@end

@implementation OstrelApplicationDelegate {
 @public
  std::weak_ptr<ns::ApplicationDelegate> _delegate;
}

- (void)applicationDidFinishLaunching:(NSNotification*)__unused notification {
  if (const auto delegate = _delegate.lock()) ns::callBack([&] { delegate->applicationDidFinishLaunching(); });
}

- (void)applicationWillTerminate:(NSNotification*)__unused notification {
  if (const auto delegate = _delegate.lock()) ns::callBack([&] { delegate->applicationWillTerminate(); });
}

// NO: what there is to show is shown.
- (BOOL)applicationShouldHandleReopen:(NSApplication*)__unused application
                    hasVisibleWindows:(BOOL)__unused hasVisibleWindows {
  ns::reopen();
  return NO;
}

@end

namespace ns {
namespace {

// A click waits while the tap asks Accessibility about it, and the system disables a tap that keeps it waiting for
// long. A classification that meets a hung application ends after at most two failed questions.
constexpr float messagingTimeout = 0.25F;

class AppKitApplication final : public Application {
 public:
  AppKitApplication() : delegate_([[OstrelApplicationDelegate alloc] init]) {
    NSApplication.sharedApplication.delegate = delegate_;
    AXUIElementRef systemWide = AXUIElementCreateSystemWide();
    AXUIElementSetMessagingTimeout(systemWide, messagingTimeout);
    CFRelease(systemWide);
  }

  void setDelegate(std::weak_ptr<ApplicationDelegate> delegate) override { delegate_->_delegate = std::move(delegate); }
  void setActivationPolicy(ActivationPolicy policy) override {
    assertMainThread();
    NSApp.activationPolicy = static_cast<NSApplicationActivationPolicy>(policy);
  }
  ActivationPolicy activationPolicy() const override { return static_cast<ActivationPolicy>(NSApp.activationPolicy); }
  void activateIgnoringOtherApps() override { [NSApp activateIgnoringOtherApps:YES]; }
  void run() override {
    @autoreleasepool {
      // A napping process answers late, and clicks would wait for it. The computer may still sleep.
      activity_ = [NSProcessInfo.processInfo beginActivityWithOptions:NSActivityUserInitiatedAllowingIdleSystemSleep
                                                               reason:@"Clicks wait for an answer"];
      [NSApp run];
    }
  }
  void terminate() override { [NSApp terminate:nil]; }

 private:
  OstrelApplicationDelegate* delegate_;
  id<NSObject> activity_ = nil;
};

}  // namespace

std::shared_ptr<Application> Application::sharedApplication() {
  assertMainThread();
  static const auto application = std::make_shared<AppKitApplication>();
  return application;
}

}  // namespace ns
