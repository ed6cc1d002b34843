// What a chip's process says to a client: nothing that it says or leaves out makes the client do more than fail.
#include <appl/diag/system.h>
#include <bcm/l2.h>
#include <bcm/link.h>
#include <bcm/port.h>
#include <bcm/stat.h>
#include <bcm/vlan.h>
#include <soc/drv.h>
#include <swsdk/chip.h>
#include <swsdk/frames.h>
#include <swsdk/journal.h>
#include <swsdk/remote.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <string>
#include <thread>

#include "input.h"

using fuzz::require;

extern "C" int sdk_main(int argc, char** argv);

namespace {

const std::string& path() {
  static const std::string result = "/tmp/server_fuzz-" + std::to_string(getpid());
  return result;
}

int listening_socket() {
  const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path().copy(address.sun_path, sizeof address.sun_path - 1);
  unlink(path().c_str());
  require(bind(socket, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 && listen(socket, 16) == 0,
          "no socket to listen at");
  return socket;
}

void greet(int client, int events) {
  std::string line = "swsdk-chip 1\n";
  iovec piece{line.data(), line.size()};
  alignas(cmsghdr) char control[CMSG_SPACE(sizeof events)] = {};
  msghdr message{};
  message.msg_iov = &piece;
  message.msg_iovlen = 1;
  message.msg_control = control;
  message.msg_controllen = sizeof control;
  cmsghdr* const header = CMSG_FIRSTHDR(&message);
  header->cmsg_level = SOL_SOCKET;
  header->cmsg_type = SCM_RIGHTS;
  header->cmsg_len = CMSG_LEN(sizeof events);
  std::memcpy(CMSG_DATA(header), &events, sizeof events);
  sendmsg(client, &message, MSG_NOSIGNAL);
}

/// Says the first part of the text for events, and of the rest a line, or several of one answer, for each request.
void serve(int listener, const std::string& events, const std::string& answers) {
  int client = -1;
  do client = accept(listener, nullptr, nullptr);
  while (client < 0 && errno == EINTR);  // the fuzzer has an alarm
  int ends[2];
  require(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) == 0, "no socket for events");
  greet(client, ends[1]);
  close(ends[1]);
  const std::string begin = "units(1, {units=1, ports=12}, 1, [0])\n";
  send(client, begin.data(), begin.size(), MSG_NOSIGNAL);
  send(ends[0], events.data(), events.size(), MSG_NOSIGNAL);
  close(ends[0]);
  send(client, answers.data(), answers.size(), MSG_NOSIGNAL);
  shutdown(client, SHUT_WR);
  char piece[4096];
  ssize_t length = 0;
  do length = recv(client, piece, sizeof piece, 0);
  while (length > 0 || (length < 0 && errno == EINTR));
  close(client);
}

void count_link(int, bcm_port_t, bcm_port_info_t*) {}
void count_l2(int, bcm_l2_addr_t*, int, void*) {}
int visit(int, bcm_l2_addr_t*, void*) { return 0; }
void take_frame(int, const swsdk_out*, void*) {}

void use_chip() {
  char text[256];
  bcm_linkscan_register(0, count_link);
  bcm_l2_addr_register(0, count_l2, nullptr);
  swsdk_frame_handle(0, take_frame, nullptr);
  bcm_vlan_create(0, 10);
  int value = 0;
  bcm_port_link_status_get(0, 1, &value);
  bcm_l2_addr_t address{};
  uint8 mac[6] = {2};
  bcm_l2_addr_get(0, mac, 1, &address);
  bcm_vlan_control_vlan_t control{};
  bcm_vlan_control_vlan_get(0, 1, &control);
  bcm_stat_val_t stats[2] = {};
  uint64 values[2] = {};
  bcm_stat_multi_get(0, 1, 2, stats, values);
  bcm_l2_traverse(0, visit, nullptr);
  swsdk_frame_send(0, 1, mac, sizeof mac);
  swsdk_show(0, "vlan", text, sizeof text);
  swsdk_kernel_command(0, text, sizeof text);
  swsdk_netif netif;
  swsdk_netif_get(0, 0, &netif);
  swsdk_events_drain();
  swsdk_journal_read(text, sizeof text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const int listener = listening_socket();
  const std::string text(reinterpret_cast<const char*>(data), size);
  // Callbacks are named by where they are in this process, which no input can know.
  std::string said;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t mark = text.find('@', at);
    said += text.substr(at, mark - at);
    if (mark == std::string::npos) break;
    const char which = mark + 1 < text.size() ? text[mark + 1] : 'l';
    said += std::to_string(which == 'm'   ? reinterpret_cast<uintptr_t>(&count_l2)
                           : which == 'f' ? reinterpret_cast<uintptr_t>(&take_frame)
                                          : reinterpret_cast<uintptr_t>(&count_link));
    at = mark + 2;
  }
  const std::size_t middle = said.find("\n\n");
  const std::string events = middle == std::string::npos ? "" : said.substr(0, middle + 1);
  const std::string answers = middle == std::string::npos ? said : said.substr(middle + 2);

  std::thread server([&] { serve(listener, events, answers); });
  char reason[SWSDK_REASON_SIZE];
  const bool connected = swsdk_connect(path().c_str(), reason) == 0;
  require(connected, reason);
  use_chip();
  swsdk_power_off();
  require(swsdk_connect(nullptr, reason) == 0, reason);
  server.join();
  require(soc_ndev == 0, "the chip inside is not off");
  return 0;
}
