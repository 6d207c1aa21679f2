#include <algorithm>
#include <iterator>

#include "platform/linux/x11/WindowManagers/Decoration.h"
#include "platform/linux/x11/WindowManagers/WindowManager.h"

namespace x11 {

namespace {

template <typename Knowledge>
struct Entry {
  /// What the name begins with: some append their version.
  std::string_view name;
  const Knowledge& (*get)();
};

constexpr Entry<WindowManager> withButtonWindows[] = {
    {"Openbox", openbox}, {"Xfwm4", xfwm4}, {"Fluxbox", fluxbox}, {"IceWM", iceWM}, {"Window Maker", windowMaker},
};

constexpr Entry<DrawnDecoration> withDrawnButtons[] = {
    {"KWin", kwin},     {"Metacity (Marco)", marco}, {"Metacity", metacity}, {"Mutter (Muffin)", muffin},
    {"Mutter", mutter}, {"GNOME Shell", mutter},
};

template <typename Knowledge, std::size_t N>
const Knowledge* find(const Entry<Knowledge> (&entries)[N], std::string_view name) {
  const auto* found = std::find_if(std::begin(entries), std::end(entries),
                                   [name](const auto& entry) { return name.starts_with(entry.name); });
  return found == std::end(entries) ? nullptr : &found->get();
}

}  // namespace

const WindowManager* windowManagerNamed(std::string_view name) { return find(withButtonWindows, name); }

const DrawnDecoration* drawnDecorationOf(std::string_view name) { return find(withDrawnButtons, name); }

std::size_t ButtonPath::index() const {
  return static_cast<std::size_t>(std::find(siblings.begin(), siblings.end(), leaf()) - siblings.begin());
}

}  // namespace x11
