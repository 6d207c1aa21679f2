// What the simulated desktop knows of installed applications and documents.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/portable/DesktopWorkspace.h"

namespace simulated {

class Workspace final : public desktop::DesktopWorkspace {
 public:
  using DesktopWorkspace::DesktopWorkspace;

  bool openURL(const std::string& url) override;
  std::optional<std::string> URLForApplicationWithBundleIdentifier(const std::string& bundleIdentifier) override;
  std::shared_ptr<ns::Image> iconForFile(const std::string& path) override;

  /// Path by bundle identifier.
  std::map<std::string, std::string> installedApplications;
  /// Icon by path.
  std::map<std::string, std::shared_ptr<ns::Image>> icons;
  std::vector<std::string> openedURLs;
  /// Whether anything opens addresses.
  bool opensURLs = true;
};

}  // namespace simulated
