#include "platform/linux/x11/TitleBars/IdleTime.h"

#include <string_view>

namespace x11 {

namespace {

// The core pointer and the core keyboard, through which all devices speak, have had these numbers in every server.
constexpr std::string_view pointerCounter = "DEVICEIDLETIME 2";
constexpr std::string_view keyboardCounter = "DEVICEIDLETIME 3";

/// The library looks for the name behind the padded structure; on the wire there is no padding.
std::string_view nameOf(const xcb_sync_systemcounter_t& counter) {
  constexpr std::size_t nameOffset = 14;
  return {reinterpret_cast<const char*>(&counter) + nameOffset, counter.name_len};
}

std::chrono::milliseconds millisecondsOf(const xcb_sync_int64_t& value) {
  return std::chrono::milliseconds((static_cast<std::int64_t>(value.hi) << 32) + value.lo);
}

}  // namespace

IdleTime::IdleTime(const Connection& connection) : connection_(connection) {
  const auto* extension = xcb_get_extension_data(connection.get(), &xcb_sync_id);
  if (extension == nullptr || extension->present == 0) return;
  connection.reply(xcb_sync_initialize_reply, xcb_sync_initialize(connection.get(), 3, 1));
  const auto list =
      connection.reply(xcb_sync_list_system_counters_reply, xcb_sync_list_system_counters(connection.get()));
  if (!list) return;
  for (auto counters = xcb_sync_list_system_counters_counters_iterator(list.get()); counters.rem > 0;
       xcb_sync_systemcounter_next(&counters)) {
    if (nameOf(*counters.data) == pointerCounter) pointer_ = counters.data->counter;
    if (nameOf(*counters.data) == keyboardCounter) keyboard_ = counters.data->counter;
  }
}

std::optional<IdleTime::Answer> IdleTime::ask() const {
  if (pointer_ == XCB_NONE || keyboard_ == XCB_NONE) return std::nullopt;
  const auto pointerCookie = xcb_sync_query_counter(connection_.get(), pointer_);
  const auto keyboardCookie = xcb_sync_query_counter(connection_.get(), keyboard_);
  const auto pointer = connection_.reply(xcb_sync_query_counter_reply, pointerCookie);
  const auto keyboard = connection_.reply(xcb_sync_query_counter_reply, keyboardCookie);
  if (!pointer || !keyboard) return std::nullopt;
  return Answer{millisecondsOf(pointer->counter_value), millisecondsOf(keyboard->counter_value)};
}

}  // namespace x11
