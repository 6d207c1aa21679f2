#include "platform/RunLoop.h"

#import "platform/macos/Bridge.h"

namespace ns {
namespace {

class FoundationTimer final : public Timer {
 public:
  FoundationTimer(double interval, std::function<void()> block)
      : timer_([NSTimer timerWithTimeInterval:interval
                                      repeats:YES
                                        block:^(NSTimer*) {
                                          callBack(block);
                                        }]) {
    // Lets the system wake up for several programs at once.
    timer_.tolerance = interval / 10;
    // The common modes keep it ticking while a menu is open.
    [NSRunLoop.mainRunLoop addTimer:timer_ forMode:NSRunLoopCommonModes];
  }
  ~FoundationTimer() override { [timer_ invalidate]; }
  void invalidate() override { [timer_ invalidate]; }

 private:
  NSTimer* timer_;
};

}  // namespace

void dispatchAsyncOnMainQueue(std::function<void()> task) {
  dispatch_async(dispatch_get_main_queue(), ^{
    callBack(task);
  });
}

bool isMainThread() { return NSThread.isMainThread; }

std::shared_ptr<Timer> Timer::scheduledTimer(double interval, std::function<void()> block) {
  assertMainThread();
  return std::make_shared<FoundationTimer>(interval, std::move(block));
}

}  // namespace ns
