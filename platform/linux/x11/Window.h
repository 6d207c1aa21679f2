// What is known about one managed window.
#pragma once

#include <sys/types.h>
#include <xcb/xcb.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/x11/Atoms.h"
#include "platform/linux/x11/Geometry.h"

namespace x11 {

/// What decides where a window is; read in one round trip.
struct WindowGeometry {
  Rect client;
  Extents decoration;
  Extents shadow;
  bool drawsShadow = false;
  bool maximizedHorizontally = false;
  bool maximizedVertically = false;
  bool fullscreen = false;
  bool shaded = false;

  Rect frame() const { return visibleFrame(client, decoration, shadow); }
  /// Whether the window manager would ignore a move or a resize as the window is now.
  bool isConfined() const { return maximizedHorizontally || maximizedVertically || fullscreen || shaded; }
  friend bool operator==(const WindowGeometry&, const WindowGeometry&) = default;
};

/// The workspace of a window that is on all of them.
constexpr std::uint32_t everyWorkspace = 0xffffffff;

enum class MinimizeButton { Missing, Disabled, Enabled };

/// What a window says about itself and its window manager about it.
struct WindowProperties {
  std::uint32_t wmState = 0;
  /// _NET_WM_STATE_HIDDEN.
  bool isHidden = false;
  /// How often WM_STATE has been set since the window is known; counted by whoever follows the window.
  std::uint32_t stateChanges = 0;
  bool isTransient = false;
  bool isNormalType = true;
  /// The desktop itself or a panel.
  bool isFurniture = false;
  std::uint32_t workspace = everyWorkspace;
  bool isDecorated = true;
  bool decorationHasMinimize = true;
  bool functionsHaveMinimize = true;
  /// None when the window manager does not tell.
  std::optional<bool> minimizeIsAllowed;
  std::optional<bool> maximizeIsAllowed;
  std::optional<bool> closeIsAllowed;
  std::string windowInstance;
  std::string windowClass;
  std::string gtkApplicationId;
  std::string title;

  /// Several window managers set WM_STATE to iconic for every window on another workspace, too, and others hide shaded
  /// windows: only both together tell.
  bool isIconic() const { return stateIsIconic() && isHidden; }
  bool stateIsIconic() const { return wmState == 3; }
  MinimizeButton minimizeButton() const;
  friend bool operator==(const WindowProperties&, const WindowProperties&) = default;
};

struct Window {
  xcb_window_t client = XCB_WINDOW_NONE;
  /// The child of the root window that holds the client: its frame, or itself when it has none.
  xcb_window_t frame = XCB_WINDOW_NONE;
  /// 0 when it cannot be told.
  pid_t pid = 0;
  WindowGeometry geometry;
  WindowProperties properties;

  /// Whether the title bar, if there is one, is drawn by the window's own program.
  bool drawsItsTitleBar() const { return geometry.drawsShadow || !properties.isDecorated; }
};

/// Requests whose answers are on their way; `receive` is to be called exactly once. Several sent before the first is
/// received cost one round trip together.
class GeometryRequest {
 public:
  GeometryRequest(const Connection& connection, const Atoms& atoms, xcb_window_t client);
  /// None when the window is gone.
  std::optional<WindowGeometry> receive();

 private:
  const Connection& connection_;
  const Atoms& atoms_;
  const xcb_window_t client_;
  xcb_get_geometry_cookie_t size_;
  xcb_translate_coordinates_cookie_t position_;
  xcb_get_property_cookie_t decoration_;
  xcb_get_property_cookie_t shadow_;
  xcb_get_property_cookie_t state_;
};

/// As GeometryRequest. A property that is missing or malformed counts as not set.
class PropertiesRequest {
 public:
  PropertiesRequest(const Connection& connection, const Atoms& atoms, xcb_window_t client);
  WindowProperties receive();

 private:
  const Connection& connection_;
  const Atoms& atoms_;
  xcb_get_property_cookie_t wmState_;
  xcb_get_property_cookie_t netWmState_;
  xcb_get_property_cookie_t transientFor_;
  xcb_get_property_cookie_t type_;
  xcb_get_property_cookie_t workspace_;
  xcb_get_property_cookie_t motif_;
  xcb_get_property_cookie_t allowed_;
  xcb_get_property_cookie_t class_;
  xcb_get_property_cookie_t gtkApplicationId_;
  xcb_get_property_cookie_t title_;
};

/// The process that made the window, by the X server's own knowledge of its connection; the window's claim counts only
/// where the server does not know, as one without the X-Resource extension. 0 when neither tells. One or two round
/// trips.
pid_t processOfWindow(const Connection& connection, const Atoms& atoms, xcb_window_t window);

/// The child of the root window that holds `window`, which may be `window` itself; none when it is gone.
std::optional<xcb_window_t> rootChildOf(const Connection& connection, xcb_window_t window);

/// Of the clients in one frame, of which there is one at least, the one that is to be seen: some window managers unmap
/// the others, and some stack them below it. Any of them when none is mapped.
xcb_window_t visibleAmong(const Connection& connection, const std::vector<xcb_window_t>& clients);

/// The managed windows, the bottommost first. Asked for when it is wanted, which is seldom, as it changes at every
/// click.
std::vector<xcb_window_t> stackingOrder(const Connection& connection, const Atoms& atoms);

}  // namespace x11
