// The time of the desktop in memory: it moves only when somebody moves it.
#pragma once

namespace simulated {

class Clock {
 public:
  /// Seconds since the program started.
  static double now();
  /// Lets time pass. Nothing runs because of it: a busy main thread notices nothing either.
  static void pass(double seconds);
};

}  // namespace simulated
