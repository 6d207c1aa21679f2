// The running application's description, fixed when it is built, and those of installed ones, from desktop entries.
#include "platform/Bundle.h"

#include <string_view>
#include <utility>

#include "platform/linux/freedesktop/DesktopEntries.h"
#include "platform/linux/freedesktop/Files.h"

namespace freedesktop {
namespace {

class MainBundle final : public ns::Bundle {
 public:
  std::optional<std::string> bundleIdentifier() const override { return OSTREL_APPLICATION_ID; }
  std::string bundlePath() const override { return executableOf(); }
  std::optional<ns::PropertyList> objectForInfoDictionaryKey(std::string_view key) const override {
    if (key == "CFBundleName") return ns::PropertyList{std::string("Ostrel")};
    if (key == "CFBundleShortVersionString") return ns::PropertyList{std::string(OSTREL_VERSION)};
    if (key == "CFBundleVersion") return ns::PropertyList{std::string(OSTREL_BUILD)};
    if (key == "SUFeedURL" && *OSTREL_FEED_URL != '\0') return ns::PropertyList{std::string(OSTREL_FEED_URL)};
    if (key == "SUScheduledCheckInterval") return ns::PropertyList{std::int64_t{OSTREL_UPDATE_INTERVAL}};
    return std::nullopt;
  }
};

class EntryBundle final : public ns::Bundle {
 public:
  explicit EntryBundle(DesktopEntry entry) : entry_(std::move(entry)) {}
  std::optional<std::string> bundleIdentifier() const override {
    return entry_.id.empty() ? std::nullopt : std::optional(entry_.id);
  }
  std::string bundlePath() const override { return entry_.path; }
  std::optional<ns::PropertyList> objectForInfoDictionaryKey(std::string_view key) const override {
    if (key == "CFBundleName") return ns::PropertyList{entry_.name};
    return std::nullopt;
  }

 private:
  const DesktopEntry entry_;
};

}  // namespace
}  // namespace freedesktop

std::shared_ptr<ns::Bundle> ns::Bundle::mainBundle() {
  static const auto bundle = std::make_shared<freedesktop::MainBundle>();
  return bundle;
}

std::shared_ptr<ns::Bundle> ns::Bundle::bundleWithPath(const std::string& path) {
  auto entry = freedesktop::readDesktopEntry(path);
  return entry ? std::make_shared<freedesktop::EntryBundle>(*std::move(entry)) : nullptr;
}

std::string ns::displayNameAtPath(const std::string& path) {
  if (const auto entry = freedesktop::readDesktopEntry(path)) return entry->name;
  return path.substr(path.rfind('/') + 1);
}
