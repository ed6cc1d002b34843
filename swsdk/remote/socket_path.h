// Where a chip listens: the path of a UNIX socket.
#pragma once

#include <sys/un.h>

#include <string>

namespace remote {

/// Empty when the path fits into a socket's address; otherwise what is wrong with it.
std::string path_error(const std::string& path);

/// The address of a path that fits.
sockaddr_un address_of(const std::string& path);

/// Connects a socket; false with errno when nothing listens there.
bool connect_to(int socket, const std::string& path);

}  // namespace remote
