// Which installed application a window belongs to.
#pragma once

#include <sys/types.h>

#include <compare>
#include <map>
#include <optional>
#include <string>

#include "platform/linux/freedesktop/DesktopEntries.h"

namespace freedesktop {

/// What a window tells about its owner. Empty texts are unknown.
struct WindowOwner {
  pid_t pid = 0;
  std::string gtkApplicationId;
  /// The two parts of WM_CLASS.
  std::string windowInstance;
  std::string windowClass;
  friend auto operator<=>(const WindowOwner&, const WindowOwner&) = default;
};

struct ApplicationDescription {
  std::optional<std::string> bundleIdentifier;
  /// The application's localized name; of a program that belongs to none, the name of its window class or executable.
  std::string name;
};

/// Finds the desktop entry of a window's owner: by the sandbox it runs in, the application id that GTK gives its
/// windows, StartupWMClass, the window class as an id, and at last the executable. Answers are remembered for a process
/// and window class until the installed applications change. Main thread only.
class ApplicationIdentity {
 public:
  /// `entries` is lent for the life of this object; `procFolder` is where processes are described.
  explicit ApplicationIdentity(DesktopEntries& entries, std::string procFolder = "/proc");

  ApplicationDescription describe(const WindowOwner& owner);
  /// To be told when a process has ended: its number may come back as another application's.
  void forget(pid_t pid);

 private:
  const DesktopEntry* find(const WindowOwner& owner);
  std::optional<std::string> sandboxId(pid_t pid) const;
  std::string executablePath(pid_t pid) const;

  DesktopEntries& entries_;
  std::string procFolder_;
  unsigned generation_ = 0;
  std::map<WindowOwner, ApplicationDescription> known_;
  /// From the program that an entry starts to the entry's place in the list; made when first needed.
  std::multimap<std::string, std::size_t> executables_;
};

}  // namespace freedesktop
