#include "platform/linux/freedesktop/BaseFolders.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <string_view>

namespace freedesktop {
namespace {

std::string withoutTrailingSlash(std::string path) {
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  return path;
}

/// The absolute path in an environment variable; empty when there is none.
std::string absolutePath(const char* variable) {
  const char* value = std::getenv(variable);
  if (value == nullptr || value[0] != '/') return {};
  return withoutTrailingSlash(value);
}

std::string home() {
  if (std::string path = absolutePath("HOME"); !path.empty()) return path;
  const passwd* user = getpwuid(getuid());
  return user != nullptr && user->pw_dir != nullptr && user->pw_dir[0] == '/' ? withoutTrailingSlash(user->pw_dir) : "";
}

std::string folderOrBelowHome(const char* variable, std::string_view below) {
  if (std::string path = absolutePath(variable); !path.empty()) return path;
  const std::string base = home();
  return base.empty() ? base : base + std::string(below);
}

std::vector<std::string> folderList(const char* variable, std::string_view fallback) {
  const char* value = std::getenv(variable);
  std::string_view list = value != nullptr && value[0] != '\0' ? std::string_view(value) : fallback;
  std::vector<std::string> folders;
  while (!list.empty()) {
    const std::string_view one = list.substr(0, list.find(':'));
    if (one.starts_with('/')) folders.push_back(withoutTrailingSlash(std::string(one)));
    list.remove_prefix(std::min(list.size(), one.size() + 1));
  }
  return folders;
}

}  // namespace

std::string configHome() { return folderOrBelowHome("XDG_CONFIG_HOME", "/.config"); }
std::string dataHome() { return folderOrBelowHome("XDG_DATA_HOME", "/.local/share"); }
std::string stateHome() { return folderOrBelowHome("XDG_STATE_HOME", "/.local/state"); }
std::vector<std::string> configFolders() { return folderList("XDG_CONFIG_DIRS", "/etc/xdg"); }
std::vector<std::string> dataFolders() { return folderList("XDG_DATA_DIRS", "/usr/local/share:/usr/share"); }

std::string runtimeFolder() {
  std::string folder = absolutePath("XDG_RUNTIME_DIR");
  return isPrivateFolder(folder, geteuid()) ? folder : std::string();
}

bool isPrivateFolder(const std::string& folder, uid_t user) {
  struct stat status {};
  return lstat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == user &&
         (status.st_mode & 077) == 0;
}

bool makeFolders(const std::string& folder) {
  if (mkdir(folder.c_str(), 0700) == 0) return true;
  if (errno == EEXIST) {
    struct stat status {};
    if (stat(folder.c_str(), &status) != 0) return false;
    errno = ENOTDIR;
    return S_ISDIR(status.st_mode);
  }
  const auto slash = folder.rfind('/');
  if (errno != ENOENT || slash == std::string::npos || slash == 0) return false;
  return makeFolders(folder.substr(0, slash)) && (mkdir(folder.c_str(), 0700) == 0 || errno == EEXIST);
}

}  // namespace freedesktop
