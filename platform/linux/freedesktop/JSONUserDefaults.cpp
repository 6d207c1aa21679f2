#include "platform/linux/freedesktop/JSONUserDefaults.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <limits>
#include <utility>

#include "platform/linux/freedesktop/BaseFolders.h"
#include "platform/linux/freedesktop/Files.h"

namespace freedesktop {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t largestFile = 4 * 1024 * 1024;
constexpr int deepest = 16;
/// Objects that keep their order search their keys one by one; this bounds what a hostile file can cost.
constexpr std::size_t mostKeys = 8192;

/// None for null, which stands for no value, and for what no caller could use.
std::optional<ns::PropertyList> propertyList(const Json& json) {
  switch (json.type()) {
    case Json::value_t::boolean:
      return ns::PropertyList{json.get<bool>()};
    case Json::value_t::number_integer:
      return ns::PropertyList{json.get<std::int64_t>()};
    case Json::value_t::number_unsigned: {
      const auto number = json.get<std::uint64_t>();
      if (number > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
        return ns::PropertyList{static_cast<double>(number)};
      }
      return ns::PropertyList{static_cast<std::int64_t>(number)};
    }
    case Json::value_t::number_float:
      return ns::PropertyList{json.get<double>()};
    case Json::value_t::string:
      return ns::PropertyList{json.get<std::string>()};
    case Json::value_t::array: {
      ns::Array array;
      for (const Json& element : json) {
        if (auto value = propertyList(element)) array.push_back(*std::move(value));
      }
      return ns::PropertyList{std::move(array)};
    }
    case Json::value_t::object: {
      ns::Dictionary dictionary;
      for (const auto& [key, element] : json.items()) {
        if (auto value = propertyList(element)) dictionary.emplace(key, *std::move(value));
      }
      return ns::PropertyList{std::move(dictionary)};
    }
    default:
      return std::nullopt;
  }
}

struct JsonMaker {
  Json operator()(const ns::Array& array) const {
    Json json = Json::array();
    for (const ns::PropertyList& element : array) json.push_back(std::visit(*this, element.value));
    return json;
  }
  Json operator()(const ns::Dictionary& dictionary) const {
    Json json = Json::object();
    for (const auto& [key, element] : dictionary) json[key] = std::visit(*this, element.value);
    return json;
  }
  template <typename T>
  Json operator()(const T& value) const {
    return Json(value);
  }
};

std::string timeForName() {
  const std::time_t now = std::time(nullptr);
  std::tm parts{};
  gmtime_r(&now, &parts);
  std::array<char, 32> text{};
  std::strftime(text.data(), text.size(), "%Y-%m-%dT%H-%M-%SZ", &parts);
  return text.data();
}

std::string reason(int error) { return std::strerror(error); }

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

JSONUserDefaults::JSONUserDefaults(std::string userFile, const std::vector<std::string>& systemFiles)
    : domains_(1 + systemFiles.size()) {
  domains_.front().path = std::move(userFile);
  for (std::size_t i = 0; i < systemFiles.size(); ++i) domains_[i + 1].path = systemFiles[i];
}

void JSONUserDefaults::refresh(Domain& domain) {
  if (domain.fresh && FileStamp::of(domain.path) == domain.stamp) return;
  const State before = domain.state;
  const FileStamp stampBefore = std::exchange(domain.stamp, {});

  FileContent file = readFile(domain.path, largestFile);
  std::optional<Json> json;
  if (file.error == 0) {
    json = parsePreferences(file.text);
    domain.state = json ? State::Good : State::Damaged;
    domain.stamp = file.stamp;
  } else {
    domain.state = file.error == ENOENT || file.error == ENOTDIR ? State::Missing : State::Unreadable;
    domain.stamp = FileStamp::of(domain.path);
  }
  domain.content = json ? *std::move(json) : Json::object();
  domain.fresh = domain.state == State::Missing || domain.stamp.isSettled();

  if (domain.state == before && domain.stamp == stampBefore) return;  // it has been said
  if (domain.state == State::Damaged) {
    logWarning("the preferences in " + domain.path + " cannot be understood and are not used");
  } else if (domain.state == State::Unreadable) {
    logWarning("the preferences in " + domain.path + " cannot be read: " + reason(file.error));
  }
}

std::optional<ns::PropertyList> JSONUserDefaults::objectForKey(std::string_view key) const {
  for (Domain& domain : domains_) {
    refresh(domain);
    const auto found = domain.content.find(key);
    if (found == domain.content.end()) continue;
    if (auto value = propertyList(*found)) return value;
  }
  return std::nullopt;
}

void JSONUserDefaults::setObject(ns::PropertyList value, std::string_view key) {
  Domain& user = domains_.front();
  refresh(user);
  const std::string name(key);
  if (const double* number = value.as<double>(); number != nullptr && !std::isfinite(*number)) {
    logWarning("the preference " + name + " is not stored: its value is no number");
    return;
  }
  if (user.state == State::Unreadable) {
    logWarning("the preference " + name + " is not stored: " + user.path + " cannot be read");
    return;
  }

  Json changed = user.content;
  changed[name] = std::visit(JsonMaker{}, value.value);
  const std::string text = changed.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
  if (!parsePreferences(text)) {
    logWarning("the preference " + name + " is not stored: the preferences would grow beyond what is read again");
    return;
  }
  const std::string target = linkTarget(user.path).value_or(user.path);
  std::string aside;
  if (user.state == State::Damaged && (aside = keepAside(target)).empty()) {
    logWarning("the preference " + name + " is not stored: " + target + " cannot be kept aside: " + reason(errno));
    return;
  }
  if (const int error = replaceFile(target, text); error != 0) {
    if (!aside.empty()) undoKeepAside(aside, target);
    logWarning("the preference " + name + " is not stored: " + target + ": " + reason(error));
  } else if (!aside.empty()) {
    logWarning("the preferences that could not be understood are kept as " + aside);
  }
  user.fresh = false;
}

}  // namespace freedesktop

std::shared_ptr<ns::UserDefaults> ns::UserDefaults::standardUserDefaults() {
  static const std::shared_ptr<UserDefaults> defaults = [] {
    const std::string file = "/ostrel/preferences.json";
    std::vector<std::string> systemFiles;
    for (const std::string& folder : freedesktop::configFolders()) systemFiles.push_back(folder + file);
    return std::make_shared<freedesktop::JSONUserDefaults>(freedesktop::configHome() + file, systemFiles);
  }();
  return defaults;
}
