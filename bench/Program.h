// What the measuring programs share: their way to end, and a look at the processes that they measure.
#pragma once

#include <sys/types.h>

#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace bench {

/// Runs the measurement; gives the program's exit status.
template <typename Measurement>
int run(Measurement measure) {
  try {
    measure();
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}

/// The first number after `key` in a file of the kernel's, 0 without one.
inline long number(const std::filesystem::path& file, const std::string& key) {
  std::ifstream stream(file);
  for (std::string line; std::getline(stream, line);) {
    if (line.starts_with(key)) return std::stol(line.substr(key.size()));
  }
  return 0;
}

/// A process's folder in /proc.
inline std::filesystem::path folder(pid_t process) { return "/proc/" + std::to_string(process); }

inline std::string name(pid_t process) {
  std::string text;
  std::getline(std::ifstream(folder(process) / "comm"), text);
  return text;
}

inline std::vector<pid_t> withChildren(pid_t process) {
  std::vector<pid_t> result{process};
  std::ifstream children(folder(process) / "task" / std::to_string(process) / "children");
  for (pid_t child = 0; children >> child;) result.push_back(child);
  return result;
}

}  // namespace bench
