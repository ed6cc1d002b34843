// An existing interface of the host: frames through a packet socket.
#include <net/ethernet.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/ioctl.h>
#include <sys/uio.h>

#include <cerrno>
#include <iterator>
#include <optional>

#include "attachment.h"
#include "descriptor.h"
#include "outbox.h"
#include "packet_ring.h"
#include "vnet_header.h"

namespace vswitch {

namespace {

class Interface : public Attachment {
 public:
  explicit Interface(const std::string& name) : name_(name) {
    request_for(name);  // rejects invalid names
    const int index = present_index();
    if (index == 0) throw CannotStart("there is no interface \"" + name + "\"; ip link shows those that are there");
    open(index);
  }

  int descriptor() const override { return socket_.get(); }
  bool has_link() const override { return vswitch::has_link(socket_.get(), name_); }

  bool plug_again() override {
    read_mtu();
    const int index = present_index();
    if (index != 0 && index == bound_index()) return false;
    lost();  // resets the count of this socket
    ring_.reset();
    socket_ = Descriptor();
    if (index == 0) return false;
    try {
      open(index);
      return true;
    } catch (const CannotStart&) {
      return false;  // gone again, which is reported as news, too
    }
  }

  uint64_t lost() override {
    tpacket_stats since_last_time{};
    socklen_t size = sizeof since_last_time;
    if (getsockopt(socket_.get(), SOL_PACKET, PACKET_STATISTICS, &since_last_time, &size) == 0)
      lost_ += since_last_time.tp_drops;
    if (ring_) lost_ += ring_->take_lost();
    return lost_;
  }

  void receive(const Receiver& receiver) override {
    if (ring_) ring_->receive(receiver);
  }

  void flush() override { outbox_.flush(socket_.get()); }

 private:
  void send_one(Bytes frame) override { outbox_.add(socket_.get(), frame); }

  /// The kernel compares only single frames with the maximum transmission unit.
  bool send_whole(const Frame& aggregate) override {
    if (aggregate.segments.frame_size() > max_frame_size(aggregate.bytes) ||
        is_in_tunnel(aggregate.bytes, aggregate.segments))
      return false;
    flush();
    VnetHeader header = VnetHeader::of(aggregate.bytes, aggregate.segments);
    iovec parts[] = {{&header, sizeof header}, {const_cast<uint8_t*>(aggregate.bytes.data()), aggregate.bytes.size()}};
    msghdr message{};
    message.msg_iov = parts;
    message.msg_iovlen = std::size(parts);
    return sendmsg(socket_.get(), &message, 0) >= 0 || errno != EINVAL;  // a kernel does not know every kind
  }

  std::size_t max_frame_size(Bytes frame) const {
    const bool has_tag = frame[tag_at] == (ETHERTYPE_VLAN >> 8) && frame[tag_at + 1] == (ETHERTYPE_VLAN & 0xFF);
    return mtu_ + ETHER_HDR_LEN + (has_tag ? tag_size : 0);
  }

  /// The index of the interface that has the name now; 0 when there is none.
  int present_index() const { return static_cast<int>(if_nametoindex(name_.c_str())); }

  /// The index of the interface that is open; -1 after its end, even when one with the same index is created.
  int bound_index() const {
    sockaddr_ll address{};
    socklen_t size = sizeof address;
    const int outcome = getsockname(socket_.get(), reinterpret_cast<sockaddr*>(&address), &size);
    return outcome == 0 ? address.sll_ifindex : -1;
  }

  void read_mtu() {
    ifreq request = request_for(name_);
    if (ioctl(socket_.get(), SIOCGIFMTU, &request) == 0) mtu_ = static_cast<std::size_t>(request.ifr_mtu);
  }

  void open(int index) {
    socket_ = Descriptor(socket(AF_PACKET, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (socket_.get() < 0) throw CannotStart(system_error("cannot open a raw socket on \"" + name_ + '"'));
    packet_mreq everything{};
    everything.mr_ifindex = index;
    everything.mr_type = PACKET_MR_PROMISC;
    const auto set = [this](int option, const auto& value) {
      return setsockopt(socket_.get(), SOL_PACKET, option, &value, sizeof value) == 0;
    };
    if (!set(PACKET_VNET_HDR, 1) || !set(PACKET_IGNORE_OUTGOING, 1) || !set(PACKET_ADD_MEMBERSHIP, everything))
      throw CannotStart(system_error("cannot set up the raw socket on \"" + name_ + '"'));
    ring_.emplace(socket_.get());
    read_mtu();

    // Bound last: no frame arrives before the settings apply.
    sockaddr_ll address{};
    address.sll_family = AF_PACKET;
    address.sll_protocol = htons(ETH_P_ALL);
    address.sll_ifindex = index;
    if (bind(socket_.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
      throw CannotStart(system_error("cannot bind to \"" + name_ + '"'));
  }

  const std::string name_;
  Descriptor socket_;
  std::optional<PacketRing> ring_;
  Outbox outbox_;
  std::size_t mtu_ = 0;
  uint64_t lost_ = 0;
};

}  // namespace

std::unique_ptr<Attachment> attach_interface(const std::string& name) { return std::make_unique<Interface>(name); }

}  // namespace vswitch
