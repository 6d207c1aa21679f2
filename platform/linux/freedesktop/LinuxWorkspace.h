// The workspace of a freedesktop session.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/portable/DesktopWorkspace.h"

namespace freedesktop {

/// Tells the person that nothing opens an address, and why. Set by the user interface; without one nobody is told. Main
/// thread only.
using OpeningFailure = std::function<void(const std::string& url, const std::string& reason)>;
void setOpeningFailure(OpeningFailure failure);

/// Applications are desktop entries: their identifier is the entry's id, their path the entry's. Main thread only.
class LinuxWorkspace final : public desktop::DesktopWorkspace {
 public:
  using desktop::DesktopWorkspace::DesktopWorkspace;

  /// The deep link to the privacy settings opens the dialog that asks for consent. Everything else goes to the
  /// desktop's own opener, which is not waited for.
  bool openURL(const std::string& url) override;
  std::optional<std::string> URLForApplicationWithBundleIdentifier(const std::string& bundleIdentifier) override;
  std::shared_ptr<ns::Image> iconForFile(const std::string& path) override;
};

}  // namespace freedesktop
