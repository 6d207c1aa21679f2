// Reading and replacing small files whose content matters.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "platform/linux/freedesktop/FileStamp.h"

namespace freedesktop {

/// Owns a file descriptor.
class Descriptor {
 public:
  explicit Descriptor(int value = -1) : value_(value) {}
  Descriptor(Descriptor&& other) noexcept;
  Descriptor& operator=(Descriptor&& other) noexcept;
  ~Descriptor();
  int get() const { return value_; }
  explicit operator bool() const { return value_ >= 0; }

 private:
  int value_;
};

struct FileContent {
  /// 0, or the errno of what failed; EFBIG when the file is longer than was allowed, EINVAL when it is no regular file.
  int error = 0;
  std::string text;
  FileStamp stamp;
};
/// Reads a regular file of at most `limit` bytes. A pipe or a device at the path is not waited for.
FileContent readFile(const std::string& path, std::size_t limit);

/// The path at the end of a chain of links, whether or not a file is there. None for a chain without end.
std::optional<std::string> linkTarget(std::string path);

/// The program that a process runs, by its folder in /proc; where it was when it started, also when an update has
/// replaced it since. Empty when it cannot be told.
std::string executableOf(const std::string& processFolder = "/proc/self");

/// Replaces the file at `path`, or the one that it is a link to, so that at any moment, a power cut included, either
/// the old or the new content is there. Makes missing folders. The new file has mode 0600. 0 or an errno; then nothing
/// has changed.
int replaceFile(const std::string& path, std::string_view content);

/// A line on standard error, where the session's log takes it from.
void logWarning(std::string_view text);

}  // namespace freedesktop
