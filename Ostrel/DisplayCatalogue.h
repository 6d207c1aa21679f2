// The active displays, and the keys by which each one and each set of them is recognised again. Nothing is kept: every
// call asks the system. Main thread only, but for sanitizedKey.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/ApplicationServices.h"

namespace ostrel {

struct DisplayInfo {
  /// The system's identifier at the time of the call; not to be remembered, it may change with the next plug.
  CGDirectDisplayID id = 0;
  /// For people; the main display's ends in " (main display)".
  std::string name;
  /// Alphanumerics and single hyphens, never empty, no hyphen at either end.
  std::string identityKey;
  /// Points in the global display space.
  CGRect bounds{};
  friend bool operator==(const DisplayInfo& one, const DisplayInfo& other) {
    return one.id == other.id && one.name == other.name && one.identityKey == other.identityKey &&
           CGRectEqualToRect(one.bounds, other.bounds);
  }
};

/// One set of displays, whatever order the system lists them in.
struct DisplayConfigurationInfo {
  /// The identity keys joined with "--", which no identity key contains; "no-displays" for none.
  std::string key;
  /// For people.
  std::string label;
  /// Sorted by identity key, then by id.
  std::vector<DisplayInfo> displays;
};

/// In the system's order; empty when the list cannot be read.
std::vector<DisplayInfo> activeDisplays();
std::string displayName(CGDirectDisplayID id);
/// How many pixels make a point on it; 1 when that cannot be told.
double displayScale(CGDirectDisplayID id);
/// Every run of scalars that are not alphanumeric as one hyphen, none at the ends.
std::string sanitizedKey(std::string_view text);
/// Where a display stands takes no part in its key.
std::string displayIdentityKey(CGDirectDisplayID id, std::string_view name, CGRect bounds);
DisplayConfigurationInfo displayConfiguration(std::vector<DisplayInfo> displays);
DisplayConfigurationInfo currentDisplayConfiguration();

}  // namespace ostrel
