#include "platform/linux/freedesktop/Consent.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "platform/Consent.h"
#include "platform/linux/freedesktop/BaseFolders.h"
#include "platform/linux/freedesktop/Files.h"

namespace freedesktop {
namespace {

constexpr std::string_view grantedLine = "granted\n";
constexpr std::string_view refusedLine = "refused\n";

}  // namespace

Consent& Consent::shared() {
  static Consent consent(dataHome() + "/ostrel/accessibility-consent");
  return consent;
}

Consent::Consent(std::string path) : path_(std::move(path)) {}

bool Consent::isTrusted() {
  const FileStamp now = FileStamp::of(path_);
  if (now == FileStamp{}) return false;
  if (now == stamp_) return trusted_;
  const FileContent file = readFile(path_, 4096);
  trusted_ = file.error == 0 && file.stamp.owner == geteuid() && file.text.starts_with(grantedLine);
  stamp_ = file.error == 0 && file.stamp.isSettled() ? file.stamp : FileStamp{};
  return trusted_;
}

std::optional<std::string> Consent::set(bool granted) {
  int error = replaceFile(path_, granted ? grantedLine : refusedLine);
  // On a full disk a consent can still be taken back: by removing the file.
  if (!granted && error != 0) {
    error = unlink(path_.c_str()) == 0 || errno == ENOENT || errno == ENOTDIR ? 0 : errno;
  }
  if (error == 0) return std::nullopt;
  return path_ + ": " + std::strerror(error);
}

void Consent::setPrompt(std::function<void()> prompt) { prompt_ = std::move(prompt); }

void Consent::prompt() {
  if (prompt_) {
    prompt_();
  } else {
    logWarning("Accessibility is not allowed yet; \"ostrel accessibility grant\" allows it");
  }
}

void Consent::promptOnce() {
  if (FileStamp::of(path_) == FileStamp{}) prompt();
}

}  // namespace freedesktop

bool ns::isAccessibilityGranted() { return freedesktop::Consent::shared().isTrusted(); }

std::optional<std::string> ns::setAccessibilityGranted(bool granted) {
  return freedesktop::Consent::shared().set(granted);
}
