// Window Maker has two buttons, always in the same corners of the frame: left for the icon, right for closing. Both are
// square; what else touches these corners is the title, which is wider, or the client.
#include "platform/linux/x11/WindowManagers/WindowManager.h"

namespace x11 {

namespace {

class WindowMaker final : public WindowManager {
 public:
  std::size_t depth() const override { return 2; }
  std::optional<ButtonRole> roleOf(const ButtonPath& path) const override {
    const auto leafCookie = xcb_get_geometry(path.connection.get(), path.leaf());
    const auto frameCookie = xcb_get_geometry(path.connection.get(), path.windows.front());
    const auto leaf = path.connection.reply(xcb_get_geometry_reply, leafCookie);
    const auto frame = path.connection.reply(xcb_get_geometry_reply, frameCookie);
    if (!leaf || !frame || leaf->width != leaf->height || leaf->y != 0) return std::nullopt;
    if (leaf->x == 0) return ButtonRole::Minimize;
    if (leaf->x + leaf->width == frame->width) return ButtonRole::Close;
    return std::nullopt;
  }
};

}  // namespace

const WindowManager& windowMaker() {
  static const WindowMaker instance;
  return instance;
}

}  // namespace x11
