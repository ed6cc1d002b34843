// An existing interface of the host: frames through a raw socket.
#include <linux/if_packet.h>
#include <net/ethernet.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <array>
#include <cstring>
#include <vector>

#include "attachment.h"
#include "checksum.h"
#include "descriptor.h"

namespace vswitch {

namespace {

constexpr std::size_t most = 65536;
constexpr int room_for_frames = 8 << 20;  // bytes: some 10000 frames can wait while the program is busy

class Interface : public Attachment {
 public:
  explicit Interface(const std::string& name) : name_(name) {
    request_for(name);  // rejects invalid names
    const int index = present_index();
    if (index == 0) throw CannotStart("there is no interface \"" + name + "\"; ip link shows those that are there");
    socket_ = socket_at(index);
  }

  int descriptor() const override { return socket_.get(); }
  bool has_link() const override { return vswitch::has_link(socket_.get(), name_); }
  void send(Bytes frame) override { ::send(socket_.get(), frame.data(), frame.size(), 0); }

  bool plug_again() override {
    const int index = present_index();
    if (index != 0 && index == bound_index()) return false;
    lost();  // resets the count of this socket
    socket_ = Descriptor();
    if (index == 0) return false;
    try {
      socket_ = socket_at(index);
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
    return lost_;
  }

  void receive(const Receiver& receiver) override {
    for (int i = 0; i < burst; ++i) {
      const Bytes frame = next();
      if (frame.empty()) return;
      receiver(frame);
    }
  }

 private:
  /// The index of the interface that has the name now; 0 when there is none.
  int present_index() const { return static_cast<int>(if_nametoindex(name_.c_str())); }

  /// The index of the interface that is open; -1 after its end, even when one with the same index is created.
  int bound_index() const {
    sockaddr_ll address{};
    socklen_t size = sizeof address;
    const int outcome = getsockname(socket_.get(), reinterpret_cast<sockaddr*>(&address), &size);
    return outcome == 0 ? address.sll_ifindex : -1;
  }

  Descriptor socket_at(int index) const {
    Descriptor made(socket(AF_PACKET, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (made.get() < 0) throw CannotStart(system_error("cannot open a raw socket on \"" + name_ + '"'));
    // Beyond the system's limit, where that is allowed.
    if (setsockopt(made.get(), SOL_SOCKET, SO_RCVBUFFORCE, &room_for_frames, sizeof room_for_frames) != 0)
      setsockopt(made.get(), SOL_SOCKET, SO_RCVBUF, &room_for_frames, sizeof room_for_frames);
    set(made, PACKET_AUXDATA, 1);
    set(made, PACKET_IGNORE_OUTGOING, 1);
    packet_mreq everything{};
    everything.mr_ifindex = index;
    everything.mr_type = PACKET_MR_PROMISC;
    set(made, PACKET_ADD_MEMBERSHIP, everything);

    // Bound last: no frame arrives before the settings apply.
    sockaddr_ll address{};
    address.sll_family = AF_PACKET;
    address.sll_protocol = htons(ETH_P_ALL);
    address.sll_ifindex = index;
    if (bind(made.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
      throw CannotStart(system_error("cannot bind to \"" + name_ + '"'));
    return made;
  }

  template <class Value>
  void set(const Descriptor& made, int option, const Value& value) const {
    if (setsockopt(made.get(), SOL_PACKET, option, &value, sizeof value) != 0)
      throw CannotStart(system_error("cannot set up the raw socket on \"" + name_ + '"'));
  }

  /// The next frame as it was on the wire; none when none has come.
  Bytes next() {
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(tpacket_auxdata))> control;
    iovec room{&buffer_[tag_size], most};
    msghdr message{};
    message.msg_iov = &room;
    message.msg_iovlen = 1;
    message.msg_control = control.data();
    message.msg_controllen = control.size();
    const ssize_t length = recvmsg(socket_.get(), &message, 0);
    if (length < static_cast<ssize_t>(tag_at)) return {};
    const std::span<uint8_t> frame(&buffer_[tag_size], static_cast<std::size_t>(length));

    tpacket_auxdata told{};
    for (cmsghdr* header = CMSG_FIRSTHDR(&message); header != nullptr; header = CMSG_NXTHDR(&message, header))
      if (header->cmsg_level == SOL_PACKET && header->cmsg_type == PACKET_AUXDATA)
        std::memcpy(&told, CMSG_DATA(header), sizeof told);
    if ((told.tp_status & TP_STATUS_CSUMNOTREADY) != 0) complete_checksum(frame);
    return (told.tp_status & TP_STATUS_VLAN_VALID) != 0 ? with_tag(frame, told) : frame;
  }

  /// The kernel removes a frame's outer tag and delivers it separately: put it back between addresses and type.
  Bytes with_tag(Bytes frame, const tpacket_auxdata& told) {
    std::memmove(buffer_.data(), frame.data(), tag_at);
    const bool tpid_known = (told.tp_status & TP_STATUS_VLAN_TPID_VALID) != 0;
    const unsigned tpid = tpid_known ? told.tp_vlan_tpid : ETHERTYPE_VLAN;
    buffer_[tag_at] = static_cast<uint8_t>(tpid >> 8);
    buffer_[tag_at + 1] = static_cast<uint8_t>(tpid);
    buffer_[tag_at + 2] = static_cast<uint8_t>(told.tp_vlan_tci >> 8);
    buffer_[tag_at + 3] = static_cast<uint8_t>(told.tp_vlan_tci);
    return {buffer_.data(), frame.size() + tag_size};
  }

  const std::string name_;
  Descriptor socket_;
  uint64_t lost_ = 0;
  std::vector<uint8_t> buffer_ = std::vector<uint8_t>(tag_size + most);  // frames begin after space for a tag
};

}  // namespace

std::unique_ptr<Attachment> attach_interface(const std::string& name) { return std::make_unique<Interface>(name); }

}  // namespace vswitch
