// Preferences as one JSON object in a file that people can read and edit.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/UserDefaults.h"
#include "platform/linux/freedesktop/Files.h"
#include "platform/linux/freedesktop/PreferenceFile.h"
#include "platform/linux/freedesktop/PreferenceWriter.h"

namespace freedesktop {

/// The preferences in a user's file with read-only system files behind it. Every read sees what is in the files at that
/// time, for the price of one stat each. Keys that nobody asks for, and their order, survive. Main thread only.
///
/// A change counts at once and reaches the file a moment later: see PreferenceWriter. A user's file that cannot be
/// parsed counts as empty and stays where it is, for its owner to mend, until a change is stored: see storePreferences.
/// What cannot be stored is logged, told to the refusal handler, and reads as before.
class JSONUserDefaults : public ns::UserDefaults {
 public:
  JSONUserDefaults(std::string userFile, const std::vector<std::string>& systemFiles,
                   ReplaceFile replace = replaceFile);

  std::optional<ns::PropertyList> objectForKey(std::string_view key) const override;
  void setObject(ns::PropertyList value, std::string_view key) override;
  void setRefusalHandler(const RefusalHandler& handler) override { writer_->setRefusalHandler(handler); }
  /// Returns when every change is in the file or refused. Any thread.
  void flush() { writer_->flush(); }

 private:
  struct Domain {
    std::string path;
    PreferenceFile file;
    /// False: the next look reads again.
    bool fresh = false;
  };
  static void refresh(Domain& domain);

  /// The user's first. They change while they are read: the files are the state, this is a copy of it.
  mutable std::vector<Domain> domains_;
  const std::shared_ptr<PreferenceWriter> writer_;
};

/// Before the program ends in a way that std::exit does not know of: returns when the standard preferences are in their
/// file. Any thread.
void flushPreferences();

}  // namespace freedesktop
