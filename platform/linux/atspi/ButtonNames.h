// What an application calls its title-bar buttons, in its language.
//
// AT-SPI gives a button's name only as text for people. The toolkit took it from its own catalogue, so the same entry
// of the same catalogue tells which button it is, in every language that is installed.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/atspi/TitleBarButtons.h"

namespace atspi {

/// The languages that gettext would look for, best first, each followed by its less specific forms ("de_AT", "de").
/// `locale` is the application's ("de_DE.UTF-8"), `language` its variable LANGUAGE, empty when it has none.
/// Empty when messages stay untranslated. Both are untrusted; each form can be the name of a folder and leads nowhere
/// else.
std::vector<std::string> messageLanguages(std::string_view locale, std::string_view language);

/// The entry `id` of a compiled message catalogue in either byte order; none when it has no such entry or is damaged.
std::optional<std::string> catalogMessage(std::string_view catalog, std::string_view id);

/// The names of the buttons in one application.
class ButtonNames {
 public:
  /// Reads the catalogue `domain` of the first of `languages` that is below one of `folders`.
  static ButtonNames load(const std::string& domain, const std::vector<std::string>& languages,
                          const std::vector<std::string>& folders);

  /// For an application that may not be translated after all.
  void addUntranslated();

  std::optional<ButtonRole> role(std::string_view name) const;
  /// False when messages are translated but no catalogue says how: then an unknown name tells nothing.
  bool complete() const { return complete_; }

 private:
  struct Entry {
    std::string name;
    ButtonRole role;
  };
  std::vector<Entry> entries_;
  bool complete_ = true;
};

}  // namespace atspi
