// Moves that meet with somebody else's, with a window manager whose every step is the test's.
#include "platform/linux/x11/Placement.h"

#include "tests/linux/Desk.h"

namespace {

using x11::Rect;

/// Obeys nothing by itself.
class HandMadeWindowManager {
 public:
  HandMadeWindowManager() : connection_(x11::Connection::open()) {
    const std::uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT;
    xcb_change_window_attributes(connection_->get(), connection_->root(), XCB_CW_EVENT_MASK, &mask);
    connection_->synchronise();
  }

  /// The left edges that it has been asked to move windows to so far.
  const std::vector<int>& requests() {
    while (const x11::Event event = connection_->pollEvent()) {
      const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(*event);
      if ((event->response_type & 0x7f) == XCB_CLIENT_MESSAGE &&
          message.type == connection_->atom("_NET_MOVERESIZE_WINDOW")) {
        requests_.push_back(static_cast<int>(message.data.data32[1]));
      }
    }
    return requests_;
  }

  /// Tells the window that it is at `told`, and moves it to `place`.
  void move(xcb_window_t window, const Rect& told, const Rect& place) {
    xcb_configure_notify_event_t event{};
    event.response_type = XCB_CONFIGURE_NOTIFY;
    event.event = event.window = window;
    event.x = static_cast<std::int16_t>(told.x);
    event.y = static_cast<std::int16_t>(told.y);
    event.width = static_cast<std::uint16_t>(told.width);
    event.height = static_cast<std::uint16_t>(told.height);
    xcb_send_event(connection_->get(), 0, window, XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&event));
    const std::uint32_t values[] = {static_cast<std::uint32_t>(place.x), static_cast<std::uint32_t>(place.y),
                                    static_cast<std::uint32_t>(place.width), static_cast<std::uint32_t>(place.height)};
    xcb_configure_window(connection_->get(), window,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
                         values);
    connection_->synchronise();
  }

 private:
  std::unique_ptr<x11::Connection> connection_;
  std::vector<int> requests_;
};

class Placements : public testing::Test {
 protected:
  bool waitFor(const std::function<bool()>& done) {
    const auto deadline = std::chrono::steady_clock::now() + support::patience;
    while (!done()) {
      if (std::chrono::steady_clock::now() >= deadline) return false;
      QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 10);
    }
    return true;
  }
  void want(const Rect& frame) {
    x11::WindowGeometry known;
    known.client = {100, 100, 400, 300};
    placement.want(window.window(), {CGPointMake(frame.x, frame.y), CGSizeMake(frame.width, frame.height)}, known);
  }
  bool expects(const Rect& frame) { return placement.expectedFrame(window.window(), elsewhere) == frame; }

  static constexpr Rect wanted{32, 56, 1376, 812};
  static constexpr Rect elsewhere{700, 300, 500, 340};

  support::XvfbSession session;
  HandMadeWindowManager manager;
  support::ManagedWindow window{100, 100, 400, 300};
  x11::Placement placement{x11::Connection::open()};
};

TEST_F(Placements, SomebodyElsesMoveIsNotUndone) {
  want(wanted);
  EXPECT_TRUE(expects(wanted));
  ASSERT_TRUE(waitFor([&] { return manager.requests().size() == 1; }));
  // It obeyed, but before anybody could look, the window was moved on.
  manager.move(window.window(), wanted, elsewhere);
  ASSERT_TRUE(waitFor([&] { return expects(elsewhere); }));
  want({10, 10, 300, 200});
  ASSERT_TRUE(waitFor([&] { return manager.requests().size() == 2; }));
  EXPECT_EQ(manager.requests()[1], 10);
}

TEST_F(Placements, WhatIsRefusedIsNotExpectedForLong) {
  want(wanted);
  ASSERT_TRUE(waitFor([&] { return manager.requests().size() == 1; }));
  ASSERT_TRUE(waitFor([&] { return expects(elsewhere); })) << "it still counts on a window manager that is silent";
  EXPECT_TRUE(waitFor([&] { return manager.requests().size() == 2; })) << "asked once more";
}

TEST_F(Placements, EndAtAnyMoment) {
  using Clock = std::chrono::steady_clock;
  for (int i = 0; i < 2000; ++i) {
    const x11::Placement another(x11::Connection::open());
    // Its thread is just about to start: a little later each time.
    for (const auto end = Clock::now() + std::chrono::nanoseconds(100 * i); Clock::now() < end;) continue;
  }
}

}  // namespace
