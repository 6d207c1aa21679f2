#include "platform/linux/x11/TitleBars/TitleBarKind.h"

namespace x11 {

namespace {

constexpr int bandHeight = 64;
constexpr int bandWidth = 220;

}  // namespace

std::optional<TitleBarKind> kindOf(const Window& window, const std::string& windowManager, int scale) {
  const WindowGeometry& geometry = window.geometry;
  if (geometry.fullscreen || geometry.shaded) return std::nullopt;
  TitleBarKind kind;
  const bool drawsItself = window.drawsItsTitleBar();
  kind.painter = drawsItself ? window.properties.windowClass : windowManager;
  if (kind.painter.empty() || (!drawsItself && geometry.decoration.top == 0)) return std::nullopt;
  kind.extents = drawsItself ? geometry.shadow : geometry.decoration;
  if (geometry.maximizedHorizontally && geometry.maximizedVertically) {
    kind.state = TitleBarState::Maximized;
  } else if (geometry.maximizedHorizontally || geometry.maximizedVertically) {
    kind.state = TitleBarState::HalfMaximized;
  }
  kind.minimizes = window.properties.minimizeButton() == MinimizeButton::Enabled;
  kind.maximizes = window.properties.maximizeIsAllowed.value_or(true);
  kind.isDialog = window.properties.isTransient || !window.properties.isNormalType;
  kind.scale = scale;
  return kind;
}

std::optional<Spot> spotOf(const Window& window, CGPoint position, int scale) {
  const Rect frame = window.geometry.frame();
  if (!frame.contains(position)) return std::nullopt;
  const int left = static_cast<int>(position.x) - frame.x;
  const int right = frame.x + frame.width - 1 - static_cast<int>(position.x);
  const int down = static_cast<int>(position.y) - frame.y;
  const int height = window.drawsItsTitleBar() ? bandHeight * scale / 100 : window.geometry.decoration.top;
  const Spot spot = left < right ? Spot{Corner::Left, left, down} : Spot{Corner::Right, right, down};
  if (down >= height || spot.across >= bandWidth * scale / 100) return std::nullopt;
  return spot;
}

}  // namespace x11
