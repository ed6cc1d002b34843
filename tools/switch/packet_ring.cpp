#include "packet_ring.h"

#include <net/ethernet.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/uio.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <iterator>

#include "descriptor.h"
#include "vnet_header.h"

namespace vswitch {

namespace {

constexpr std::size_t slot_size = 2048;  // of an ordinary frame and what the kernel says of it
constexpr std::size_t slots = 4096;
constexpr std::size_t block_size = 1 << 16;
constexpr int room_for_long_frames = 16 << 20;  // bytes

template <class Value>
void set(int socket, int level, int option, const Value& value) {
  if (setsockopt(socket, level, option, &value, sizeof value) != 0)
    throw CannotStart(system_error("cannot set up a raw socket"));
}

/// The kernel removes a frame's outer tag and delivers it separately: put it back between addresses and type. There is
/// room in front of the frame.
std::span<uint8_t> with_tag(std::span<uint8_t> frame, const tpacket2_hdr& told) {
  uint8_t* const begin = frame.data() - tag_size;
  std::memmove(begin, frame.data(), tag_at);
  const bool tpid_known = (told.tp_status & TP_STATUS_VLAN_TPID_VALID) != 0;
  const unsigned tpid = tpid_known ? told.tp_vlan_tpid : ETHERTYPE_VLAN;
  begin[tag_at] = static_cast<uint8_t>(tpid >> 8);
  begin[tag_at + 1] = static_cast<uint8_t>(tpid);
  begin[tag_at + 2] = static_cast<uint8_t>(told.tp_vlan_tci >> 8);
  begin[tag_at + 3] = static_cast<uint8_t>(told.tp_vlan_tci);
  return {begin, frame.size() + tag_size};
}

}  // namespace

PacketRing::PacketRing(int socket) : socket_(socket), memory_(nullptr), long_(tag_size + max_frame) {
  // Beyond the system's limit, where that is allowed.
  if (setsockopt(socket, SOL_SOCKET, SO_RCVBUFFORCE, &room_for_long_frames, sizeof room_for_long_frames) != 0)
    setsockopt(socket, SOL_SOCKET, SO_RCVBUF, &room_for_long_frames, sizeof room_for_long_frames);
  set(socket, SOL_PACKET, PACKET_VERSION, int{TPACKET_V2});
  set(socket, SOL_PACKET, PACKET_COPY_THRESH, 1);
  tpacket_req request{};
  request.tp_block_size = block_size;
  request.tp_block_nr = slots * slot_size / block_size;
  request.tp_frame_size = slot_size;
  request.tp_frame_nr = slots;
  set(socket, SOL_PACKET, PACKET_RX_RING, request);
  void* const mapped = mmap(nullptr, slots * slot_size, PROT_READ | PROT_WRITE, MAP_SHARED, socket, 0);
  if (mapped == MAP_FAILED) throw CannotStart(system_error("cannot share memory with a raw socket"));
  memory_ = static_cast<uint8_t*>(mapped);
}

PacketRing::~PacketRing() { munmap(memory_, slots * slot_size); }

tpacket2_hdr& PacketRing::slot(std::size_t number) const {
  return *reinterpret_cast<tpacket2_hdr*>(memory_ + number % slots * slot_size);
}

void PacketRing::receive(const Receiver& receiver) {
  std::array<Frame, burst> frames;
  std::size_t count = 0;
  const std::size_t first = next_;
  for (bool is_long = false; next_ - first < burst && !is_long; ++next_) {
    tpacket2_hdr& one = slot(next_);
    if ((std::atomic_ref(one.tp_status).load(std::memory_order_acquire) & TP_STATUS_USER) == 0) break;
    is_long = (one.tp_status & TP_STATUS_COPY) != 0;
    if (take(one, frames[count])) ++count;
  }
  if (next_ == first) {  // what is readable then is an error, such as an interface that is down
    int error = 0;
    socklen_t size = sizeof error;
    getsockopt(socket_, SOL_SOCKET, SO_ERROR, &error, &size);
  }
  if (count > 0) receiver({frames.data(), count});
  for (std::size_t number = first; number != next_; ++number)
    std::atomic_ref(slot(number).tp_status).store(TP_STATUS_KERNEL, std::memory_order_release);
}

/// False when the frame is lost.
bool PacketRing::take(tpacket2_hdr& slot, Frame& frame) {
  VnetHeader header{};
  uint8_t* const begin = reinterpret_cast<uint8_t*>(&slot) + slot.tp_mac;
  std::span<uint8_t> bytes(begin, slot.tp_snaplen);
  std::memcpy(&header, begin - sizeof header, sizeof header);
  if ((slot.tp_status & TP_STATUS_COPY) != 0)
    bytes = {&long_[tag_size], take_long()};
  else if (slot.tp_snaplen < slot.tp_len)
    bytes = {};  // too long, and there was no room for it elsewhere
  if (bytes.size() < tag_at) {
    ++lost_;
    return false;
  }
  chip::Segments segments = header.apply(bytes);
  if ((slot.tp_status & TP_STATUS_VLAN_VALID) != 0) {
    bytes = with_tag(bytes, slot);
    segments.move(tag_size);
  }
  frame = {.bytes = bytes, .segments = segments};
  return true;
}

/// Its length; 0 when there is none or it is longer than any frame.
std::size_t PacketRing::take_long() {
  VnetHeader header{};
  iovec parts[] = {{&header, sizeof header}, {&long_[tag_size], max_frame}};
  msghdr message{};
  message.msg_iov = parts;
  message.msg_iovlen = std::size(parts);
  ssize_t length = 0;
  do length = recvmsg(socket_, &message, 0);
  while (length < 0 && errno == ENETDOWN);  // which is told once, before what came earlier
  return length < static_cast<ssize_t>(sizeof header) || (message.msg_flags & MSG_TRUNC) != 0
             ? 0
             : static_cast<std::size_t>(length) - sizeof header;
}

uint64_t PacketRing::take_lost() { return std::exchange(lost_, 0); }

}  // namespace vswitch
