#include "platform/linux/qt/ClickEvents.h"

// The protocol's header has a member of that name.
#if defined(__clang__)
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wkeyword-macro"
#endif
#define explicit isExplicit  // NOLINT
#include <xcb/xkb.h>
#undef explicit
#if defined(__clang__)
#pragma clang diagnostic pop
#endif

#include <QGuiApplication>
#include <cstdlib>
#include <memory>

namespace qt {
namespace {

/// The toolkit asks for all of the keyboard's state and the mouse buttons come with that, though it uses none but the
/// modifiers: an event at each press and release and each turn of the wheel, wherever.
void ignoreButtonStates(xcb_connection_t* connection) {
  xcb_xkb_select_events_details_t details{};
  details.affectState = XCB_XKB_STATE_PART_POINTER_BUTTONS;
  details.stateDetails = 0;
  xcb_xkb_select_events_aux(connection, XCB_XKB_ID_USE_CORE_KBD, XCB_XKB_EVENT_TYPE_STATE_NOTIFY, 0, 0, 0, 0, &details);
}

/// The toolkit asks for crossings of the root window and drops them. Our own grab makes two at each press.
void ignoreCrossings(xcb_connection_t* connection, xcb_window_t root) {
  struct Free {
    void operator()(void* memory) const { std::free(memory); }
  };
  const std::unique_ptr<xcb_get_window_attributes_reply_t, Free> attributes{
      xcb_get_window_attributes_reply(connection, xcb_get_window_attributes(connection, root), nullptr)};
  if (!attributes) return;
  constexpr std::uint32_t crossings = XCB_EVENT_MASK_ENTER_WINDOW | XCB_EVENT_MASK_LEAVE_WINDOW;
  const std::uint32_t mask = attributes->your_event_mask & ~crossings;
  xcb_change_window_attributes(connection, root, XCB_CW_EVENT_MASK, &mask);
}

}  // namespace

void ignoreClicksElsewhere() {
  const auto* platform = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  // Off screen the toolkit answers with an application without a connection.
  xcb_connection_t* const connection = platform != nullptr ? platform->connection() : nullptr;
  if (connection == nullptr) return;
  ignoreButtonStates(connection);
  for (auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection)); screens.rem > 0; xcb_screen_next(&screens)) {
    ignoreCrossings(connection, screens.data->root);
  }
  xcb_flush(connection);
}

}  // namespace qt
