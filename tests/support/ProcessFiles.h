// What the kernel tells of a process.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace support {

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

/// The name of a process or a thread, by its folder.
inline std::string name(const std::filesystem::path& folder) {
  std::string text;
  std::getline(std::ifstream(folder / "comm"), text);
  return text;
}

inline std::vector<pid_t> withChildren(pid_t process) {
  std::vector<pid_t> result{process};
  std::ifstream children(folder(process) / "task" / std::to_string(process) / "children");
  for (pid_t child = 0; children >> child;) result.push_back(child);
  return result;
}

}  // namespace support
