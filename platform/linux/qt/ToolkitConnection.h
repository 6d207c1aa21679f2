// The toolkit's own connection to the X server, for what the toolkit has no words for.
#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <initializer_list>
#include <memory>
#include <string_view>

namespace qt {

struct FreeReply {
  void operator()(void* reply) const { std::free(reply); }
};
/// Takes over a reply; null when the request failed.
template <typename T>
std::unique_ptr<T, FreeReply> owned(T* reply) {
  return std::unique_ptr<T, FreeReply>(reply);
}

/// Null off screen. Main thread, like all of these.
xcb_connection_t* toolkitConnection();
/// The first screen's, the one that panels and trays of today serve.
xcb_window_t rootWindow(xcb_connection_t* connection);
/// Whether windows are blended with what is behind them, now; true off screen.
bool isComposited();
/// XCB_ATOM_NONE when the server is gone.
xcb_atom_t atom(xcb_connection_t* connection, std::string_view name);
/// Asks the window manager for something about a window: a message of this type with up to five values.
void sendToWindowManager(xcb_connection_t* connection, xcb_window_t window, std::string_view type,
                         std::initializer_list<std::uint32_t> data);

}  // namespace qt
