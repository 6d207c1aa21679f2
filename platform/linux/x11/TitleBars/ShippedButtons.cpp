#include "platform/linux/x11/TitleBars/ShippedButtons.h"

#include <algorithm>

namespace x11 {

namespace {

/// Programs that are built from one source with one frame. Other browsers on that engine have frames of their own.
constexpr const char* chromiumAndKin[] = {"Chromium", "Chromium-browser", "Google-chrome", "Google-chrome-beta",
                                          "Google-chrome-unstable"};

/// What the frame adds around the window at one pixel a point, without a compositor and with one. With a GTK theme on
/// it adds something else, and has its buttons elsewhere. Maximised it adds nothing in either case, which is why that
/// state is known only from a window that has been seen in the other.
constexpr Extents chromiumExtents[] = {{4, 4, 0, 4}, {16, 16, 10, 32}};

/// From the right edge, in points: where clicks were seen to work, less what lies near to other buttons, to the tabs
/// and to what is below. A button is 32 points wide, and 40 from the top its title bar ends.
struct Columns {
  ButtonRole role;
  int normal;
  int maximized;
  int width;
};
constexpr Columns chromium[] = {
    {ButtonRole::Close, 4, 6, 24}, {ButtonRole::Zoom, 36, 39, 24}, {ButtonRole::Minimize, 68, 71, 20}};
constexpr int chromiumTop = 11;
constexpr int chromiumBottom = 31;

std::vector<Observation> pressesOf(const Columns& column, TitleBarState state, int point) {
  const int across = (state == TitleBarState::Normal ? column.normal : column.maximized) * point;
  const Spot corners[] = {{Corner::Right, across, chromiumTop * point},
                          {Corner::Right, across + column.width * point - 1, chromiumBottom * point}};
  std::vector<Observation> presses;
  for (int i = 0; i < ButtonEvidence::needed(column.role); ++i) presses.push_back({column.role, corners[i % 2]});
  return presses;
}

}  // namespace

std::vector<ShippedTitleBar> shippedWith(const TitleBarKind& kind) {
  if (std::find(std::begin(chromiumAndKin), std::end(chromiumAndKin), kind.painter) == std::end(chromiumAndKin)) {
    return {};
  }
  const bool isMeasured = kind.scale == 100 || kind.scale == 200;
  if (!isMeasured || kind.state != TitleBarState::Normal || !kind.minimizes || !kind.maximizes || kind.isDialog) {
    return {};
  }
  const int point = kind.scale / 100;
  const bool isOwnFrame = std::any_of(std::begin(chromiumExtents), std::end(chromiumExtents), [&](const Extents& one) {
    return kind.extents == Extents{one.left * point, one.right * point, one.top * point, one.bottom * point};
  });
  if (!isOwnFrame) return {};
  TitleBarKind maximized = kind;
  maximized.state = TitleBarState::Maximized;
  maximized.extents = {};
  std::vector<ShippedTitleBar> titleBars;
  for (const TitleBarKind& one : {kind, maximized}) {
    ShippedTitleBar titleBar{one, {}};
    for (const Columns& column : chromium) {
      const auto presses = pressesOf(column, one.state, point);
      titleBar.presses.insert(titleBar.presses.end(), presses.begin(), presses.end());
    }
    titleBars.push_back(titleBar);
  }
  return titleBars;
}

}  // namespace x11
