// One instance of the program for each desktop session, and a way for later starts to talk to it.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace ns {

/// The claim on the session. Released by its destructor, and by the system when the process ends in any way.
class SingleInstance {
 public:
  /// Answers one request of a later start; called on the main thread. Both texts are UTF-8 of at most 64 KiB. The empty
  /// request is a start by way of the desktop, which carries no words.
  using Handler = std::function<std::string(const std::string& request)>;

  /// Null when another instance has the session. When nothing can be claimed (no folder to do it in) the claim
  /// succeeds all the same: a second instance does less harm than none. Main thread only.
  static std::unique_ptr<SingleInstance> claim(Handler handler);
  virtual ~SingleInstance() = default;
};

struct InstanceReply {
  enum class Status {
    NotRunning,
    /// It runs, but gave no answer within a second: it is stopped or hangs.
    Silent,
    Answered
  };
  Status status = Status::NotRunning;
  std::string text;
};

/// Puts a request to the instance of this session. Returns within a second, whatever the other process does.
InstanceReply askRunningInstance(std::string_view request);

}  // namespace ns
