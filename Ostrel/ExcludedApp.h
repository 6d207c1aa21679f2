// An application whose window buttons are left alone.
#pragma once

#include <string>

namespace ostrel {

struct ExcludedApp {
  /// The identity of an entry, compared exactly.
  std::string bundleID;
  /// Shown to the user; the list is sorted by it.
  std::string name;
  friend bool operator==(const ExcludedApp&, const ExcludedApp&) = default;
};

}  // namespace ostrel
