// Running applications, and what the desktop knows about applications and documents.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ns {

class Image;

/// One running application. One process may be several. Main thread only.
class RunningApplication {
 public:
  /// Null when no application with windows runs under this process identifier.
  static std::shared_ptr<RunningApplication> runningApplicationWithProcessIdentifier(pid_t pid);
  virtual ~RunningApplication() = default;

  virtual pid_t processIdentifier() const = 0;
  /// None for a program that belongs to no installed application.
  virtual std::optional<std::string> bundleIdentifier() const = 0;
  /// Asks for all windows to be hidden; false when the request could not be made.
  virtual bool hide() = 0;
};

/// Delivers notifications by name, on the main thread. Handlers may add and remove observers.
class NotificationCenter {
 public:
  /// Identifies one registration; 0 is none.
  using Observer = std::uint64_t;
  virtual ~NotificationCenter() = default;
  virtual Observer addObserverForName(std::string_view name, std::function<void()> handler) = 0;
  virtual void removeObserver(Observer observer) = 0;
};

inline constexpr std::string_view WorkspaceDidLaunchApplicationNotification =
    "NSWorkspaceDidLaunchApplicationNotification";
inline constexpr std::string_view WorkspaceDidTerminateApplicationNotification =
    "NSWorkspaceDidTerminateApplicationNotification";

/// The desktop's knowledge of applications. Main thread only.
class Workspace {
 public:
  static std::shared_ptr<Workspace> sharedWorkspace();
  virtual ~Workspace() = default;

  virtual std::vector<std::shared_ptr<RunningApplication>> runningApplications() = 0;
  virtual NotificationCenter& notificationCenter() = 0;

  /// Opens a web address, a file or one of the desktop's own deep links; false when it is no valid address or nothing
  /// opens it.
  virtual bool openURL(const std::string& url) = 0;
  /// The path of an installed application, none when it is not installed.
  virtual std::optional<std::string> URLForApplicationWithBundleIdentifier(const std::string& bundleIdentifier) = 0;
  /// The icon of the file at a path; never null for an application that exists.
  virtual std::shared_ptr<Image> iconForFile(const std::string& path) = 0;
};

}  // namespace ns
