// The settings that a window manager's title bars depend on, read and followed.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "platform/linux/x11/WindowManagers/Decoration.h"

namespace x11 {

/// Has a thread of its own, as settings arrive by a main loop and some are another process's to tell. It sleeps as long
/// as nothing changes.
class SettingsWatch {
 public:
  /// Called on the watch's thread with all that is set now: at first, and after each change. With nothing while what is
  /// set is in doubt.
  using Handler = std::function<void(const SettingValues&)>;

  SettingsWatch(std::vector<Setting> settings, Handler changed);
  /// Waits for nobody but a handler that is running; no call of it follows.
  ~SettingsWatch();
  SettingsWatch(const SettingsWatch&) = delete;
  SettingsWatch& operator=(const SettingsWatch&) = delete;

 private:
  class Worker;
  std::unique_ptr<Worker> worker_;
};

}  // namespace x11
