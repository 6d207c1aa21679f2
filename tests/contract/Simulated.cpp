// The contract on the desktop in memory.
#include "platform/simulated/RunLoop.h"
#include "platform/simulated/SimulatedDesktop.h"
#include "tests/contract/Backing.h"

namespace {

constexpr pid_t editor = 501;

class SimulatedBacking final : public contract::Backing {
 public:
  pid_t launch() override {
    window_ = "window-" + std::to_string(++launches_);
    desktop_.launch({editor, bundleIdentifier(), "Editor"}, "AXWindow #" + window_ + R"( 100,80 640x480
  AXButton/AXCloseButton 10,5 14x14
  AXButton/AXMinimizeButton 30,5 14x14
  AXButton/AXZoomButton 50,5 14x14
  AXTextArea 0,30 640x450
)");
    return editor;
  }
  void quit() override { desktop_.quit(editor); }
  std::string bundleIdentifier() const override { return "org.example.editor"; }
  CGRect frame() override { return desktop_.frame(window_); }
  double buttonHeight() override { return 12; }
  void click(CGPoint place) override { desktop_.click(place); }
  bool waitFor(const std::function<bool()>& holds) override {
    simulated::RunLoop::runPending();
    return holds();
  }

 private:
  simulated::SimulatedDesktop desktop_;
  int launches_ = 0;
  std::string window_;
};

}  // namespace

contract::Backing& contract::Backing::current() {
  static SimulatedBacking backing;
  return backing;
}
