// The socket by which later starts of the program reach the first one.
#pragma once

#include <unistd.h>

#include <QSocketNotifier>
#include <chrono>
#include <functional>
#include <list>
#include <memory>
#include <string>
#include <string_view>

#include "platform/SingleInstance.h"
#include "platform/linux/freedesktop/Files.h"

namespace freedesktop {

/// Where the claim of this session is kept: one path without ending for each user and X display. Empty when there is no
/// safe folder for it.
std::string sessionPath();

/// Holds the lock PATH.lock and listens on PATH.sock. The lock goes with the process however it ends; a socket that is
/// left behind by a killed one is replaced. Main thread only, with an application object.
class SessionSocket final : public ns::SingleInstance {
 public:
  /// Null when another process, or this one, holds the lock.
  static std::unique_ptr<SessionSocket> claim(const std::string& path, Handler handler);
  ~SessionSocket() override;

 private:
  struct Visitor {
    Descriptor socket;
    std::unique_ptr<QSocketNotifier> notifier;
  };
  explicit SessionSocket(Handler handler) : handler_(std::move(handler)) {}
  bool listen(const std::string& path);
  void accept();
  void answer(std::list<Visitor>::iterator visitor);

  Handler handler_;
  std::string socketPath_;
  Descriptor lock_;
  Descriptor socket_;
  std::unique_ptr<QSocketNotifier> notifier_;
  std::list<Visitor> visitors_;
};

/// Puts a request to the process that holds the claim at `path`, for at most `patience`. A process that is not `user`'s
/// is told nothing and counts as not running.
ns::InstanceReply askSession(const std::string& path, std::string_view request, std::chrono::milliseconds patience,
                             uid_t user = geteuid());

}  // namespace freedesktop
