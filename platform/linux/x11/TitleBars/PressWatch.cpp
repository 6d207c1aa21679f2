#include "platform/linux/x11/TitleBars/PressWatch.h"

#include <cmath>
#include <utility>

namespace x11 {

namespace {

using std::chrono::milliseconds;

/// From the release to the effect, and from the press to the release of a click.
constexpr auto untilEffect = milliseconds(1000);
constexpr auto longestClick = milliseconds(1000);
/// As toolkits have it: a second press that soon and near is half of a double click.
constexpr auto doubleClickTime = milliseconds(500);
constexpr double doubleClickDistance = 8;
/// A key that went down or up that shortly before the press may be what the window obeys. Also, the press has been on
/// its way for a moment when its time is taken, and the server counts whole milliseconds.
constexpr auto keyboardQuiet = milliseconds(250);
/// A hand at rest trembles.
constexpr double stillness = 3;

bool areNear(CGPoint one, CGPoint other, double most) {
  return std::abs(one.x - other.x) <= most && std::abs(one.y - other.y) <= most;
}

bool isMaximized(const Window& window) {
  return window.geometry.maximizedHorizontally && window.geometry.maximizedVertically;
}

std::optional<ButtonRole> effectOf(const Window& before, const std::optional<Window>& now) {
  if (!now) return ButtonRole::Close;
  if (!before.properties.isIconic() && now->properties.isIconic()) return ButtonRole::Minimize;
  if (isMaximized(before) != isMaximized(*now) && !now->geometry.fullscreen) return ButtonRole::Zoom;
  return std::nullopt;
}

}  // namespace

std::optional<Outcome> PressWatch::pressed(PassedPress press) {
  const Place place{press.window.client, press.position, press.time};
  const auto last = std::exchange(last_, place);
  const auto before = std::exchange(press_, std::nullopt);
  if (last && last->client == place.client && place.time - last->time < doubleClickTime &&
      areNear(last->position, place.position, doubleClickDistance)) {
    return std::nullopt;
  }
  press_ = std::move(press);
  if (!before || press_->time - before->time <= longestClick + untilEffect) return std::nullopt;
  return Outcome{*before, std::nullopt};
}

void PressWatch::windowAppeared(pid_t pid) {
  if (press_ && press_->window.pid == pid) press_.reset();
}

bool PressWatch::isEffect(xcb_window_t client, const std::optional<Window>& now) const {
  return press_ && press_->window.client == client && effectOf(press_->window, now);
}

std::optional<Outcome> PressWatch::changed(xcb_window_t client, const std::optional<Window>& now, const Hands& hands) {
  if (!isEffect(client, now)) return std::nullopt;
  const auto role = effectOf(press_->window, now);
  const PassedPress press = *std::exchange(press_, std::nullopt);
  const auto sincePress = std::chrono::duration_cast<milliseconds>(hands.time - press.time);
  const bool isOnlyPress = hands.presses == press.number;
  const bool isClick = !hands.anyButtonDown && areNear(hands.pointer, press.position, stillness);
  const bool isSoon = hands.pointerIdle <= untilEffect && sincePress <= longestClick + untilEffect;
  const bool isByMouse = hands.keyboardIdle > sincePress + keyboardQuiet;
  if (!isOnlyPress || !isClick || !isSoon || !isByMouse) return std::nullopt;
  return Outcome{press, role};
}

}  // namespace x11
