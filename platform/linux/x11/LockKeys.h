// Which modifiers are lock keys.
#pragma once

#include <xkbcommon/xkbcommon.h>

#include <cstdint>
#include <memory>

#include "platform/linux/x11/Connection.h"

namespace x11 {

/// The lock keys in the keyboard mapping as it was at construction, which asks the server for it, and has it tell of
/// changes. Without the XKB extension only Caps Lock is known, and clicks with any other lock on go past the tap.
class LockKeys {
 public:
  explicit LockKeys(const Connection& connection);

  /// Whether an event of the connection says that these may be others now.
  bool areChangedBy(const xcb_generic_event_t& event) const;
  /// What they leave on, as bits of an event's state; never Shift or Control.
  std::uint16_t modifiers() const { return locked_; }
  /// Whether one of these modifiers in `state` is on, now, because a key is held: AltGr sets the same one as the lock
  /// for its level does. Asks the server only about those with two such keys.
  bool isHeld(std::uint16_t state) const;

 private:
  struct Release {
    void operator()(xkb_context* context) const { xkb_context_unref(context); }
    void operator()(xkb_keymap* keymap) const { xkb_keymap_unref(keymap); }
    void operator()(xkb_state* state) const { xkb_state_unref(state); }
  };

  void tryKey(xkb_keycode_t key);
  void tryKey(xkb_keycode_t key, xkb_layout_index_t layout, xkb_mod_mask_t levelModifiers);

  const Connection& connection_;
  std::uint8_t firstEvent_ = 0;
  std::int32_t keyboard_ = -1;
  std::unique_ptr<xkb_keymap, Release> keymap_;
  std::uint16_t locked_ = XCB_MOD_MASK_LOCK;
  std::uint16_t held_ = 0;
};

}  // namespace x11
