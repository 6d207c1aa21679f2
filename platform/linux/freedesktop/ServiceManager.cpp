#include "platform/linux/freedesktop/ServiceManager.h"

#include <sys/socket.h>
#include <sys/un.h>

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "platform/linux/freedesktop/Files.h"

namespace freedesktop {

void tellServiceManagerOfReadiness() {
  const char* const variable = std::getenv("NOTIFY_SOCKET");
  if (variable == nullptr) return;
  const std::string name = variable;
  unsetenv("NOTIFY_SOCKET");
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (name.empty() || name.size() >= sizeof address.sun_path) return;
  std::memcpy(address.sun_path, name.data(), name.size());
  if (name.front() == '@') address.sun_path[0] = '\0';  // a name that is no file's
  const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size());
  const Descriptor socket(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
  if (!socket) return;
  constexpr std::string_view message = "READY=1";
  sendto(socket.get(), message.data(), message.size(), MSG_NOSIGNAL, reinterpret_cast<const sockaddr*>(&address),
         length);
}

}  // namespace freedesktop
