#include "tests/desktop/XClient.h"

#include <poll.h>

#include <algorithm>
#include <ostream>
#include <stdexcept>

namespace desktoptest {

namespace {

constexpr std::uint32_t fromPager = 2;

}  // namespace

std::ostream& operator<<(std::ostream& stream, const Frame& frame) {
  return stream << '(' << frame.x << ", " << frame.y << ", " << frame.width << ", " << frame.height << ')';
}

XClient::XClient() {
  const std::uint32_t events =
      XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
  xcb_change_window_attributes(c_, root(), XCB_CW_EVENT_MASK, &events);
}

bool XClient::waitUntil(const std::function<bool()>& condition, std::chrono::milliseconds bound) {
  const auto end = std::chrono::steady_clock::now() + bound;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) return false;
    pollfd readable{connection_.fileDescriptor(), POLLIN, 0};
    poll(&readable, 1, 10);
    while (connection_.pollEvent()) {
    }
    if (connection_.isBroken()) throw std::runtime_error("the X server is gone");
  }
  return true;
}

std::vector<std::uint32_t> XClient::property(Window window, const std::string& name) {
  const auto cookie = xcb_get_property(c_, 0, window, connection_.atom(name), XCB_GET_PROPERTY_TYPE_ANY, 0, 4096);
  const auto reply = connection_.reply(xcb_get_property_reply, cookie);
  if (!reply || reply->format != 32) return {};
  const auto* values = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
  return {values, values + reply->value_len};
}

std::vector<Window> XClient::clients() { return property(root(), "_NET_CLIENT_LIST"); }

std::vector<Window> XClient::children(Window window) {
  const auto reply = connection_.reply(xcb_query_tree_reply, xcb_query_tree(c_, window));
  if (!reply) return {};
  const auto* first = xcb_query_tree_children(reply.get());
  return {first, first + reply->children_len};
}

std::optional<xcb_get_window_attributes_reply_t> XClient::attributes(Window window) {
  const auto reply = connection_.reply(xcb_get_window_attributes_reply, xcb_get_window_attributes(c_, window));
  if (!reply) return std::nullopt;
  return *reply;
}

std::optional<Frame> XClient::rectangle(Window window) {
  const auto geometry = connection_.reply(xcb_get_geometry_reply, xcb_get_geometry(c_, window));
  const auto origin =
      connection_.reply(xcb_translate_coordinates_reply, xcb_translate_coordinates(c_, window, root(), 0, 0));
  if (!geometry || !origin) return std::nullopt;
  return Frame{origin->dst_x, origin->dst_y, geometry->width, geometry->height};
}

std::optional<Frame> XClient::frame(Window window) {
  auto result = rectangle(window);
  if (!result) return std::nullopt;
  const auto change = [&](const std::string& name, int direction) {
    const auto edges = property(window, name);  // left, right, top, bottom
    if (edges.size() != 4) return;
    const auto edge = [&](std::size_t index) { return direction * static_cast<int>(edges[index]); };
    result->x -= edge(0);
    result->y -= edge(2);
    result->width += edge(0) + edge(1);
    result->height += edge(2) + edge(3);
  };
  change("_NET_FRAME_EXTENTS", 1);
  change("_GTK_FRAME_EXTENTS", -1);
  return result;
}

std::vector<std::uint8_t> XClient::picture(const Frame& place) {
  const auto reply = connection_.reply(
      xcb_get_image_reply, xcb_get_image(c_, XCB_IMAGE_FORMAT_Z_PIXMAP, root(), static_cast<std::int16_t>(place.x),
                                         static_cast<std::int16_t>(place.y), static_cast<std::uint16_t>(place.width),
                                         static_cast<std::uint16_t>(place.height), ~std::uint32_t{}));
  if (!reply) return {};
  const std::uint8_t* bytes = xcb_get_image_data(reply.get());
  return {bytes, bytes + xcb_get_image_data_length(reply.get())};
}

bool XClient::fits(Window window, const Frame& wanted) {
  const auto now = frame(window);
  if (!now || now->x != wanted.x || now->y != wanted.y) return false;
  const auto hints = property(window, "WM_NORMAL_HINTS");
  constexpr std::size_t horizontal = 9;
  constexpr std::size_t vertical = 10;
  constexpr std::uint32_t hasIncrements = 1U << 6U;
  const bool incremental = hints.size() > vertical && (hints[0] & hasIncrements) != 0;
  const auto near = [&](int size, int limit, std::size_t which) {
    const int increment = incremental ? std::max(1, static_cast<int>(hints[which])) : 1;
    return size <= limit && size > limit - increment;
  };
  return near(now->width, wanted.width, horizontal) && near(now->height, wanted.height, vertical);
}

bool XClient::isIconic(Window window) {
  const auto state = property(window, "WM_STATE");
  return !state.empty() && state[0] == 3;
}

bool XClient::hasState(Window window, const std::string& name) {
  const auto states = property(window, "_NET_WM_STATE");
  return std::find(states.begin(), states.end(), connection_.atom(name)) != states.end();
}

bool XClient::drawsOwnTitleBar(Window window) {
  const auto hints = property(window, "_MOTIF_WM_HINTS");  // flags, functions, decorations, …
  constexpr std::uint32_t hasDecorations = 2;
  return hints.size() >= 3 && (hints[0] & hasDecorations) != 0 && hints[2] == 0;
}

bool XClient::isMaximised(Window window) {
  return hasState(window, "_NET_WM_STATE_MAXIMIZED_HORZ") || hasState(window, "_NET_WM_STATE_MAXIMIZED_VERT");
}

Window XClient::topLevel(Window window) {
  for (;;) {
    const auto reply = connection_.reply(xcb_query_tree_reply, xcb_query_tree(c_, window));
    if (!reply) return XCB_NONE;
    if (reply->parent == root()) return window;
    window = reply->parent;
  }
}

Window XClient::primarySelectionOwner() {
  const auto reply = connection_.reply(xcb_get_selection_owner_reply, xcb_get_selection_owner(c_, XCB_ATOM_PRIMARY));
  return reply ? reply->owner : Window{XCB_NONE};
}

Window XClient::embeddedWindow(Window within) {
  for (const Window child : children(within)) {
    const auto shown = attributes(child);
    if (!shown || shown->map_state != XCB_MAP_STATE_VIEWABLE) continue;
    // Some toolkits tell it of every window: those that no tray has taken belong to the root or the window manager.
    const bool isEmbedded = within != root() && property(child, "WM_STATE").empty();
    if (isEmbedded && !property(child, "_XEMBED_INFO").empty()) return child;
    if (const Window deeper = embeddedWindow(child)) return deeper;
  }
  return XCB_NONE;
}

std::optional<Frame> XClient::trayIcon() {
  const Window icon = embeddedWindow(root());
  return icon ? rectangle(icon) : std::nullopt;
}

void XClient::sendToRoot(Window window, const std::string& type, const std::vector<std::uint32_t>& data) {
  xcb_client_message_event_t event{};
  event.response_type = XCB_CLIENT_MESSAGE;
  event.format = 32;
  event.window = window;
  event.type = connection_.atom(type);
  std::copy(data.begin(), data.end(), event.data.data32);
  xcb_send_event(c_, 0, root(), XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                 reinterpret_cast<const char*>(&event));
  connection_.flush();
}

void XClient::setResources(const std::string& text) {
  xcb_change_property(c_, XCB_PROP_MODE_REPLACE, root(), connection_.atom("RESOURCE_MANAGER"), XCB_ATOM_STRING, 8,
                      static_cast<std::uint32_t>(text.size()), text.data());
  connection_.synchronise();
}

void XClient::moveResize(Window window, const Frame& wanted) {
  const auto now = frame(window);
  const auto client = rectangle(window);
  if (!now || !client) return;
  // Gravity north-west, all four values present: the message's position is the frame's, its size the client's.
  constexpr std::uint32_t flags = 1U | 0xfU << 8U | fromPager << 12U;
  const auto left = std::max(0, now->x - client->x);  // shadow
  const auto top = std::max(0, now->y - client->y);
  sendToRoot(window, "_NET_MOVERESIZE_WINDOW",
             {flags, static_cast<std::uint32_t>(wanted.x - left), static_cast<std::uint32_t>(wanted.y - top),
              static_cast<std::uint32_t>(wanted.width - (now->width - client->width)),
              static_cast<std::uint32_t>(wanted.height - (now->height - client->height))});
}

void XClient::activate(Window window) { sendToRoot(window, "_NET_ACTIVE_WINDOW", {fromPager, XCB_CURRENT_TIME, 0}); }

void XClient::close(Window window) { sendToRoot(window, "_NET_CLOSE_WINDOW", {XCB_CURRENT_TIME, fromPager}); }

void XClient::setState(Window window, const std::vector<std::string>& names, bool on) {
  const xcb_atom_t second = names.size() > 1 ? connection_.atom(names[1]) : xcb_atom_t{XCB_ATOM_NONE};
  sendToRoot(window, "_NET_WM_STATE", {on, connection_.atom(names[0]), second, fromPager});
}

void XClient::click(Point point, int number) {
  movePointer(point);
  hands_.click(number);
}

void XClient::doubleClick(Point point) {
  movePointer(point);
  hands_.doubleClick();
}

void XClient::drag(const std::vector<Point>& path) {
  movePointer(path.front());
  press();
  for (const Point point : path) movePointer(point);
  release();
}

bool XClient::isOn(Key lock) {
  const auto reply = connection_.reply(xcb_query_pointer_reply, xcb_query_pointer(c_, root()));
  const auto mask = lock == Key::CapsLock ? XCB_KEY_BUT_MASK_LOCK : XCB_KEY_BUT_MASK_MOD_2;
  return reply && (reply->mask & mask) != 0;
}

bool XClient::isButtonGrabbed() {
  // Nobody else can grab between the two requests, or this question would be what fails them.
  xcb_grab_server(c_);
  const auto attempt = xcb_grab_button_checked(c_, 0, root(), XCB_EVENT_MASK_BUTTON_PRESS, XCB_GRAB_MODE_ASYNC,
                                               XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, XCB_BUTTON_INDEX_1, 0);
  xcb_ungrab_button(c_, XCB_BUTTON_INDEX_1, root(), 0);
  xcb_ungrab_server(c_);
  return connection_.check(attempt) != nullptr;
}

bool XClient::isPointerFree() {
  const auto cookie = xcb_grab_pointer(c_, 0, root(), 0, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE,
                                       XCB_CURRENT_TIME);
  const auto reply = connection_.reply(xcb_grab_pointer_reply, cookie);
  if (!reply || reply->status != XCB_GRAB_STATUS_SUCCESS) return false;
  xcb_ungrab_pointer(c_, XCB_CURRENT_TIME);
  connection_.flush();
  return true;
}

}  // namespace desktoptest
