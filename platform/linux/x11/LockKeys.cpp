#include "platform/linux/x11/LockKeys.h"

#include <xkbcommon/xkbcommon-x11.h>

#include <array>

#include "platform/linux/XkbProtocol.h"

namespace x11 {
namespace {

constexpr std::uint32_t realModifiers = 0xff;
constexpr std::uint16_t keyboardChanges = XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
constexpr std::uint16_t everyPart = 0xff;

}  // namespace

LockKeys::LockKeys(const Connection& connection) : connection_(connection) {
  xcb_connection_t* const server = connection.get();
  if (xkb_x11_setup_xkb_extension(server, XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
                                  XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, &firstEvent_, nullptr) == 0) {
    return;
  }
  const std::unique_ptr<xkb_context, Release> context(xkb_context_new(XKB_CONTEXT_NO_DEFAULT_INCLUDES));
  keyboard_ = xkb_x11_get_core_keyboard_device_id(server);
  if (!context || keyboard_ < 0) return;
  // Who has once used the extension is told of changes by it, or not at all.
  xcb_xkb_select_events_aux(server, static_cast<xcb_xkb_device_spec_t>(keyboard_), keyboardChanges, 0, keyboardChanges,
                            everyPart, everyPart, nullptr);
  keymap_.reset(xkb_x11_keymap_new_from_device(context.get(), server, keyboard_, XKB_KEYMAP_COMPILE_NO_FLAGS));
  if (!keymap_) return;
  xkb_keymap_key_for_each(
      keymap_.get(), [](xkb_keymap*, xkb_keycode_t key, void* self) { static_cast<LockKeys*>(self)->tryKey(key); },
      this);
  locked_ &= static_cast<std::uint16_t>(~(XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_CONTROL));
}

bool LockKeys::areChangedBy(const xcb_generic_event_t& event) const {
  return keymap_ && (event.response_type & 0x7f) == firstEvent_ &&
         (event.pad0 == XCB_XKB_NEW_KEYBOARD_NOTIFY || event.pad0 == XCB_XKB_MAP_NOTIFY);
}

void LockKeys::tryKey(xkb_keycode_t key) {
  const auto layouts = xkb_keymap_num_layouts_for_key(keymap_.get(), key);
  for (xkb_layout_index_t layout = 0; layout < layouts; ++layout) {
    const auto levels = xkb_keymap_num_levels_for_key(keymap_.get(), key, layout);
    for (xkb_level_index_t level = 0; level < levels; ++level) {
      std::array<xkb_mod_mask_t, 1> ways{};
      if (xkb_keymap_key_get_mods_for_level(keymap_.get(), key, layout, level, ways.data(), ways.size()) > 0) {
        tryKey(key, layout, ways[0]);
      }
    }
  }
}

/// What stays on after a key has been let go is a lock, whatever the key is called.
void LockKeys::tryKey(xkb_keycode_t key, xkb_layout_index_t layout, xkb_mod_mask_t levelModifiers) {
  const std::unique_ptr<xkb_state, Release> state(xkb_state_new(keymap_.get()));
  if (!state) return;
  const auto read = [&state](xkb_state_component component) {
    return static_cast<std::uint16_t>(xkb_state_serialize_mods(state.get(), component) & realModifiers);
  };
  xkb_state_update_mask(state.get(), levelModifiers, 0, 0, 0, 0, layout);
  const std::uint16_t before = read(XKB_STATE_MODS_DEPRESSED);
  xkb_state_update_key(state.get(), key, XKB_KEY_DOWN);
  const auto depressed = static_cast<std::uint16_t>(read(XKB_STATE_MODS_DEPRESSED) & ~before);
  xkb_state_update_key(state.get(), key, XKB_KEY_UP);
  const std::uint16_t locked = read(XKB_STATE_MODS_LOCKED);
  locked_ |= locked;
  held_ |= static_cast<std::uint16_t>(depressed & ~locked);
}

bool LockKeys::isHeld(std::uint16_t state) const {
  const auto unclear = static_cast<std::uint16_t>(state & locked_ & held_);
  if (unclear == 0) return false;
  const std::unique_ptr<xkb_state, Release> now(
      xkb_x11_state_new_from_device(keymap_.get(), connection_.get(), keyboard_));
  return now && (xkb_state_serialize_mods(now.get(), XKB_STATE_MODS_DEPRESSED) & unclear) != 0;
}

}  // namespace x11
