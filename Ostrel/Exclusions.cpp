// The applications that are left alone, and their running processes.
#include <algorithm>
#include <utility>

#include "Ostrel/OstrelController.h"
#include "platform/RunLoop.h"
#include "platform/Text.h"

namespace ostrel {

namespace {

constexpr std::string_view excludedAppsKey = "behavior.excludedApps";

const std::string* text(const ns::Dictionary& dictionary, const std::string& key) {
  const auto found = dictionary.find(key);
  return found != dictionary.end() ? found->second.as<std::string>() : nullptr;
}

bool isDictionaryOfTexts(const ns::PropertyList& value) {
  const auto* dictionary = value.as<ns::Dictionary>();
  return dictionary != nullptr && std::all_of(dictionary->begin(), dictionary->end(), [](const auto& entry) {
           return entry.second.template as<std::string>() != nullptr;
         });
}

std::unordered_set<std::string> bundleIDs(const std::vector<ExcludedApp>& apps) {
  std::unordered_set<std::string> identifiers;
  for (const ExcludedApp& app : apps) identifiers.insert(app.bundleID);
  return identifiers;
}

/// Equal names keep their order.
std::vector<ExcludedApp> sortedByName(std::vector<ExcludedApp> apps) {
  std::vector<ExcludedApp> sorted;
  for (ExcludedApp& app : apps) {
    const auto place =
        std::upper_bound(sorted.begin(), sorted.end(), app, [](const ExcludedApp& one, const ExcludedApp& other) {
          return ns::localizedCaseInsensitiveCompare(one.name, other.name) == ns::ComparisonResult::Ascending;
        });
    sorted.insert(place, std::move(app));
  }
  return sorted;
}

}  // namespace

std::vector<ExcludedApp> OstrelController::loadExcludedApps(const ns::UserDefaults& defaults) {
  const auto stored = defaults.arrayForKey(excludedAppsKey);
  // One bad element spoils the list: a half-read list would be written back, and the rest lost, by the next change.
  if (!stored || !std::all_of(stored->begin(), stored->end(), isDictionaryOfTexts)) return {};
  std::vector<ExcludedApp> apps;
  for (const ns::PropertyList& element : *stored) {
    const auto& dictionary = *element.as<ns::Dictionary>();
    const std::string* bundleID = text(dictionary, "bundleID");
    if (bundleID == nullptr || bundleID->empty()) continue;
    const std::string* name = text(dictionary, "name");
    apps.push_back({*bundleID, name != nullptr ? *name : *bundleID});
  }
  return apps;
}

void OstrelController::setExcludedApps(std::vector<ExcludedApp> apps) {
  apps = sortedByName(std::move(apps));
  ns::Array stored;
  for (const ExcludedApp& app : apps) {
    ns::Dictionary entry;
    entry["bundleID"].value = app.bundleID;
    entry["name"].value = app.name;
    stored.emplace_back().value = std::move(entry);
  }
  defaults_->setObject({std::move(stored)}, excludedAppsKey);
  excludedBundleIDs_ = bundleIDs(apps);
  refreshExcludedPIDs();
}

void OstrelController::addExcludedApp(const ExcludedApp& app) {
  auto apps = excludedApps();
  const bool isListed =
      std::any_of(apps.begin(), apps.end(), [&app](const ExcludedApp& each) { return each.bundleID == app.bundleID; });
  if (isListed) return;
  apps.push_back(app);
  setExcludedApps(std::move(apps));
}

void OstrelController::removeExcludedApp(std::string_view bundleID) {
  auto apps = excludedApps();
  std::erase_if(apps, [bundleID](const ExcludedApp& each) { return each.bundleID == bundleID; });
  setExcludedApps(std::move(apps));
}

void OstrelController::reloadExcludedApps() {
  excludedBundleIDs_ = bundleIDs(excludedApps());
  refreshExcludedPIDs();
}

void OstrelController::setUpExclusions() {
  excludedBundleIDs_ = bundleIDs(loadExcludedApps(*defaults_));
  ns::NotificationCenter& center = ns::Workspace::sharedWorkspace()->notificationCenter();
  for (const std::string_view name :
       {ns::WorkspaceDidLaunchApplicationNotification, ns::WorkspaceDidTerminateApplicationNotification}) {
    workspaceObservers_.push_back(center.addObserverForName(name, [weakSelf = weak_from_this()] {
      if (const auto self = weakSelf.lock()) self->refreshExcludedPIDs();
    }));
  }
  refreshExcludedPIDs();
}

void OstrelController::refreshExcludedPIDs() {
  if (ns::isMainThread()) {
    rebuildExcludedPIDs();
    return;
  }
  ns::dispatchAsyncOnMainQueue([weakSelf = weak_from_this()] {
    if (const auto self = weakSelf.lock()) self->rebuildExcludedPIDs();
  });
}

void OstrelController::rebuildExcludedPIDs() {
  std::unordered_set<pid_t> pids;
  if (!excludedBundleIDs_.empty()) {
    for (const auto& application : ns::Workspace::sharedWorkspace()->runningApplications()) {
      const auto bundleID = application->bundleIdentifier();
      if (bundleID && excludedBundleIDs_.contains(*bundleID)) pids.insert(application->processIdentifier());
    }
  }
  const ns::LockGuard guard(excludedLock_);
  excludedPIDs_ = std::move(pids);
}

std::unordered_set<pid_t> OstrelController::excludedPIDs() const {
  const ns::LockGuard guard(excludedLock_);
  return excludedPIDs_;
}

}  // namespace ostrel
