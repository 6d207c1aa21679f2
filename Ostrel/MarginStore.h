// How margins are kept in the preferences: one number per edge, at three levels. A display in a display configuration
// comes first; behind it stand two older forms that are still read, per display identifier and for all displays, and
// behind those the built-in values. Each edge is resolved on its own.
#pragma once

#include <string>
#include <string_view>

#include "Ostrel/DisplayCatalogue.h"
#include "Ostrel/WindowMargins.h"
#include "platform/UserDefaults.h"

namespace ostrel {

namespace DefaultsKey {
std::string display(CGDirectDisplayID id, std::string_view edge);
std::string configuration(std::string_view configurationKey, std::string_view identityKey, std::string_view edge);
}  // namespace DefaultsKey

/// Each edge within 0 to 1000 points. Not a number becomes 0: let through, it would become a window's position.
WindowMargins clamped(const WindowMargins& margins);

// Results are clamped; reading never writes.
WindowMargins loadMargins(const DisplayInfo& display, const DisplayConfigurationInfo& configuration,
                          const ns::UserDefaults& defaults);
WindowMargins loadLegacyMargins(CGDirectDisplayID id, const ns::UserDefaults& defaults);
WindowMargins loadGlobalFallbackMargins(const ns::UserDefaults& defaults);

// Stored as given, at one level; the others stay as they are.
void saveMargins(const WindowMargins& margins, const DisplayInfo& display,
                 const DisplayConfigurationInfo& configuration, ns::UserDefaults& defaults);
void saveLegacyMargins(const WindowMargins& margins, CGDirectDisplayID id, ns::UserDefaults& defaults);

}  // namespace ostrel
