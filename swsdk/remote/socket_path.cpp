#include "remote/socket_path.h"

#include <sys/socket.h>

namespace remote {

std::string path_error(const std::string& path) {
  constexpr std::size_t most = sizeof(sockaddr_un::sun_path) - 1;
  if (path.empty()) return "the path of the chip's socket is empty";
  if (path.size() <= most) return "";
  return "the path of the chip's socket has " + std::to_string(path.size()) + " bytes; it can have " +
         std::to_string(most);
}

sockaddr_un address_of(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  return address;
}

bool connect_to(int socket, const std::string& path) {
  const sockaddr_un address = address_of(path);
  return connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

}  // namespace remote
