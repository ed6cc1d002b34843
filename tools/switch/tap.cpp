// An interface that the program creates: the host's end of a cable to the chip.
#include <fcntl.h>
#include <linux/if_tun.h>
#include <net/if.h>
#include <net/if_arp.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <vector>

#include "attachment.h"
#include "descriptor.h"

namespace vswitch {

namespace {

class Tap : public Attachment {
 public:
  Tap(const std::string& name, const uint8_t* mac)
      : name_(name), socket_(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
    if (mac != nullptr) std::copy_n(mac, 6, mac_.emplace().begin());
    device_ = attached(IFF_TUN_EXCL);
  }

  int descriptor() const override { return device_.get(); }
  bool has_link() const override { return vswitch::has_link(socket_.get(), name_); }

  bool plug_again() override {
    ifreq request{};
    if (ioctl(device_.get(), TUNGETIFF, &request) == 0) return false;
    device_ = Descriptor();
    if (if_nametoindex(name_.c_str()) == 0) return false;
    try {
      device_ = attached(0);
      return true;
    } catch (const CannotStart&) {
      return false;  // it is another kind of interface, or belongs to another process
    }
  }

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
  /// Opens the interface, creates it if there is none, and sets it up.
  Descriptor attached(int flags) const {
    Descriptor device(open("/dev/net/tun", O_RDWR | O_NONBLOCK | O_CLOEXEC));
    ifreq request = request_for(name_);
    request.ifr_flags = static_cast<short>(IFF_TAP | IFF_NO_PI | flags);
    check(device.get() >= 0 && socket_.get() >= 0 && ioctl(device.get(), TUNSETIFF, &request) == 0);
    if (mac_) {
      request = request_for(name_);
      request.ifr_hwaddr.sa_family = ARPHRD_ETHER;
      std::memcpy(request.ifr_hwaddr.sa_data, mac_->data(), mac_->size());
      check(ioctl(socket_.get(), SIOCSIFHWADDR, &request) == 0);
    }
    request = request_for(name_);
    request.ifr_flags = IFF_UP;
    check(ioctl(socket_.get(), SIOCSIFFLAGS, &request) == 0);
    return device;
  }

  void check(bool good) const {
    if (!good) throw CannotStart(system_error("cannot make the interface \"" + name_ + '"'));
  }

  const std::string name_;
  std::optional<std::array<uint8_t, 6>> mac_;
  const Descriptor socket_;  // for requests about the interface
  Descriptor device_;
  std::vector<uint8_t> buffer_ = std::vector<uint8_t>(65536);
};

}  // namespace

std::unique_ptr<Attachment> attach_tap(const std::string& name, const uint8_t* mac) {
  return std::make_unique<Tap>(name, mac);
}

}  // namespace vswitch
