#include "platform/linux/freedesktop/Autostart.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string_view>
#include <utility>

#include "platform/linux/freedesktop/BaseFolders.h"
#include "platform/linux/freedesktop/DesktopEntries.h"
#include "platform/linux/freedesktop/Files.h"

namespace freedesktop {
namespace {

enum Status { NotRegistered = 0, Enabled = 1, RequiresApproval = 2, NotFound = 3 };

/// Tells an entry that we hid from one that was switched off elsewhere.
constexpr const char* hiddenHere = "X-Ostrel-Hidden";

bool isProgram(const std::string& path) { return path.starts_with('/') && access(path.c_str(), X_OK) == 0; }

/// One argument in the quoting of Exec lines. Two layers: quotes, and then the escapes of every text in such a file.
std::string quoted(std::string_view argument) {
  std::string result = "\"";
  for (const char c : argument) {
    if (c == '"' || c == '`' || c == '$') result += "\\\\";
    if (c == '\\') result += "\\\\\\";
    if (c == '%') result += '%';
    result += c;
  }
  return result + '"';
}

std::string entryText(std::string_view program, bool enabled) {
  std::string text =
      "[Desktop Entry]\nType=Application\nName=Ostrel\nComment=Change what the buttons of windows "
      "do\nIcon=" OSTREL_APPLICATION_ID
      "\n"
      "Terminal=false\nNoDisplay=true\nExec=" +
      quoted(program) + "\nX-GNOME-Autostart-enabled=true\n";
  if (!enabled) text += std::string("Hidden=true\n") + hiddenHere + "=true\n";
  return text;
}

[[noreturn]] void fail(const std::string& path, int error) { throw sm::Error(path + ": " + std::strerror(error)); }

}  // namespace

Autostart::Autostart(std::vector<std::string> folders, std::string program)
    : files_(std::move(folders)), program_(std::move(program)) {
  for (std::string& file : files_) file += "/" OSTREL_APPLICATION_ID ".desktop";
}

int Autostart::status() const {
  for (const std::string& file : files_) {
    const FileContent content = readFile(file, 1024 * 1024);
    if (content.error != 0) continue;
    if (desktopEntryValue(content.text, "Hidden") == "true" ||
        desktopEntryValue(content.text, "X-GNOME-Autostart-enabled") == "false") {
      return desktopEntryValue(content.text, hiddenHere) == "true" ? NotRegistered : RequiresApproval;
    }
    const auto entry = parseDesktopEntry(content.text, {});
    if (!entry || entry->executable.empty()) return NotRegistered;
    const bool isNamedOnly = entry->executable.find('/') == std::string::npos;  // found by the session's PATH
    return isNamedOnly || isProgram(entry->executable) ? Enabled : NotFound;
  }
  return isProgram(program_) ? NotRegistered : NotFound;
}

void Autostart::registerItem() {
  if (!isProgram(program_)) fail(program_, ENOENT);
  if (const int error = replaceFile(files_.front(), entryText(program_, true)); error != 0) fail(files_.front(), error);
}

void Autostart::unregisterItem() {
  const std::string& own = files_.front();
  if (unlink(own.c_str()) != 0 && errno != ENOENT && errno != ENOTDIR) fail(own, errno);
  // An entry of the system's can only be hidden by one of the user's.
  if (status() != Enabled) return;
  if (const int error = replaceFile(own, entryText(program_, false)); error != 0) fail(own, error);
}

}  // namespace freedesktop

sm::AppService& sm::AppService::mainAppService() {
  static freedesktop::Autostart service = [] {
    std::vector<std::string> folders = freedesktop::configFolders();
    folders.insert(folders.begin(), freedesktop::configHome());
    for (std::string& folder : folders) folder += "/autostart";
    return freedesktop::Autostart(std::move(folders), freedesktop::executableOf());
  }();
  return service;
}
