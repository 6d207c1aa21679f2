// A virtual desktop with a window manager and the X11 backing's view of it.
#pragma once

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <array>
#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "platform/linux/x11/Elements.h"
#include "platform/linux/x11/Requests.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/XvfbSession.h"

namespace support {

/// A window of this process on a connection of its own, with no more properties than it is given.
class ManagedWindow {
 public:
  ManagedWindow(int x, int y, int width, int height);
  x11::Connection& connection() { return *connection_; }
  xcb_window_t window() const { return window_; }
  void setProperty(const char* name, xcb_atom_t type, const std::vector<std::uint32_t>& items);
  /// WM_CLASS, with the same text for both of its parts. Those of the class "tabbed" share a frame where the window
  /// manager has tabs.
  void setClass(const std::string& name);
  void map();
  /// Whether the window manager has asked it to close since the last time.
  bool isAskedToClose();

 private:
  std::unique_ptr<x11::Connection> connection_;
  xcb_window_t window_ = XCB_WINDOW_NONE;
};

/// Starts everything and waits until the window manager says who it is. Main queue: Qt's.
class Desk {
 public:
  explicit Desk(const std::string& windowManager);
  ~Desk();

  void startWindowManager(const std::string& name);
  void stopWindowManager() { windowManagerProcess_.reset(); }

  /// Runs the main queue and waits for changes of windows until `done` holds; false after the bound.
  bool waitFor(const std::function<bool()>& done, std::chrono::milliseconds bound = patience);
  /// Maps the window and waits until it is on the screen with its title bar, and known as it is.
  x11::Window manage(ManagedWindow& window);
  x11::Window windowOf(xcb_window_t client) { return tracker().window(client).value_or(x11::Window{}); }
  bool isOnScreen(xcb_window_t client);
  x11::Rect frameOf(xcb_window_t client) { return windowOf(client).geometry.frame(); }
  void set(xcb_window_t client, const char* attribute, const desktop::Value& value);
  /// Asks the window manager for something, by a message about a window.
  void ask(xcb_window_t window, const std::string& message, const std::array<std::uint32_t, 5>& data);
  void moveToWorkspace(xcb_window_t client, std::uint32_t workspace) {
    ask(client, "_NET_WM_DESKTOP", {workspace, 2, 0, 0, 0});
  }
  void enterWorkspace(std::uint32_t workspace) {
    ask(connection_->root(), "_NET_CURRENT_DESKTOP", {workspace, XCB_CURRENT_TIME, 0, 0, 0});
  }
  /// Asks the window manager to add (1) or remove (0) two states, by the names that follow _NET_WM_STATE_.
  void changeState(xcb_window_t client, std::uint32_t action, const std::string& one, const std::string& other);
  /// The middle of the first stretch of the title bar, from the left, where elements say that this button is.
  std::optional<CGPoint> findButton(const x11::Window& window, x11::ButtonRole role);

  x11::WindowTracker& tracker() { return *tracker_; }
  x11::Placement& placement() { return *placement_; }
  x11::Hiding& hiding() { return *hiding_; }
  x11::Elements& elements() { return *elements_; }
  x11::Connection& connection() { return *connection_; }
  Hands& hands() { return *hands_; }
  const XvfbSession& session() const { return session_; }

  /// What the windows that draw their own title bar are said to have.
  std::vector<atspi::TitleBarButton> clientButtons;

 private:
  XvfbSession session_;
  std::filesystem::path home_;
  std::unique_ptr<ChildProcess> bus_;
  std::unique_ptr<ChildProcess> windowManagerProcess_;
  x11::WindowGeometry geometryOf(xcb_window_t client);

  std::unique_ptr<x11::Connection> connection_;
  x11::Atoms atoms_;
  std::unique_ptr<x11::WindowTracker> tracker_;
  std::unique_ptr<x11::Hiding> hiding_;
  std::unique_ptr<x11::Placement> placement_;
  std::unique_ptr<x11::DrawnButtons> drawnButtons_;
  std::unique_ptr<x11::Elements> elements_;
  std::unique_ptr<Hands> hands_;
  std::unique_ptr<ManagedWindow> probe_;
  std::mutex mutex_;
  std::condition_variable changed_;
};

}  // namespace support
