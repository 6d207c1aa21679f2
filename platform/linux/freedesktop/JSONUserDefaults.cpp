#include "platform/linux/freedesktop/JSONUserDefaults.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <utility>

#include "platform/linux/freedesktop/BaseFolders.h"
#include "platform/linux/freedesktop/Files.h"

namespace freedesktop {
namespace {

using Json = nlohmann::ordered_json;

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
      // Made in place: g++ 14 warns that the value this would be moved from may hold a text that was never made.
      return std::make_optional<ns::PropertyList>(std::move(dictionary));
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

}  // namespace

JSONUserDefaults::JSONUserDefaults(std::string userFile, const std::vector<std::string>& systemFiles,
                                   ReplaceFile replace)
    : domains_(1 + systemFiles.size()), writer_(std::make_shared<PreferenceWriter>(userFile, std::move(replace))) {
  domains_.front().path = std::move(userFile);
  for (std::size_t i = 0; i < systemFiles.size(); ++i) domains_[i + 1].path = systemFiles[i];
}

void JSONUserDefaults::refresh(Domain& domain) {
  using State = PreferenceFile::State;
  PreferenceFile& file = domain.file;
  if (domain.fresh && FileStamp::of(domain.path) == file.stamp) return;
  const State before = file.state;
  const FileStamp stampBefore = file.stamp;
  file = PreferenceFile::read(domain.path);
  domain.fresh = file.state == State::Missing || file.stamp.isSettled();

  if (file.state == before && file.stamp == stampBefore) return;  // it has been said
  if (file.state == State::Damaged) {
    logWarning("the preferences in " + domain.path + " cannot be understood and are not used");
  } else if (file.state == State::Unreadable) {
    logWarning("the preferences in " + domain.path + " cannot be read: " + std::strerror(file.error));
  }
}

std::optional<ns::PropertyList> JSONUserDefaults::objectForKey(std::string_view key) const {
  if (const auto unwritten = writer_->unwritten(key)) return propertyList(*unwritten);
  for (Domain& domain : domains_) {
    refresh(domain);
    const auto found = domain.file.content.find(key);
    if (found == domain.file.content.end()) continue;
    if (auto value = propertyList(*found)) return value;
  }
  return std::nullopt;
}

void JSONUserDefaults::setObject(ns::PropertyList value, std::string_view key) {
  const std::string name(key);
  if (const double* number = value.as<double>(); number != nullptr && !std::isfinite(*number)) {
    return writer_->refuse(name, "the value is no number");
  }
  // Looked at here too, so that one value that is too large does not take others of the same write with it.
  refresh(domains_.front());
  Json changed = domains_.front().file.content;
  changed.update(writer_->unwritten());
  changed[name] = std::visit(JsonMaker{}, value.value);
  auto asReadBack = parsePreferences(preferenceText(changed));
  if (!asReadBack) return writer_->refuse(name, "the preferences would grow beyond what is read again");
  writer_->put(name, std::move((*asReadBack)[name]));
}

}  // namespace freedesktop

namespace freedesktop {
namespace {

std::shared_ptr<JSONUserDefaults> makeStandardUserDefaults() {
  const std::string file = "/ostrel/preferences.json";
  std::vector<std::string> systemFiles;
  for (const std::string& folder : configFolders()) systemFiles.push_back(folder + file);
  std::atexit(flushPreferences);
  return std::make_shared<JSONUserDefaults>(configHome() + file, systemFiles);
}

const std::shared_ptr<JSONUserDefaults>& standardUserDefaults() {
  // Never destroyed: while the main thread ends the program another may flush.
  static const auto& defaults = *new std::shared_ptr<JSONUserDefaults>(makeStandardUserDefaults());
  return defaults;
}

}  // namespace
}  // namespace freedesktop

void freedesktop::flushPreferences() { standardUserDefaults()->flush(); }

std::shared_ptr<ns::UserDefaults> ns::UserDefaults::standardUserDefaults() {
  return freedesktop::standardUserDefaults();
}
