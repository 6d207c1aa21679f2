#include "platform/linux/qt/ToolkitConnection.h"

#include <QGuiApplication>
#include <algorithm>
#include <iterator>

namespace qt {

xcb_connection_t* toolkitConnection() {
  const auto* const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  // Off screen the toolkit answers with an application without a connection.
  return x11 ? x11->connection() : nullptr;
}

xcb_window_t rootWindow(xcb_connection_t* connection) {
  return xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
}

bool isComposited() {
  xcb_connection_t* const x11 = toolkitConnection();
  if (!x11) return true;
  static const xcb_atom_t selection = atom(x11, "_NET_WM_CM_S0");
  const auto reply = owned(xcb_get_selection_owner_reply(x11, xcb_get_selection_owner(x11, selection), nullptr));
  return reply && reply->owner != XCB_WINDOW_NONE;
}

xcb_atom_t atom(xcb_connection_t* connection, std::string_view name) {
  const auto cookie = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
  const auto reply = owned(xcb_intern_atom_reply(connection, cookie, nullptr));
  return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

void sendToWindowManager(xcb_connection_t* connection, xcb_window_t window, std::string_view type,
                         std::initializer_list<std::uint32_t> data) {
  xcb_client_message_event_t message{};
  message.response_type = XCB_CLIENT_MESSAGE;
  message.format = 32;
  message.window = window;
  message.type = atom(connection, type);
  std::copy(data.begin(), data.end(), std::begin(message.data.data32));
  xcb_send_event(connection, 0, rootWindow(connection),
                 XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                 reinterpret_cast<const char*>(&message));
  xcb_flush(connection);
}

}  // namespace qt
