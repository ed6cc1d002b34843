#include "chip/pipeline/parse.h"

#include <algorithm>

namespace chip {

namespace {

constexpr uint16_t tpids[] = {0x8100, 0x88A8, 0x9100};
constexpr uint16_t lowest_ether_type = 0x600;  // below, it is a length

/// Reads a frame from front to back, never past its end.
class Reader {
 public:
  explicit Reader(std::span<const uint8_t> bytes) : bytes_(bytes) {}

  bool has(std::size_t count) const { return bytes_.size() - at_ >= count; }
  std::size_t at() const { return at_; }
  void skip(std::size_t count) { at_ += count; }
  /// Leaves out what is behind the next `count` bytes.
  void limit(std::size_t count) { bytes_ = bytes_.first(at_ + count); }

  uint8_t byte(std::size_t offset) const { return bytes_[at_ + offset]; }
  uint16_t word(std::size_t offset) const { return static_cast<uint16_t>(byte(offset) << 8 | byte(offset + 1)); }
  uint32_t number(std::size_t offset) const { return static_cast<uint32_t>(word(offset)) << 16 | word(offset + 2); }
  template <class Address>
  Address address(std::size_t offset) const {
    Address result;
    std::copy_n(bytes_.begin() + static_cast<std::ptrdiff_t>(at_ + offset), result.size(), result.begin());
    return result;
  }

 private:
  std::span<const uint8_t> bytes_;
  std::size_t at_ = 0;
};

bool is_tpid(uint16_t type) { return std::find(std::begin(tpids), std::end(tpids), type) != std::end(tpids); }

bool parse_l4(Reader& reader, Packet& packet) {
  FrameFields& fields = packet.fields;
  const int protocol = fields.ip_protocol;
  if (protocol == ip_protocol::tcp || protocol == ip_protocol::udp) {
    if (!reader.has(protocol == ip_protocol::tcp ? 20 : 8)) return false;
    fields.l4_source_port = reader.word(0);
    fields.l4_destination_port = reader.word(2);
  } else if ((packet.is_ip4() && (protocol == ip_protocol::icmp || protocol == ip_protocol::igmp)) ||
             (packet.is_ip6() && protocol == ip_protocol::icmp6)) {
    if (!reader.has(protocol == ip_protocol::icmp6 ? 4 : 8)) return false;
    fields.icmp_type = reader.byte(0);
    fields.icmp_code = reader.byte(1);
    packet.igmp = packet.is_ip4() && protocol == ip_protocol::igmp;
  }
  return true;
}

bool parse_ip4(Reader& reader, Packet& packet) {
  constexpr std::size_t shortest = 20;
  constexpr uint16_t fragment_offset = 0x1FFF;
  if (!reader.has(shortest) || reader.byte(0) >> 4 != 4) return false;
  const std::size_t header = std::size_t{4} * (reader.byte(0) & 0xFU);
  const std::size_t total = reader.word(2);
  if (header < shortest || total < header || !reader.has(total)) return false;
  FrameFields& fields = packet.fields;
  fields.tos = reader.byte(1);
  fields.ttl = reader.byte(8);
  fields.ip_protocol = reader.byte(9);
  fields.source_ip = reader.number(12);
  fields.destination_ip = reader.number(16);
  const bool is_first = (reader.word(6) & fragment_offset) == 0;
  reader.limit(total);  // what is behind is padding
  reader.skip(header);
  return !is_first || parse_l4(reader, packet);
}

bool parse_ip6(Reader& reader, Packet& packet) {
  constexpr std::size_t header = 40;
  if (!reader.has(header) || reader.byte(0) >> 4 != 6) return false;
  const std::size_t payload = reader.word(4);
  if (!reader.has(header + payload)) return false;
  FrameFields& fields = packet.fields;
  fields.tos = static_cast<uint8_t>(reader.word(0) >> 4);
  fields.ip_protocol = reader.byte(6);
  fields.ttl = reader.byte(7);
  fields.source_ip6 = reader.address<Ip6>(8);
  fields.destination_ip6 = reader.address<Ip6>(24);
  reader.limit(header + payload);
  reader.skip(header);
  // What the packet carries stands behind the extension headers.
  while (fields.ip_protocol == ip_protocol::hop_by_hop || fields.ip_protocol == ip_protocol::routing_header ||
         fields.ip_protocol == ip_protocol::destination_options || fields.ip_protocol == ip_protocol::fragment_header) {
    constexpr std::size_t unit = 8;
    if (!reader.has(unit)) return false;
    const bool is_fragment = fields.ip_protocol == ip_protocol::fragment_header;
    const bool is_first = !is_fragment || reader.word(2) >> 3 == 0;
    const std::size_t length = is_fragment ? unit : (reader.byte(1) + 1U) * unit;
    if (!reader.has(length)) return false;
    fields.ip_protocol = reader.byte(0);
    reader.skip(length);
    if (!is_first) return true;
  }
  return parse_l4(reader, packet);
}

bool parse_arp(Reader& reader, Packet& packet) {
  constexpr std::size_t of_ip4 = 28;
  if (!reader.has(of_ip4)) return false;
  const bool is_ip4 = reader.word(0) == 1 && reader.word(2) == 0x0800;
  if (is_ip4) packet.fields.arp_target_ip = reader.number(24);
  return true;
}

/// Leaves the reader behind the ether type.
bool parse_ether_type(Reader& reader, Packet& packet) {
  if (!reader.has(2)) return false;
  packet.ether_type_at = reader.at();
  const uint16_t type = reader.word(0);
  reader.skip(2);
  packet.fields.ether_type = type;
  if (type < lowest_ether_type) {
    constexpr std::size_t llc = 3;
    constexpr std::size_t snap = 8;
    if (type < llc || !reader.has(type)) return false;
    const bool is_snap = type >= snap && reader.word(0) == 0xAAAA && reader.byte(2) == 0x03;
    packet.framing = is_snap ? Framing::snap : Framing::llc;
    packet.fields.ether_type = is_snap ? reader.word(6) : 0;
    packet.access_points = is_snap ? 0 : reader.word(0);
    reader.skip(is_snap ? snap : llc);
  }
  return true;
}

}  // namespace

bool parse(int port, std::span<const uint8_t> frame, Packet& packet) {
  constexpr std::size_t addresses = 12;
  packet.bytes = frame;
  packet.port = packet.source = port;
  FrameFields& fields = packet.fields;
  fields.in_port = port;

  Reader reader(frame);
  if (!reader.has(addresses + 2)) return false;
  fields.destination_mac = reader.address<Mac>(0);
  fields.source_mac = reader.address<Mac>(6);
  reader.skip(addresses);

  constexpr std::size_t tag = 4;
  if (is_tpid(reader.word(0))) {
    if (!reader.has(tag + 2)) return false;
    packet.outer_tagged = true;
    fields.outer_tag = reader.word(2);
    reader.skip(tag);
    if (is_tpid(reader.word(0))) {
      if (!reader.has(tag + 2)) return false;
      packet.inner_tagged = true;
      fields.inner_tag = reader.word(2);
      reader.skip(tag);
    }
  }
  fields.vlan_format = (packet.outer_tagged ? 1 : 0) | (packet.inner_tagged ? 2 : 0);
  packet.priority = fields.outer_tag >> priority_shift;

  if (!parse_ether_type(reader, packet)) return false;
  packet.payload_at = reader.at();
  if (packet.is_ip4()) return parse_ip4(reader, packet);
  if (packet.is_ip6()) return parse_ip6(reader, packet);
  if (packet.is_arp()) return parse_arp(reader, packet);
  return true;
}

}  // namespace chip
