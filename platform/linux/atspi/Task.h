// Coroutines, so that a conversation of many asynchronous calls reads from top to bottom.
#pragma once

#include <gio/gio.h>

#include <coroutine>
#include <exception>
#include <optional>
#include <utility>

#include "platform/linux/atspi/GLib.h"

namespace atspi {

/// A coroutine that gives a T to the one coroutine that awaits it. It starts when awaited; its exceptions arrive there.
template <class T>
class [[nodiscard]] Task {
 public:
  struct promise_type {
    struct Finish {
      bool await_ready() const noexcept { return false; }
      std::coroutine_handle<> await_suspend(std::coroutine_handle<promise_type> finished) const noexcept {
        return finished.promise().awaiting;
      }
      void await_resume() const noexcept {}
    };
    Task get_return_object() { return Task(std::coroutine_handle<promise_type>::from_promise(*this)); }
    std::suspend_always initial_suspend() const noexcept { return {}; }
    Finish final_suspend() const noexcept { return {}; }
    void return_value(T result) { value = std::move(result); }
    void unhandled_exception() { exception = std::current_exception(); }

    std::coroutine_handle<> awaiting;
    std::optional<T> value;
    std::exception_ptr exception;
  };

  Task(Task&& other) noexcept : handle_(std::exchange(other.handle_, {})) {}
  Task& operator=(Task&&) = delete;
  ~Task() {
    if (handle_) handle_.destroy();
  }

  bool await_ready() const noexcept { return false; }
  std::coroutine_handle<> await_suspend(std::coroutine_handle<> awaiting) noexcept {
    handle_.promise().awaiting = awaiting;
    return handle_;
  }
  T await_resume() {
    auto& promise = handle_.promise();
    if (!promise.value) std::rethrow_exception(promise.exception);
    return std::move(*promise.value);
  }

 private:
  explicit Task(std::coroutine_handle<promise_type> handle) : handle_(handle) {}
  std::coroutine_handle<promise_type> handle_;
};

/// A coroutine that nobody awaits. It runs at once up to its first wait and frees itself; it must not throw.
struct Detached {
  struct promise_type {
    Detached get_return_object() const noexcept { return {}; }
    std::suspend_never initial_suspend() const noexcept { return {}; }
    std::suspend_never final_suspend() const noexcept { return {}; }
    void return_void() const noexcept {}
    [[noreturn]] void unhandled_exception() const noexcept { std::terminate(); }
  };
};

/// Awaits one asynchronous operation of GIO; gives its result, for the operation's "finish" function. `start` gets the
/// callback and its data, and arguments that GIO accepts: then it calls back, at the latest after cancelling, and no
/// coroutine is left hanging.
template <class Start>
class Operation {
 public:
  explicit Operation(Start start) : start_(std::move(start)) {}
  Operation(const Operation&) = delete;
  Operation& operator=(const Operation&) = delete;

  bool await_ready() const noexcept { return false; }
  void await_suspend(std::coroutine_handle<> awaiting) {
    awaiting_ = awaiting;
    start_(&Operation::finished, static_cast<gpointer>(this));
  }
  Object<GAsyncResult> await_resume() { return std::move(result_); }

 private:
  static void finished(GObject*, GAsyncResult* result, gpointer self) {
    auto* operation = static_cast<Operation*>(self);
    operation->result_ = retained(result);
    operation->awaiting_.resume();
  }

  Start start_;
  std::coroutine_handle<> awaiting_;
  Object<GAsyncResult> result_;
};

}  // namespace atspi
