#include "platform/linux/freedesktop/FileStamp.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>

namespace freedesktop {
namespace {

constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;
/// Several times the longest tick that Linux stamps files in (10 ms).
constexpr std::int64_t settlingTime = nanosecondsPerSecond / 20;

std::int64_t nanoseconds(const timespec& time) { return time.tv_sec * nanosecondsPerSecond + time.tv_nsec; }

FileStamp fromStatus(const struct stat& status) {
  return {status.st_dev, status.st_ino, status.st_size, nanoseconds(status.st_mtim), nanoseconds(status.st_ctim),
          status.st_uid, status.st_mode};
}

}  // namespace

FileStamp FileStamp::of(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 ? fromStatus(status) : FileStamp{};
}

FileStamp FileStamp::of(int descriptor) {
  struct stat status {};
  return fstat(descriptor, &status) == 0 ? fromStatus(status) : FileStamp{};
}

bool FileStamp::isSettled() const {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  return std::abs(nanoseconds(now) - std::max(modified, changed)) > settlingTime;
}

}  // namespace freedesktop
