// IceWM writes a name on each of its windows, the same in every language: the title bar's buttons are told by theirs.
#include "platform/linux/x11/Properties.h"
#include "platform/linux/x11/WindowManagers/WindowManager.h"

namespace x11 {

namespace {

class IceWM final : public WindowManager {
 public:
  std::size_t depth() const override { return 3; }
  std::optional<ButtonRole> roleOf(const ButtonPath& path) const override {
    const auto titleCookie = requestProperty(path.connection, path.windows[1], XCB_ATOM_WM_NAME);
    const auto leafCookie = requestProperty(path.connection, path.leaf(), XCB_ATOM_WM_NAME);
    const std::string title = propertyText(receiveProperty(path.connection, titleCookie));
    const std::string leaf = propertyText(receiveProperty(path.connection, leafCookie));
    if (title != "TitleBar") return std::nullopt;
    if (leaf == "Minimize") return ButtonRole::Minimize;
    if (leaf == "Maximize" || leaf == "Restore") return ButtonRole::Zoom;
    if (leaf == "Close") return ButtonRole::Close;
    return std::nullopt;
  }
};

}  // namespace

const WindowManager& iceWM() {
  static const IceWM instance;
  return instance;
}

}  // namespace x11
