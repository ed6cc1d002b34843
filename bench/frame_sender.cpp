// usage: frame_sender INTERFACE RATE SECONDS [SIZE]
// Sends frames from 02:00:00:00:01:01 to 02:00:00:00:01:02 at a rate, in frames a second, or as fast as it can with 0.
// Prints how many it sent, in what time, and the CPU time that this took, in seconds; what the kernel does on the way
// to the next process is in it.
#include <linux/if_packet.h>
#include <net/if.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <vector>

namespace {

constexpr std::size_t batch = 64;

double seconds_of(clockid_t clock) {
  timespec time{};
  clock_gettime(clock, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

int die(const char* what) {
  std::fprintf(stderr, "frame_sender: %s: %s\n", what, std::strerror(errno));
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4 && argc != 5) {
    std::fprintf(stderr, "usage: frame_sender INTERFACE RATE SECONDS [SIZE]\n");
    return 2;
  }
  const double rate = std::atof(argv[2]);
  const double seconds = std::atof(argv[3]);
  const std::size_t size = argc == 5 ? static_cast<std::size_t>(std::atoi(argv[4])) : 60;

  const int link = socket(AF_PACKET, SOCK_RAW, 0);
  sockaddr_ll address{};
  address.sll_family = AF_PACKET;
  address.sll_ifindex = static_cast<int>(if_nametoindex(argv[1]));
  if (link < 0 || bind(link, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) return die(argv[1]);
  const int at_once = 1;
  setsockopt(link, SOL_PACKET, PACKET_QDISC_BYPASS, &at_once, sizeof at_once);
  prctl(PR_SET_TIMERSLACK, 1);

  std::vector<uint8_t> frame(std::max<std::size_t>(size, 60));
  constexpr std::array<uint8_t, 14> header = {2, 0, 0, 0, 1, 2, 2, 0, 0, 0, 1, 1, 0x88, 0xB5};
  std::copy(header.begin(), header.end(), frame.begin());
  iovec bytes{frame.data(), frame.size()};
  std::array<mmsghdr, batch> messages{};
  for (mmsghdr& message : messages) {
    message.msg_hdr.msg_iov = &bytes;
    message.msg_hdr.msg_iovlen = 1;
  }

  const double begin = seconds_of(CLOCK_MONOTONIC);
  double now = begin;
  double sent = 0;
  while (now < begin + seconds) {
    const double due = rate > 0 ? rate * (now - begin) - sent : batch;
    // After a pause of the machine, what is missing comes in small bursts, not as one.
    for (int left = static_cast<int>(std::min<double>(due, 2 * batch)); left > 0;) {
      const int count = sendmmsg(link, messages.data(), std::min<unsigned>(static_cast<unsigned>(left), batch), 0);
      if (count < 0 && errno != ENOBUFS) return die("cannot send");
      sent += std::max(count, 1);  // one for which there was no room is lost
      left -= std::max(count, 1);
    }
    if (rate > 0) {
      const timespec rest{0, 100000};
      nanosleep(&rest, nullptr);
    }
    now = seconds_of(CLOCK_MONOTONIC);
  }
  std::printf("%.0f %.6f %.6f\n", sent, now - begin, seconds_of(CLOCK_PROCESS_CPUTIME_ID));
  return 0;
}
