#include "platform/linux/x11/Connection.h"

#include <csignal>

namespace x11 {
namespace {

/// The library writes to a server that has just gone like to any other, and so does the toolkit's connection. Handled
/// instead of ignored, since a program that we start inherits what is ignored, but not a handler.
void surviveLostPeers() {
  [[maybe_unused]] static const auto earlier = std::signal(SIGPIPE, [](int) {});
}

}  // namespace

std::unique_ptr<Connection> Connection::open(const std::string& displayName) {
  surviveLostPeers();
  int screenNumber = 0;
  xcb_connection_t* connection = xcb_connect(displayName.empty() ? nullptr : displayName.c_str(), &screenNumber);
  if (xcb_connection_has_error(connection) == 0) {
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (; screens.rem > 0; xcb_screen_next(&screens), --screenNumber) {
      if (screenNumber == 0) return std::unique_ptr<Connection>(new Connection(connection, screens.data));
    }
  }
  xcb_disconnect(connection);  // a failed connection must be released too
  return nullptr;
}

Connection::~Connection() { xcb_disconnect(connection_); }

void Connection::synchronise() const { reply(xcb_get_input_focus_reply, xcb_get_input_focus(connection_)); }

bool Connection::has(xcb_extension_t& extension) const {
  const auto* const known = xcb_get_extension_data(connection_, &extension);
  return known != nullptr && known->present != 0;
}

xcb_atom_t Connection::atom(std::string_view name) {
  const ns::LockGuard guard(atomsLock_);
  if (const auto found = atoms_.find(name); found != atoms_.end()) return found->second;
  const auto answer = reply(xcb_intern_atom_reply,
                            xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.data()));
  if (!answer) return XCB_ATOM_NONE;
  return atoms_.emplace(name, answer->atom).first->second;
}

}  // namespace x11
