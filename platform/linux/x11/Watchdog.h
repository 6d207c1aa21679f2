// The watchdog: a process that frees the mouse when the event tap does not.
//
// A press that the tap has grabbed freezes the pointer until the tap answers, and only the tap's own connection can
// answer. If the whole process is stopped or the tap's thread hangs, the one way out is to have the server throw that
// connection out, which takes somebody who still runs. It learns of presses from raw events, which the server sends
// before it freezes, and asks the tap's thread for a sign of life only after one; in between it sleeps without a timer.
//
// It is forked and not started as a program of its own: so it shares the memory that is there at the start of main
// instead of loading every library again, and nothing has to be found on disk.
#pragma once

#include <xcb/xcb.h>

#include <cstdint>

namespace x11 {

/// The application's end. Used by one thread at a time: the tap's.
class Watchdog {
 public:
  /// Forks the process; see ns::startHelperProcess.
  static void start();
  /// Null when none was started.
  static Watchdog* shared();

  /// Readable when answer() has something to do; -1 when the process is gone.
  int fileDescriptor() const { return socket_; }
  /// Has it watch over the connection that created `window`; 0 for none. To be told again after it has thrown a
  /// connection out.
  void watch(xcb_window_t window);
  /// Answers the question that has arrived. `pressPending`: the pointer is frozen and the tap knows; ask again soon.
  void answer(bool pressPending);

 private:
  explicit Watchdog(int socket) : socket_(socket) {}
  void send(std::uint32_t kind, std::uint32_t value);

  int socket_;
};

}  // namespace x11
