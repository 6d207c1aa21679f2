// button_scan [normal|maximised|half...]: clicks its way along the title bar that the running window manager
// draws for a window of its own, and prints where each button begins and ends, in pixels from the nearest top corner of
// the visible frame. It is how the figures under platform/linux/x11/WindowManagers were measured. Ostrel must not run
// meanwhile.
#include <algorithm>
#include <functional>
#include <iostream>
#include <map>
#include <stdexcept>
#include <thread>

#include "tests/desktop/XClient.h"

namespace desktoptest {
namespace {

using namespace std::chrono_literals;

/// Longer than a double click takes, so that no two clicks are one.
constexpr auto pause = 450ms;
constexpr int reach = 220;
constexpr int step = 5;

class Scan {
 public:
  Scan() : connection_(x11::Connection::open()), window_(xcb_generate_id(connection_->get())) {
    xcb_create_window(connection_->get(), XCB_COPY_FROM_PARENT, window_, connection_->root(), 200, 200, 700, 300, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    const xcb_atom_t close = connection_->atom("WM_DELETE_WINDOW");
    xcb_change_property(connection_->get(), XCB_PROP_MODE_REPLACE, window_, connection_->atom("WM_PROTOCOLS"),
                        XCB_ATOM_ATOM, 32, 1, &close);
    xcb_map_window(connection_->get(), window_);
    connection_->flush();
    const auto isDecorated = [&] {
      const auto extents = x_.property(window_, "_NET_FRAME_EXTENTS");
      return extents.size() == 4 && extents[2] > 0;
    };
    if (!x_.waitUntil(isDecorated)) {
      throw std::runtime_error("the window manager tells no extents");
    }
  }

  void run(const std::string& state) {
    states_.clear();
    if (state == "maximised") states_ = {"_NET_WM_STATE_MAXIMIZED_HORZ", "_NET_WM_STATE_MAXIMIZED_VERT"};
    if (state == "half") states_ = {"_NET_WM_STATE_MAXIMIZED_VERT"};
    restore();
    const auto extents = x_.property(window_, "_NET_FRAME_EXTENTS");
    const Frame frame = x_.frame(window_).value_or(Frame{});
    std::cout << state << ": frame " << frame << ", extents (left, right, top, bottom)";
    for (const auto extent : extents) std::cout << ' ' << extent;
    std::cout << std::endl;
    const int middle = static_cast<int>(extents[2]) / 2;
    for (const bool isLeft : {true, false}) {
      const std::string corner = isLeft ? " from the left:" : " from the right:";
      const auto roleAt = [&](int across, int down) {
        const Frame now = x_.frame(window_).value_or(Frame{});
        return click({isLeft ? now.x + across : now.x + now.width - 1 - across, now.y + down});
      };
      std::map<std::string, int> found;
      for (int across = step / 2; across < reach; across += step) {
        const std::string role = roleAt(across, middle);
        if (!role.empty()) found.try_emplace(role, across);
      }
      for (const auto& [role, across] : found) {
        const auto is = [&](int x, int y) {
          return roleAt(x, y) == role || roleAt(x, y) == role;  // a slow answer to the first is no answer
        };
        const int least = edge(across, -1, [&](int x) { return is(x, middle); });
        const int most = edge(across, std::min(reach, across + 60), [&](int x) { return is(x, middle); });
        const int centre = (least + most) / 2;
        const int upper = edge(middle, -1, [&](int y) { return is(centre, y); });
        const int lower = edge(middle, static_cast<int>(extents[2]), [&](int y) { return is(centre, y); });
        std::cout << corner << ' ' << role << " across " << least << ".." << most << ", down " << upper << ".." << lower
                  << std::endl;
      }
    }
  }

 private:
  /// The last place, on the way from one inside to one outside, that is still inside.
  static int edge(int inside, int outside, const std::function<bool(int)>& isInside) {
    while (std::abs(outside - inside) > 1) {
      const int middle = (inside + outside) / 2;
      (isInside(middle) ? inside : outside) = middle;
    }
    return inside;
  }

  bool isAsWanted() { return !x_.isIconic(window_) && x_.isMaximised(window_) == !states_.empty(); }

  void restore() {
    for (int attempt = 0; attempt < 20; ++attempt) {
      x_.activate(window_);
      const bool isBack = x_.waitUntil([&] { return !x_.isIconic(window_); }, 1s);
      x_.setState(window_, {"_NET_WM_STATE_MAXIMIZED_HORZ", "_NET_WM_STATE_MAXIMIZED_VERT"}, false);
      if (!states_.empty()) x_.setState(window_, states_, true);
      if (isBack && x_.waitUntil([&] { return isAsWanted(); }, 1s)) break;
    }
    std::this_thread::sleep_for(pause);  // until everything is where it will be
  }

  bool isAskedToClose() {
    bool asked = false;
    while (const x11::Event event = connection_->pollEvent()) {
      asked = asked || (event->response_type & 0x7f) == XCB_CLIENT_MESSAGE;
    }
    return asked;
  }

  std::string click(Point point) {
    const auto before = x_.frame(window_);
    isAskedToClose();
    x_.click(point);
    std::string role;
    x_.waitUntil(
        [&] {
          if (x_.isIconic(window_)) role = "minimise";
          if (x_.frame(window_) != before) role = "zoom";
          if (isAskedToClose()) role = "close";
          return !role.empty();
        },
        pause);
    if (role.empty()) {
      x_.type(0xff1b);  // a menu may have come up
    } else {
      restore();
    }
    return role;
  }

  std::unique_ptr<x11::Connection> connection_;
  xcb_window_t window_;
  XClient x_;
  std::vector<std::string> states_;
};

}  // namespace
}  // namespace desktoptest

int main(int argc, char** argv) {
  try {
    desktoptest::Scan scan;
    for (int i = 1; i < argc; ++i) scan.run(argv[i]);
    if (argc < 2) scan.run("normal");
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "button_scan: " << error.what() << '\n';
    return 1;
  }
}
