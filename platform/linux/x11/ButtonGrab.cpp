#include "platform/linux/x11/ButtonGrab.h"

namespace x11 {
namespace {

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
  for (const auto modifiers : subsets(result->lockKeys_->modifiers())) {
    if (!result->grab(modifiers)) return nullptr;
  }
  return connection.isBroken() ? nullptr : std::move(result);
}

ButtonGrab::ButtonGrab(Connection& connection)
    : connection_(connection), lockKeys_(std::make_unique<LockKeys>(connection)) {}

ButtonGrab::~ButtonGrab() {
  for (const auto modifiers : modifiers_) {
    xcb_ungrab_button(connection_.get(), XCB_BUTTON_INDEX_1, connection_.root(), modifiers);
  }
  connection_.synchronise();
}

void ButtonGrab::follow(const xcb_generic_event_t& event) {
  if (!lockKeys_->areChangedBy(event)) return;
  lockKeys_ = std::make_unique<LockKeys>(connection_);
  const auto wanted = subsets(lockKeys_->modifiers());
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
