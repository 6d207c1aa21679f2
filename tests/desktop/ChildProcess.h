// A process that a test starts.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace desktoptest {

using Arguments = std::vector<std::string>;
/// Changes to the inherited environment.
using Environment = std::map<std::string, std::string>;

struct CommandResult {
  int status = -1;
  std::string output;
};

/// Runs in a process group of its own. Its owner's end kills the whole group; the kernel kills the process itself when
/// the test dies in any other way.
class ChildProcess {
 public:
  /// Starts `arguments[0]`, searched in PATH, with nothing on standard input and both outputs in the file `log`.
  /// `inherited` is a descriptor that the child keeps under its number. Throws when it cannot be started.
  ChildProcess(const Arguments& arguments, const Environment& environment, const std::filesystem::path& log,
               int inherited = -1);
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  pid_t pid() const { return pid_; }
  /// To the process alone, not to its group.
  void signal(int number) const;
  /// The exit status (128 and the signal's number after a signal), or none when it still runs after `bound`.
  std::optional<int> waitForExit(std::chrono::milliseconds bound);

 private:
  pid_t pid_ = -1;
  int pidDescriptor_ = -1;
  std::optional<int> status_;
};

/// Runs a command to its end. Throws when that takes longer than `bound`.
CommandResult run(const Arguments& arguments, const Environment& environment, const std::filesystem::path& log,
                  std::chrono::milliseconds bound = std::chrono::seconds(20));

std::string readFile(const std::filesystem::path& path);
/// Replaces the file in one step, as editors do.
void writeFile(const std::filesystem::path& path, const std::string& text);

}  // namespace desktoptest
