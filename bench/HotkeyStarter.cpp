// What a hotkey daemon does. Usage: KEYCODE COMMAND ARGUMENT...: starts the command at each press of the key.
#include <spawn.h>
#include <sys/wait.h>
#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>

int main(int argc, char** argv) {
  xcb_connection_t* const connection = xcb_connect(nullptr, nullptr);
  if (argc < 3 || xcb_connection_has_error(connection) != 0) return 1;
  const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
  xcb_grab_key(connection, 0, root, XCB_MOD_MASK_ANY, static_cast<xcb_keycode_t>(std::atoi(argv[1])),
               XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
  xcb_flush(connection);
  struct Free {
    void operator()(void* memory) const { std::free(memory); }
  };
  while (const std::unique_ptr<xcb_generic_event_t, Free> event{xcb_wait_for_event(connection)}) {
    if ((event->response_type & 0x7f) != XCB_KEY_PRESS) continue;
    pid_t child = 0;
    if (posix_spawnp(&child, argv[2], nullptr, nullptr, argv + 2, environ) == 0) waitpid(child, nullptr, 0);
  }
  xcb_disconnect(connection);
}
