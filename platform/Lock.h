// A lock whose use the compiler can check: clang refuses code that touches a guarded field without it.
#pragma once

#include <mutex>

#if defined(__clang__)
#define OSTREL_THREAD_ANNOTATION(x) __attribute__((x))
#else
#define OSTREL_THREAD_ANNOTATION(x)
#endif
#define GUARDED_BY(x) OSTREL_THREAD_ANNOTATION(guarded_by(x))
#define REQUIRES(...) OSTREL_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))

namespace ns {

/// A plain mutual-exclusion lock, not recursive.
class OSTREL_THREAD_ANNOTATION(capability("mutex")) Lock {
 public:
  void lock() OSTREL_THREAD_ANNOTATION(acquire_capability()) { mutex_.lock(); }
  void unlock() OSTREL_THREAD_ANNOTATION(release_capability()) { mutex_.unlock(); }

 private:
  std::mutex mutex_;
};

/// Holds a Lock for a scope.
class OSTREL_THREAD_ANNOTATION(scoped_lockable) LockGuard {
 public:
  explicit LockGuard(Lock& lock) OSTREL_THREAD_ANNOTATION(acquire_capability(lock)) : lock_(lock) { lock_.lock(); }
  ~LockGuard() OSTREL_THREAD_ANNOTATION(release_capability()) { lock_.unlock(); }
  LockGuard(const LockGuard&) = delete;
  LockGuard& operator=(const LockGuard&) = delete;

 private:
  Lock& lock_;
};

}  // namespace ns
