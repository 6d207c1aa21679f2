#include "platform/linux/qt/ClickEvents.h"

#include <QGuiApplication>
#include <QWindow>

#include "platform/linux/XkbProtocol.h"
#include "platform/linux/qt/ToolkitConnection.h"

namespace qt {
namespace {

/// The toolkit asks for all of the keyboard's state and the mouse buttons come with that, though it uses none but the
/// modifiers: an event at each press and release and each turn of the wheel, wherever.
void ignoreButtonStates(xcb_connection_t* connection) {
  // Without the extension the toolkit has asked for nothing of it, either.
  const auto* const keyboard = xcb_get_extension_data(connection, &xcb_xkb_id);
  if (keyboard == nullptr || keyboard->present == 0) return;
  xcb_xkb_select_events_details_t details{};
  details.affectState = XCB_XKB_STATE_PART_POINTER_BUTTONS;
  details.stateDetails = 0;
  xcb_xkb_select_events_aux(connection, XCB_XKB_ID_USE_CORE_KBD, XCB_XKB_EVENT_TYPE_STATE_NOTIFY, 0, 0, 0, 0, &details);
}

/// Of the root window the toolkit asks for
/// - crossings, and drops them: our own grab makes two at each press;
/// - changes of properties, to know the work area: window managers write some at each click that raises a window. It
///   also waits for one of its own, without end, should it need the server's time to own the clipboard; so they are
///   wanted while a window of ours has the keyboard.
void selectRootEvents(xcb_connection_t* connection, bool withProperties) {
  const xcb_window_t root = rootWindow(connection);
  const auto attributes =
      owned(xcb_get_window_attributes_reply(connection, xcb_get_window_attributes(connection, root), nullptr));
  if (!attributes) return;
  const std::uint32_t crossings = XCB_EVENT_MASK_ENTER_WINDOW | XCB_EVENT_MASK_LEAVE_WINDOW;
  const std::uint32_t kept = attributes->your_event_mask & ~(crossings | XCB_EVENT_MASK_PROPERTY_CHANGE);
  const std::uint32_t mask = kept | (withProperties ? std::uint32_t{XCB_EVENT_MASK_PROPERTY_CHANGE} : 0U);
  xcb_change_window_attributes(connection, root, XCB_CW_EVENT_MASK, &mask);
  xcb_flush(connection);
}

}  // namespace

void ignoreClicksElsewhere() {
  xcb_connection_t* const connection = toolkitConnection();
  if (connection == nullptr) return;
  ignoreButtonStates(connection);
  selectRootEvents(connection, false);
  QObject::connect(qGuiApp, &QGuiApplication::focusWindowChanged, qGuiApp,
                   [connection](const QWindow* focused) { selectRootEvents(connection, focused != nullptr); });
}

}  // namespace qt
