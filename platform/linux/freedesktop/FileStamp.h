// A cheap way to see that a file is another one than last time.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>

namespace freedesktop {

/// What a file's metadata said: equal stamps mean the same content, as far as the file system can tell. A missing file
/// has the default stamp.
struct FileStamp {
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  std::int64_t size = 0;
  /// In nanoseconds since the epoch.
  std::int64_t modified = 0;
  std::int64_t changed = 0;
  std::uint32_t owner = 0;
  std::uint32_t mode = 0;

  static FileStamp of(const std::string& path);
  /// Of an open file.
  static FileStamp of(int descriptor);

  /// False while the file changed so lately that a further change may carry the same times: file systems count in
  /// ticks of some milliseconds. Content read under such a stamp is to be read again.
  bool isSettled() const;
  friend bool operator==(const FileStamp&, const FileStamp&) = default;
};

}  // namespace freedesktop
