#include "platform/linux/x11/Watchdog.h"

#include <signal.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <new>
#include <string_view>

#include "platform/HelperProcess.h"
#include "platform/linux/x11/WatchdogProcess.h"

namespace x11 {
namespace {

constexpr auto betweenStarts = std::chrono::milliseconds(1000);
/// What a watchdog is called that was started as a program.
char programName[] = "ostrel-watchdog";

std::unique_ptr<Watchdog>& instance() {
  static std::unique_ptr<Watchdog> watchdog;
  return watchdog;
}

/// The ends of a connection that keeps messages apart.
bool connectEnds(int (&ends)[2]) { return socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) == 0; }

}  // namespace

void Watchdog::start() {
  const int memory = memfd_create("watchdog-notes", MFD_CLOEXEC);
  if (memory < 0) return;
  void* const mapped = ftruncate(memory, sizeof(WatchdogNotes)) == 0
                           ? mmap(nullptr, sizeof(WatchdogNotes), PROT_READ | PROT_WRITE, MAP_SHARED, memory, 0)
                           : MAP_FAILED;
  if (mapped == MAP_FAILED) {
    close(memory);
    return;
  }
  instance().reset(new Watchdog(memory, *new (mapped) WatchdogNotes));
  instance()->forkNow();
}

void Watchdog::forkNow() {
  int ends[2];
  if (!connectEnds(ends)) return;
  const pid_t application = getpid();
  const pid_t child = fork();
  if (child == 0) {
    close(ends[0]);
    runWatchdog(ends[1], application, notes_);
    _exit(0);
  }
  close(ends[1]);
  if (child < 0) {
    close(ends[0]);
    return;
  }
  socket_ = ends[0];
  process_ = child;
}

/// By now there are threads, and a fork could find their locks taken for good. So it is this program anew.
void Watchdog::startAnew() {
  int ends[2];
  if (!connectEnds(ends)) return;
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDIN_FILENO);
  char* const arguments[] = {programName, nullptr};
  pid_t child = 0;
  // By this name the file is found even when another version has taken its place on disk.
  const int error = posix_spawn(&child, "/proc/self/exe", &actions, nullptr, arguments, environ);
  posix_spawn_file_actions_destroy(&actions);
  close(ends[1]);
  if (error != 0) {
    close(ends[0]);
    return;
  }
  socket_ = ends[0];
  process_ = child;
  send(WatchdogMessage::Notes, 0, notesMemory_);
}

Watchdog* Watchdog::shared() { return instance().get(); }

std::optional<std::chrono::milliseconds> Watchdog::keepAlive(const Connection* watched) {
  if (socket_ >= 0) return std::nullopt;
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(lastStart_ + betweenStarts - Clock::now());
  if (left.count() > 0) return left;
  lastStart_ = Clock::now();
  startAnew();
  if (socket_ < 0) return betweenStarts;
  watch(watched);
  return std::nullopt;
}

bool Watchdog::isRunning() const {
  siginfo_t state{};
  const pid_t process = process_;
  return process > 0 && waitid(P_PID, static_cast<id_t>(process), &state, WEXITED | WNOHANG | WNOWAIT) == 0 &&
         state.si_pid == 0;
}

void Watchdog::watch(const Connection* connection) {
  if (connection != nullptr) {
    send(WatchdogMessage::Watch, connection->root(), connection->fileDescriptor());
  } else {
    send(WatchdogMessage::Watch, XCB_WINDOW_NONE);
  }
}

void Watchdog::answer(bool pressPending) {
  WatchdogMessage message{};
  const auto length = recv(socket_, &message, sizeof message, MSG_DONTWAIT);
  if (length == sizeof message) {
    send(pressPending ? WatchdogMessage::Pending : WatchdogMessage::Idle, message.value);
  } else if (length == 0 || (length < 0 && errno == ECONNRESET)) {
    bury();
  }
}

void Watchdog::send(WatchdogMessage::Kind kind, std::uint32_t value, int descriptor) {
  if (socket_ < 0) return;
  WatchdogMessage message{kind, value};
  WatchdogEnvelope envelope(message);
  if (descriptor >= 0) {
    envelope.put(descriptor);
  } else {
    envelope.header.msg_controllen = 0;
  }
  if (sendmsg(socket_, &envelope.header, MSG_NOSIGNAL | MSG_DONTWAIT) < 0 && (errno == EPIPE || errno == ECONNRESET)) {
    bury();
  }
}

void Watchdog::bury() {
  close(socket_);
  socket_ = -1;
  waitpid(process_.exchange(0), nullptr, 0);
}

}  // namespace x11

namespace ns {

void becomeHelperProcess(std::string_view calledAs) {
  if (calledAs != x11::programName) return;
  x11::runWatchdogForParent();
  _exit(0);
}

void startHelperProcess() { x11::Watchdog::start(); }

std::optional<bool> isHelperProcessRunning() {
  const auto* const watchdog = x11::Watchdog::shared();
  return watchdog != nullptr && watchdog->isRunning();
}

}  // namespace ns
