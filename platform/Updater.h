// The update framework's standard updater and its hooks.
#pragma once

#include <memory>
#include <string>

namespace spu {

/// One version offered by the update feed.
struct AppcastItem {
  std::string displayVersionString;
};

struct UserUpdateState {
  /// Whether the person asked for the check.
  bool userInitiated = false;
};

/// Told when update interface comes and goes. Held weakly.
class StandardUserDriverDelegate {
 public:
  virtual ~StandardUserDriverDelegate() = default;
  virtual bool supportsGentleScheduledUpdateReminders() const = 0;
  virtual void standardUserDriverWillHandleShowingUpdate(bool handleShowingUpdate, const AppcastItem& update,
                                                         const UserUpdateState& state) = 0;
  virtual void standardUserDriverDidReceiveUserAttentionForUpdate(const AppcastItem& update) = 0;
};

/// Looks for updates on its own schedule and when asked. Main thread only.
class StandardUpdaterController {
 public:
  /// Starts at once when `startingUpdater`. Null when there is no update framework in this installation.
  static std::shared_ptr<StandardUpdaterController> make(bool startingUpdater,
                                                         std::weak_ptr<StandardUserDriverDelegate> userDriverDelegate);
  virtual ~StandardUpdaterController() = default;
  virtual void checkForUpdates() = 0;
  /// False while there is no use in asking, as in the middle of an update.
  virtual bool canCheckForUpdates() const { return true; }
};

}  // namespace spu
