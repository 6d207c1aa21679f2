#include <algorithm>
#include <iterator>

#include "platform/linux/x11/WindowManagers/WindowManager.h"

namespace x11 {

namespace {

struct Entry {
  /// What the name begins with: some append their version.
  std::string_view name;
  const WindowManager& (*get)();
};

constexpr Entry entries[] = {
    {"Openbox", openbox},
    {"Xfwm4", xfwm4},
    {"Fluxbox", fluxbox},
    {"IceWM", iceWM},
};

}  // namespace

const WindowManager* windowManagerNamed(std::string_view name) {
  const auto* found = std::find_if(std::begin(entries), std::end(entries),
                                   [name](const Entry& entry) { return name.starts_with(entry.name); });
  return found == std::end(entries) ? nullptr : &found->get();
}

std::size_t ButtonPath::index() const {
  return static_cast<std::size_t>(std::find(siblings.begin(), siblings.end(), leaf()) - siblings.begin());
}

}  // namespace x11
