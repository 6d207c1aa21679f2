// xfwm4's buttons are children of the frame. Among the frame's children only they ask for exactly Enter and Leave, and
// they are made in one fixed order: menu, stick, shade, hide, maximise, close.
#include "platform/linux/x11/WindowManagers/WindowManager.h"

namespace x11 {

namespace {

class Xfwm4 final : public WindowManager {
 public:
  std::size_t depth() const override { return 2; }
  std::optional<ButtonRole> roleOf(const ButtonPath& path) const override {
    constexpr std::uint32_t buttonMask = XCB_EVENT_MASK_ENTER_WINDOW | XCB_EVENT_MASK_LEAVE_WINDOW;
    constexpr std::size_t buttonCount = 6;
    std::vector<xcb_get_window_attributes_cookie_t> cookies;
    cookies.reserve(path.siblings.size());
    for (const xcb_window_t window : path.siblings) {
      cookies.push_back(xcb_get_window_attributes(path.connection.get(), window));
    }
    std::vector<xcb_window_t> buttons;
    for (std::size_t i = 0; i < cookies.size(); ++i) {
      const auto attributes = path.connection.reply(xcb_get_window_attributes_reply, cookies[i]);
      if (attributes && attributes->all_event_masks == buttonMask) buttons.push_back(path.siblings[i]);
    }
    if (buttons.size() != buttonCount) return std::nullopt;
    if (path.leaf() == buttons[3]) return ButtonRole::Minimize;
    if (path.leaf() == buttons[4]) return ButtonRole::Zoom;
    if (path.leaf() == buttons[5]) return ButtonRole::Close;
    return std::nullopt;
  }
};

}  // namespace

const WindowManager& xfwm4() {
  static const Xfwm4 instance;
  return instance;
}

}  // namespace x11
