// Openbox makes the twelve parts of its title window in one fixed order, whatever its title layout shows of them.
#include "platform/linux/x11/WindowManagers/WindowManager.h"

namespace x11 {

namespace {

class Openbox final : public WindowManager {
 public:
  std::size_t depth() const override { return 3; }
  std::optional<ButtonRole> roleOf(const ButtonPath& path) const override {
    constexpr std::size_t partsOfTitle = 12;
    if (path.siblings.size() != partsOfTitle) return std::nullopt;
    switch (path.index()) {
      case 6:
        return ButtonRole::Zoom;
      case 7:
        return ButtonRole::Close;
      case 11:
        return ButtonRole::Minimize;
      default:
        return std::nullopt;
    }
  }
};

}  // namespace

const WindowManager& openbox() {
  static const Openbox instance;
  return instance;
}

}  // namespace x11
