// An interface that the program creates: the host's end of a cable to the chip.
#include <fcntl.h>
#include <linux/if_tun.h>
#include <net/if.h>
#include <net/if_arp.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>
#include <optional>
#include <vector>

#include "attachment.h"
#include "descriptor.h"
#include "vnet_header.h"

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
      VnetHeader header{};
      iovec parts[] = {{&header, sizeof header}, {buffer_.data(), buffer_.size()}};
      const ssize_t length = readv(device_.get(), parts, std::size(parts)) - static_cast<ssize_t>(sizeof header);
      if (length <= 0) return;
      const std::span<uint8_t> bytes(buffer_.data(), static_cast<std::size_t>(length));
      const Frame frame{.bytes = bytes, .segments = header.apply(bytes)};
      receiver({&frame, 1});
    }
  }

 private:
  void send_one(Bytes frame) override { write({}, frame); }

  bool send_whole(const Frame& aggregate) override {
    return !is_in_tunnel(aggregate.bytes, aggregate.segments) &&
           write(VnetHeader::of(aggregate.bytes, aggregate.segments), aggregate.bytes);
  }

  bool write(VnetHeader header, Bytes frame) const {
    const iovec parts[] = {{&header, sizeof header}, {const_cast<uint8_t*>(frame.data()), frame.size()}};
    return writev(device_.get(), parts, std::size(parts)) >= 0;
  }

  /// Opens the interface, creates it if there is none, and sets it up.
  Descriptor attached(int flags) const {
    Descriptor device(open("/dev/net/tun", O_RDWR | O_NONBLOCK | O_CLOEXEC));
    ifreq request = request_for(name_);
    request.ifr_flags = static_cast<short>(IFF_TAP | IFF_NO_PI | IFF_VNET_HDR | flags);
    check(device.get() >= 0 && socket_.get() >= 0 && ioctl(device.get(), TUNSETIFF, &request) == 0);
    // The host leaves checksums and segments to the interface as far as its kernel knows such an interface.
    constexpr unsigned tcp = TUN_F_CSUM | TUN_F_TSO4 | TUN_F_TSO6 | TUN_F_TSO_ECN;
    constexpr unsigned udp_too = tcp | 0x20 | 0x40;  // TUN_F_USO4 and TUN_F_USO6, which older headers lack
    if (ioctl(device.get(), TUNSETOFFLOAD, udp_too) != 0) ioctl(device.get(), TUNSETOFFLOAD, tcp);
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
  std::vector<uint8_t> buffer_ = std::vector<uint8_t>(max_frame);
};

}  // namespace

std::unique_ptr<Attachment> attach_tap(const std::string& name, const uint8_t* mac) {
  return std::make_unique<Tap>(name, mac);
}

}  // namespace vswitch
