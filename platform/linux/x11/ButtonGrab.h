// The grab of the left button that the event tap lives on.
#pragma once

#include <cstdint>
#include <memory>
#include <set>

#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/LockKeys.h"

namespace x11 {

/// A passive grab on the root window for left presses without a modifier key, whatever lock keys are on. Held until
/// destroyed. The server then freezes the pointer at each such press and waits for replay() or swallow().
///
/// With a modifier the server does not even tell us, so those clicks cost nothing. The right button is left alone too:
/// no click of it is ever acted on, and each would come 0.1 ms later, with a crossing event that its window sees.
class ButtonGrab {
 public:
  /// Null when another client holds such a grab, or the server is gone.
  static std::unique_ptr<ButtonGrab> acquire(Connection& connection);
  ~ButtonGrab();
  ButtonGrab(const ButtonGrab&) = delete;
  ButtonGrab& operator=(const ButtonGrab&) = delete;

  /// To be given every event of the connection: lock keys may get another modifier.
  void follow(const xcb_generic_event_t& event);
  /// Whether a press with this state has come although a modifier key is held, one that sets the same modifier as some
  /// lock key.
  bool isModifierHeld(std::uint16_t state) const { return lockKeys_->isHeld(state); }

 private:
  explicit ButtonGrab(Connection& connection);
  bool grab(std::uint16_t modifiers);

  Connection& connection_;
  std::unique_ptr<LockKeys> lockKeys_;
  std::set<std::uint16_t> modifiers_;
};

/// Lets the press go on to its window, as if nobody had looked. `time` is the press's own: an answer that comes late
/// is then ignored by the server. Any thread.
void replay(const Connection& connection, xcb_timestamp_t time);
/// Drops the press, and with it everything until the buttons are up. The grab goes on until the release: ending it at
/// once would send the motion and the release to whatever then lies under the pointer. Any thread.
void swallow(const Connection& connection, xcb_timestamp_t time);

}  // namespace x11
