#include "platform/linux/x11/WatchdogProcess.h"

#include <poll.h>
#include <sched.h>
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
#include <optional>
#include <string>
#include <utility>

#include "platform/linux/x11/Connection.h"

namespace x11 {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

// The tap answers a press within 50 ms whatever the main thread does, so there is nothing to ask before. A process that
// is silent and stopped is thrown out soon; one that is merely silent may be short of processor time and gets longer,
// as it would have to connect anew. All of it must fit well into the 250 ms that the mouse may be frozen at most, since
// this process may be short of time as well.
constexpr auto untilQuestion = milliseconds(60);
constexpr auto untilDoubt = milliseconds(20);
constexpr auto untilEnd = milliseconds(40);
constexpr auto untilClosed = milliseconds(1000);

bool isStopped(pid_t process) {
  std::ifstream file("/proc/" + std::to_string(process) + "/stat");
  const std::string text{std::istreambuf_iterator<char>(file), {}};
  const auto name = text.rfind(") ");  // the name may itself hold brackets and blanks
  return name != std::string::npos && name + 2 < text.size() && (text[name + 2] == 'T' || text[name + 2] == 't');
}

/// The watchdog's own side.
class Guard {
 public:
  Guard(int socket, pid_t process, WatchdogNotes& notes) : socket_(socket), process_(process), notes_(notes) {}

  /// Returns when the application is gone, with its press passed on.
  void run() {
    for (;;) {
      // Presses that come while a check is ahead wait for it: to be woken by each would only take time from the tap.
      const bool isWatching = connection_ && !next_;
      pollfd sources[] = {{socket_, POLLIN, 0}, {isWatching ? connection_->fileDescriptor() : -1, POLLIN, 0}};
      if (poll(sources, std::size(sources), timeout()) < 0) continue;
      if (sources[0].revents != 0 && !receive()) return free();
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
    WatchdogMessage message{};
    WatchdogEnvelope envelope(message);
    if (recvmsg(socket_, &envelope.header, MSG_CMSG_CLOEXEC) != sizeof message) return false;
    if (message.kind == WatchdogMessage::Watch) {
      watch(envelope.take(), message.value);
    } else if ((stage_ == Stage::Asked || stage_ == Stage::Doubted) && message.value == question_) {
      if (message.kind == WatchdogMessage::Pending) {
        wait(Stage::Wondering, Clock::now());
      } else {
        rest();
      }
    }
    return true;
  }

  void watch(int tap, xcb_window_t root) {
    letGo();
    tap_ = tap;
    root_ = root;
    notes_.hasTakenOver = false;
    rest();
    if (tap_ < 0) return;
    if (!connection_ || connection_->isBroken()) {
      connection_ = Connection::open();
      if (connection_ && !selectPresses()) connection_.reset();
    }
    // The tap may have met a press before we were there to see it.
    if (connection_) wait(Stage::Wondering, Clock::now());
  }

  bool selectPresses() {
    xcb_connection_t* const connection = connection_->get();
    if (!connection_->has(xcb_input_id)) return false;  // then nothing but the end of the application frees the mouse
    inputOpcode_ = xcb_get_extension_data(connection, &xcb_input_id)->major_opcode;
    // Since 2.1 raw events also come while another client has grabbed the device, and since 2.2 there are touches,
    // which press the button without a raw event of a button.
    const auto version =
        connection_->reply(xcb_input_xi_query_version_reply, xcb_input_xi_query_version(connection, 2, 2));
    if (!version) return false;
    const bool hasTouches = std::pair<int, int>(version->major_version, version->minor_version) >= std::pair(2, 2);
    const struct {
      xcb_input_event_mask_t head;
      std::uint32_t mask;
    } selection{{XCB_INPUT_DEVICE_ALL_MASTER, 1},
                XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS |
                    (hasTouches ? std::uint32_t{XCB_INPUT_XI_EVENT_MASK_RAW_TOUCH_BEGIN} : 0U)};
    return !connection_->check(xcb_input_xi_select_events_checked(connection, connection_->root(), 1, &selection.head));
  }

  /// Reads the presses that have arrived, to keep the youngest in mind.
  void takePresses() {
    while (const auto event = connection_ ? connection_->pollEvent() : nullptr) {
      if ((event->response_type & 0x7f) != XCB_GE_GENERIC) continue;
      const auto& press = reinterpret_cast<const xcb_input_raw_button_press_event_t&>(*event);
      if (press.extension != inputOpcode_) continue;
      const bool isButton = press.event_type == XCB_INPUT_RAW_BUTTON_PRESS && (press.detail < 4 || press.detail > 7);
      // A touch begins with the same members.
      if (!isButton && press.event_type != XCB_INPUT_RAW_TOUCH_BEGIN) continue;  // not one of the wheels, either
      if (tap_ < 0) continue;
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
        if (youngest_->alone && youngest_->time == notes_.lastSettled) return rest();
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
    const WatchdogMessage message{WatchdogMessage::Question, ++question_};
    ::send(socket_, &message, sizeof message, MSG_NOSIGNAL | MSG_DONTWAIT);
    stage_ = Stage::Asked;
    next_ = Clock::now() + untilDoubt;
  }

  /// Gives up the grab and passes the press on in the tap's place, then has the server throw the tap out, so that it
  /// learns of it. The server listens to nobody but the client that has the grab, so it takes that client's own socket.
  /// What the client sends goes out whole, as it is little, so this does not come in the middle of it.
  void free() {
    rest();
    if (tap_ < 0) return;
    notes_.hasTakenOver = true;  // first, since the tap may wake up at any moment and read the same press
    const struct {
      xcb_ungrab_button_request_t ungrab;
      xcb_allow_events_request_t replay;
    } requests{{XCB_UNGRAB_BUTTON, XCB_BUTTON_INDEX_1, sizeof requests.ungrab / 4, root_, XCB_MOD_MASK_ANY, {}},
               {XCB_ALLOW_EVENTS, XCB_ALLOW_REPLAY_POINTER, sizeof requests.replay / 4, XCB_CURRENT_TIME}};
    ::send(tap_, &requests, sizeof requests, MSG_NOSIGNAL | MSG_DONTWAIT);
    shutdown(tap_, SHUT_WR);
    // The last to close the socket must leave the server time to read, or it drops what it has not read.
    pollfd end{tap_, POLLRDHUP, 0};
    poll(&end, 1, static_cast<int>(untilClosed.count()));
    letGo();
  }

  void letGo() {
    if (tap_ >= 0) close(tap_);
    tap_ = -1;
  }

  const int socket_;
  const pid_t process_;
  WatchdogNotes& notes_;
  std::unique_ptr<Connection> connection_;
  std::uint8_t inputOpcode_ = 0;
  int tap_ = -1;  // the socket of its connection
  xcb_window_t root_ = XCB_WINDOW_NONE;
  std::optional<Clock::time_point> next_;
  std::optional<Press> youngest_;  // of those seen since we last were at rest
  xcb_timestamp_t latestTime_ = XCB_CURRENT_TIME;
  Stage stage_ = Stage::Hoping;
  std::uint32_t question_ = 0;
};

}  // namespace

void runWatchdog(int socket, pid_t process, WatchdogNotes& notes) {
  setsid();  // what stops or ends the terminal's process group must not do so to this process as well
  prctl(PR_SET_NAME, "ostrel-watchdog");
  // A press may wake it together with the tap, and the tap must not wait for it: a batch task displaces no other. (An
  // idle task would not either, but on busy cores it may then be kept waiting for longer than a mouse may stand still.)
  const sched_param priority{};
  sched_setscheduler(0, SCHED_BATCH, &priority);
  Guard(socket, process, notes).run();
}

void runWatchdogForParent() {
  const pid_t parent = getppid();
  WatchdogMessage message{};
  WatchdogEnvelope envelope(message);
  if (recvmsg(STDIN_FILENO, &envelope.header, MSG_CMSG_CLOEXEC) != sizeof message) return;
  if (message.kind != WatchdogMessage::Notes) return;
  void* const memory = mmap(nullptr, sizeof(WatchdogNotes), PROT_READ | PROT_WRITE, MAP_SHARED, envelope.take(), 0);
  if (memory != MAP_FAILED) runWatchdog(STDIN_FILENO, parent, *static_cast<WatchdogNotes*>(memory));
}

}  // namespace x11
