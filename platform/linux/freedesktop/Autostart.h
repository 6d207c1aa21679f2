// Opening at login, as an entry in the session's autostart folder.
#pragma once

#include <string>
#include <vector>

#include "platform/LoginItem.h"

namespace freedesktop {

/// The registration is the file of the application's name in the user's autostart folder; before the system's, which
/// may bring one of their own. Someone who switches the entry off by Hidden or X-GNOME-Autostart-enabled, as settings
/// programs do, leaves it waiting for approval; registering again approves. An entry of the system's that is not wanted
/// is hidden by one in the user's folder, which counts as not registered. Main thread only.
class Autostart final : public sm::AppService {
 public:
  /// `folders` are autostart folders, the user's first; `program` is what the entry is to start.
  Autostart(std::vector<std::string> folders, std::string program);

  int status() const override;
  void registerItem() override;
  void unregisterItem() override;

 private:
  std::vector<std::string> files_;
  std::string program_;
};

}  // namespace freedesktop
