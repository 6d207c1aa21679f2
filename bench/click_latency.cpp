// What Ostrel costs an ordinary click: the time from the press to the application's event with nobody in between, with
// a filter that decides nothing, and with Ostrel. Each has a desktop of its own and they are clicked in turns, so that
// whatever else the machine does hits all three alike.
#include <stdexcept>

#include "bench/ClickTarget.h"
#include "bench/Program.h"
#include "tests/desktop/DesktopSession.h"

namespace {

using bench::Clock;
using bench::Figures;
using desktoptest::DesktopSession;

constexpr int warmUp = 50;
constexpr int clicks = 3000;
constexpr auto pause = std::chrono::milliseconds(3);
constexpr auto bound = std::chrono::seconds(5);

/// One desktop with one window to click on.
class Lane {
 public:
  Lane(const char* name, bool managed) : figures(name), managed_(managed) {
    target_ = std::make_unique<bench::ClickTarget>(session.displayName(), managed_);
    if (managed_) session.place(target_->window(), {200, 150, 500, 400});
    target_->clear();
    target_->post(XCB_MOTION_NOTIFY, 0, 450, 350);
  }

  Clock::duration click() {
    const auto pressed = target_->post(XCB_BUTTON_PRESS, 1);
    const auto arrived = target_->next(XCB_BUTTON_PRESS, bound);
    target_->post(XCB_BUTTON_RELEASE, 1);
    if (!arrived || !target_->next(XCB_BUTTON_RELEASE, bound)) throw std::runtime_error("a click was lost");
    target_->next(0, pause);
    return *arrived - pressed;
  }

  DesktopSession session{desktoptest::WindowManager::Openbox};
  Figures figures;

 private:
  bool managed_;
  std::unique_ptr<bench::ClickTarget> target_;
};

void measure(bool managed) {
  Lane none("nothing in between", managed);
  Lane bare("bare filter", managed);
  Lane ostrel("Ostrel", managed);
  support::ChildProcess filter({REPLAY_FILTER}, bare.session.environment());
  // Not by trying whether the grab is taken: that could take it from the filter.
  if (filter.readLine(bound) != "ready") throw std::runtime_error("the filter does not start");
  ostrel.session.startOstrel();
  for (int i = -warmUp; i < clicks; ++i) {
    for (Lane* lane : {&none, &bare, &ostrel}) {
      const auto time = lane->click();
      if (i >= 0) lane->figures.add(time);
    }
  }
  std::printf("Press to application, %s window:\n", managed ? "managed" : "unmanaged");
  for (const Lane* lane : {&none, &bare, &ostrel}) lane->figures.print();
  bench::printRatio("Ostrel / bare, median", ostrel.figures.median(), bare.figures.median(), 1.25);
  bench::printRatio("Ostrel / bare, p99", ostrel.figures.p99(), bare.figures.p99(), 1.5);
}

}  // namespace

int main() {
  return bench::run([] {
    for (const bool managed : {false, true}) measure(managed);
  });
}
