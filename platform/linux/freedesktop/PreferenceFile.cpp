#include "platform/linux/freedesktop/PreferenceFile.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <utility>

#include "platform/linux/freedesktop/Files.h"

namespace freedesktop {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t largestFile = 4 * 1024 * 1024;
constexpr int deepest = 16;
/// Objects that keep their order search their keys one by one; this bounds what a hostile file can cost.
constexpr std::size_t mostKeys = 8192;

std::string timeForName() {
  const std::time_t now = std::time(nullptr);
  std::tm parts{};
  gmtime_r(&now, &parts);
  std::array<char, 32> text{};
  std::strftime(text.data(), text.size(), "%Y-%m-%dT%H-%M-%SZ", &parts);
  return text.data();
}

/// Gives the file at `path` a second name beside it that says when. Empty, with errno set, when that fails.
std::string keepAside(const std::string& path) {
  const std::string base = path + ".damaged-" + timeForName();
  std::string aside = base;
  for (int i = 2; access(aside.c_str(), F_OK) == 0; ++i) aside = base + "-" + std::to_string(i);
  // A file system without hard links gets the file moved.
  const bool kept = link(path.c_str(), aside.c_str()) == 0 || std::rename(path.c_str(), aside.c_str()) == 0;
  return kept ? aside : std::string();
}

/// Takes back what keepAside did.
void undoKeepAside(const std::string& aside, const std::string& path) {
  // Renaming one name of a file to another of its names does nothing, hence the unlink.
  if (std::rename(aside.c_str(), path.c_str()) == 0) unlink(aside.c_str());
}

}  // namespace

std::optional<Json> parsePreferences(std::string_view text) {
  if (text.size() > largestFile) return std::nullopt;
  bool withinLimits = true;
  std::size_t keys = 0;
  const auto check = [&](int depth, Json::parse_event_t event, const Json&) {
    if (event == Json::parse_event_t::key) ++keys;
    if (depth > deepest || keys > mostKeys) withinLimits = false;
    return withinLimits;
  };
  Json json = Json::parse(text, check, /*allow_exceptions=*/false);
  if (!withinLimits || !json.is_object()) return std::nullopt;
  return json;
}

std::string preferenceText(const Json& preferences) {
  return preferences.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

PreferenceFile PreferenceFile::read(const std::string& path) {
  PreferenceFile result;
  const FileContent file = readFile(path, largestFile);
  if (file.error != 0) {
    result.error = file.error;
    result.state = file.error == ENOENT || file.error == ENOTDIR ? State::Missing : State::Unreadable;
    result.stamp = FileStamp::of(path);
    return result;
  }
  result.stamp = file.stamp;
  auto json = parsePreferences(file.text);
  result.state = json ? State::Good : State::Damaged;
  if (json) result.content = *std::move(json);
  return result;
}

std::optional<std::string> storePreferences(const std::string& path, const Json& changes, const ReplaceFile& replace) {
  using State = PreferenceFile::State;
  PreferenceFile file = PreferenceFile::read(path);
  if (file.state == State::Unreadable) return path + " cannot be read: " + std::strerror(file.error);
  file.content.update(changes);
  const std::string text = preferenceText(file.content);
  if (!parsePreferences(text)) return "the preferences would grow beyond what is read again";
  const std::string target = linkTarget(path).value_or(path);
  std::string aside;
  if (file.state == State::Damaged && (aside = keepAside(target)).empty()) {
    return target + " cannot be kept aside: " + std::strerror(errno);
  }
  if (const int error = replace(target, text); error != 0) {
    if (!aside.empty()) undoKeepAside(aside, target);
    return target + ": " + std::strerror(error);
  }
  if (!aside.empty()) logWarning("the preferences that could not be understood are kept as " + aside);
  return std::nullopt;
}

}  // namespace freedesktop
