// The least that a click filter on X11 can do: hold every plain left press and let it go at once, deciding nothing.
// What Ostrel adds to a click is measured against it.
#include <xcb/xcb.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

int main() {
  xcb_connection_t* const connection = xcb_connect(nullptr, nullptr);
  if (xcb_connection_has_error(connection) != 0) return 1;
  const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
  xcb_grab_button(connection, 0, root, XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE, XCB_GRAB_MODE_SYNC,
                  XCB_GRAB_MODE_ASYNC, XCB_WINDOW_NONE, XCB_CURSOR_NONE, XCB_BUTTON_INDEX_1, 0);
  std::free(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
  std::puts("ready");  // the grab is in place
  std::fflush(stdout);
  struct Free {
    void operator()(void* memory) const { std::free(memory); }
  };
  while (const std::unique_ptr<xcb_generic_event_t, Free> event{xcb_wait_for_event(connection)}) {
    if ((event->response_type & 0x7f) != XCB_BUTTON_PRESS) continue;
    xcb_allow_events(connection, XCB_ALLOW_REPLAY_POINTER,
                     reinterpret_cast<const xcb_button_press_event_t&>(*event).time);
    xcb_flush(connection);
  }
  xcb_disconnect(connection);
}
