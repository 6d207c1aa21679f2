// Preferences as one JSON object in a file that people can read and edit.
#pragma once

#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/UserDefaults.h"
#include "platform/linux/freedesktop/FileStamp.h"

namespace freedesktop {

/// Reads preference text: none unless it is a JSON object within the limits that keep hostile files harmless (size,
/// depth, number of keys). The order of keys is kept; of a key that stands there twice the last value counts.
std::optional<nlohmann::ordered_json> parsePreferences(std::string_view text);

/// The preferences in a user's file with read-only system files behind it. Every read sees what is in the files at that
/// time, for the price of one stat each. Keys that nobody asks for, and their order, survive. Main thread only.
///
/// A user's file that cannot be parsed counts as empty and stays where it is, for its owner to mend; before the first
/// change is stored it is kept aside, under a name that ends in ".damaged-" and the time. A file that cannot be read at
/// all is left alone, and changes are refused. Either is logged, as is a change that cannot be written.
class JSONUserDefaults : public ns::UserDefaults {
 public:
  JSONUserDefaults(std::string userFile, const std::vector<std::string>& systemFiles);

  std::optional<ns::PropertyList> objectForKey(std::string_view key) const override;
  void setObject(ns::PropertyList value, std::string_view key) override;

 private:
  enum class State { Missing, Good, Damaged, Unreadable };
  struct Domain {
    std::string path;
    State state = State::Missing;
    FileStamp stamp;
    /// None: the next look reads again.
    bool fresh = false;
    nlohmann::ordered_json content = nlohmann::ordered_json::object();
  };
  static void refresh(Domain& domain);

  /// The user's first. They change while they are read: the files are the state, this is a copy of it.
  mutable std::vector<Domain> domains_;
};

}  // namespace freedesktop
