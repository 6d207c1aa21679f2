// Reading window properties.
#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <string>
#include <vector>

#include "platform/linux/x11/Connection.h"

namespace x11 {

using PropertyReply = Reply<xcb_get_property_reply_t>;

/// Asks for a property of whatever type, at most `words` of 32 bits.
xcb_get_property_cookie_t requestProperty(const Connection& connection, xcb_window_t window, xcb_atom_t property,
                                          std::uint32_t words = 64);
/// Null when the window is gone.
PropertyReply receiveProperty(const Connection& connection, xcb_get_property_cookie_t cookie);

/// The 32-bit items of a property; empty when it is missing or of another format.
std::vector<std::uint32_t> propertyItems(const PropertyReply& reply);
/// Asks for a property of any length and waits for its 32-bit items.
std::vector<std::uint32_t> readItems(const Connection& connection, xcb_window_t window, xcb_atom_t property);
/// The bytes of a property; empty when it is missing or of another format.
std::string propertyText(const PropertyReply& reply);

}  // namespace x11
