#include "tests/desktop/XClient.h"

#include <poll.h>
#include <xcb/xtest.h>

#include <algorithm>
#include <cstdlib>
#include <ostream>
#include <stdexcept>

namespace desktoptest {

namespace {

struct Free {
  void operator()(void* memory) const { std::free(memory); }
};
template <class T>
std::unique_ptr<T, Free> owned(T* memory) {
  return std::unique_ptr<T, Free>(memory);
}

constexpr std::uint32_t fromPager = 2;

}  // namespace

std::ostream& operator<<(std::ostream& stream, const Frame& frame) {
  return stream << '(' << frame.x << ", " << frame.y << ", " << frame.width << ", " << frame.height << ')';
}

XClient::XClient(const std::string& display) : connection_(xcb_connect(display.c_str(), nullptr)) {
  auto* c = connection_.get();
  if (xcb_connection_has_error(c) != 0) throw std::runtime_error("cannot open display " + display);
  root_ = xcb_setup_roots_iterator(xcb_get_setup(c)).data->root;
  const std::uint32_t events =
      XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
  xcb_change_window_attributes(c, root_, XCB_CW_EVENT_MASK, &events);
}

bool XClient::waitUntil(const std::function<bool()>& condition, std::chrono::milliseconds bound) {
  const auto end = std::chrono::steady_clock::now() + bound;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) return false;
    pollfd readable{xcb_get_file_descriptor(connection_.get()), POLLIN, 0};
    poll(&readable, 1, 10);
    while (owned(xcb_poll_for_event(connection_.get()))) {
    }
    if (xcb_connection_has_error(connection_.get()) != 0) throw std::runtime_error("the X server is gone");
  }
  return true;
}

xcb_atom_t XClient::atom(const std::string& name) {
  auto* c = connection_.get();
  const auto cookie = xcb_intern_atom(c, 0, static_cast<std::uint16_t>(name.size()), name.c_str());
  const auto reply = owned(xcb_intern_atom_reply(c, cookie, nullptr));
  return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

std::vector<std::uint32_t> XClient::property(Window window, const std::string& name) {
  auto* c = connection_.get();
  const auto cookie = xcb_get_property(c, 0, window, atom(name), XCB_GET_PROPERTY_TYPE_ANY, 0, 4096);
  const auto reply = owned(xcb_get_property_reply(c, cookie, nullptr));
  if (!reply || reply->format != 32) return {};
  const auto* values = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
  return {values, values + reply->value_len};
}

std::vector<Window> XClient::clients() { return property(root_, "_NET_CLIENT_LIST"); }

std::vector<Window> XClient::children(Window window) {
  auto* c = connection_.get();
  const auto reply = owned(xcb_query_tree_reply(c, xcb_query_tree(c, window), nullptr));
  if (!reply) return {};
  const auto* first = xcb_query_tree_children(reply.get());
  return {first, first + reply->children_len};
}

std::optional<xcb_get_window_attributes_reply_t> XClient::attributes(Window window) {
  auto* c = connection_.get();
  const auto reply = owned(xcb_get_window_attributes_reply(c, xcb_get_window_attributes(c, window), nullptr));
  if (!reply) return std::nullopt;
  return *reply;
}

std::optional<Frame> XClient::rectangle(Window window) {
  auto* c = connection_.get();
  const auto geometry = owned(xcb_get_geometry_reply(c, xcb_get_geometry(c, window), nullptr));
  const auto origin =
      owned(xcb_translate_coordinates_reply(c, xcb_translate_coordinates(c, window, root_, 0, 0), nullptr));
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
  return std::find(states.begin(), states.end(), atom(name)) != states.end();
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
  auto* c = connection_.get();
  for (;;) {
    const auto reply = owned(xcb_query_tree_reply(c, xcb_query_tree(c, window), nullptr));
    if (!reply) return XCB_NONE;
    if (reply->parent == root_) return window;
    window = reply->parent;
  }
}

Window XClient::primarySelectionOwner() {
  auto* c = connection_.get();
  const auto reply = owned(xcb_get_selection_owner_reply(c, xcb_get_selection_owner(c, XCB_ATOM_PRIMARY), nullptr));
  return reply ? reply->owner : Window{XCB_NONE};
}

void XClient::sendToRoot(Window window, const std::string& type, const std::vector<std::uint32_t>& data) {
  xcb_client_message_event_t event{};
  event.response_type = XCB_CLIENT_MESSAGE;
  event.format = 32;
  event.window = window;
  event.type = atom(type);
  std::copy(data.begin(), data.end(), event.data.data32);
  xcb_send_event(connection_.get(), 0, root_, XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                 reinterpret_cast<const char*>(&event));
  xcb_flush(connection_.get());
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

void XClient::movePointer(Point point) {
  xcb_test_fake_input(connection_.get(), XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME, root_,
                      static_cast<std::int16_t>(point.x), static_cast<std::int16_t>(point.y), 0);
  xcb_flush(connection_.get());
}

void XClient::button(int number, bool down) {
  xcb_test_fake_input(connection_.get(), down ? XCB_BUTTON_PRESS : XCB_BUTTON_RELEASE,
                      static_cast<std::uint8_t>(number), XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
  xcb_flush(connection_.get());
}

void XClient::click(Point point, int number) {
  movePointer(point);
  button(number, true);
  button(number, false);
}

void XClient::drag(const std::vector<Point>& path) {
  movePointer(path.front());
  button(1, true);
  for (const Point point : path) movePointer(point);
  button(1, false);
}

xcb_keycode_t XClient::keycode(Key key) {
  auto* c = connection_.get();
  const auto* setup = xcb_get_setup(c);
  const auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
  const auto reply =
      owned(xcb_get_keyboard_mapping_reply(c, xcb_get_keyboard_mapping(c, setup->min_keycode, count), nullptr));
  if (!reply) throw std::runtime_error("no keyboard mapping");
  const auto* symbols = xcb_get_keyboard_mapping_keysyms(reply.get());
  const auto* end = symbols + xcb_get_keyboard_mapping_keysyms_length(reply.get());
  const auto* found = std::find(symbols, end, static_cast<xcb_keysym_t>(key));
  if (found == end) throw std::runtime_error("the keyboard has no such key");
  return static_cast<xcb_keycode_t>(setup->min_keycode + (found - symbols) / reply->keysyms_per_keycode);
}

void XClient::key(Key key, bool down) {
  xcb_test_fake_input(connection_.get(), down ? XCB_KEY_PRESS : XCB_KEY_RELEASE, keycode(key), XCB_CURRENT_TIME,
                      XCB_NONE, 0, 0, 0);
  xcb_flush(connection_.get());
}

void XClient::type(char letter) {
  key(static_cast<Key>(letter), true);
  key(static_cast<Key>(letter), false);
}

bool XClient::isOn(Key lock) {
  auto* c = connection_.get();
  const auto reply = owned(xcb_query_pointer_reply(c, xcb_query_pointer(c, root_), nullptr));
  const auto mask = lock == Key::CapsLock ? XCB_KEY_BUT_MASK_LOCK : XCB_KEY_BUT_MASK_MOD_2;
  return reply && (reply->mask & mask) != 0;
}

bool XClient::isButtonGrabbed() {
  auto* c = connection_.get();
  const auto cookie = xcb_grab_button_checked(c, 0, root_, XCB_EVENT_MASK_BUTTON_PRESS, XCB_GRAB_MODE_ASYNC,
                                              XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, XCB_BUTTON_INDEX_1, 0);
  const auto refused = owned(xcb_request_check(c, cookie));
  if (refused) return true;
  xcb_ungrab_button(c, XCB_BUTTON_INDEX_1, root_, 0);
  xcb_flush(c);
  return false;
}

bool XClient::isPointerFree() {
  auto* c = connection_.get();
  const auto cookie =
      xcb_grab_pointer(c, 0, root_, 0, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, XCB_CURRENT_TIME);
  const auto reply = owned(xcb_grab_pointer_reply(c, cookie, nullptr));
  if (!reply || reply->status != XCB_GRAB_STATUS_SUCCESS) return false;
  xcb_ungrab_pointer(c, XCB_CURRENT_TIME);
  xcb_flush(c);
  return true;
}

}  // namespace desktoptest
