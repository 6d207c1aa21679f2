#include "platform/linux/freedesktop/LinuxWorkspace.h"

#include <QProcess>
#include <QUrl>
#include <utility>

#include "platform/linux/freedesktop/Consent.h"
#include "platform/linux/freedesktop/DesktopEntries.h"
#include "platform/linux/freedesktop/IconLoader.h"

namespace freedesktop {
namespace {

constexpr std::string_view privacyLink =
    "x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility";

OpeningFailure& openingFailure() {
  static OpeningFailure failure;
  return failure;
}

}  // namespace

void setOpeningFailure(OpeningFailure failure) { openingFailure() = std::move(failure); }

bool LinuxWorkspace::openURL(const std::string& url) {
  if (url == privacyLink) {
    Consent::shared().prompt();
    return true;
  }
  const QUrl parsed(QString::fromStdString(url), QUrl::StrictMode);
  if (!parsed.isValid() || parsed.scheme().isEmpty()) return false;
  if (QProcess::startDetached("xdg-open", {parsed.toString(QUrl::FullyEncoded)})) return true;
  const std::string reason = "The program xdg-open, which opens addresses, can't be started. Is xdg-utils installed?";
  if (openingFailure()) openingFailure()(url, reason);
  return false;
}

std::optional<std::string> LinuxWorkspace::URLForApplicationWithBundleIdentifier(const std::string& bundleIdentifier) {
  const DesktopEntry* entry = DesktopEntries::shared().entryWithId(bundleIdentifier);
  return entry == nullptr ? std::nullopt : std::optional(entry->path);
}

std::shared_ptr<ns::Image> LinuxWorkspace::iconForFile(const std::string& path) {
  const std::optional<DesktopEntry> entry = readDesktopEntry(path);
  return loadIcon(entry ? entry->icon : std::string());
}

}  // namespace freedesktop

std::shared_ptr<ns::Workspace> ns::Workspace::sharedWorkspace() {
  static const auto workspace = std::make_shared<freedesktop::LinuxWorkspace>(desktop::Desktop::current());
  return workspace;
}
