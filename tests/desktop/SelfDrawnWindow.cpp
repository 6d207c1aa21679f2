// A program that draws its own title bar and tells nobody where its buttons are: squares of 30 pixels in the upper
// right corner, from the right close, zoom and minimise, which act on release. Says "press X Y" for each press that
// reaches it, in pixels from its upper left corner. With the argument "chromium" it passes for that program, otherwise
// with one it is badly behaved:
//   moving    minimise is at the other corner at every other press
//   late      buttons act one and a half seconds after the release
//   menu      minimise opens a menu, whose entry under the pointer minimises
//   keyboard  no button does anything, but the key M minimises
#include <poll.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace {

using Clock = std::chrono::steady_clock;

enum class Action { Minimise, Zoom, Close };

class SelfDrawnWindow {
 public:
  explicit SelfDrawnWindow(std::string_view mode) : mode_(mode) {
    screen_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
    window_ = create(0, 0, width_, 340, false);
    const std::uint32_t undecorated[] = {2, 0, 0, 0, 0};
    set("_MOTIF_WM_HINTS", atom("_MOTIF_WM_HINTS"), 32, 5, undecorated);
    const bool isChromium = mode_ == "chromium";
    const std::string_view name(isChromium ? "chromium\0Chromium" : "self-drawn\0SelfDrawn", isChromium ? 18 : 21);
    set("WM_CLASS", XCB_ATOM_STRING, 8, name.size(), name.data());
    const std::uint32_t shadow[] = {4, 4, 0, 4};
    if (isChromium) set("_GTK_FRAME_EXTENTS", XCB_ATOM_CARDINAL, 32, 4, shadow);
    xcb_map_window(connection_, window_);
    xcb_flush(connection_);
  }

  void run() {
    for (;;) {
      while (std::unique_ptr<xcb_generic_event_t, void (*)(void*)> event{xcb_poll_for_event(connection_), std::free}) {
        handle(*event);
      }
      if (xcb_connection_has_error(connection_) != 0) return;
      if (due_ && Clock::now() >= *due_) {
        due_.reset();
        act(late_);
      }
      xcb_flush(connection_);
      if (isClosed_) return;
      pollfd source{xcb_get_file_descriptor(connection_), POLLIN, 0};
      poll(&source, 1, due_ ? 20 : -1);
    }
  }

 private:
  xcb_atom_t atom(std::string_view name) {
    const auto cookie = xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const std::unique_ptr<xcb_intern_atom_reply_t, void (*)(void*)> reply{
        xcb_intern_atom_reply(connection_, cookie, nullptr), std::free};
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
  }

  void set(std::string_view name, xcb_atom_t type, std::uint8_t format, std::size_t count, const void* data) {
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window_, atom(name), type, format,
                        static_cast<std::uint32_t>(count), data);
  }

  xcb_window_t create(int x, int y, int width, int height, bool isMenu) {
    const xcb_window_t window = xcb_generate_id(connection_);
    const std::uint32_t values[] = {screen_->white_pixel, isMenu ? 1U : 0U,
                                    XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE |
                                        XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_STRUCTURE_NOTIFY};
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window, screen_->root, static_cast<std::int16_t>(x),
                      static_cast<std::int16_t>(y), static_cast<std::uint16_t>(width),
                      static_cast<std::uint16_t>(height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
    return window;
  }

  std::optional<Action> actionAt(int x, int y) const {
    constexpr int side = 30;
    if (mode_ == "keyboard" || y < 0 || y >= side || x < 0 || x >= width_) return std::nullopt;
    const bool isMinimiseLeft = mode_ == "moving" && presses_ % 2 == 1;
    if (isMinimiseLeft) return x < side ? std::optional(Action::Minimise) : std::nullopt;
    switch ((width_ - 1 - x) / side) {
      case 0:
        return Action::Close;
      case 1:
        return Action::Zoom;
      case 2:
        return Action::Minimise;
      default:
        return std::nullopt;
    }
  }

  void handle(const xcb_generic_event_t& event) {
    switch (event.response_type & 0x7f) {
      case XCB_CONFIGURE_NOTIFY: {
        const auto& configure = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
        if (configure.window == window_) width_ = configure.width;
        break;
      }
      case XCB_BUTTON_PRESS: {
        const auto& press = reinterpret_cast<const xcb_button_press_event_t&>(event);
        if (press.detail != 1) break;
        if (menu_ != XCB_WINDOW_NONE) {
          xcb_ungrab_pointer(connection_, XCB_CURRENT_TIME);
          xcb_destroy_window(connection_, std::exchange(menu_, XCB_WINDOW_NONE));
          act(Action::Minimise);
          break;
        }
        std::cout << "press " << press.event_x << ' ' << press.event_y << std::endl;
        pressed_ = actionAt(press.event_x, press.event_y);
        ++presses_;
        break;
      }
      case XCB_BUTTON_RELEASE: {
        const auto& release = reinterpret_cast<const xcb_button_release_event_t&>(event);
        const auto action = std::exchange(pressed_, std::nullopt);
        if (release.detail != 1 || !action) break;
        if (mode_ == "late") {
          due_ = Clock::now() + std::chrono::milliseconds(1500);
          late_ = *action;
        } else if (mode_ == "menu" && action == Action::Minimise) {
          openMenu(release.root_x, release.root_y);
        } else {
          act(*action);
        }
        break;
      }
      case XCB_KEY_PRESS:
        act(Action::Minimise);
        break;
      default:
        break;
    }
  }

  void openMenu(int x, int y) {
    menu_ = create(x - 20, y - 10, 120, 60, true);
    xcb_map_window(connection_, menu_);
    xcb_grab_pointer(connection_, 0, menu_, XCB_EVENT_MASK_BUTTON_PRESS, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC,
                     XCB_WINDOW_NONE, XCB_CURSOR_NONE, XCB_CURRENT_TIME);
  }

  void send(const char* type, std::initializer_list<std::uint32_t> data) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window_;
    message.type = atom(type);
    std::copy(data.begin(), data.end(), message.data.data32);
    xcb_send_event(connection_, 0, screen_->root,
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&message));
  }

  void act(Action action) {
    constexpr std::uint32_t iconic = 3;
    constexpr std::uint32_t toggle = 2;
    switch (action) {
      case Action::Minimise:
        send("WM_CHANGE_STATE", {iconic});
        break;
      case Action::Zoom:
        send("_NET_WM_STATE", {toggle, atom("_NET_WM_STATE_MAXIMIZED_HORZ"), atom("_NET_WM_STATE_MAXIMIZED_VERT"), 1});
        break;
      case Action::Close:
        isClosed_ = true;
        break;
    }
  }

  const std::string_view mode_;
  xcb_connection_t* const connection_ = xcb_connect(nullptr, nullptr);
  xcb_screen_t* screen_ = nullptr;
  xcb_window_t window_ = XCB_WINDOW_NONE;
  xcb_window_t menu_ = XCB_WINDOW_NONE;
  int width_ = 500;
  int presses_ = 0;
  std::optional<Action> pressed_;
  std::optional<Clock::time_point> due_;
  Action late_{};
  bool isClosed_ = false;
};

}  // namespace

int main(int argc, char* argv[]) { SelfDrawnWindow(argc > 1 ? argv[1] : "").run(); }
