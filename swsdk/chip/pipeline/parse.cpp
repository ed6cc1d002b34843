#include "chip/pipeline/parse.h"

#include <algorithm>

namespace chip {

namespace {

constexpr uint16_t min_ether_type = 0x600;  // below, it is a length

/// Reads a frame from front to back, never past its end.
class Reader {
 public:
  explicit Reader(std::span<const uint8_t> bytes) : bytes_(bytes) {}

  bool has(std::size_t count) const { return bytes_.size() - at_ >= count; }
  std::size_t at() const { return at_; }
  void skip(std::size_t count) { at_ += count; }
  /// Ignores everything after the next `count` bytes.
  void limit(std::size_t count) {
    if (has(count)) bytes_ = bytes_.first(at_ + count);
  }

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

/// Reads the ports or the ICMP type, if the protocol has any.
void parse_transport(Reader& reader, Packet& packet) {
  FrameFields& fields = packet.fields;
  const int protocol = fields.ip_protocol;
  if (protocol == ip_protocol::tcp || protocol == ip_protocol::udp) {
    if (!reader.has(4)) return;
    fields.l4_source_port = reader.word(0);
    fields.l4_destination_port = reader.word(2);
  } else if ((packet.is_ip4() && protocol == ip_protocol::icmp) || packet.is_igmp() ||
             (packet.is_ip6() && protocol == ip_protocol::icmp6)) {
    if (!reader.has(2)) return;
    fields.icmp_type = reader.byte(0);
    fields.icmp_code = reader.byte(1);
  }
  fields.readable = Layer::transport;
}

void parse_ip4(Reader& reader, Packet& packet) {
  constexpr std::size_t shortest = 20;
  constexpr uint16_t fragment_offset = 0x1FFF;
  if (!reader.has(shortest) || reader.byte(0) >> 4 != 4) return;
  const std::size_t header = std::size_t{4} * (reader.byte(0) & 0xFU);
  if (header < shortest) return;
  FrameFields& fields = packet.fields;
  fields.readable = Layer::network;
  fields.tos = reader.byte(1);
  fields.ttl = reader.byte(8);
  fields.ip_protocol = reader.byte(9);
  fields.source_ip = reader.number(12);
  fields.destination_ip = reader.number(16);
  const bool is_first = (reader.word(6) & fragment_offset) == 0;
  const std::size_t total = reader.word(2);
  packet.lengths_agree = header <= total && reader.has(total);
  if (total < header || !reader.has(header)) return;
  reader.limit(total);  // the rest is padding
  reader.skip(header);
  if (is_first)
    parse_transport(reader, packet);
  else
    fields.readable = Layer::transport;  // a later fragment has no transport header
}

void parse_ip6(Reader& reader, Packet& packet) {
  constexpr std::size_t header = 40;
  if (!reader.has(header) || reader.byte(0) >> 4 != 6) return;
  FrameFields& fields = packet.fields;
  fields.readable = Layer::network;
  fields.tos = static_cast<uint8_t>(reader.word(0) >> 4);
  fields.ip_protocol = reader.byte(6);
  fields.ttl = reader.byte(7);
  fields.source_ip6 = reader.address<Ip6>(8);
  fields.destination_ip6 = reader.address<Ip6>(24);
  const std::size_t payload = reader.word(4);
  packet.lengths_agree = reader.has(header + payload);
  reader.limit(header + payload);
  reader.skip(header);
  // Skip the extension headers.
  while (fields.ip_protocol == ip_protocol::hop_by_hop || fields.ip_protocol == ip_protocol::routing_header ||
         fields.ip_protocol == ip_protocol::destination_options || fields.ip_protocol == ip_protocol::fragment_header) {
    constexpr std::size_t unit = 8;
    if (!reader.has(unit)) return;
    const bool is_fragment = fields.ip_protocol == ip_protocol::fragment_header;
    const bool is_first = !is_fragment || reader.word(2) >> 3 == 0;
    const std::size_t length = is_fragment ? unit : (reader.byte(1) + 1U) * unit;
    if (!reader.has(length)) return;
    fields.ip_protocol = reader.byte(0);
    reader.skip(length);
    if (!is_first) {
      fields.readable = Layer::transport;
      return;
    }
  }
  parse_transport(reader, packet);
}

void parse_arp(Reader& reader, Packet& packet) {
  constexpr std::size_t of_ip4 = 28;
  if (!reader.has(of_ip4)) return;
  const bool is_ip4 = reader.word(0) == 1 && reader.word(2) == ether_type::ip4;
  if (is_ip4) packet.fields.arp_target_ip = reader.number(24);
  packet.fields.readable = Layer::transport;
}

/// Reads LLC and SNAP after a length. Only SNAP of the organization 00:00:00 contains an ether type; the numbers of
/// other organizations, 00:00:F8 included, are their own.
void parse_llc(Reader& reader, Packet& packet) {
  constexpr std::size_t llc = 3;
  constexpr std::size_t snap = 8;
  const std::size_t length = packet.fields.ether_type;
  packet.fields.ether_type = 0;
  packet.framing = Framing::unreadable;
  if (length < llc || !reader.has(llc)) return;
  packet.framing = Framing::llc;
  packet.access_points = reader.word(0);
  const bool is_snap = length >= snap && reader.has(snap) && reader.word(0) == 0xAAAA && reader.byte(2) == 0x03 &&
                       reader.byte(3) == 0 && reader.word(4) == 0;
  if (is_snap) {
    packet.framing = Framing::snap;
    packet.access_points = 0;
    packet.fields.ether_type = reader.word(6);
  }
  reader.skip(is_snap ? snap : llc);
}

/// Reads a tag, if there is one; cut: the frame ends within it or before the next type.
enum class TagRead { none, whole, cut };
TagRead parse_tag(Reader& reader, uint16_t& tag) {
  constexpr std::size_t size = 4;
  constexpr std::size_t type = 2;
  if (reader.word(0) != tpid) return TagRead::none;
  if (!reader.has(size + type)) return TagRead::cut;
  tag = reader.word(2);
  reader.skip(size);
  return TagRead::whole;
}

}  // namespace

bool parse(Port port, std::span<const uint8_t> frame, Packet& packet) {
  constexpr std::size_t addresses = 12;
  packet.bytes = frame;
  packet.port = port;
  packet.source = port;
  FrameFields& fields = packet.fields;
  fields.in_port = port;

  Reader reader(frame);
  if (!reader.has(addresses + 2)) return false;
  fields.destination_mac = reader.address<Mac>(0);
  fields.source_mac = reader.address<Mac>(6);
  reader.skip(addresses);

  const TagRead outer = parse_tag(reader, fields.outer_tag);
  const TagRead inner = outer == TagRead::whole ? parse_tag(reader, fields.inner_tag) : TagRead::none;
  if (outer == TagRead::cut || inner == TagRead::cut) return false;
  packet.outer_tagged = outer == TagRead::whole;
  packet.inner_tagged = inner == TagRead::whole;
  fields.vlan_format = (packet.outer_tagged ? 1 : 0) | (packet.inner_tagged ? 2 : 0);
  packet.priority = fields.outer_tag >> priority_shift;

  packet.ether_type_at = reader.at();
  fields.ether_type = reader.word(0);
  reader.skip(2);
  if (fields.ether_type < min_ether_type) parse_llc(reader, packet);
  packet.payload_at = reader.at();

  fields.readable = Layer::ethernet;
  switch (fields.ether_type) {
    case ether_type::ip4:
      parse_ip4(reader, packet);
      break;
    case ether_type::ip6:
      parse_ip6(reader, packet);
      break;
    case ether_type::arp:
      parse_arp(reader, packet);
      break;
    default:
      fields.readable = Layer::transport;  // nothing more to read
  }
  return true;
}

}  // namespace chip
