// What applications say about themselves.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/PropertyList.h"

namespace ns {

/// An installed application's description. Immutable. Any thread.
class Bundle {
 public:
  /// The running application. Never null.
  static std::shared_ptr<Bundle> mainBundle();
  /// The application at a path, as ns::Workspace gives paths of applications; null when it cannot be read.
  static std::shared_ptr<Bundle> bundleWithPath(const std::string& path);
  virtual ~Bundle() = default;

  virtual std::optional<std::string> bundleIdentifier() const = 0;
  virtual std::string bundlePath() const = 0;
  /// The value under a key of the information dictionary ("CFBundleShortVersionString", "CFBundleVersion",
  /// "SUFeedURL", "SUScheduledCheckInterval"); none when it has no such key.
  virtual std::optional<PropertyList> objectForInfoDictionaryKey(std::string_view key) const = 0;
};

/// The name that people know the file or application at a path by, in their language; the last part of the path when
/// nothing better is known.
std::string displayNameAtPath(const std::string& path);

}  // namespace ns
