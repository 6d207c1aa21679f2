#include "platform/linux/x11/ButtonGrab.h"

#include <algorithm>
#include <iterator>
#include <span>

namespace x11 {
namespace {

constexpr std::uint32_t lockKeys[] = {0xff7f, 0xff14};  // XK_Num_Lock, XK_Scroll_Lock

/// The modifiers that mean a lock key and nothing else; which ones is up to the keyboard's mapping.
std::uint16_t lockModifiers(const Connection& connection) {
  const auto& setup = *xcb_get_setup(connection.get());
  const auto keyCount = static_cast<std::uint8_t>(setup.max_keycode - setup.min_keycode + 1);
  const auto modifierCookie = xcb_get_modifier_mapping(connection.get());
  const auto keyCookie = xcb_get_keyboard_mapping(connection.get(), setup.min_keycode, keyCount);
  const auto modifiers = connection.reply(xcb_get_modifier_mapping_reply, modifierCookie);
  const auto keys = connection.reply(xcb_get_keyboard_mapping_reply, keyCookie);
  std::uint16_t result = XCB_MOD_MASK_LOCK;
  if (!modifiers || !keys) return result;

  const std::span symbols(xcb_get_keyboard_mapping_keysyms(keys.get()),
                          static_cast<std::size_t>(xcb_get_keyboard_mapping_keysyms_length(keys.get())));
  const std::span codes(xcb_get_modifier_mapping_keycodes(modifiers.get()),
                        static_cast<std::size_t>(xcb_get_modifier_mapping_keycodes_length(modifiers.get())));
  for (std::size_t index = 0; index < codes.size(); ++index) {
    if (codes[index] < setup.min_keycode) continue;  // an unused place
    const auto first = static_cast<std::size_t>(codes[index] - setup.min_keycode) * keys->keysyms_per_keycode;
    const auto meanings = symbols.subspan(first, keys->keysyms_per_keycode);
    if (std::ranges::find_first_of(meanings, lockKeys) == meanings.end()) continue;
    result = static_cast<std::uint16_t>(result | (1U << (index / modifiers->keycodes_per_modifier)));
  }
  return result & static_cast<std::uint16_t>(~(XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_CONTROL));
}

std::set<std::uint16_t> subsets(std::uint16_t mask) {
  std::set<std::uint16_t> result{0};
  for (std::uint16_t subset = mask; subset != 0; subset = static_cast<std::uint16_t>((subset - 1) & mask)) {
    result.insert(subset);
  }
  return result;
}

}  // namespace

std::unique_ptr<ButtonGrab> ButtonGrab::acquire(Connection& connection) {
  std::unique_ptr<ButtonGrab> result(new ButtonGrab(connection));
  for (const auto modifiers : subsets(lockModifiers(connection))) {
    if (!result->grab(modifiers)) return nullptr;
  }
  return connection.isBroken() ? nullptr : std::move(result);
}

ButtonGrab::~ButtonGrab() {
  for (const auto modifiers : modifiers_) {
    xcb_ungrab_button(connection_.get(), XCB_BUTTON_INDEX_1, connection_.root(), modifiers);
  }
  connection_.synchronise();
}

void ButtonGrab::update() {
  const auto wanted = subsets(lockModifiers(connection_));
  for (const auto modifiers : wanted) {
    if (!modifiers_.contains(modifiers)) grab(modifiers);
  }
  std::erase_if(modifiers_, [&](std::uint16_t modifiers) {
    if (wanted.contains(modifiers)) return false;
    xcb_ungrab_button(connection_.get(), XCB_BUTTON_INDEX_1, connection_.root(), modifiers);
    return true;
  });
  connection_.flush();
}

bool ButtonGrab::grab(std::uint16_t modifiers) {
  const auto cookie = xcb_grab_button_checked(
      connection_.get(), 0, connection_.root(), XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE,
      XCB_GRAB_MODE_SYNC, XCB_GRAB_MODE_ASYNC, XCB_WINDOW_NONE, XCB_CURSOR_NONE, XCB_BUTTON_INDEX_1, modifiers);
  if (connection_.check(cookie)) return false;
  modifiers_.insert(modifiers);
  return true;
}

void replay(const Connection& connection, xcb_timestamp_t time) {
  xcb_allow_events(connection.get(), XCB_ALLOW_REPLAY_POINTER, time);
  connection.flush();
}

void swallow(const Connection& connection, xcb_timestamp_t time) {
  xcb_allow_events(connection.get(), XCB_ALLOW_ASYNC_POINTER, time);
  connection.flush();
}

}  // namespace x11
