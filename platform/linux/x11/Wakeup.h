// Wakes a thread that waits on file descriptors.
#pragma once

#include <sys/eventfd.h>
#include <unistd.h>

#include <cstdint>

namespace x11 {

class Wakeup {
 public:
  Wakeup() : descriptor_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}
  ~Wakeup() { close(descriptor_); }
  Wakeup(const Wakeup&) = delete;
  Wakeup& operator=(const Wakeup&) = delete;

  /// Readable from a signal until it is cleared.
  int fileDescriptor() const { return descriptor_; }
  /// Any thread.
  void signal() {
    const std::uint64_t one = 1;
    // Cannot fail but on overflow, and then the descriptor is readable anyway.
    [[maybe_unused]] const auto written = write(descriptor_, &one, sizeof one);
  }
  void clear() {
    std::uint64_t count = 0;
    [[maybe_unused]] const auto got = read(descriptor_, &count, sizeof count);
  }

 private:
  int descriptor_;
};

}  // namespace x11
