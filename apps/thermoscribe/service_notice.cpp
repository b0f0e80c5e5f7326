#include "apps/thermoscribe/service_notice.h"

#include <sys/socket.h>
#include <sys/un.h>

#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "adapters/posix/posix_file.h"

namespace vane::thermoscribe {

void TellServiceManager(const std::string& state) {
  const char* const path = std::getenv("NOTIFY_SOCKET");
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path == nullptr || (path[0] != '/' && path[0] != '@') ||
      std::strlen(path) >= sizeof address.sun_path) {
    return;
  }
  std::strcpy(address.sun_path, path);
  if (path[0] == '@') address.sun_path[0] = '\0';  // an abstract one
  const CDescriptor socket(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
  const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + std::strlen(path));
  sendto(socket.Get(), state.data(), state.size(), MSG_NOSIGNAL | MSG_DONTWAIT,
         reinterpret_cast<const sockaddr*>(&address), size);
}

}  // namespace vane::thermoscribe
