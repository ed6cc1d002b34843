#include "descriptor.h"

#include <net/if.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "attachment.h"

namespace vswitch {

Descriptor::~Descriptor() {
  if (number_ >= 0) close(number_);
}

std::string system_error(const std::string& what) {
  const int error = errno;
  const bool forbidden = error == EPERM || error == EACCES;
  return what + ": " + std::strerror(error) +
         (forbidden ? "; interfaces need root, or CAP_NET_RAW and CAP_NET_ADMIN" : "");
}

ifreq request_for(const std::string& name) {
  ifreq request{};
  if (name.empty() || name.size() >= sizeof request.ifr_name)
    throw CannotStart('"' + name + "\" is no name of an interface: it has 1 to 15 characters");
  std::memcpy(request.ifr_name, name.c_str(), name.size());
  return request;
}

bool has_link(int socket, const std::string& name) {
  ifreq request = request_for(name);
  constexpr short wanted = IFF_UP | IFF_RUNNING;
  return ioctl(socket, SIOCGIFFLAGS, &request) == 0 && (request.ifr_flags & wanted) == wanted;
}

}  // namespace vswitch
