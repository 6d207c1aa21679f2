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
// instead of loading every library again. Only one that dies, as when memory is short, has its place taken by this
// program started anew.
#pragma once

#include <sys/types.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <optional>

#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/WatchdogMessages.h"

namespace x11 {

/// The application's end. Used by one thread at a time, the tap's, but for what any thread may call.
class Watchdog {
 public:
  /// Forks the process; see ns::startHelperProcess.
  static void start();
  /// Null when it was never started.
  static Watchdog* shared();

  /// Starts the process again if it has died, at most once a second, and has it watch over that connection, or none.
  /// Returns how long to wait before the next call; none while it runs.
  std::optional<std::chrono::milliseconds> keepAlive(const Connection* watched);
  /// Any thread.
  bool isRunning() const;
  /// Readable when answer() has something to do; -1 when the process is gone.
  int fileDescriptor() const { return socket_; }
  /// Has it watch over that connection, whose socket it then shares; null for none. To be told again after it has
  /// closed a connection.
  void watch(const Connection* connection);
  /// Notes that the press with that time has been answered and so holds the pointer no longer. Any thread.
  void settled(xcb_timestamp_t press) { notes_.lastSettled = press; }
  /// Whether it has passed a press on itself and given the connection up. Any thread.
  bool hasTakenOver() const { return notes_.hasTakenOver; }
  /// Answers the question that has arrived. `pressPending`: the pointer is frozen and the tap knows; ask again soon.
  void answer(bool pressPending);

 private:
  using Clock = std::chrono::steady_clock;

  Watchdog(int notesMemory, WatchdogNotes& notes) : notesMemory_(notesMemory), notes_(notes) {}
  void forkNow();
  void startAnew();
  void send(WatchdogMessage::Kind kind, std::uint32_t value, int descriptor = -1);
  void bury();

  // These two live as long as the program.
  const int notesMemory_;
  WatchdogNotes& notes_;
  int socket_ = -1;
  std::atomic<pid_t> process_ = 0;
  Clock::time_point lastStart_;
};

}  // namespace x11
