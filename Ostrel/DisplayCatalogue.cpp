#include "Ostrel/DisplayCatalogue.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <tuple>
#include <utility>

#include "platform/Screen.h"
#include "platform/Text.h"

namespace ostrel {

namespace {

std::optional<CGDirectDisplayID> screenNumber(const ns::Screen& screen) {
  const auto found = screen.deviceDescription.find("NSScreenNumber");
  if (found == screen.deviceDescription.end()) return std::nullopt;
  if (const auto* integer = found->second.as<std::int64_t>()) return static_cast<CGDirectDisplayID>(*integer);
  const auto* real = found->second.as<double>();
  if (real == nullptr || !(*real >= 0 && *real <= double{UINT32_MAX})) return std::nullopt;
  return static_cast<CGDirectDisplayID>(*real);
}

std::optional<ns::Screen> screenOf(CGDirectDisplayID id) {
  auto screens = ns::Screen::screens();
  const auto screen =
      std::find_if(screens.begin(), screens.end(), [id](const ns::Screen& each) { return screenNumber(each) == id; });
  return screen == screens.end() ? std::nullopt : std::optional(std::move(*screen));
}

std::string joined(const std::vector<DisplayInfo>& displays, std::string DisplayInfo::*part, std::string_view separator,
                   std::string_view ifEmpty) {
  std::string text;
  for (const DisplayInfo& display : displays) {
    if (&display != &displays.front()) text += separator;
    text += display.*part;
  }
  return text.empty() ? std::string(ifEmpty) : text;
}

}  // namespace

std::vector<DisplayInfo> activeDisplays() {
  std::uint32_t count = 0;
  if (CGGetActiveDisplayList(0, nullptr, &count) != kCGErrorSuccess || count == 0) return {};
  std::vector<CGDirectDisplayID> ids(count, 0);
  if (CGGetActiveDisplayList(count, ids.data(), &count) != kCGErrorSuccess) return {};
  // A display may have gone between the two calls.
  if (count < ids.size()) ids.resize(count);

  std::vector<DisplayInfo> displays;
  displays.reserve(ids.size());
  for (const CGDirectDisplayID id : ids) {
    const CGRect bounds = CGDisplayBounds(id);
    std::string name = displayName(id);
    std::string key = displayIdentityKey(id, name, bounds);
    displays.push_back({id, std::move(name), std::move(key), bounds});
  }
  return displays;
}

std::string displayName(CGDirectDisplayID id) {
  const auto screen = screenOf(id);
  std::string name = screen ? screen->localizedName : "Display " + std::to_string(id);
  if (CGDisplayIsMain(id) != 0) name += " (main display)";
  return name;
}

double displayScale(CGDirectDisplayID id) {
  const auto screen = screenOf(id);
  return screen ? screen->backingScaleFactor : 1;
}

std::string sanitizedKey(std::string_view text) {
  std::u32string key;
  for (const char32_t scalar : ns::unicodeScalars(text)) {
    if (ns::isAlphanumeric(scalar)) {
      key += scalar;
    } else if (!key.empty() && key.back() != U'-') {
      key += U'-';
    }
  }
  if (!key.empty() && key.back() == U'-') key.pop_back();
  return ns::utf8(key);
}

std::string displayIdentityKey(CGDirectDisplayID id, std::string_view name, CGRect) {
  return sanitizedKey(std::string(name) + "-vendor" + std::to_string(CGDisplayVendorNumber(id)) + "-model" +
                      std::to_string(CGDisplayModelNumber(id)) + "-serial" + std::to_string(CGDisplaySerialNumber(id)));
}

DisplayConfigurationInfo displayConfiguration(std::vector<DisplayInfo> displays) {
  // The index comes last, so that equal displays keep their order.
  std::vector<std::tuple<std::u32string, CGDirectDisplayID, std::size_t>> order;
  for (const DisplayInfo& display : displays) {
    order.emplace_back(ns::unicodeScalars(ns::precomposedString(display.identityKey)), display.id, order.size());
  }
  std::sort(order.begin(), order.end());
  DisplayConfigurationInfo configuration;
  for (const auto& [key, id, index] : order) configuration.displays.push_back(std::move(displays[index]));
  configuration.key = joined(configuration.displays, &DisplayInfo::identityKey, "--", "no-displays");
  configuration.label = joined(configuration.displays, &DisplayInfo::name, " + ", "No displays");
  return configuration;
}

DisplayConfigurationInfo currentDisplayConfiguration() { return displayConfiguration(activeDisplays()); }

}  // namespace ostrel
