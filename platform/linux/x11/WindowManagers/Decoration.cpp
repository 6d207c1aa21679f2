#include "platform/linux/x11/WindowManagers/Decoration.h"

#include <algorithm>
#include <set>

namespace x11 {

namespace {

/// Scaled up by whole factors, as toolkits do it.
ButtonStrip scaled(const ButtonStrip& strip, int factor) {
  const auto times = [factor](int pixels) { return pixels * factor; };
  const Extents& from = strip.extents;
  const Extents extents{times(from.left), times(from.right), times(from.top), times(from.bottom)};
  return {strip.state,           extents,
          times(strip.fromLeft), times(strip.fromRight),
          times(strip.down),     times(strip.width),
          times(strip.height),   times(strip.pitch),
          times(strip.scale)};
}

std::optional<ButtonStrip> stripOf(const Decoration& decoration, const TitleBarKind& kind) {
  for (const ButtonStrip& strip : decoration.strips) {
    const bool isAnyScale = strip.scale == ButtonStrip::anyScale;
    if (strip.state != kind.state || (!isAnyScale && kind.scale % strip.scale != 0)) continue;
    const ButtonStrip fitting = isAnyScale ? strip : scaled(strip, kind.scale / strip.scale);
    if (fitting.extents == kind.extents) return fitting;
  }
  return std::nullopt;
}

}  // namespace

std::vector<StoredButton> buttonsOf(const Decoration& decoration, const Window& window, const TitleBarKind& kind) {
  const WindowProperties& properties = window.properties;
  if (kind.isDialog || !properties.minimizeIsAllowed || !properties.maximizeIsAllowed || !properties.closeIsAllowed) {
    return {};
  }
  const auto strip = stripOf(decoration, kind);
  if (!strip) return {};
  const auto& [left, right] = decoration.layout;
  // A side more, for the title and for what may be wider than a button.
  const auto mostSlots = static_cast<int>(left.size() + right.size() + std::max(left.size(), right.size()));
  if (window.geometry.frame().width < mostSlots * strip->pitch + strip->fromLeft + strip->fromRight) return {};

  const auto isShown = [&properties](Slot slot) {
    return (slot != Slot::Minimize || *properties.minimizeIsAllowed) &&
           (slot != Slot::Zoom || *properties.maximizeIsAllowed) && (slot != Slot::Close || *properties.closeIsAllowed);
  };
  std::vector<StoredButton> buttons;
  const auto addSide = [&](Corner corner, const std::vector<Slot>& side) {
    int across = corner == Corner::Left ? strip->fromLeft : strip->fromRight;
    for (const Slot slot : side) {
      if (slot == Slot::Unknown) return;
      if (!isShown(slot)) continue;
      const auto role = slot == Slot::Minimize ? std::optional(ButtonRole::Minimize)
                        : slot == Slot::Zoom   ? std::optional(ButtonRole::Zoom)
                        : slot == Slot::Close  ? std::optional(ButtonRole::Close)
                                               : std::nullopt;
      if (role) buttons.push_back({*role, corner, across, strip->down, strip->width, strip->height});
      across += strip->pitch;
    }
  };
  addSide(Corner::Left, left);
  addSide(Corner::Right, right);
  return buttons;
}

std::string valueOf(const SettingValues& values, const Setting& setting) {
  const auto found = values.find(setting);
  return found == values.end() ? std::string() : found->second;
}

std::optional<ButtonLayout> colonLayout(std::string_view text) {
  const std::size_t colon = std::min(text.find(':'), text.size());
  std::set<Slot> seen;
  const auto read = [&seen](std::string_view side) -> std::optional<std::vector<Slot>> {
    std::vector<Slot> slots;
    while (!side.empty()) {
      const std::size_t end = std::min(side.find(','), side.size());
      const std::string_view word = side.substr(0, end);
      side.remove_prefix(std::min(end + 1, side.size()));
      const Slot slot = word == "minimize"   ? Slot::Minimize
                        : word == "maximize" ? Slot::Zoom
                        : word == "close"    ? Slot::Close
                        : word == "menu"     ? Slot::OtherButton
                                             : Slot::Unknown;
      if (slot != Slot::Unknown && !seen.insert(slot).second) return std::nullopt;
      slots.push_back(slot);
    }
    return slots;
  };
  auto left = read(text.substr(0, colon));
  auto right = read(text.substr(std::min(colon + 1, text.size())));
  if (!left || !right) return std::nullopt;
  std::reverse(right->begin(), right->end());
  return ButtonLayout{*std::move(left), *std::move(right)};
}

}  // namespace x11
