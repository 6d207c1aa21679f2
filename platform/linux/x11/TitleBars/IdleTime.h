// For how long the mouse and the keyboard have been at rest. Of keys no more is learned than that one was used.
#pragma once

#include <xcb/sync.h>

#include <chrono>
#include <optional>

#include "platform/linux/x11/Connection.h"

namespace x11 {

class IdleTime {
 public:
  /// The connection is lent. Asks the server which counters it has.
  explicit IdleTime(const Connection& connection);

  struct Answer {
    std::chrono::milliseconds pointer;
    std::chrono::milliseconds keyboard;
  };
  /// One round trip; any thread. None when the server does not tell.
  std::optional<Answer> ask() const;

 private:
  const Connection& connection_;
  xcb_sync_counter_t pointer_ = XCB_NONE;
  xcb_sync_counter_t keyboard_ = XCB_NONE;
};

}  // namespace x11
