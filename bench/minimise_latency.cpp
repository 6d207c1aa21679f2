// How soon a window stands in its new place: a click on its minimise button with Ostrel, the same move as an action of
// the window manager bound to the same press, and a hotkey daemon that starts wmctrl or xdotool. They take turns.
#include <functional>
#include <stdexcept>

#include "bench/ClickTarget.h"
#include "bench/Program.h"
#include "tests/desktop/DesktopSession.h"

namespace {

using bench::Clock;
using bench::Figures;
using desktoptest::Frame;

constexpr int rounds = 8;
constexpr int movesPerRound = 10;
constexpr auto bound = std::chrono::seconds(5);
/// No further ConfigureNotify for so long: the window stands.
constexpr auto quiet = std::chrono::milliseconds(60);

/// Has the window manager centre the window when its minimise button is pressed.
void bindMinimiseButton(desktoptest::DesktopSession& session) {
  std::string text = session.home().read("CONFIG_HOME/openbox/rc.xml");
  const std::string start = "<context name=\"Iconify\">";
  const auto first = text.find(start);
  const auto end = text.find("</context>", first);
  if (first == std::string::npos || end == std::string::npos) throw std::runtime_error("no minimise button in rc.xml");
  text.replace(first, end - first,
               start +
                   "<mousebind button=\"Left\" action=\"Press\"><action name=\"MoveResizeTo\"><x>center</x>"
                   "</action></mousebind>");
  session.home().write("CONFIG_HOME/openbox/rc.xml", text);
  session.restartWindowManager();
}

class Race {
 public:
  explicit Race(desktoptest::DesktopSession& session) : session_(session), target_(session.displayName(), true) {
    session_.place(target_.window(), start);
    centred_ = start;
    centred_.x = (screenWidth - start.width) / 2;
  }

  void clickMinimise(Figures& figures) {
    move(figures, [this] {
      const auto button = session_.button(target_.window(), desktoptest::Button::Minimise);
      target_.post(XCB_MOTION_NOTIFY, 0, button.x, button.y);
      target_.next(0, quiet);  // a person's pointer rests on the button first: drawing it lit is not part of the click
      return target_.post(XCB_BUTTON_PRESS, 1);
    });
  }
  void pressHotkey(Figures& figures) {
    session_.x().activate(target_.window());
    move(figures, [this] { return target_.post(XCB_KEY_PRESS, hotkey); });
  }
  support::ChildProcess hotkeyDaemon(desktoptest::Arguments command) {
    command.insert(command.begin(), {HOTKEY_STARTER, std::to_string(hotkey)});
    return support::ChildProcess(command, session_.environment());
  }
  const Frame& centred() const { return centred_; }

 private:
  static constexpr int screenWidth = 1440;
  static constexpr Frame start{100, 120, 508, 424};
  static constexpr std::uint8_t hotkey = 96;  // F12

  void move(Figures& figures, const std::function<Clock::time_point()>& act) {
    session_.place(target_.window(), start);
    while (target_.next(XCB_CONFIGURE_NOTIFY, quiet)) {
    }
    const auto pressed = act();
    auto last = target_.next(XCB_CONFIGURE_NOTIFY, bound);
    if (!last) throw std::runtime_error(figures.name() + ": the window does not move");
    while (const auto further = target_.next(XCB_CONFIGURE_NOTIFY, quiet)) last = further;
    figures.add(*last - pressed);
    target_.post(XCB_BUTTON_RELEASE, 1);
    target_.post(XCB_KEY_RELEASE, hotkey);
    const auto frame = session_.x().frame(target_.window());
    if (!frame || std::abs(frame->x - centred_.x) > 1) throw std::runtime_error(figures.name() + ": wrong place");
  }

  desktoptest::DesktopSession& session_;
  bench::ClickTarget target_;
  Frame centred_;
};

void waitForStart(desktoptest::DesktopSession& session) {
  session.x().waitUntil([] { return false; }, std::chrono::milliseconds(200));
}

void measure(desktoptest::DesktopSession& session) {
  Race race(session);
  Figures ostrel("Ostrel");
  Figures builtIn("openbox's MoveResizeTo");
  Figures wmctrl("hotkey and wmctrl");
  Figures xdotool("hotkey and xdotool");
  const std::string x = std::to_string(race.centred().x);
  const std::string y = std::to_string(race.centred().y);
  for (int round = 0; round < rounds; ++round) {
    for (int i = 0; i < movesPerRound; ++i) race.clickMinimise(builtIn);
    session.startOstrel();
    waitForStart(session);
    for (int i = 0; i < movesPerRound; ++i) race.clickMinimise(ostrel);
    session.stopOstrel();
    {
      const auto daemon = race.hotkeyDaemon({"wmctrl", "-r", ":ACTIVE:", "-e", "1," + x + "," + y + ",-1,-1"});
      waitForStart(session);
      for (int i = 0; i < movesPerRound; ++i) race.pressHotkey(wmctrl);
    }
    const auto daemon = race.hotkeyDaemon({"xdotool", "getactivewindow", "windowmove", x, y});
    waitForStart(session);
    for (int i = 0; i < movesPerRound; ++i) race.pressHotkey(xdotool);
  }
  std::printf("Press to the window's last movement:\n");
  for (const Figures* figures : {&builtIn, &ostrel, &wmctrl, &xdotool}) figures->print();
  bench::printRatio("Ostrel / openbox, median", ostrel.median(), builtIn.median(), 1.25);
  bench::printRatio("Ostrel / wmctrl, median", ostrel.median(), wmctrl.median(), 1);
  bench::printRatio("Ostrel / xdotool, median", ostrel.median(), xdotool.median(), 1);
}

}  // namespace

int main() {
  return bench::run([] {
    desktoptest::DesktopSession session(desktoptest::WindowManager::Openbox);
    bindMinimiseButton(session);
    measure(session);
  });
}
