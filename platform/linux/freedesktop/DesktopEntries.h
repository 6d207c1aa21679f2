// The installed applications: desktop entries.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/freedesktop/FileStamp.h"

namespace freedesktop {

/// One application.
struct DesktopEntry {
  /// The desktop-entry id without its ".desktop", such as "org.gnome.Calculator". It serves as bundle identifier.
  std::string id;
  std::string path;
  /// In the user's language.
  std::string name;
  /// A theme name or an absolute path; empty when there is none.
  std::string icon;
  std::string startupWMClass;
  /// The program that Exec starts and the one that TryExec names, as written there; empty when there is none.
  std::string executable;
  std::string tryExecutable;
  /// It is not shown in menus (NoDisplay).
  bool hidden = false;
};

/// Reads the text of an entry. None unless it is an application with a name. `locale` is a POSIX locale name.
std::optional<DesktopEntry> parseDesktopEntry(std::string_view text, std::string_view locale);
/// The value of one key of an entry's text; empty when it is not there.
std::string desktopEntryValue(std::string_view text, std::string_view key);
/// Reads the entry at a path, with `id` left to the caller when the path is in no folder of applications.
std::optional<DesktopEntry> readDesktopEntry(const std::string& path);

/// All installed applications. They are read when first asked for and again when one of the folders has changed. Main
/// thread only.
class DesktopEntries {
 public:
  static DesktopEntries& shared();
  /// `folders` are searched in order: the first entry with an id hides the later ones.
  explicit DesktopEntries(std::vector<std::string> folders, std::string locale = {});

  /// The folders of this user: personal, Flatpak's, the system's and Snap's.
  static std::vector<std::string> standardFolders();

  const std::vector<DesktopEntry>& entries();
  /// Null when no such application is installed. Valid until the next call that takes no pointer.
  const DesktopEntry* entryWithId(std::string_view id);
  /// The id that the entry at a path has; none when the path is in no folder of applications.
  std::optional<std::string> idForPath(std::string_view path) const;
  /// Rises with every re-reading.
  unsigned generation();

 private:
  void refresh();
  void readFolder(const std::string& root, const std::string& folder, int depth);

  std::vector<std::string> folders_;
  std::string locale_;
  std::vector<std::pair<std::string, FileStamp>> stamps_;
  std::vector<DesktopEntry> entries_;
  unsigned generation_ = 0;
};

}  // namespace freedesktop
