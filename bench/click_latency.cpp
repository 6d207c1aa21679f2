// What Ostrel costs an ordinary click: the time from the press to the application's event with nobody in between, with
// a filter that decides nothing, and with Ostrel. Each has a desktop of its own and they are clicked in turns, so that
// whatever else the machine does hits all three alike. Once in a window, once in the band of a title bar that its
// program draws, when Ostrel has learned of a thousand buttons and has to compare with those of this one.
#include <stdexcept>

#include "bench/ClickTarget.h"
#include "bench/Program.h"
#include "tests/desktop/DesktopSession.h"

namespace {

using bench::Clock;
using bench::Figures;
using bench::TargetKind;
using desktoptest::DesktopSession;

constexpr int warmUp = 50;
constexpr int clicks = 3000;
constexpr auto pause = std::chrono::milliseconds(3);
constexpr auto bound = std::chrono::seconds(5);

/// One desktop with one window to click on.
class Lane {
 public:
  Lane(const char* name, TargetKind kind) : figures(name) {
    target_ = std::make_unique<bench::ClickTarget>(session.displayName(), kind);
    if (kind != TargetKind::Unmanaged) session.place(target_->window(), {200, 150, 500, 400});
    target_->clear();
    target_->post(XCB_MOTION_NOTIFY, 0, 300, kind == TargetKind::Bare ? 180 : 350);
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
  std::unique_ptr<bench::ClickTarget> target_;
};

/// What is on the disk when clicks have taught three buttons each of 350 kinds of title bars, the target's among them.
std::string learnedButtons() {
  std::string titleBars;
  for (int i = 0; i < 350; ++i) {
    std::string presses;
    int across = 15;
    for (const char* role : {"close", "zoom", "minimize"}) {
      for (int time = 0; time < 3; ++time) {
        presses += std::string(presses.empty() ? "" : ",") + R"({"did":")" + role + R"(","corner":"right","across":)" +
                   std::to_string(across) + R"(,"down":15})";
      }
      across += 30;
    }
    titleBars += std::string(i == 0 ? "" : ",") + R"({"painter":")" + (i == 175 ? "Target" : std::to_string(i)) +
                 R"(","extents":{"left":0,"right":0,"top":0,"bottom":0},"state":"normal","minimizes":true,)" +
                 R"("maximizes":true,"isDialog":false,"scale":100,"presses":[)" + presses + "]}";
  }
  return R"({"version":1,"titleBars":[)" + titleBars + "]}";
}

void measure(TargetKind kind, const char* where) {
  Lane none("nothing in between", kind);
  Lane bare("bare filter", kind);
  Lane ostrel("Ostrel", kind);
  if (kind == TargetKind::Bare) ostrel.session.home().write("STATE_HOME/ostrel/title-bars.json", learnedButtons());
  support::ChildProcess filter({REPLAY_FILTER}, bare.session.environment());
  // Not by trying whether the grab is taken: that could take it from the filter.
  if (filter.readLine(bound) != "ready") throw std::runtime_error("the filter does not start");
  ostrel.session.startOstrel();
  if (kind == TargetKind::Bare) {
    const auto known = ostrel.session.ostrelCommand({"buttons"}).output;
    if (known.find(" minimise           learned") == std::string::npos)
      throw std::runtime_error("not learned: " + known);
  }
  for (int i = -warmUp; i < clicks; ++i) {
    for (Lane* lane : {&none, &bare, &ostrel}) {
      const auto time = lane->click();
      if (i >= 0) lane->figures.add(time);
    }
  }
  std::printf("Press to application, %s:\n", where);
  for (const Lane* lane : {&none, &bare, &ostrel}) lane->figures.print();
  bench::printRatio("Ostrel / bare, median", ostrel.figures.median(), bare.figures.median(), 1.25);
  bench::printRatio("Ostrel / bare, p99", ostrel.figures.p99(), bare.figures.p99(), 1.5);
}

}  // namespace

int main() {
  return bench::run([] {
    measure(TargetKind::Unmanaged, "unmanaged window");
    measure(TargetKind::Decorated, "managed window");
    measure(TargetKind::Bare, "band of a title bar, a thousand learned buttons");
  });
}
