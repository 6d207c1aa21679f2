// The preference file: one JSON object that people can read and edit.
#pragma once

#include <functional>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

#include "platform/linux/freedesktop/FileStamp.h"

namespace freedesktop {

/// Reads preference text: none unless it is a JSON object within the limits that keep hostile files harmless (size,
/// depth, number of keys). The order of keys is kept; of a key that stands there twice the last value counts.
std::optional<nlohmann::ordered_json> parsePreferences(std::string_view text);
/// What parsePreferences reads. Text that is no UTF-8 is replaced.
std::string preferenceText(const nlohmann::ordered_json& preferences);

struct PreferenceFile {
  enum class State { Missing, Good, Damaged, Unreadable };
  State state = State::Missing;
  FileStamp stamp;
  /// The errno of what failed; 0 unless the file is missing or cannot be read.
  int error = 0;
  /// Empty unless the file is good.
  nlohmann::ordered_json content = nlohmann::ordered_json::object();

  static PreferenceFile read(const std::string& path);
};

/// Replaces the file at a path, as replaceFile does.
using ReplaceFile = std::function<int(const std::string& path, std::string_view content)>;

/// Writes `changes`, an object, over the values that are in the file at this moment; the others and their order stay.
/// None on success, otherwise the reason, and nothing has changed. Waits for the disk. Any thread.
///
/// A file that cannot be parsed is kept aside, under a name that ends in ".damaged-" and the time. One that cannot be
/// read at all is left alone, and the changes are refused.
std::optional<std::string> storePreferences(const std::string& path, const nlohmann::ordered_json& changes,
                                            const ReplaceFile& replace);

}  // namespace freedesktop
