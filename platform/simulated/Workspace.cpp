#include "platform/simulated/Workspace.h"

#include "platform/simulated/SimulatedDesktop.h"

namespace simulated {

bool Workspace::openURL(const std::string& url) {
  if (opensURLs) openedURLs.push_back(url);
  return opensURLs;
}

std::optional<std::string> Workspace::URLForApplicationWithBundleIdentifier(const std::string& bundleIdentifier) {
  const auto found = installedApplications.find(bundleIdentifier);
  return found != installedApplications.end() ? std::optional(found->second) : std::nullopt;
}

std::shared_ptr<ns::Image> Workspace::iconForFile(const std::string& path) {
  const auto found = icons.find(path);
  return found != icons.end() ? found->second : nullptr;
}

}  // namespace simulated

namespace ns {

std::shared_ptr<Workspace> Workspace::sharedWorkspace() { return simulated::SimulatedDesktop::installed().workspace(); }

}  // namespace ns
