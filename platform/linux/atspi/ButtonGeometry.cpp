#include "platform/linux/atspi/ButtonGeometry.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace atspi {

namespace {

/// GTK draws nothing wider around a window that gets no shadow than this solid border, in its own units.
constexpr double widestSolidBorder = 16;
/// How far a group may stay away from the frame's edge and still be the one in the corner, in its own units.
constexpr double widestCornerGap = 24;

/// No title bar has a wider padding, and none is higher, in its own units.
constexpr double widestPadding = 16;
constexpr double highestTitleBar = 80;

/// What GTK 4 left out on each side before 4.10 when it told a button's extents: it gave the content box, but the
/// border and the padding take clicks too. 16 units wide is GTK's own style, 24 is libadwaita's; the outer box itself
/// is wider.
double unreportedRim(double width) {
  if (width <= 20) return 7;
  if (width < 28) return 5;
  return 0;
}

CGRect intersection(CGRect one, CGRect other) {
  const double left = std::max(CGRectGetMinX(one), CGRectGetMinX(other));
  const double top = std::max(CGRectGetMinY(one), CGRectGetMinY(other));
  const double right = std::min(CGRectGetMaxX(one), CGRectGetMaxX(other));
  const double bottom = std::min(CGRectGetMaxY(one), CGRectGetMaxY(other));
  return CGRectMake(left, top, std::max(0.0, right - left), std::max(0.0, bottom - top));
}

std::optional<ButtonRole> layoutRole(std::string_view word) {
  if (word == "minimize") return ButtonRole::Minimize;
  if (word == "maximize") return ButtonRole::Zoom;
  if (word == "close") return ButtonRole::Close;
  return std::nullopt;
}

/// The buttons on the left and on the right side of a decoration layout such as "menu:minimize,maximize,close".
std::array<std::vector<ButtonRole>, 2> layoutSides(std::string_view layout) {
  std::array<std::vector<ButtonRole>, 2> sides;
  std::size_t side = 0;
  std::size_t start = 0;
  for (std::size_t i = 0; i <= layout.size(); ++i) {
    if (i < layout.size() && layout[i] != ',' && layout[i] != ':') continue;
    if (const auto role = layoutRole(layout.substr(start, i - start))) sides[side].push_back(*role);
    start = i + 1;
    if (i < layout.size() && layout[i] == ':') side = 1;
  }
  return sides;
}

using Roles = std::vector<ButtonRole>;

std::optional<Roles> rolesByName(const ButtonGroup& group, const ButtonNames& names) {
  Roles roles;
  for (const auto& button : group.buttons) {
    const auto role = names.role(button.name);
    if (!role || std::ranges::find(roles, *role) != roles.end()) return std::nullopt;
    roles.push_back(*role);
  }
  return roles;
}

/// By their order in the corner. Only a full match counts: one button more or less, and the order tells nothing.
std::optional<Roles> rolesByPlace(const ButtonGroup& group, std::string_view layout, double frameWidth,
                                  double widestGap) {
  double left = frameWidth;
  double right = 0;
  for (const auto& button : group.buttons) {
    left = std::min(left, CGRectGetMinX(button.rect));
    right = std::max(right, CGRectGetMaxX(button.rect));
  }
  const auto sides = layoutSides(layout);
  const bool onTheLeft = left <= widestGap;
  const bool onTheRight = frameWidth - right <= widestGap;
  if (onTheLeft == onTheRight) return std::nullopt;
  const auto& expected = sides[onTheRight ? 1 : 0];
  if (expected.size() != group.buttons.size()) return std::nullopt;
  Roles roles(group.buttons.size());
  for (std::size_t i = 0; i < roles.size(); ++i) {
    const auto isFurtherLeft = [&group, i](const FoundButton& other) {
      return CGRectGetMinX(other.rect) < CGRectGetMinX(group.buttons[i].rect);
    };
    roles[i] = expected[static_cast<std::size_t>(std::ranges::count_if(group.buttons, isFurtherLeft))];
  }
  return roles;
}

CGRect placed(CGRect rect, double rim, const Placement& placement) {
  const double scale = placement.scale;
  return CGRectMake((rect.origin.x - rim) * scale + placement.offset.x,
                    (rect.origin.y - rim) * scale + placement.offset.y, (rect.size.width + 2 * rim) * scale,
                    (rect.size.height + 2 * rim) * scale);
}

}  // namespace

bool operator==(const TitleBarButton& one, const TitleBarButton& other) {
  return one.role == other.role && one.enabled == other.enabled && one.rect.origin.x == other.rect.origin.x &&
         one.rect.origin.y == other.rect.origin.y && one.rect.size.width == other.rect.size.width &&
         one.rect.size.height == other.rect.size.height;
}

std::optional<Placement> placement(Toolkit toolkit, const Window& window, CGSize reported) {
  if (reported.width < 1 || reported.height < 1) return std::nullopt;
  for (const double scale : {1.0, 2.0, 3.0}) {
    const double width = reported.width * scale;
    const double height = reported.height * scale;
    if (toolkit == Toolkit::Gtk3) {
      // The whole client window, shadow included.
      if (width != window.client.size.width || height != window.client.size.height) continue;
      return Placement{
          CGPointMake(window.client.origin.x - window.frame.origin.x, window.client.origin.y - window.frame.origin.y),
          scale};
    }
    // The visible frame, less the solid border of a window that has no shadow.
    const double sides = window.frame.size.width - width;
    const double ends = window.frame.size.height - height;
    if (sides < 0 || sides > 2 * widestSolidBorder * scale || std::abs(sides - ends) > 2 * scale) continue;
    return Placement{CGPointMake(std::floor(sides / 2), std::floor(ends / 2)), scale};
  }
  return std::nullopt;
}

CGPoint contentInset(CGRect outer, const std::vector<CGRect>& children) {
  double width = 0;
  double height = 0;
  for (const CGRect& child : children) {
    const double right = CGRectGetMaxX(child) - outer.origin.x;
    const double bottom = CGRectGetMaxY(child) - outer.origin.y;
    // A child that has no size yet is told with numbers from nowhere.
    if (right > outer.size.width + widestPadding || bottom > outer.size.height + widestPadding) continue;
    width = std::max(width, right);
    height = std::max(height, bottom);
  }
  const auto half = [](double rest) { return rest > 0 && rest <= 2 * widestPadding ? std::floor(rest / 2) : 0; };
  return CGPointMake(half(outer.size.width - width), half(outer.size.height - height));
}

bool isStretched(CGRect child, CGSize content) {
  return child.size.height > highestTitleBar || child.size.width >= content.width;
}

std::vector<TitleBarButton> titleBarButtons(const std::vector<ButtonGroup>& groups, const ButtonNames& names,
                                            std::string_view decorationLayout, Toolkit toolkit, const Window& window,
                                            const Placement& placement) {
  const CGRect frame = CGRectMake(0, 0, window.frame.size.width, window.frame.size.height);
  std::vector<TitleBarButton> buttons;
  for (ButtonGroup group : groups) {
    if (group.mixed || group.buttons.empty()) continue;
    for (auto& button : group.buttons) {
      const double rim = toolkit == Toolkit::Gtk4 ? unreportedRim(button.rect.size.width) : 0;
      button.rect = placed(button.rect, rim, placement);
    }
    auto roles = rolesByName(group, names);
    if (!roles && !names.complete())
      roles = rolesByPlace(group, decorationLayout, frame.size.width, widestCornerGap * placement.scale);
    if (!roles) continue;
    for (std::size_t i = 0; i < roles->size(); ++i) {
      const CGRect rect = intersection(group.buttons[i].rect, frame);
      if (rect.size.width > 0 && rect.size.height > 0) buttons.push_back({(*roles)[i], rect, group.buttons[i].enabled});
    }
  }
  splitOverlaps(buttons);
  return buttons;
}

void splitOverlaps(std::vector<TitleBarButton>& buttons) {
  const auto split = [](double& firstSize, double& secondStart, double& secondSize, double overlap) {
    const double half = std::floor(overlap / 2);
    firstSize -= overlap - half;
    secondStart += half;
    secondSize -= half;
  };
  for (std::size_t i = 0; i < buttons.size(); ++i) {
    for (std::size_t j = i + 1; j < buttons.size(); ++j) {
      const CGRect shared = intersection(buttons[i].rect, buttons[j].rect);
      if (shared.size.width <= 0 || shared.size.height <= 0) continue;
      CGRect* first = &buttons[i].rect;
      CGRect* second = &buttons[j].rect;
      if (shared.size.width <= shared.size.height) {
        if (first->origin.x > second->origin.x) std::swap(first, second);
        split(first->size.width, second->origin.x, second->size.width, shared.size.width);
      } else {
        if (first->origin.y > second->origin.y) std::swap(first, second);
        split(first->size.height, second->origin.y, second->size.height, shared.size.height);
      }
    }
  }
}

}  // namespace atspi
