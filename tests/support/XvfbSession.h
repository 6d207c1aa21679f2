// An X server of a test's own, with hands to use it: a virtual screen, its pointer and keyboard, and a window that
// keeps a journal of what reaches it.
#pragma once

#include <xcb/xcb.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/linux/x11/Connection.h"
#include "tests/support/ChildProcess.h"

namespace support {

/// Longer than anything a test waits for takes on a busy machine; a failing test ends after it.
constexpr auto patience = std::chrono::seconds(10);

/// A virtual X server on a display number of its own choice. Sets $DISPLAY to it. Throws std::runtime_error when it
/// cannot be started.
class XvfbSession {
 public:
  /// `without` names an extension that the server is to lack.
  explicit XvfbSession(const std::string& screen = "1440x900x24", const std::string& without = {});
  const std::string& displayName() const { return displayName_; }
  pid_t serverPid() const { return server_.pid(); }

 private:
  ChildProcess server_;
  std::string displayName_;
};

/// The person at the desk. Every call returns when the server has executed it.
class Hands {
 public:
  Hands();
  void move(int x, int y);
  void press(int button = 1);
  void release(int button = 1);
  void click(int button = 1);
  /// At a person's pace, which the server keeps: `pause` between each press, release and press.
  void doubleClick(std::chrono::milliseconds pause = std::chrono::milliseconds(40));
  void keyDown(xcb_keysym_t key);
  void keyUp(xcb_keysym_t key);
  void tapKey(xcb_keysym_t key);
  /// Gives the key a place on the keyboard.
  void assignKey(xcb_keysym_t key);
  x11::Connection& connection() { return *connection_; }

 private:
  void fake(std::uint8_t type, xcb_keycode_t detail, int x, int y, std::chrono::milliseconds after = {});
  xcb_keycode_t keycode(xcb_keysym_t key);

  std::unique_ptr<x11::Connection> connection_;
};

/// An unmanaged window on a connection of its own. Its journal has one word for each event: press1, release1, motion.
class JournalWindow {
 public:
  JournalWindow(int x, int y, int width, int height);
  xcb_window_t window() const { return window_; }
  x11::Connection& connection() { return *connection_; }
  /// What has arrived so far.
  const std::vector<std::string>& journal();
  /// The journal once `done` holds, or when the bound is over.
  const std::vector<std::string>& journalWhen(const std::function<bool(const std::vector<std::string>&)>& done,
                                              std::chrono::milliseconds bound = patience);
  /// The journal once it has this many entries.
  const std::vector<std::string>& journalOf(std::size_t count);
  void clear();

 private:
  std::unique_ptr<x11::Connection> connection_;
  xcb_window_t window_ = XCB_WINDOW_NONE;
  std::vector<std::string> journal_;
};

/// Waits until the descriptor is readable; false when the deadline comes first.
bool waitReadable(int descriptor, std::chrono::steady_clock::time_point deadline);

}  // namespace support
