#include "platform/linux/x11/Properties.h"

#include <cstddef>

namespace x11 {

xcb_get_property_cookie_t requestProperty(const Connection& connection, xcb_window_t window, xcb_atom_t property,
                                          std::uint32_t words) {
  return xcb_get_property(connection.get(), 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, words);
}

PropertyReply receiveProperty(const Connection& connection, xcb_get_property_cookie_t cookie) {
  return connection.reply(xcb_get_property_reply, cookie);
}

std::vector<std::uint32_t> propertyItems(const PropertyReply& reply) {
  if (!reply || reply->format != 32) return {};
  const auto* items = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
  return {items, items + static_cast<std::size_t>(xcb_get_property_value_length(reply.get())) / sizeof(std::uint32_t)};
}

std::vector<std::uint32_t> readItems(const Connection& connection, xcb_window_t window, xcb_atom_t property) {
  constexpr std::uint32_t unlimited = 1U << 20;
  return propertyItems(receiveProperty(connection, requestProperty(connection, window, property, unlimited)));
}

std::string propertyText(const PropertyReply& reply) {
  if (!reply || reply->format != 8) return {};
  return {static_cast<const char*>(xcb_get_property_value(reply.get())),
          static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

}  // namespace x11
