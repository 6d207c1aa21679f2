#include "platform/linux/freedesktop/SessionSocket.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <thread>
#include <utility>

#include "platform/linux/freedesktop/BaseFolders.h"

namespace freedesktop {
namespace {

using Clock = std::chrono::steady_clock;
using ns::InstanceReply;

constexpr std::size_t longestMessage = 64 * 1024;
constexpr std::size_t mostVisitors = 16;

/// A socket whose messages keep their bounds, so that one message is one request.
Descriptor makeSocket() { return Descriptor(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)); }

std::optional<sockaddr_un> address(const std::string& path) {
  sockaddr_un result{};
  result.sun_family = AF_UNIX;
  if (path.size() >= sizeof result.sun_path) return std::nullopt;
  std::memcpy(result.sun_path, path.c_str(), path.size() + 1);
  return result;
}
const sockaddr* generic(const sockaddr_un& one) { return reinterpret_cast<const sockaddr*>(&one); }

struct flock wholeFile() {
  struct flock lock {};
  lock.l_type = F_WRLCK;
  lock.l_whence = SEEK_SET;
  return lock;
}

Descriptor openLock(const std::string& path, int flags) {
  return Descriptor(open((path + ".lock").c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | flags, 0600));
}

/// Whether the process at the other end of a connected socket is that user's.
bool isPeerOf(uid_t user, int socket) {
  ucred peer{};
  socklen_t size = sizeof peer;
  return getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == user;
}

/// Asks without taking the lock, which could make a claim at the same moment fail.
bool isLocked(const std::string& path) {
  const Descriptor file = openLock(path, 0);
  struct flock lock = wholeFile();
  return file && fcntl(file.get(), F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
}

/// Waits until the socket can be read. False when the time is over.
bool waitForAnswer(int socket, Clock::time_point deadline) {
  pollfd poll{.fd = socket, .events = POLLIN, .revents = 0};
  while (true) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
    if (left <= 0) return false;
    const int ready = ::poll(&poll, 1, static_cast<int>(left));
    if (ready > 0) return true;
    if (ready < 0 && errno != EINTR) return false;
  }
}

/// The message that waits on the socket; none when the other side closed it or the message is too long.
std::optional<std::string> receive(int socket) {
  std::string message(longestMessage, '\0');
  const ssize_t length = recv(socket, message.data(), message.size(), MSG_TRUNC);
  if (length <= 0 || static_cast<std::size_t>(length) > message.size()) return std::nullopt;
  message.resize(static_cast<std::size_t>(length));
  return message;
}

}  // namespace

std::string sessionPath() {
  std::string folder = runtimeFolder();
  if (folder.empty()) {
    // Anybody may make folders in /tmp: only one that is ours and closed to others will do.
    folder = "/tmp/ostrel-" + std::to_string(geteuid());
    makeFolders(folder);
    if (!isPrivateFolder(folder, geteuid())) return {};
  }
  const char* variable = std::getenv("DISPLAY");
  std::string display = variable == nullptr ? "" : variable;
  // ":0" and ":0.0" are one server.
  if (const auto dot = display.rfind('.'); dot != std::string::npos && dot > display.rfind(':')) display.resize(dot);
  std::replace_if(
      display.begin(), display.end(), [](char c) { return c == '/' || c == ':'; }, '_');
  return folder + "/ostrel" + display;
}

std::unique_ptr<SessionSocket> SessionSocket::claim(const std::string& path, Handler handler) {
  std::unique_ptr<SessionSocket> session(new SessionSocket(std::move(handler)));
  if (path.empty()) return session;
  session->lock_ = openLock(path, O_CREAT);
  if (!session->lock_) {
    logWarning(path + ".lock: " + std::strerror(errno) + "; a second start will not be noticed");
    return session;
  }
  const struct flock lock = wholeFile();
  if (fcntl(session->lock_.get(), F_OFD_SETLK, &lock) != 0) return nullptr;
  if (!session->listen(path))
    logWarning(path + ".sock: " + std::strerror(errno) + "; a second start will get no answer");
  return session;
}

SessionSocket::~SessionSocket() {
  if (socket_) unlink(socketPath_.c_str());
}

bool SessionSocket::listen(const std::string& path) {
  const auto where = address(path + ".sock");
  Descriptor socket = makeSocket();
  if (!where || !socket) return false;
  socketPath_ = path + ".sock";
  unlink(socketPath_.c_str());
  if (bind(socket.get(), generic(*where), sizeof *where) != 0 || ::listen(socket.get(), mostVisitors) != 0)
    return false;
  socket_ = std::move(socket);
  notifier_ = std::make_unique<QSocketNotifier>(socket_.get(), QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, [this] { accept(); });
  return true;
}

void SessionSocket::accept() {
  Descriptor socket(accept4(socket_.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
  if (!socket || !isPeerOf(geteuid(), socket.get())) return;
  // Whoever connects and says nothing makes room for the next one.
  if (visitors_.size() >= mostVisitors) visitors_.pop_front();
  auto notifier = std::make_unique<QSocketNotifier>(socket.get(), QSocketNotifier::Read);
  QSocketNotifier* const signal = notifier.get();
  const auto visitor = visitors_.insert(visitors_.end(), Visitor{std::move(socket), std::move(notifier)});
  QObject::connect(signal, &QSocketNotifier::activated, [this, visitor] { answer(visitor); });
}

void SessionSocket::answer(std::list<Visitor>::iterator visitor) {
  // The handler may run a loop of its own, in which the visitor must not be found again.
  const Descriptor socket = std::move(visitor->socket);
  visitor->notifier->setEnabled(false);
  visitor->notifier.release()->deleteLater();  // it is what called us
  visitors_.erase(visitor);
  const auto request = receive(socket.get());
  if (!request) return;
  const std::string reply = handler_(*request);
  send(socket.get(), reply.data(), std::min(reply.size(), longestMessage), MSG_NOSIGNAL);
}

InstanceReply askSession(const std::string& path, std::string_view request, std::chrono::milliseconds patience,
                         uid_t user) {
  const InstanceReply silent{.status = InstanceReply::Status::Silent, .text = {}};
  const auto where = address(path + ".sock");
  if (path.empty() || !where) return {};
  const auto deadline = Clock::now() + patience;
  while (true) {
    const Descriptor socket = makeSocket();
    if (socket.get() >= 0 && connect(socket.get(), generic(*where), sizeof *where) == 0) {
      if (!isPeerOf(user, socket.get())) return {};
      if (send(socket.get(), request.data(), request.size(), MSG_NOSIGNAL) < 0) return silent;
      if (!waitForAnswer(socket.get(), deadline)) return silent;
      auto reply = receive(socket.get());
      if (!reply) return silent;
      return {.status = InstanceReply::Status::Answered, .text = *std::move(reply)};
    }
    if (!isLocked(path)) return {};
    // It has claimed the session but does not listen yet, or its queue is full: both pass.
    if (Clock::now() >= deadline) return silent;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
}

}  // namespace freedesktop

std::unique_ptr<ns::SingleInstance> ns::SingleInstance::claim(Handler handler) {
  return freedesktop::SessionSocket::claim(freedesktop::sessionPath(), std::move(handler));
}

ns::InstanceReply ns::askRunningInstance(std::string_view request) {
  return freedesktop::askSession(freedesktop::sessionPath(), request, std::chrono::seconds(1));
}
