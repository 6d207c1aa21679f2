// What the application and its watchdog say to each other.
#pragma once

#include <sys/socket.h>
#include <xcb/xcb.h>

#include <atomic>
#include <cstdint>
#include <cstring>

namespace x11 {

/// In memory that both processes see.
struct WatchdogNotes {
  /// Written by the tap: the time of the press that it has answered last.
  std::atomic<xcb_timestamp_t> lastSettled = XCB_CURRENT_TIME;
  /// Written by the watchdog, and by the application when the watchdog is dead.
  std::atomic<bool> hasTakenOver = false;
  static_assert(decltype(lastSettled)::is_always_lock_free && decltype(hasTakenOver)::is_always_lock_free);
};

struct WatchdogMessage {
  /// To the watchdog: Notes (with their memory, the first thing a watchdog gets that was started later), Watch (with
  /// the tap's socket; the value is the root window), Idle and Pending, which answer its Question by the same value.
  enum Kind : std::uint32_t { Notes, Watch, Question, Idle, Pending };
  std::uint32_t kind;
  std::uint32_t value;
};

/// A message as the system calls want it, with room for one descriptor.
struct WatchdogEnvelope {
  explicit WatchdogEnvelope(WatchdogMessage& message) : content{&message, sizeof message} {
    header.msg_iov = &content;
    header.msg_iovlen = 1;
    header.msg_control = rights;
    header.msg_controllen = sizeof rights;
  }
  WatchdogEnvelope(const WatchdogEnvelope&) = delete;
  WatchdogEnvelope& operator=(const WatchdogEnvelope&) = delete;

  void put(int descriptor) {
    cmsghdr& place = *CMSG_FIRSTHDR(&header);
    place.cmsg_level = SOL_SOCKET;
    place.cmsg_type = SCM_RIGHTS;
    place.cmsg_len = CMSG_LEN(sizeof descriptor);
    std::memcpy(CMSG_DATA(&place), &descriptor, sizeof descriptor);
  }
  /// The descriptor that came along, now the caller's; -1 for none.
  int take() {
    int descriptor = -1;
    const cmsghdr* const place = CMSG_FIRSTHDR(&header);
    if (place != nullptr && place->cmsg_type == SCM_RIGHTS) {
      std::memcpy(&descriptor, CMSG_DATA(place), sizeof descriptor);
    }
    return descriptor;
  }

  iovec content;
  alignas(cmsghdr) char rights[CMSG_SPACE(sizeof(int))]{};
  msghdr header{};
};

}  // namespace x11
