// The end of what the system's calls leave to be released later.
#pragma once

namespace ns {

/// While it exists it collects what calls on this thread leave behind for later, and its end releases that. For
/// callbacks that the system makes from outside of its event loop, which would keep it until the next event. Pools
/// nest.
class AutoreleasePool {
 public:
  AutoreleasePool();
  ~AutoreleasePool();  // NOLINT(performance-trivially-destructible): only where there is nothing to release
  AutoreleasePool(const AutoreleasePool&) = delete;
  AutoreleasePool& operator=(const AutoreleasePool&) = delete;

 private:
  [[maybe_unused]] void* pool_ = nullptr;
};

}  // namespace ns
