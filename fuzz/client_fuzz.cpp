// What a client says to a chip's process: nothing that it says or leaves out harms the process or another client.
#include <appl/diag/system.h>
#include <bcm/error.h>
#include <bcm/vlan.h>
#include <swsdk/chip.h>
#include <swsdk/remote.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <string>

#include "input.h"

using fuzz::require;

extern "C" int sdk_main(int argc, char** argv);

namespace {

std::string started_server() {
  std::string path = "/tmp/client_fuzz-" + std::to_string(getpid());
  char reason[SWSDK_REASON_SIZE];
  require(swsdk_listen(path.c_str(), reason) == 0, reason);
  return path;
}

int connected(const std::string& path) {
  const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  require(connect(socket, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0, "the server is gone");
  return socket;
}

void say(int socket, const std::string& text) {
  // What the server no longer reads is lost.
  [[maybe_unused]] const ssize_t sent = send(socket, text.data(), text.size(), MSG_NOSIGNAL);
}

/// Up to the end, which comes when the server has done with the client.
std::string hear_all(int socket) {
  std::string result;
  char piece[4096];
  while (true) {
    const ssize_t length = recv(socket, piece, sizeof piece, 0);
    if (length > 0)
      result.append(piece, static_cast<std::size_t>(length));
    else if (length == 0 || errno != EINTR)  // the fuzzer has an alarm
      break;
  }
  close(socket);
  return result;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const std::string path = started_server();
  std::string text(reinterpret_cast<const char*>(data), size);
  // The SDK's shell reads files, of which some are without end. Nothing else has a slash.
  if (text.find('/') != std::string::npos) return 0;
  // Most inputs are to be about calls.
  if (!text.starts_with("swsdk")) text.insert(0, "swsdk-chip 1 fuzz\nsdk_main(0, NULL)\nsystem_init(0)\n");

  const int socket = connected(path);
  say(socket, text);
  shutdown(socket, SHUT_WR);
  hear_all(socket);

  const int other = connected(path);
  say(other, "swsdk-chip 1 other\nswsdk_fault_clear()\nsdk_main(0, NULL)\nsystem_init(0)\nbcm_vlan_create(0, 4000)\n");
  shutdown(other, SHUT_WR);
  const std::string answers = hear_all(other);
  require(answers.ends_with(" call \n"), "another client is not served");
  swsdk_power_off();
  return 0;
}
