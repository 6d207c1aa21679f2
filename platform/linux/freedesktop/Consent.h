// The recorded consent to Accessibility: a file in the user's data folder, ostrel/accessibility-consent, whose first
// line is "granted". Anything else, a file of another user included, is no consent. A refusal is on record too, so that
// nobody is asked again who has answered.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "platform/linux/freedesktop/FileStamp.h"

namespace freedesktop {

/// Main thread only.
class Consent {
 public:
  /// The one of this user.
  static Consent& shared();
  explicit Consent(std::string path);

  /// Whether consent is on record now. One look at the file's stamp, so that it can be asked for every click; a change
  /// by another process shows at once.
  bool isTrusted();
  /// Records the consent or its refusal. None on success, otherwise the system's words; then nothing has changed.
  std::optional<std::string> set(bool granted);

  /// `prompt` shows the dialog that asks the person, or raises the one that is open, and returns at once. The user
  /// interface sets it; without one, asking writes a line to the log that says which command grants.
  void setPrompt(std::function<void()> prompt);
  /// Asks the person, whatever is on record.
  void prompt();
  /// Asks a person who has not answered yet.
  void promptOnce();

 private:
  std::string path_;
  FileStamp stamp_;
  bool trusted_ = false;
  std::function<void()> prompt_;
};

}  // namespace freedesktop
