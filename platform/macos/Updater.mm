#include "platform/Updater.h"

#include <objc/runtime.h>

#import "platform/macos/Bridge.h"

// The part of the update framework's controller that is used. The framework is looked up at run time, so that Ostrel
// builds and runs without it.
@protocol OstrelUpdater
@property(readonly) BOOL canCheckForUpdates;
@end
@protocol OstrelStandardUpdaterController
@property(readonly) id<OstrelUpdater> updater;
- (instancetype)initWithStartingUpdater:(BOOL)startUpdater
                        updaterDelegate:(id)updaterDelegate
                     userDriverDelegate:(id)userDriverDelegate;
- (void)checkForUpdates:(id)sender;
@end
@protocol OstrelAppcastItem
@property(readonly) NSString* displayVersionString;
@end
@protocol OstrelUserUpdateState
@property(readonly) BOOL userInitiated;
@end

/// Forwards the user driver's hooks. The framework holds it weakly.
@interface OstrelUserDriverDelegate : NSObject
@end

@implementation OstrelUserDriverDelegate {
 @public
  std::weak_ptr<spu::StandardUserDriverDelegate> _delegate;
}

static spu::AppcastItem toAppcastItem(id<OstrelAppcastItem> update) {
  return {ns::fromNSString(update.displayVersionString)};
}

- (BOOL)supportsGentleScheduledUpdateReminders {
  const auto delegate = _delegate.lock();
  return delegate && delegate->supportsGentleScheduledUpdateReminders();
}

- (void)standardUserDriverWillHandleShowingUpdate:(BOOL)handleShowingUpdate
                                        forUpdate:(id<OstrelAppcastItem>)update
                                            state:(id<OstrelUserUpdateState>)state {
  if (const auto delegate = _delegate.lock()) {
    ns::callBack([&] {
      delegate->standardUserDriverWillHandleShowingUpdate(handleShowingUpdate, toAppcastItem(update),
                                                          {static_cast<bool>(state.userInitiated)});
    });
  }
}

- (void)standardUserDriverDidReceiveUserAttentionForUpdate:(id<OstrelAppcastItem>)update {
  if (const auto delegate = _delegate.lock()) {
    ns::callBack([&] { delegate->standardUserDriverDidReceiveUserAttentionForUpdate(toAppcastItem(update)); });
  }
}

@end

namespace spu {
namespace {

class FrameworkUpdaterController final : public StandardUpdaterController {
 public:
  FrameworkUpdaterController(Class controllerClass, bool startingUpdater,
                             std::weak_ptr<StandardUserDriverDelegate> delegate)
      : userDriverDelegate_([[OstrelUserDriverDelegate alloc] init]) {
    userDriverDelegate_->_delegate = std::move(delegate);
    if (Protocol* hooks = NSProtocolFromString(@"SPUStandardUserDriverDelegate")) {
      class_addProtocol(OstrelUserDriverDelegate.class, hooks);
    }
    controller_ = [static_cast<id<OstrelStandardUpdaterController>>([controllerClass alloc])
        initWithStartingUpdater:startingUpdater
                updaterDelegate:nil
             userDriverDelegate:userDriverDelegate_];
  }
  void checkForUpdates() override { [controller_ checkForUpdates:nil]; }
  bool canCheckForUpdates() const override { return controller_.updater.canCheckForUpdates; }

 private:
  OstrelUserDriverDelegate* userDriverDelegate_;
  id<OstrelStandardUpdaterController> controller_;
};

}  // namespace

std::shared_ptr<StandardUpdaterController> StandardUpdaterController::make(
    bool startingUpdater, std::weak_ptr<StandardUserDriverDelegate> userDriverDelegate) {
  ns::assertMainThread();
  NSString* path = [NSBundle.mainBundle.privateFrameworksPath stringByAppendingPathComponent:@"Sparkle.framework"];
  if (path == nil || ![[NSBundle bundleWithPath:path] load]) return nullptr;
  Class controllerClass = NSClassFromString(@"SPUStandardUpdaterController");
  if (controllerClass == nil) return nullptr;
  return std::make_shared<FrameworkUpdaterController>(controllerClass, startingUpdater, std::move(userDriverDelegate));
}

}  // namespace spu
