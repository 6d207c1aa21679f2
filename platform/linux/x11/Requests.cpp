#include "platform/linux/x11/Requests.h"

#include <algorithm>
#include <array>

#include "platform/linux/x11/Properties.h"

namespace x11 {

namespace {

/// Of a pager: window managers obey it where they would suspect an application of stealing the focus.
constexpr std::uint32_t sourcePager = 2;

void sendToWindowManager(const Connection& connection, xcb_window_t window, xcb_atom_t type,
                         const std::array<std::uint32_t, 5>& data) {
  xcb_client_message_event_t message{};
  message.response_type = XCB_CLIENT_MESSAGE;
  message.format = 32;
  message.window = window;
  message.type = type;
  std::copy(data.begin(), data.end(), std::begin(message.data.data32));
  xcb_send_event(connection.get(), 0, connection.root(),
                 XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                 reinterpret_cast<const char*>(&message));
}

bool isSupported(const Connection& connection, const Atoms& atoms, xcb_atom_t message) {
  const auto supported = readItems(connection, connection.root(), atoms.netSupported);
  return supported.empty() || std::find(supported.begin(), supported.end(), message) != supported.end();
}

}  // namespace

void requestMoveResize(const Connection& connection, const Atoms& atoms, xcb_window_t client, const Rect& request) {
  if (!isSupported(connection, atoms, atoms.netMoveresizeWindow)) {
    // Window Maker does not know the message. It understands this, as all do, but by the window's own gravity.
    const std::uint32_t place[] = {static_cast<std::uint32_t>(request.x), static_cast<std::uint32_t>(request.y),
                                   static_cast<std::uint32_t>(std::max(request.width, 1)),
                                   static_cast<std::uint32_t>(std::max(request.height, 1))};
    constexpr std::uint16_t all =
        XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT;
    xcb_configure_window(connection.get(), client, all, place);
    return;
  }
  // Always all four values and always this gravity: with x alone several window managers shift y, and with the window's
  // own gravity some toolkits' windows land off by the decoration.
  constexpr std::uint32_t allFour = 0xf << 8;
  sendToWindowManager(connection, client, atoms.netMoveresizeWindow,
                      {XCB_GRAVITY_NORTH_WEST | allFour | sourcePager << 12, static_cast<std::uint32_t>(request.x),
                       static_cast<std::uint32_t>(request.y), static_cast<std::uint32_t>(std::max(request.width, 1)),
                       static_cast<std::uint32_t>(std::max(request.height, 1))});
}

void requestUnconfined(const Connection& connection, const Atoms& atoms, xcb_window_t client,
                       const WindowGeometry& geometry) {
  const auto remove = [&](xcb_atom_t one, xcb_atom_t other) {
    constexpr std::uint32_t removeState = 0;
    sendToWindowManager(connection, client, atoms.netWmState, {removeState, one, other, sourcePager, 0});
  };
  if (geometry.fullscreen) remove(atoms.netWmStateFullscreen, XCB_ATOM_NONE);
  if (geometry.shaded) remove(atoms.netWmStateShaded, XCB_ATOM_NONE);
  if (geometry.maximizedHorizontally || geometry.maximizedVertically) {
    remove(atoms.netWmStateMaximizedHorz, atoms.netWmStateMaximizedVert);
  }
}

void requestIconify(const Connection& connection, const Atoms& atoms, xcb_window_t client) {
  constexpr std::uint32_t iconicState = 3;
  sendToWindowManager(connection, client, atoms.wmChangeState, {iconicState, 0, 0, 0, 0});
}

void requestActivate(const Connection& connection, const Atoms& atoms, xcb_window_t client) {
  sendToWindowManager(connection, client, atoms.netActiveWindow, {sourcePager, XCB_CURRENT_TIME, 0, 0, 0});
}

}  // namespace x11
