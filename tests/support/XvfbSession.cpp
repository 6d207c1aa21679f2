#include "tests/support/XvfbSession.h"

#include <poll.h>
#include <xcb/xtest.h>

#include <algorithm>
#include <cstdlib>
#include <span>
#include <stdexcept>

namespace support {
namespace {

using Clock = std::chrono::steady_clock;

std::unique_ptr<x11::Connection> connect() {
  auto connection = x11::Connection::open();
  if (!connection) throw std::runtime_error("no X server at $DISPLAY");
  return connection;
}

std::vector<std::string> serverCommand(const std::string& screen, const std::string& without) {
  std::vector<std::string> command{"Xvfb", "-displayfd", "1", "-noreset", "-nolisten", "tcp", "-screen", "0", screen};
  if (!without.empty()) command.insert(command.end(), {"-extension", without});
  return command;
}

}  // namespace

bool waitReadable(int descriptor, Clock::time_point deadline) {
  for (;;) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
    pollfd source{descriptor, POLLIN, 0};
    const int ready = poll(&source, 1, static_cast<int>(std::max(left, decltype(left){0})));
    if (ready > 0) return true;
    if (ready == 0) return false;
  }
}

XvfbSession::XvfbSession(const std::string& screen, const std::string& without)
    : server_(serverCommand(screen, without)) {
  const auto number = server_.readLine(patience);
  if (!number) throw std::runtime_error("Xvfb did not start");
  displayName_ = ":" + *number;
  setenv("DISPLAY", displayName_.c_str(), 1);
}

Hands::Hands() : connection_(connect()) {}

void Hands::move(int x, int y) { fake(XCB_MOTION_NOTIFY, 0, x, y); }
void Hands::press(int button) { fake(XCB_BUTTON_PRESS, static_cast<xcb_keycode_t>(button), 0, 0); }
void Hands::release(int button) { fake(XCB_BUTTON_RELEASE, static_cast<xcb_keycode_t>(button), 0, 0); }
void Hands::click(int button) {
  press(button);
  release(button);
}
void Hands::doubleClick(std::chrono::milliseconds pause) {
  press();
  fake(XCB_BUTTON_RELEASE, 1, 0, 0, pause);
  fake(XCB_BUTTON_PRESS, 1, 0, 0, pause);
  fake(XCB_BUTTON_RELEASE, 1, 0, 0, pause);
}
void Hands::keyDown(xcb_keysym_t key) { fake(XCB_KEY_PRESS, keycode(key), 0, 0); }
void Hands::keyUp(xcb_keysym_t key) { fake(XCB_KEY_RELEASE, keycode(key), 0, 0); }
void Hands::tapKey(xcb_keysym_t key) {
  keyDown(key);
  keyUp(key);
}

void Hands::assignKey(xcb_keysym_t key) {
  for (unsigned code = xcb_get_setup(connection_->get())->min_keycode; code <= 255; ++code) {
    const auto mapping =
        connection_->reply(xcb_get_keyboard_mapping_reply,
                           xcb_get_keyboard_mapping(connection_->get(), static_cast<xcb_keycode_t>(code), 1));
    const std::span symbols(xcb_get_keyboard_mapping_keysyms(mapping.get()), mapping->keysyms_per_keycode);
    if (std::ranges::any_of(symbols, [](xcb_keysym_t symbol) { return symbol != XCB_NO_SYMBOL; })) continue;
    xcb_change_keyboard_mapping(connection_->get(), 1, static_cast<xcb_keycode_t>(code), 1, &key);
    connection_->synchronise();
    return;
  }
}

void Hands::fake(std::uint8_t type, xcb_keycode_t detail, int x, int y, std::chrono::milliseconds after) {
  xcb_test_fake_input(connection_->get(), type, detail, static_cast<std::uint32_t>(after.count()), connection_->root(),
                      static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), 0);
  connection_->synchronise();
}

xcb_keycode_t Hands::keycode(xcb_keysym_t key) {
  const auto& setup = *xcb_get_setup(connection_->get());
  const auto count = static_cast<std::uint8_t>(setup.max_keycode - setup.min_keycode + 1);
  const auto mapping = connection_->reply(xcb_get_keyboard_mapping_reply,
                                          xcb_get_keyboard_mapping(connection_->get(), setup.min_keycode, count));
  const std::span symbols(xcb_get_keyboard_mapping_keysyms(mapping.get()),
                          static_cast<std::size_t>(xcb_get_keyboard_mapping_keysyms_length(mapping.get())));
  const auto found = std::ranges::find(symbols, key);
  if (found == symbols.end()) throw std::runtime_error("no such key");
  return static_cast<xcb_keycode_t>(setup.min_keycode + (found - symbols.begin()) / mapping->keysyms_per_keycode);
}

JournalWindow::JournalWindow(int x, int y, int width, int height)
    : connection_(connect()), window_(xcb_generate_id(connection_->get())) {
  const std::uint32_t values[] = {
      1, XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_POINTER_MOTION};
  xcb_create_window(connection_->get(), XCB_COPY_FROM_PARENT, window_, connection_->root(),
                    static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), static_cast<std::uint16_t>(width),
                    static_cast<std::uint16_t>(height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                    XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
  xcb_map_window(connection_->get(), window_);
  connection_->synchronise();
}

const std::vector<std::string>& JournalWindow::journal() {
  connection_->synchronise();
  return journalWhen([](const auto&) { return true; });
}

const std::vector<std::string>& JournalWindow::journalWhen(
    const std::function<bool(const std::vector<std::string>&)>& done, std::chrono::milliseconds bound) {
  const auto deadline = Clock::now() + bound;
  for (;;) {
    while (const auto event = connection_->pollEvent()) {
      const auto& input = reinterpret_cast<const xcb_button_press_event_t&>(*event);
      switch (event->response_type & 0x7f) {
        case XCB_BUTTON_PRESS:
          journal_.push_back("press" + std::to_string(input.detail));
          break;
        case XCB_BUTTON_RELEASE:
          journal_.push_back("release" + std::to_string(input.detail));
          break;
        case XCB_MOTION_NOTIFY:
          journal_.push_back("motion");
          break;
        default:
          break;
      }
    }
    if (done(journal_) || connection_->isBroken()) return journal_;
    if (!waitReadable(connection_->fileDescriptor(), deadline)) return journal_;
  }
}

const std::vector<std::string>& JournalWindow::journalOf(std::size_t count) {
  return journalWhen([count](const auto& journal) { return journal.size() >= count; });
}

void JournalWindow::clear() { journal_.clear(); }

}  // namespace support
