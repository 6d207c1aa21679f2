#include "Ostrel/MarginStore.h"

#include <algorithm>
#include <array>
#include <utility>

#include "Ostrel/OstrelController.h"

namespace ostrel {

namespace {

constexpr WindowMargins builtInMargins{.top = 56, .left = 32, .right = 32, .bottom = 32};
constexpr double largestMargin = 1000;

/// Every edge with its word, in the order in which edges are read and written.
constexpr std::array<std::pair<std::string_view, double WindowMargins::*>, 4> edges{{
    {"top", &WindowMargins::top},
    {"left", &WindowMargins::left},
    {"right", &WindowMargins::right},
    {"bottom", &WindowMargins::bottom},
}};

/// `fallback` with each edge replaced whose key is present. `keyFor` makes a key of an edge word.
template <typename KeyFor>
WindowMargins overridden(WindowMargins fallback, const ns::UserDefaults& defaults, KeyFor keyFor) {
  for (const auto& [word, edge] : edges) {
    const std::string key = keyFor(word);
    if (defaults.objectForKey(key)) fallback.*edge = defaults.doubleForKey(key);
  }
  return clamped(fallback);
}

template <typename KeyFor>
void store(const WindowMargins& margins, ns::UserDefaults& defaults, KeyFor keyFor) {
  for (const auto& [word, edge] : edges) defaults.setDouble(margins.*edge, keyFor(word));
}

const DisplayInfo* findDisplay(const std::vector<DisplayInfo>& displays, CGDirectDisplayID id) {
  const auto found =
      std::find_if(displays.begin(), displays.end(), [id](const DisplayInfo& each) { return each.id == id; });
  return found != displays.end() ? &*found : nullptr;
}

auto displayKeys(CGDirectDisplayID id) {
  return [id](std::string_view edge) { return DefaultsKey::display(id, edge); };
}

auto configurationKeys(const DisplayInfo& display, const DisplayConfigurationInfo& configuration) {
  return [&display, &configuration](std::string_view edge) {
    return DefaultsKey::configuration(configuration.key, display.identityKey, edge);
  };
}

}  // namespace

std::string DefaultsKey::display(CGDirectDisplayID id, std::string_view edge) {
  return "margins.display." + std::to_string(id) + "." + std::string(edge);
}

std::string DefaultsKey::configuration(std::string_view configurationKey, std::string_view identityKey,
                                       std::string_view edge) {
  std::string key = "margins.configuration.";
  key.append(configurationKey).append(".display.").append(identityKey).append(".").append(edge);
  return key;
}

WindowMargins clamped(const WindowMargins& margins) {
  WindowMargins result = margins;
  for (const auto& [word, edge] : edges) {
    double& value = result.*edge;
    if (!(value > 0)) value = 0;
    if (value > largestMargin) value = largestMargin;
  }
  return result;
}

WindowMargins loadGlobalFallbackMargins(const ns::UserDefaults& defaults) {
  return overridden(builtInMargins, defaults, [](std::string_view edge) { return "margins." + std::string(edge); });
}

WindowMargins loadLegacyMargins(CGDirectDisplayID id, const ns::UserDefaults& defaults) {
  return overridden(loadGlobalFallbackMargins(defaults), defaults, displayKeys(id));
}

WindowMargins loadMargins(const DisplayInfo& display, const DisplayConfigurationInfo& configuration,
                          const ns::UserDefaults& defaults) {
  return overridden(loadLegacyMargins(display.id, defaults), defaults, configurationKeys(display, configuration));
}

void saveMargins(const WindowMargins& margins, const DisplayInfo& display,
                 const DisplayConfigurationInfo& configuration, ns::UserDefaults& defaults) {
  store(margins, defaults, configurationKeys(display, configuration));
}

void saveLegacyMargins(const WindowMargins& margins, CGDirectDisplayID id, ns::UserDefaults& defaults) {
  store(margins, defaults, displayKeys(id));
}

WindowMargins OstrelController::margins(CGDirectDisplayID id) const {
  const auto displays = activeDisplays();
  const DisplayInfo* display = findDisplay(displays, id);
  if (display == nullptr) return loadLegacyMargins(id, *defaults_);
  return loadMargins(*display, displayConfiguration(displays), *defaults_);
}

void OstrelController::updateMargins(const WindowMargins& margins, CGDirectDisplayID id) {
  const auto displays = activeDisplays();
  const DisplayInfo* display = findDisplay(displays, id);
  if (display == nullptr) {
    saveLegacyMargins(clamped(margins), id, *defaults_);
  } else {
    saveMargins(clamped(margins), *display, displayConfiguration(displays), *defaults_);
  }
}

}  // namespace ostrel
