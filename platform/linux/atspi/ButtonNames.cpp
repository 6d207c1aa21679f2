#include "platform/linux/atspi/ButtonNames.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "platform/linux/freedesktop/Files.h"

namespace atspi {

namespace {

constexpr std::uint32_t magic = 0x950412de;
constexpr std::uint32_t magicOfOtherByteOrder = 0xde120495;

struct Message {
  const char* id;
  ButtonRole role;
};
// GTK 3 renames the button of a maximised window, GTK 4 does not.
constexpr std::array messages = {Message{"Minimize", ButtonRole::Minimize}, Message{"Maximize", ButtonRole::Zoom},
                                 Message{"Restore", ButtonRole::Zoom}, Message{"Close", ButtonRole::Close}};

/// Reads a catalogue's numbers and strings; nothing in it is believed before its bounds were checked.
class Catalog {
 public:
  explicit Catalog(std::string_view data) : data_(data) {
    const auto first = number(0);
    valid_ = first == magic || first == magicOfOtherByteOrder;
    swapped_ = first == magicOfOtherByteOrder;
  }

  std::optional<std::string> find(std::string_view id) const {
    if (!valid_) return std::nullopt;
    const auto count = number(8);
    const auto ids = number(12);
    const auto texts = number(16);
    if (!count || !ids || !texts) return std::nullopt;
    for (std::size_t i = 0; i < *count; ++i) {
      const auto candidate = text(*ids + 8 * i);
      if (!candidate) return std::nullopt;
      if (*candidate != id) continue;
      const auto found = text(*texts + 8 * i);
      if (!found || found->empty()) return std::nullopt;
      return std::string(*found);
    }
    return std::nullopt;
  }

 private:
  std::optional<std::uint32_t> number(std::size_t at) const {
    if (at > data_.size() || data_.size() - at < 4) return std::nullopt;
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4; ++i) {
      const std::size_t shift = 8 * (swapped_ ? 3 - i : i);
      value |= static_cast<std::uint32_t>(static_cast<unsigned char>(data_[at + i])) << shift;
    }
    return value;
  }
  /// The string that the descriptor at `at` names: its length, then its offset.
  std::optional<std::string_view> text(std::size_t at) const {
    const auto length = number(at);
    const auto offset = number(at + 4);
    if (!length || !offset || *offset > data_.size() || data_.size() - *offset < *length) return std::nullopt;
    return data_.substr(*offset, *length);
  }

  std::string_view data_;
  bool valid_ = false;
  bool swapped_ = false;
};

/// More than the longest catalogue of today by far.
constexpr std::size_t largestCatalog = 4u << 20;
/// Nobody prefers so many languages, each in up to four forms.
constexpr std::size_t mostForms = 32;

bool isUntranslated(std::string_view locale) { return locale == "C" || locale == "POSIX"; }

bool isEnglish(std::string_view language) { return language == "en" || language.starts_with("en_"); }

/// A form names a folder, and an application says what it likes: nothing in it may lead to another one.
bool isFolderName(std::string_view form) {
  constexpr std::string_view letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_-@";
  constexpr std::size_t longest = 64;
  return !form.empty() && form.size() <= longest && form.find_first_not_of(letters) == form.npos;
}

void appendForms(std::vector<std::string>& forms, std::string_view locale) {
  const auto append = [&forms](std::string form) {
    if (forms.size() < mostForms && isFolderName(form) && std::ranges::find(forms, form) == forms.end())
      forms.push_back(std::move(form));
  };
  const auto modifierAt = std::min(locale.find('@'), locale.size());
  const std::string modifier(locale.substr(modifierAt));
  const std::string base(locale.substr(0, std::min(locale.find('.'), modifierAt)));
  const std::string plain = base.substr(0, base.find('_'));
  if (isUntranslated(plain)) return;
  append(base + modifier);
  append(base);
  append(plain + modifier);
  append(plain);
}

}  // namespace

std::vector<std::string> messageLanguages(std::string_view locale, std::string_view language) {
  std::vector<std::string> forms;
  if (locale.empty() || isUntranslated(locale)) return forms;
  if (language.empty()) {
    appendForms(forms, locale);
    return forms;
  }
  while (!language.empty() && forms.size() < mostForms) {
    const auto end = std::min(language.find(':'), language.size());
    const auto one = language.substr(0, end);
    if (isUntranslated(one)) break;
    appendForms(forms, one);
    language.remove_prefix(std::min(end + 1, language.size()));
  }
  return forms;
}

std::optional<std::string> catalogMessage(std::string_view catalog, std::string_view id) {
  return Catalog(catalog).find(id);
}

ButtonNames ButtonNames::load(const std::string& domain, const std::vector<std::string>& languages,
                              const std::vector<std::string>& folders) {
  std::string catalog;
  ButtonNames names;
  for (const auto& language : languages) {
    for (const auto& folder : folders) {
      auto path = folder;
      path.append("/").append(language).append("/LC_MESSAGES/").append(domain).append(".mo");
      if (auto file = freedesktop::readFile(path, largestCatalog); file.error == 0) {
        catalog = std::move(file.text);
        break;
      }
    }
    // English needs no catalogue, and a language after it is not asked: the messages themselves are English.
    if (!catalog.empty() || isEnglish(language)) break;
  }
  names.complete_ = !catalog.empty() || languages.empty() || isEnglish(languages.front());
  for (const auto& message : messages)
    names.entries_.push_back({catalogMessage(catalog, message.id).value_or(message.id), message.role});
  return names;
}

void ButtonNames::addUntranslated() {
  for (const auto& message : messages) entries_.push_back({message.id, message.role});
}

std::optional<ButtonRole> ButtonNames::role(std::string_view name) const {
  const auto found = std::ranges::find(entries_, name, &Entry::name);
  if (found == entries_.end()) return std::nullopt;
  return found->role;
}

}  // namespace atspi
