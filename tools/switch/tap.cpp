// An interface that the program makes: the host's end of a cable whose other end is the chip.
#include <fcntl.h>
#include <linux/if_tun.h>
#include <net/if.h>
#include <net/if_arp.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>
#include <vector>

#include "attachment.h"
#include "descriptor.h"

namespace vswitch {

namespace {

class Tap : public Attachment {
 public:
  Tap(const std::string& name, const uint8_t* mac)
      : name_(name),
        device_(open("/dev/net/tun", O_RDWR | O_NONBLOCK | O_CLOEXEC)),
        socket_(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
    ifreq request = request_for(name);
    request.ifr_flags = static_cast<short>(IFF_TAP | IFF_NO_PI | IFF_TUN_EXCL);
    check(device_.get() >= 0 && socket_.get() >= 0 && ioctl(device_.get(), TUNSETIFF, &request) == 0);
    if (mac != nullptr) {
      request = request_for(name);
      request.ifr_hwaddr.sa_family = ARPHRD_ETHER;
      std::memcpy(request.ifr_hwaddr.sa_data, mac, 6);
      check(ioctl(socket_.get(), SIOCSIFHWADDR, &request) == 0);
    }
    request = request_for(name);
    request.ifr_flags = IFF_UP;
    check(ioctl(socket_.get(), SIOCSIFFLAGS, &request) == 0);
  }

  int descriptor() const override { return device_.get(); }
  bool has_link() const override { return vswitch::has_link(socket_.get(), name_); }

  void receive(const Receiver& receiver) override {
    for (int i = 0; i < burst; ++i) {
      const ssize_t length = read(device_.get(), buffer_.data(), buffer_.size());
      if (length <= 0) return;
      receiver({buffer_.data(), static_cast<std::size_t>(length)});
    }
  }

  void send(Bytes frame) override {
    [[maybe_unused]] const auto sent = write(device_.get(), frame.data(), frame.size());
  }

 private:
  void check(bool good) const {
    if (!good) throw CannotStart(system_error("cannot make the interface \"" + name_ + '"'));
  }

  const std::string name_;
  const Descriptor device_;
  const Descriptor socket_;  // for requests about the interface
  std::vector<uint8_t> buffer_ = std::vector<uint8_t>(65536);
};

}  // namespace

std::unique_ptr<Attachment> attach_tap(const std::string& name, const uint8_t* mac) {
  return std::make_unique<Tap>(name, mac);
}

}  // namespace vswitch
