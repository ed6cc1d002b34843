#include "chip/pipeline/egress_frame.h"

#include <algorithm>

namespace chip {

namespace {

class Writer {
 public:
  explicit Writer(std::span<uint8_t> room) : room_(room) {}

  void put(std::span<const uint8_t> bytes) {
    const std::size_t count = std::min(bytes.size(), room_.size() - at_);
    std::copy_n(bytes.begin(), count, room_.begin() + static_cast<std::ptrdiff_t>(at_));
    at_ += count;
  }
  void put(uint16_t word) {
    const std::array<uint8_t, 2> bytes{static_cast<uint8_t>(word >> 8), static_cast<uint8_t>(word)};
    put(bytes);
  }
  void put_tag(std::optional<uint16_t> tag) {
    if (!tag) return;
    put(tpid);
    put(*tag);
  }
  /// Pads the frame to the minimum size.
  void pad() {
    if (at_ >= EgressFrame::min_size) return;
    std::fill_n(room_.begin() + static_cast<std::ptrdiff_t>(at_), EgressFrame::min_size - at_, uint8_t{0});
    at_ = EgressFrame::min_size;
  }
  std::span<uint8_t> written() const { return room_.first(at_); }

 private:
  std::span<uint8_t> room_;
  std::size_t at_ = 0;
};

/// Decrements the TTL or hop limit, and updates the checksum of an IPv4 header.
void decrement_ttl(std::span<uint8_t> packet, bool is_ip4) {
  constexpr std::size_t ttl_of_ip4 = 8;
  constexpr std::size_t ttl_of_ip6 = 7;
  --packet[is_ip4 ? ttl_of_ip4 : ttl_of_ip6];
  if (!is_ip4) return;
  uint8_t& high = packet[10];
  uint8_t& low = packet[11];
  // The checksum is a one's complement: it grows by what the sum lost, with end-around carry.
  const unsigned sum = (static_cast<unsigned>(high) << 8 | low) + 0x100;
  const unsigned folded = (sum & 0xFFFF) + (sum >> 16);
  high = static_cast<uint8_t>(folded >> 8);
  low = static_cast<uint8_t>(folded);
}

/// Whether a copy with that header has the bytes of the packet as received.
bool is_as_received(const EgressHeader& header, const Packet& packet) {
  if (header.routed || packet.bytes.size() < EgressFrame::min_size) return false;
  const int format = (header.outer_tag ? 1 : 0) | (header.inner_tag ? 2 : 0);
  if (format != packet.fields.vlan_format) return false;
  const auto has_tag_at = [&](std::size_t at, uint16_t tag) {
    return static_cast<uint16_t>(packet.bytes[at] << 8 | packet.bytes[at + 1]) == tag;
  };
  constexpr std::size_t outer_at = 14;
  constexpr std::size_t inner_at = 18;
  return (!header.outer_tag || has_tag_at(outer_at, *header.outer_tag)) &&
         (!header.inner_tag || has_tag_at(inner_at, *header.inner_tag));
}

}  // namespace

std::span<const uint8_t> EgressFrame::write(const EgressHeader& header, const Packet& packet) {
  if (is_as_received(header, packet)) return packet.bytes;
  Writer writer(bytes_);
  writer.put(header.destination);
  writer.put(header.source);
  writer.put_tag(header.outer_tag);
  writer.put_tag(header.inner_tag);
  const std::size_t payload_at = writer.written().size() + packet.payload_at - packet.ether_type_at;
  writer.put(packet.bytes.subspan(packet.ether_type_at));
  if (header.routed) decrement_ttl(writer.written().subspan(payload_at), packet.is_ip4());
  writer.pad();
  return writer.written();
}

}  // namespace chip
