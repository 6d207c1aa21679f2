// A program that a test runs beside itself.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace support {

/// Runs from construction to destruction, never longer than the test's own process, in a process group of its own. Its
/// output is read line by line; its errors go to the test's. One thread.
class ChildProcess {
 public:
  /// `environment` holds "NAME=value" entries that are added to the test's own environment.
  explicit ChildProcess(const std::vector<std::string>& command, const std::vector<std::string>& environment = {});
  /// Ends its whole group with SIGKILL, even when it is stopped, and waits for its end.
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  pid_t pid() const { return pid_; }
  /// To the process alone, not to its group.
  void signal(int number) const;
  /// The exit status (128 and the number after a signal), or none when it still runs after `bound`.
  std::optional<int> waitForExit(std::chrono::milliseconds bound);
  /// The next line of its output without the line end; none at the end of the output or after `bound`.
  std::optional<std::string> readLine(std::chrono::milliseconds bound);
  void writeLine(const std::string& line) const;

 private:
  pid_t pid_ = 0;
  std::optional<int> status_;
  int input_ = -1;
  int output_ = -1;
  std::string pending_;
};

}  // namespace support
