#include "platform/linux/x11/Watchdog.h"

#include <poll.h>
#include <sched.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <unistd.h>
#include <xcb/xinput.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <string>

#include "platform/HelperProcess.h"
#include "platform/linux/x11/Connection.h"

namespace x11 {
namespace {

using Clock = std::chrono::steady_clock;

// The tap answers a press within 50 ms whatever the main thread does, so there is nothing to ask before. A process that
// is silent and stopped is thrown out soon; one that is merely silent may be short of processor time, and throwing it
// out loses the press, so it gets as long as the mouse may be frozen at most (250 ms), less a margin.
constexpr auto untilQuestion = std::chrono::milliseconds(60);
constexpr auto untilDoubt = std::chrono::milliseconds(25);
constexpr auto untilEnd = std::chrono::milliseconds(75);

struct Message {
  std::uint32_t kind;
  std::uint32_t value;
};
enum Kind : std::uint32_t { Watch, Question, Idle, Pending };

bool isStopped(pid_t process) {
  std::ifstream file("/proc/" + std::to_string(process) + "/stat");
  const std::string text{std::istreambuf_iterator<char>(file), {}};
  const auto name = text.rfind(") ");  // the name may itself hold brackets and blanks
  return name != std::string::npos && name + 2 < text.size() && (text[name + 2] == 'T' || text[name + 2] == 't');
}

/// The watchdog's own side.
class Guard {
 public:
  Guard(int socket, pid_t process) : socket_(socket), process_(process) {}

  /// Returns when the application is gone.
  void run() {
    for (;;) {
      pollfd sources[] = {{socket_, POLLIN, 0}, {connection_ ? connection_->fileDescriptor() : -1, POLLIN, 0}};
      if (poll(sources, std::size(sources), timeout()) < 0) continue;
      if (sources[0].revents != 0 && !receive()) return;
      if (connection_ && !look()) connection_.reset();
      if (next_ && Clock::now() >= *next_) check();
    }
  }

 private:
  /// What a press has set going: wait, ask, see whether the process is stopped, lose patience.
  enum class Stage { Waiting, Asked, Doubted };

  int timeout() const {
    if (!next_) return -1;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(*next_ - Clock::now());
    return static_cast<int>(std::max(left.count(), std::chrono::milliseconds::rep{0}));
  }

  bool receive() {
    Message message{};
    if (recv(socket_, &message, sizeof message, 0) != sizeof message) return false;
    if (message.kind == Watch) {
      watch(message.value);
    } else if (stage_ != Stage::Waiting && message.value == question_) {
      next_.reset();
      if (message.kind == Pending || pressedAgain_) expectAnswer();
    }
    return true;
  }

  void watch(xcb_window_t window) {
    window_ = window;
    next_.reset();
    if (window_ == XCB_WINDOW_NONE) return;
    if (!connection_ || connection_->isBroken()) {
      connection_ = Connection::open();
      if (connection_ && !selectPresses()) connection_.reset();
    }
    if (connection_) expectAnswer();  // the tap may have met a press before we were there to see it
  }

  bool selectPresses() {
    xcb_connection_t* const connection = connection_->get();
    const auto* extension = xcb_get_extension_data(connection, &xcb_input_id);
    if (extension == nullptr || extension->present == 0) return false;
    inputOpcode_ = extension->major_opcode;
    // Since 2.1 raw events also come while another client has grabbed the device.
    connection_->reply(xcb_input_xi_query_version_reply, xcb_input_xi_query_version(connection, 2, 2));
    const struct {
      xcb_input_event_mask_t head;
      std::uint32_t mask;
    } selection{{XCB_INPUT_DEVICE_ALL_MASTER, 1}, XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS};
    return !connection_->check(xcb_input_xi_select_events_checked(connection, connection_->root(), 1, &selection.head));
  }

  /// Takes the presses that have arrived; false when the server is gone.
  bool look() {
    while (const auto event = connection_->pollEvent()) {
      if ((event->response_type & 0x7f) != XCB_GE_GENERIC) continue;
      const auto& press = reinterpret_cast<const xcb_input_raw_button_press_event_t&>(*event);
      if (press.extension != inputOpcode_ || press.event_type != XCB_INPUT_RAW_BUTTON_PRESS) continue;
      if (press.detail >= 4 && press.detail <= 7) continue;  // the wheels
      if (window_ == XCB_WINDOW_NONE) continue;
      if (next_) {
        pressedAgain_ = true;
      } else {
        expectAnswer();
      }
    }
    return !connection_->isBroken();
  }

  void expectAnswer() {
    stage_ = Stage::Waiting;
    pressedAgain_ = false;
    next_ = Clock::now() + untilQuestion;
  }

  void check() {
    switch (stage_) {
      case Stage::Waiting:
        return ask();
      case Stage::Asked:
        if (isStopped(process_)) return free();
        stage_ = Stage::Doubted;
        next_ = Clock::now() + untilEnd;
        return;
      case Stage::Doubted:
        return free();
    }
  }

  void ask() {
    const Message message{Question, ++question_};
    ::send(socket_, &message, sizeof message, MSG_NOSIGNAL | MSG_DONTWAIT);
    stage_ = Stage::Asked;
    pressedAgain_ = false;
    next_ = Clock::now() + untilDoubt;
  }

  void free() {
    next_.reset();
    if (connection_) {
      xcb_kill_client(connection_->get(), window_);
      connection_->flush();
    }
    window_ = XCB_WINDOW_NONE;
  }

  const int socket_;
  const pid_t process_;
  std::unique_ptr<Connection> connection_;
  std::uint8_t inputOpcode_ = 0;
  xcb_window_t window_ = XCB_WINDOW_NONE;
  std::optional<Clock::time_point> next_;
  Stage stage_ = Stage::Waiting;
  bool pressedAgain_ = false;
  std::uint32_t question_ = 0;
};

std::unique_ptr<Watchdog>& instance() {
  static std::unique_ptr<Watchdog> watchdog;
  return watchdog;
}

}  // namespace

void Watchdog::start() {
  int sockets[2];
  if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, sockets) != 0) return;
  const pid_t application = getpid();
  const pid_t child = fork();
  if (child == 0) {
    close(sockets[0]);
    setsid();  // what stops the terminal's process group must not stop this process as well
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    prctl(PR_SET_NAME, "ostrel-watchdog");
    // Each press wakes it together with the tap, and the tap must not wait for it: an idle task gives way at once. On
    // two busy cores it still runs within milliseconds, because it has used so little.
    const sched_param priority{};
    sched_setscheduler(0, SCHED_IDLE, &priority);
    Guard(sockets[1], application).run();
    _exit(0);
  }
  close(sockets[1]);
  if (child < 0) {
    close(sockets[0]);
  } else {
    instance().reset(new Watchdog(sockets[0]));
  }
}

Watchdog* Watchdog::shared() { return instance().get(); }

void Watchdog::watch(xcb_window_t window) { send(Watch, window); }

void Watchdog::answer(bool pressPending) {
  Message message{};
  const auto length = recv(socket_, &message, sizeof message, MSG_DONTWAIT);
  if (length == sizeof message) {
    send(pressPending ? Pending : Idle, message.value);
  } else if (length == 0) {
    close(socket_);
    socket_ = -1;
  }
}

void Watchdog::send(std::uint32_t kind, std::uint32_t value) {
  const Message message{kind, value};
  if (socket_ >= 0) ::send(socket_, &message, sizeof message, MSG_NOSIGNAL | MSG_DONTWAIT);
}

}  // namespace x11

namespace ns {

void startHelperProcess() { x11::Watchdog::start(); }

}  // namespace ns
