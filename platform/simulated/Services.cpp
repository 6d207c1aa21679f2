#include "platform/simulated/Services.h"

#include <utility>

#include "platform/HelperProcess.h"

namespace simulated {
namespace {

Services* current = nullptr;

class Bundle final : public ns::Bundle {
 public:
  Bundle(std::string path, std::string identifier, ns::Dictionary info)
      : path_(std::move(path)), identifier_(std::move(identifier)), info_(std::move(info)) {}

  std::optional<std::string> bundleIdentifier() const override {
    return identifier_.empty() ? std::nullopt : std::optional(identifier_);
  }
  std::string bundlePath() const override { return path_; }
  std::optional<ns::PropertyList> objectForInfoDictionaryKey(std::string_view key) const override {
    const auto found = info_.find(std::string(key));
    return found == info_.end() ? std::nullopt : std::optional(found->second);
  }

 private:
  const std::string path_;
  const std::string identifier_;
  const ns::Dictionary info_;
};

}  // namespace

void LoginItem::registerItem() {
  calls.emplace_back("register");
  if (refusal) throw sm::Error(*refusal);
  statusNow = statusAfterRegistering;
}

void LoginItem::unregisterItem() {
  calls.emplace_back("unregister");
  if (refusal) throw sm::Error(*refusal);
  statusNow = 0;
}

Services::Services() : previous_(std::exchange(current, this)) {}
Services::~Services() { current = previous_; }
Services& Services::installed() { return *current; }

}  // namespace simulated

std::optional<bool> ns::isHelperProcessRunning() { return std::nullopt; }

sm::AppService& sm::AppService::mainAppService() { return simulated::Services::installed().loginItem; }

std::shared_ptr<spu::StandardUpdaterController> spu::StandardUpdaterController::make(
    bool startingUpdater, std::weak_ptr<StandardUserDriverDelegate> userDriverDelegate) {
  auto& services = simulated::Services::installed();
  services.updater = std::make_shared<simulated::Updater>();
  services.updater->isStarted = startingUpdater;
  services.updater->delegate = std::move(userDriverDelegate);
  if (services.onUpdaterMade) services.onUpdaterMade();
  return services.updater;
}

namespace ns {

using simulated::Services;

std::shared_ptr<Bundle> Bundle::mainBundle() {
  return std::make_shared<simulated::Bundle>("/Applications/Ostrel.app", "org.example.ostrel",
                                             Services::installed().mainBundleInfo);
}

std::shared_ptr<Bundle> Bundle::bundleWithPath(const std::string& path) {
  const auto& bundles = Services::installed().bundles;
  const auto found = bundles.find(path);
  if (found == bundles.end()) return nullptr;
  return std::make_shared<simulated::Bundle>(path, found->second, Dictionary());
}

std::string displayNameAtPath(const std::string& path) {
  const auto& names = Services::installed().displayNames;
  const auto found = names.find(path);
  return found == names.end() ? path.substr(path.rfind('/') + 1) : found->second;
}

std::shared_ptr<StatusItem> StatusBar::statusItemWithVariableLength() {
  auto& services = Services::installed();
  services.statusItem = std::make_shared<simulated::StatusItem>();
  if (services.onStatusItemMade) services.onStatusItemMade();
  return services.statusItem;
}

std::size_t Alert::runModal() {
  Services::installed().alerts.push_back({messageText_, informativeText_, buttonTitles_});
  return 0;
}

std::optional<std::string> OpenPanel::runModal() {
  auto& services = Services::installed();
  services.panels.push_back({directory_, prompt_, message_});
  if (services.choices.empty()) return std::nullopt;
  std::string choice = std::move(services.choices.front());
  services.choices.pop_front();
  return choice;
}

}  // namespace ns
