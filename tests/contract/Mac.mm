// The contract on a real Mac, with the application that the click tests use, too.
#include <memory>
#include <stdexcept>

#include "tests/contract/Backing.h"
#import "tests/macos/Desk.h"

namespace {

class MacBacking final : public contract::Backing {
 public:
  MacBacking() { [NSApplication sharedApplication]; }
  ~MacBacking() override { [NSUserDefaults.standardUserDefaults removeObjectForKey:@"contract.value"]; }

  pid_t launch() override {
    program_ = std::make_unique<desk::Program>(std::vector<std::string>{OSTREL_TEST_WINDOW, "60", "140"});
    const auto isUp = [this] {
      return program_->count("ready") == 1 && !CGRectIsEmpty(frame()) && !desk::windows(program_->pid()).empty();
    };
    if (!waitFor(isUp)) throw std::runtime_error("the application does not come up");
    return program_->pid();
  }
  void quit() override { program_.reset(); }
  std::string bundleIdentifier() const override { return "example.ostrel.test-window"; }
  /// As the window server draws it.
  CGRect frame() override {
    NSArray* windows = CFBridgingRelease(CGWindowListCopyWindowInfo(
        kCGWindowListOptionOnScreenOnly | kCGWindowListExcludeDesktopElements, kCGNullWindowID));
    for (NSDictionary* window in windows) {
      const bool isOurs = [window[(__bridge NSString*)kCGWindowOwnerPID] intValue] == program_->pid() &&
                          [window[(__bridge NSString*)kCGWindowLayer] intValue] == 0;
      CGRect frame{};
      const auto bounds = (__bridge CFDictionaryRef)window[(__bridge NSString*)kCGWindowBounds];
      if (isOurs && CGRectMakeWithDictionaryRepresentation(bounds, &frame)) return frame;
    }
    return CGRectZero;
  }
  double buttonHeight() override {
    const auto window = desk::windows(program_->pid()).at(0);
    return desk::middleOfButton(window.get(), kAXMinimizeButtonAttribute).y - frame().origin.y;
  }
  void click(CGPoint place) override { desk::click(place); }
  bool waitFor(const std::function<bool()>& holds) override { return desk::waitFor(holds); }

 private:
  std::unique_ptr<desk::Program> program_;
};

}  // namespace

contract::Backing& contract::Backing::current() {
  static MacBacking backing;
  return backing;
}
