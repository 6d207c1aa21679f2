// The user's and the system's folders of the XDG base directory rules.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace freedesktop {

/// Absolute, without a slash at the end. A relative path in the environment counts as unset. Empty when there is no
/// home either.
std::string configHome();
std::string dataHome();
std::string stateHome();
/// The system-wide folders, most important first.
std::vector<std::string> configFolders();
std::vector<std::string> dataFolders();
/// Empty when the session has none, or one that is not the user's alone.
std::string runtimeFolder();

/// Whether `folder` is one, is that user's, and closed to all others.
bool isPrivateFolder(const std::string& folder, uid_t user);

/// Makes a folder and those above it with mode 0700; false, with errno set, when that fails.
bool makeFolders(const std::string& folder);

}  // namespace freedesktop
