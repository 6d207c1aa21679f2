// ostrel_survey WINDOW-MANAGER APPLICATION...: one row of the survey. Runs the application under the window manager (a
// command line in one argument) on a desktop of its own, looks where its title bar has which buttons by clicking its
// way along it, starts Ostrel, clicks each button as often as it may take to learn it, and prints what became of
// minimise, zoom and close.
#include <algorithm>
#include <iostream>
#include <map>
#include <sstream>
#include <stdexcept>

#include "tests/desktop/DesktopSession.h"

namespace desktoptest {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr Frame somewhere{150, 140, 760, 480};
constexpr int screenWidth = 1440;
/// Twice at least in the smallest button.
constexpr int step = 5;
constexpr int band = 215;
/// Also keeps a click apart from the next one, which would else be half of a double click.
constexpr auto effectBound = milliseconds(550);
/// Where buttons are about: applications take their time to end.
constexpr auto closeBound = milliseconds(2000);
constexpr auto clickBound = seconds(3);

class Survey {
 public:
  Survey(const std::string& windowManager, Arguments application)
      : desktop_(Arguments{"sh", "-c", "exec " + windowManager}), application_(std::move(application)) {}

  std::string run() {
    open();
    findButtons();
    desktop_.writePreferences(R"({"behavior.redButtonHidesWindow": true})");
    desktop_.startOstrel();
    std::string row = tell(Button::Minimise) + " | " + tell(Button::Zoom);
    return row + " | " + tellClose();
  }

 private:
  enum class Effect { Taken, MadeGood, Native, None };

  void open() {
    desktop_.open(application_);
    // Behind a splash screen or a tip of the day comes the window that is meant.
    std::vector<Window> seen;
    while (x_.waitUntil([&] { return x_.clients() != seen; }, seconds(4))) seen = x_.clients();
    const auto area = [&](Window window) {
      const Frame frame = x_.frame(window).value_or(Frame{});
      return x_.property(window, "WM_TRANSIENT_FOR").empty() ? frame.width * frame.height : 0;
    };
    if (seen.empty()) throw std::runtime_error("its window has gone");
    window_ = *std::max_element(seen.begin(), seen.end(), [&](Window a, Window b) { return area(a) < area(b); });
    restore();
  }

  bool isGone() {
    const auto clients = x_.clients();
    return std::find(clients.begin(), clients.end(), window_) == clients.end();
  }
  bool isAsItWas() { return !x_.isIconic(window_) && !x_.isMaximised(window_); }

  /// From another place each time: two clicks in one place may be a double click.
  void restore() {
    for (int attempt = 0; attempt < 10; ++attempt) {
      x_.activate(window_);
      x_.waitUntil([&] { return !x_.isIconic(window_); }, seconds(1));
      x_.setState(window_, {"_NET_WM_STATE_MAXIMIZED_HORZ", "_NET_WM_STATE_MAXIMIZED_VERT"}, false);
      if (x_.waitUntil([&] { return isAsItWas(); }, seconds(1))) break;
    }
    Frame frame = somewhere;
    frame.y += 20 * (++restored_ % 5);
    x_.moveResize(window_, frame);
    x_.waitUntil([&] { return x_.fits(window_, frame); }, seconds(1));
    desktop_.settle();
  }

  Point at(int across) {
    const Frame frame = x_.frame(window_).value_or(Frame{});
    const auto extents = x_.property(window_, "_NET_FRAME_EXTENTS");
    const int height = extents.size() == 4 && extents[2] > 8 ? static_cast<int>(extents[2]) : 36;
    return {isLeft_ ? frame.x + across : frame.x + frame.width - 1 - across, frame.y + height / 2};
  }

  std::optional<Button> buttonAt(int across) {
    const auto before = x_.clients();
    x_.click(at(across));
    std::optional<Button> found;
    x_.waitUntil(
        [&] {
          if (isGone()) found = Button::Close;
          if (x_.isIconic(window_)) found = Button::Minimise;
          if (x_.isMaximised(window_)) found = Button::Zoom;
          return found.has_value();
        },
        buttons_.empty() ? effectBound : closeBound);
    if (found == Button::Close) {
      open();
    } else if (found) {
      restore();
    } else {
      x_.type(0xff1b);  // a menu may have come up
      for (const Window client : x_.clients()) {
        if (std::find(before.begin(), before.end(), client) == before.end()) x_.close(client);
      }
      desktop_.settle();
    }
    return found;
  }

  void findButtons() {
    for (const bool isLeft : {false, true}) {
      isLeft_ = isLeft;
      std::map<Button, std::vector<int>> hits;
      // Towards the corner, where close is.
      for (int across = band; across > 0 && !hits.contains(Button::Close); across -= step) {
        const auto found = buttonAt(across);
        if (!found) continue;
        hits[*found].push_back(across);
        buttons_[*found] = (hits[*found].front() + across) / 2;
      }
      if (!buttons_.empty()) break;
    }
    // Its outer end was not looked for.
    if (buttons_.contains(Button::Close)) buttons_[Button::Close] = std::max(4, buttons_[Button::Close] - 5);
  }

  Effect click(Button button) {
    restore();
    const Frame before = x_.frame(window_).value_or(Frame{});
    bool wasNative = false;
    x_.click(at(buttons_[button]));
    const bool isRight = x_.waitUntil(
        [&] {
          const bool isNative = !isAsItWas();
          wasNative = wasNative || isNative;
          const Frame frame = x_.frame(window_).value_or(before);
          if (isNative || frame == before) return false;
          if (button == Button::Zoom) return frame.x == 32 && frame.y == 56;
          return std::abs(2 * frame.x + frame.width - screenWidth) <= 1 && frame.y == before.y;
        },
        clickBound);
    if (isRight) return wasNative ? Effect::MadeGood : Effect::Taken;
    return wasNative ? Effect::Native : Effect::None;
  }

  std::string tell(Button button) {
    if (!buttons_.contains(button)) return "no such button";
    constexpr int clicks = 4;
    int madeGood = 0;
    Effect effect = Effect::None;
    for (int i = 0; i < clicks; ++i) {
      effect = click(button);
      if (effect == Effect::Native || effect == Effect::None) {
        return std::string(effect == Effect::Native ? "native" : "nothing") + " at click " + std::to_string(i + 1);
      }
      madeGood += effect == Effect::MadeGood ? 1 : 0;
    }
    if (madeGood == 0) return "at once";
    return "made good " + std::to_string(madeGood) + (effect == Effect::Taken ? ", then taken" : ", never taken");
  }

  std::string tellClose() {
    if (!buttons_.contains(Button::Close)) return "not looked for";
    constexpr int clicks = 5;
    for (int i = 1; i <= clicks; ++i) {
      restore();
      x_.click(at(buttons_[Button::Close]));
      if (!x_.waitUntil([&] { return isGone() || x_.isIconic(window_); }, seconds(10)))
        return "nothing at click " + std::to_string(i);
      if (!isGone()) return i == 1 ? "hides at once" : "hides from click " + std::to_string(i);
      open();
    }
    return "closes";
  }

  DesktopSession desktop_;
  XClient& x_ = desktop_.x();
  const Arguments application_;
  Window window_ = XCB_NONE;
  bool isLeft_ = false;
  /// How far from the corner.
  std::map<Button, int> buttons_;
  int restored_ = 0;
};

}  // namespace
}  // namespace desktoptest

int main(int count, char* arguments[]) {
  if (count < 3) {
    return 2;
  }
  try {
    std::cout << desktoptest::Survey(arguments[1], {arguments + 2, arguments + count}).run() << "\n";
    return 0;
  } catch (const std::exception& error) {
    std::cout << "not run: " << error.what() << " | | \n";
    return 1;
  }
}
