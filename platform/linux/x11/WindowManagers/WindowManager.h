// What is known about one window manager: how to tell which of its windows is which title-bar button.
//
// To teach Ostrel another one: write a file beside this one with a class that answers depth and roleOf, and name it in
// the table in Registry.cpp.
#pragma once

#include <sys/types.h>
#include <xcb/xcb.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/atspi/TitleBarButtons.h"
#include "platform/linux/x11/Connection.h"

namespace x11 {

using ButtonRole = atspi::ButtonRole;

/// What lies under the pointer, as the X server nests it.
struct ButtonPath {
  const Connection& connection;
  /// The process of the window manager; 0 when unknown.
  pid_t windowManagerPid = 0;
  /// From the frame, a child of the root window, down to where buttons are.
  std::vector<xcb_window_t> windows;
  /// The children of the last one's parent, the bottommost first; it is one of them.
  std::vector<xcb_window_t> siblings;

  xcb_window_t leaf() const { return windows.back(); }
  /// Where the leaf stands among its siblings; the number of siblings when it is not there any more.
  std::size_t index() const;
};

/// Stateless; may ask the X server, never another process. Main thread only.
class WindowManager {
 public:
  virtual ~WindowManager() = default;
  /// How many windows lead to a button, the frame and the button itself included; at least 2.
  virtual std::size_t depth() const = 0;
  /// For a path of that many windows. None when the last one is no button that Ostrel knows, or nothing certain can be
  /// told.
  virtual std::optional<ButtonRole> roleOf(const ButtonPath& path) const = 0;
};

/// The knowledge of the window manager that calls itself `name`; null when there is none, as for those that draw their
/// buttons without windows of their own. Any thread.
const WindowManager* windowManagerNamed(std::string_view name);

// One for each file beside this one.
const WindowManager& openbox();
const WindowManager& xfwm4();
const WindowManager& fluxbox();
const WindowManager& iceWM();
const WindowManager& windowMaker();

}  // namespace x11
