// A connection to the X server and owners for what it hands out.
#pragma once

#include <xcb/xcb.h>

#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "platform/Lock.h"

namespace x11 {

struct Free {
  void operator()(void* memory) const { std::free(memory); }
};
/// A reply, event or error of the server; null when there is none.
template <typename T>
using Reply = std::unique_ptr<T, Free>;
using Event = Reply<xcb_generic_event_t>;

/// Owns one connection. The library locks it, so every member may be called on any thread; events, however, should be
/// taken by one thread only.
class Connection {
 public:
  /// Connects to the display of that name, or to $DISPLAY. Null when there is no such server. From the first call on
  /// nothing that this process writes to a peer that has gone ends it.
  static std::unique_ptr<Connection> open(const std::string& displayName = {});
  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  xcb_connection_t* get() const { return connection_; }
  const xcb_screen_t& screen() const { return *screen_; }
  xcb_window_t root() const { return screen_->root; }
  int fileDescriptor() const { return xcb_get_file_descriptor(connection_); }
  /// True once the server has gone or has thrown us out; nothing sent afterwards has any effect.
  bool isBroken() const { return xcb_connection_has_error(connection_) != 0; }
  void flush() const { xcb_flush(connection_); }
  /// Whether the server has this extension; to be asked before a request of it is sent, as the library gives the whole
  /// connection up over one that the server does not know. Waits for the server the first time.
  bool has(xcb_extension_t& extension) const;

  /// The next event if one has arrived, also reading the socket; null otherwise.
  Event pollEvent() const { return Event(xcb_poll_for_event(connection_)); }
  /// Waits for the reply to `cookie`; null when the request failed, as it does when its window has vanished.
  /// Use: auto tree = connection.reply(xcb_query_tree_reply, xcb_query_tree(connection.get(), window));
  template <typename T, typename Cookie>
  Reply<T> reply(T* (*read)(xcb_connection_t*, Cookie, xcb_generic_error_t**), Cookie cookie) const {
    return Reply<T>(read(connection_, cookie, nullptr));
  }
  /// Waits until the server has executed a checked request; null when it succeeded.
  Reply<xcb_generic_error_t> check(xcb_void_cookie_t cookie) const {
    return Reply<xcb_generic_error_t>(xcb_request_check(connection_, cookie));
  }
  /// Waits until the server has executed everything sent so far.
  void synchronise() const;

  /// The atom of that name, asked for once; XCB_ATOM_NONE when the connection is broken.
  xcb_atom_t atom(std::string_view name);

 private:
  Connection(xcb_connection_t* connection, const xcb_screen_t* screen) : connection_(connection), screen_(screen) {}

  xcb_connection_t* const connection_;
  const xcb_screen_t* const screen_;
  ns::Lock atomsLock_;
  std::map<std::string, xcb_atom_t, std::less<>> atoms_ GUARDED_BY(atomsLock_);
};

}  // namespace x11
