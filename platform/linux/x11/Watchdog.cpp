#include "platform/linux/x11/Watchdog.h"

#include <poll.h>
#include <sched.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <unistd.h>
#include <xcb/xinput.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <iterator>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <utility>

#include "platform/HelperProcess.h"
#include "platform/linux/x11/Connection.h"

namespace x11 {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

// The tap answers a press within 50 ms whatever the main thread does, so there is nothing to ask before. A process that
// is silent and stopped is thrown out soon; one that is merely silent may be short of processor time, and throwing it
// out loses the press, so it gets as long as the mouse may be frozen at most (250 ms), less a margin.
constexpr auto untilQuestion = milliseconds(60);
constexpr auto untilDoubt = milliseconds(25);
constexpr auto untilEnd = milliseconds(75);

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
  Guard(int socket, pid_t process, const Watchdog::PressTime& lastSettled)
      : socket_(socket), process_(process), lastSettled_(lastSettled) {}

  /// Returns when the application is gone.
  void run() {
    for (;;) {
      // Presses that come while a check is ahead wait for it: to be woken by each would only take time from the tap.
      const bool isWatching = connection_ && !next_;
      pollfd sources[] = {{socket_, POLLIN, 0}, {isWatching ? connection_->fileDescriptor() : -1, POLLIN, 0}};
      if (poll(sources, std::size(sources), timeout()) < 0) continue;
      if (sources[0].revents != 0 && !receive()) return;
      if (!next_) {
        takePresses();
        if (youngest_) wait(Stage::Hoping, youngest_->seen);
      }
      if (next_ && Clock::now() >= *next_) check();
    }
  }

 private:
  /// What lies ahead: look whether the tap has settled the press by itself, ask it, see whether the process is stopped,
  /// lose patience.
  enum class Stage { Hoping, Wondering, Asked, Doubted };
  struct Press {
    xcb_timestamp_t time;    // the server's
    Clock::time_point seen;  // when it would have woken us
    bool alone;              // no other press that we know of has the same time
  };

  int timeout() const {
    if (!next_) return -1;
    const auto left = std::chrono::ceil<milliseconds>(*next_ - Clock::now());
    return static_cast<int>(std::max(left.count(), milliseconds::rep{0}));
  }

  bool receive() {
    Message message{};
    if (recv(socket_, &message, sizeof message, 0) != sizeof message) return false;
    if (message.kind == Watch) {
      watch(message.value);
    } else if ((stage_ == Stage::Asked || stage_ == Stage::Doubted) && message.value == question_) {
      if (message.kind == Pending) {
        wait(Stage::Wondering, Clock::now());
      } else {
        rest();
      }
    }
    return true;
  }

  void watch(xcb_window_t window) {
    window_ = window;
    rest();
    if (window_ == XCB_WINDOW_NONE) return;
    if (!connection_ || connection_->isBroken()) {
      connection_ = Connection::open();
      if (connection_ && !selectPresses()) connection_.reset();
    }
    // The tap may have met a press before we were there to see it.
    if (connection_) wait(Stage::Wondering, Clock::now());
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

  /// Reads the presses that have arrived, to keep the youngest in mind.
  void takePresses() {
    while (const auto event = connection_ ? connection_->pollEvent() : nullptr) {
      if ((event->response_type & 0x7f) != XCB_GE_GENERIC) continue;
      const auto& press = reinterpret_cast<const xcb_input_raw_button_press_event_t&>(*event);
      if (press.extension != inputOpcode_ || press.event_type != XCB_INPUT_RAW_BUTTON_PRESS) continue;
      if (press.detail >= 4 && press.detail <= 7) continue;  // the wheels
      if (window_ == XCB_WINDOW_NONE) continue;
      auto seen = Clock::now();
      if (youngest_) seen = std::min(seen, youngest_->seen + milliseconds(press.time - youngest_->time));
      youngest_ = Press{press.time, seen, press.time != std::exchange(latestTime_, press.time)};
    }
    if (connection_ && connection_->isBroken()) connection_.reset();
  }

  void wait(Stage stage, Clock::time_point since) {
    stage_ = stage;
    next_ = since + untilQuestion;
  }

  void rest() {
    next_.reset();
    youngest_.reset();
  }

  void check() {
    switch (stage_) {
      case Stage::Hoping:
        takePresses();
        if (youngest_->alone && youngest_->time == lastSettled_) return rest();
        if (Clock::now() < youngest_->seen + untilQuestion) return wait(Stage::Hoping, youngest_->seen);
        return ask();  // not settled, or none of the tap's: of another button, say
      case Stage::Wondering:
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
    next_ = Clock::now() + untilDoubt;
  }

  void free() {
    rest();
    if (connection_) {
      xcb_kill_client(connection_->get(), window_);
      connection_->flush();
    }
    window_ = XCB_WINDOW_NONE;
  }

  const int socket_;
  const pid_t process_;
  const Watchdog::PressTime& lastSettled_;
  std::unique_ptr<Connection> connection_;
  std::uint8_t inputOpcode_ = 0;
  xcb_window_t window_ = XCB_WINDOW_NONE;
  std::optional<Clock::time_point> next_;
  std::optional<Press> youngest_;  // of those seen since we last were at rest
  xcb_timestamp_t latestTime_ = XCB_CURRENT_TIME;
  Stage stage_ = Stage::Hoping;
  std::uint32_t question_ = 0;
};

std::unique_ptr<Watchdog>& instance() {
  static std::unique_ptr<Watchdog> watchdog;
  return watchdog;
}

}  // namespace

void Watchdog::start() {
  void* const memory = mmap(nullptr, sizeof(PressTime), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) return;
  auto* const lastSettled = new (memory) PressTime(XCB_CURRENT_TIME);
  int sockets[2];
  if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, sockets) != 0) return;
  const pid_t application = getpid();
  const pid_t child = fork();
  if (child == 0) {
    close(sockets[0]);
    setsid();  // what stops the terminal's process group must not stop this process as well
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    prctl(PR_SET_NAME, "ostrel-watchdog");
    // A press may wake it together with the tap, and the tap must not wait for it: an idle task gives way at once. On
    // two busy cores it still runs within milliseconds, because it has used so little.
    const sched_param priority{};
    sched_setscheduler(0, SCHED_IDLE, &priority);
    Guard(sockets[1], application, *lastSettled).run();
    _exit(0);
  }
  close(sockets[1]);
  if (child < 0) {
    close(sockets[0]);
  } else {
    instance().reset(new Watchdog(sockets[0], *lastSettled));
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
