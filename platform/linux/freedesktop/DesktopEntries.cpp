#include "platform/linux/freedesktop/DesktopEntries.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <clocale>
#include <memory>
#include <set>
#include <utility>

#include "platform/linux/freedesktop/BaseFolders.h"
#include "platform/linux/freedesktop/Files.h"

namespace freedesktop {
namespace {

constexpr std::size_t largestEntry = 1024 * 1024;
constexpr std::size_t mostEntries = 20000;
constexpr int deepestFolder = 8;
constexpr std::string_view suffix = ".desktop";

std::string_view trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(" \t\r");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

std::string unescaped(std::string_view text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\\' || i + 1 == text.size()) {
      result += text[i];
      continue;
    }
    const char escape = text[++i];
    result += escape == 's' ? ' ' : escape == 'n' ? '\n' : escape == 't' ? '\t' : escape == 'r' ? '\r' : escape;
  }
  return result;
}

/// The words of a command line, quotes and backslashes taken off.
std::vector<std::string> words(std::string_view command) {
  std::vector<std::string> result;
  std::string word;
  bool inWord = false;
  bool quoted = false;
  for (std::size_t i = 0; i < command.size(); ++i) {
    const char c = command[i];
    if (c == '"') {
      quoted = !quoted;
      inWord = true;
    } else if ((c == '\\' && i + 1 < command.size()) || (c == '%' && command.substr(i + 1).starts_with('%'))) {
      word += command[++i];
      inWord = true;
    } else if (!quoted && (c == ' ' || c == '\t')) {
      if (inWord) result.push_back(std::exchange(word, {}));
      inWord = false;
    } else {
      word += c;
      inWord = true;
    }
  }
  if (inWord) result.push_back(word);
  return result;
}

/// The program that a command starts, `env NAME=value …` skipped.
std::string programOf(std::string_view command) {
  const std::vector<std::string> parts = words(command);
  auto part = parts.begin();
  if (part != parts.end() && (*part == "env" || part->ends_with("/env"))) {
    ++part;
    while (part != parts.end() && part->find('=') != std::string::npos) ++part;
  }
  return part == parts.end() ? std::string() : *part;
}

/// How well a key's locale suits the user's, 0 for not at all: language_COUNTRY@MODIFIER before language_COUNTRY before
/// language@MODIFIER before language.
int localeRank(std::string_view keyLocale, std::string_view userLocale) {
  const std::string_view modifier =
      userLocale.find('@') == std::string_view::npos ? std::string_view() : userLocale.substr(userLocale.find('@'));
  const std::string_view base = userLocale.substr(0, userLocale.find_first_of(".@"));
  const std::string_view language = base.substr(0, base.find('_'));
  if (language.empty()) return 0;
  if (keyLocale == std::string(base) + std::string(modifier)) return 4;
  if (keyLocale == base) return 3;
  if (keyLocale == std::string(language) + std::string(modifier)) return 2;
  return keyLocale == language ? 1 : 0;
}

/// Calls `visit` with each key and raw value of the group that describes the entry.
template <typename Visit>
void visitKeys(std::string_view text, const Visit& visit) {
  bool inGroup = false;
  while (!text.empty()) {
    const auto end = std::min(text.find('\n'), text.size());
    const std::string_view line = trimmed(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    const auto equals = line.find('=');
    if (line.starts_with('[')) {
      if (inGroup) return;  // only actions follow
      inGroup = line == "[Desktop Entry]";
    } else if (inGroup && !line.starts_with('#') && equals != std::string_view::npos) {
      visit(trimmed(line.substr(0, equals)), trimmed(line.substr(equals + 1)));
    }
  }
}

std::string messagesLocale() {
  const char* locale = std::setlocale(LC_MESSAGES, nullptr);
  return locale == nullptr ? std::string() : locale;
}

using Folder = std::unique_ptr<DIR, int (*)(DIR*)>;
Folder openFolder(const std::string& path) { return {opendir(path.c_str()), &closedir}; }

}  // namespace

std::optional<DesktopEntry> parseDesktopEntry(std::string_view text, std::string_view locale) {
  DesktopEntry entry;
  bool isApplication = false;
  bool isDeleted = false;
  int nameRank = -1;
  visitKeys(text, [&](std::string_view key, std::string_view value) {
    if (key == "Type") {
      isApplication = value == "Application";
    } else if (key == "Hidden" && value == "true") {
      isDeleted = true;
    } else if (key == "NoDisplay") {
      entry.hidden = value == "true";
    } else if (key == "Icon") {
      entry.icon = unescaped(value);
    } else if (key == "StartupWMClass") {
      entry.startupWMClass = unescaped(value);
    } else if (key == "Exec") {
      entry.executable = programOf(unescaped(value));
    } else if (key == "TryExec") {
      entry.tryExecutable = unescaped(value);
    } else if (key == "Name" || (key.starts_with("Name[") && key.ends_with(']'))) {
      const int rank = key == "Name" ? 0 : localeRank(key.substr(5, key.size() - 6), locale);
      if (rank <= nameRank || (rank == 0 && key != "Name")) return;
      nameRank = rank;
      entry.name = unescaped(value);
    }
  });
  if (!isApplication || isDeleted || entry.name.empty()) return std::nullopt;
  return entry;
}

std::string desktopEntryValue(std::string_view text, std::string_view key) {
  std::string result;
  visitKeys(text, [&](std::string_view name, std::string_view value) {
    if (name == key) result = unescaped(value);
  });
  return result;
}

std::optional<DesktopEntry> readDesktopEntry(const std::string& path) {
  const FileContent file = readFile(path, largestEntry);
  if (file.error != 0) return std::nullopt;
  std::optional<DesktopEntry> entry = parseDesktopEntry(file.text, messagesLocale());
  if (!entry) return entry;
  entry->path = path;
  if (auto id = DesktopEntries::shared().idForPath(path)) {
    entry->id = *std::move(id);
  } else if (path.ends_with(suffix)) {
    const auto slash = path.rfind('/') + 1;  // 0 when there is none
    entry->id = path.substr(slash, path.size() - suffix.size() - slash);
  }
  return entry;
}

DesktopEntries& DesktopEntries::shared() {
  static DesktopEntries entries(standardFolders());
  return entries;
}

DesktopEntries::DesktopEntries(std::vector<std::string> folders, std::string locale)
    : folders_(std::move(folders)), locale_(std::move(locale)) {}

std::vector<std::string> DesktopEntries::standardFolders() {
  std::vector<std::string> bases{dataHome()};
  const std::vector<std::string> system = dataFolders();
  bases.insert(bases.end(), system.begin(), system.end());
  // A session that was started before Flatpak or Snap was installed lacks their folders in XDG_DATA_DIRS.
  for (std::string base : {dataHome() + "/flatpak/exports/share", std::string("/var/lib/flatpak/exports/share"),
                           std::string("/var/lib/snapd/desktop")}) {
    if (std::find(bases.begin(), bases.end(), base) == bases.end()) bases.push_back(std::move(base));
  }
  for (std::string& base : bases) base += "/applications";
  return bases;
}

const std::vector<DesktopEntry>& DesktopEntries::entries() {
  refresh();
  return entries_;
}

const DesktopEntry* DesktopEntries::entryWithId(std::string_view id) {
  refresh();
  const auto found = std::find_if(entries_.begin(), entries_.end(), [&](const auto& entry) { return entry.id == id; });
  return found == entries_.end() ? nullptr : &*found;
}

std::optional<std::string> DesktopEntries::idForPath(std::string_view path) const {
  if (!path.ends_with(suffix)) return std::nullopt;
  for (const std::string& folder : folders_) {
    if (!path.starts_with(folder) || path.size() <= folder.size() || path[folder.size()] != '/') continue;
    std::string id(path.substr(folder.size() + 1));
    id.resize(id.size() - suffix.size());
    std::replace(id.begin(), id.end(), '/', '-');
    return id;
  }
  return std::nullopt;
}

unsigned DesktopEntries::generation() {
  refresh();
  return generation_;
}

void DesktopEntries::refresh() {
  const bool unchanged = generation_ > 0 && std::all_of(stamps_.begin(), stamps_.end(), [](const auto& stamp) {
                           return FileStamp::of(stamp.first) == stamp.second;
                         });
  if (unchanged) return;
  ++generation_;
  stamps_.clear();
  entries_.clear();
  for (const std::string& folder : folders_) readFolder(folder, folder, 0);
  // The first entry of each id counts, even when it only says that the application is hidden.
  std::set<std::string> seen;
  std::erase_if(entries_,
                [&](const DesktopEntry& entry) { return !seen.insert(entry.id).second || entry.name.empty(); });
}

void DesktopEntries::readFolder(const std::string& root, const std::string& folder, int depth) {
  const FileStamp stamp = FileStamp::of(folder);
  stamps_.emplace_back(folder, stamp.isSettled() ? stamp : FileStamp{});
  const Folder opened = openFolder(folder);
  if (opened == nullptr || depth > deepestFolder) return;
  const std::string locale = locale_.empty() ? messagesLocale() : locale_;
  while (const dirent* item = readdir(opened.get())) {
    const std::string_view name = item->d_name;
    if (name.starts_with('.') || entries_.size() >= mostEntries) continue;
    const std::string path = folder + '/' + std::string(name);
    if (!name.ends_with(suffix)) {
      struct stat status {};
      if (lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode)) readFolder(root, path, depth + 1);
      continue;
    }
    std::optional<DesktopEntry> entry = parseDesktopEntry(readFile(path, largestEntry).text, locale);
    if (!entry) entry.emplace();  // holds its id's place, for the folders behind this one
    entry->path = path;
    entry->id = *idForPath(path);
    entries_.push_back(*std::move(entry));
  }
}

}  // namespace freedesktop
