// What a test sees and does on an X server: windows as a person sees them, and real input.
#pragma once

#include <xcb/xcb.h>

#include <chrono>
#include <functional>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/XvfbSession.h"

namespace desktoptest {

using Window = xcb_window_t;

struct Point {
  int x = 0;
  int y = 0;
};

/// In root coordinates; of a window: with its decorations, without invisible shadows.
struct Frame {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
  friend bool operator==(const Frame&, const Frame&) = default;
  friend std::ostream& operator<<(std::ostream& stream, const Frame& frame);
};

enum class Key : xcb_keysym_t {
  Shift = 0xffe1,
  Control = 0xffe3,
  Alt = 0xffe9,
  Super = 0xffeb,
  CapsLock = 0xffe5,
  NumLock = 0xff7f,
};

/// One connection, used from one thread. Questions about a window that is gone answer nothing.
class XClient {
 public:
  /// Throws when $DISPLAY cannot be opened.
  XClient();

  Window root() const { return connection_.root(); }
  /// Looks at `condition` again after whatever happens on the display (and now and then, for conditions that are not
  /// about the display) until it holds; false when it does not within `bound`.
  bool waitUntil(const std::function<bool()>& condition, std::chrono::milliseconds bound = std::chrono::seconds(10));

  /// Waits until the server has done all that was asked before.
  void synchronise() { connection_.synchronise(); }
  std::vector<std::uint32_t> property(Window window, const std::string& name);
  /// The managed windows, oldest first.
  std::vector<Window> clients();
  std::vector<Window> children(Window window);
  std::optional<xcb_get_window_attributes_reply_t> attributes(Window window);
  /// The window's own rectangle in root coordinates.
  std::optional<Frame> rectangle(Window window);
  std::optional<Frame> frame(Window window);
  /// What is on the screen there.
  std::vector<std::uint8_t> picture(const Frame& place);
  /// Whether the window has this frame, as far as its size increments allow: it may be smaller by less than one.
  bool fits(Window window, const Frame& wanted);
  /// Whether the application, not the window manager, draws the title bar.
  bool drawsOwnTitleBar(Window window);
  bool isIconic(Window window);
  bool isMaximised(Window window);
  /// The top-level window that holds this one: a client's decoration.
  Window topLevel(Window window);
  Window primarySelectionOwner();
  /// Where a tray shows the icon that was embedded in it.
  std::optional<Frame> trayIcon();

  /// Replaces the resources that programs read when they start.
  void setResources(const std::string& text);
  /// Asks the window manager for a frame.
  void moveResize(Window window, const Frame& frame);
  /// Raises, focuses and brings back from the icon.
  void activate(Window window);
  /// As a click on the close button.
  void close(Window window);
  /// Adds these states, at most two, or takes them away.
  void setState(Window window, const std::vector<std::string>& names, bool on);

  void movePointer(Point point) { hands_.move(point.x, point.y); }
  void press() { hands_.press(); }
  void release() { hands_.release(); }
  void hold(Key key) { hands_.keyDown(static_cast<xcb_keysym_t>(key)); }
  void letGo(Key key) { hands_.keyUp(static_cast<xcb_keysym_t>(key)); }
  void type(xcb_keysym_t symbol) { hands_.tapKey(symbol); }
  void click(Point point, int number = 1);
  void doubleClick(Point point);
  /// Presses at the first point and releases at the last, all at once.
  void drag(const std::vector<Point>& path);
  /// Whether a lock key is on.
  bool isOn(Key lock);

  /// Whether another client holds the first button's presses on the root window.
  bool isButtonGrabbed();
  /// Whether the pointer is free, neither frozen nor grabbed.
  bool isPointerFree();

 private:
  bool hasState(Window window, const std::string& name);
  Window embeddedWindow(Window within);
  void sendToRoot(Window window, const std::string& type, const std::vector<std::uint32_t>& data);

  support::Hands hands_;
  x11::Connection& connection_ = hands_.connection();
  xcb_connection_t* const c_ = connection_.get();
};

}  // namespace desktoptest
