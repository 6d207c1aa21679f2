#include "bench/ClickTarget.h"

#include <poll.h>
#include <xcb/xtest.h>

#include <stdexcept>
#include <string_view>

namespace bench {

ClickTarget::ClickTarget(const std::string& display, TargetKind kind)
    : finger_(x11::Connection::open(display)), application_(x11::Connection::open(display)) {
  if (!finger_ || !application_) throw std::runtime_error("no display " + display);
  window_ = xcb_generate_id(application_->get());
  const std::uint32_t values[] = {kind == TargetKind::Unmanaged ? 1U : 0U, XCB_EVENT_MASK_BUTTON_PRESS |
                                                                               XCB_EVENT_MASK_BUTTON_RELEASE |
                                                                               XCB_EVENT_MASK_STRUCTURE_NOTIFY};
  xcb_create_window(application_->get(), XCB_COPY_FROM_PARENT, window_, application_->root(), 200, 150, 500, 400, 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK,
                    values);
  constexpr std::string_view name("target\0Target", 14);
  xcb_change_property(application_->get(), XCB_PROP_MODE_REPLACE, window_, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8,
                      static_cast<std::uint32_t>(name.size()), name.data());
  if (kind == TargetKind::Bare) {
    const xcb_atom_t hints = application_->atom("_MOTIF_WM_HINTS");
    const std::uint32_t undecorated[] = {2, 0, 0, 0, 0};
    xcb_change_property(application_->get(), XCB_PROP_MODE_REPLACE, window_, hints, hints, 32, 5, undecorated);
  }
  // Asked more than once: a window manager that is only just starting may overlook the first request.
  for (int attempt = 0; attempt < 10; ++attempt) {
    xcb_map_window(application_->get(), window_);
    application_->flush();
    if (next(XCB_MAP_NOTIFY, std::chrono::milliseconds(500))) return;
  }
  throw std::runtime_error("the window does not appear");
}

Clock::time_point ClickTarget::post(std::uint8_t type, std::uint8_t detail, int x, int y) {
  const auto time = Clock::now();
  xcb_test_fake_input(finger_->get(), type, detail, XCB_CURRENT_TIME, finger_->root(), static_cast<std::int16_t>(x),
                      static_cast<std::int16_t>(y), 0);
  finger_->flush();
  return time;
}

std::optional<Clock::time_point> ClickTarget::next(std::uint8_t type, Clock::duration bound) {
  const auto deadline = Clock::now() + bound;
  for (;;) {
    while (const auto event = application_->pollEvent()) {
      if ((event->response_type & 0x7f) == type) return Clock::now();
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
    pollfd source{application_->fileDescriptor(), POLLIN, 0};
    if (left <= 0 || poll(&source, 1, static_cast<int>(left)) == 0) return std::nullopt;
  }
}

void ClickTarget::clear() {
  application_->synchronise();
  while (application_->pollEvent()) {
  }
}

}  // namespace bench
