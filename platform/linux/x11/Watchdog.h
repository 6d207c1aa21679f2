// The watchdog: a process that frees the mouse when the event tap does not.
//
// A press that the tap has grabbed freezes the pointer until the tap answers, and only over the tap's own connection
// can one answer. If the whole process is stopped or killed or the tap's thread hangs, that takes somebody who still
// runs and shares the connection: the watchdog passes the press on and closes the connection. It learns of presses from
// raw events, which the server sends before it freezes. The tap notes each press that it has settled where the watchdog
// can read it, so the tap's thread is asked for a sign of life only after a press that it has not noted; in between the
// watchdog sleeps without a timer.
//
// It is forked and not started as a program of its own: so it shares the memory that is there at the start of main
// instead of loading every library again, and nothing has to be found on disk.
#pragma once

#include <xcb/xcb.h>

#include <atomic>
#include <cstdint>

#include "platform/linux/x11/Connection.h"

namespace x11 {

/// The application's end. Used by one thread at a time, the tap's, but for settled().
class Watchdog {
 public:
  /// What both processes see.
  struct Notes {
    /// Written by the tap: the time of the press that it has answered last.
    std::atomic<xcb_timestamp_t> lastSettled = XCB_CURRENT_TIME;
    /// Written by the watchdog.
    std::atomic<bool> hasTakenOver = false;
    static_assert(decltype(lastSettled)::is_always_lock_free && decltype(hasTakenOver)::is_always_lock_free);
  };

  /// Forks the process; see ns::startHelperProcess.
  static void start();
  /// Null when none was started.
  static Watchdog* shared();

  /// Readable when answer() has something to do; -1 when the process is gone.
  int fileDescriptor() const { return socket_; }
  /// Has it watch over that connection, whose socket it then shares; null for none. To be told again after it has
  /// closed a connection.
  void watch(const Connection* connection);
  /// Notes that the press with that time has been answered and so holds the pointer no longer. Any thread.
  void settled(xcb_timestamp_t press) { notes_.lastSettled = press; }
  /// Whether it has passed a press on itself and given the connection up.
  bool hasTakenOver() const { return socket_ >= 0 && notes_.hasTakenOver; }
  /// Answers the question that has arrived. `pressPending`: the pointer is frozen and the tap knows; ask again soon.
  void answer(bool pressPending);

 private:
  Watchdog(int socket, Notes& notes) : socket_(socket), notes_(notes) {}
  void send(std::uint32_t kind, std::uint32_t value);

  int socket_;
  Notes& notes_;
};

}  // namespace x11
