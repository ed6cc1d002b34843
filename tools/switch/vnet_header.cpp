#include "vnet_header.h"

#include <cstddef>

namespace vswitch {

namespace {

constexpr uint8_t needs_checksum = 1;  // flag
constexpr uint8_t no_segments = 0;     // kinds
constexpr uint8_t tcp_ip4 = 1;
constexpr uint8_t tcp_ip6 = 4;
constexpr uint8_t udp = 5;
constexpr uint8_t with_cwr = 0x80;  // a bit of the kinds of TCP

constexpr unsigned udp_header = 8;
constexpr std::size_t tcp_length_at = 12;
constexpr std::size_t tcp_flags_at = 13;
constexpr uint8_t cwr = 0x80;

}  // namespace

chip::Segments VnetHeader::apply(std::span<uint8_t> frame) const {
  using Kind = chip::Segments::Kind;
  chip::Segments segments;
  const std::size_t checksum_at = std::size_t{checksum_start} + checksum_offset;
  if (kind == no_segments) {
    if ((flags & needs_checksum) != 0) chip::complete_checksum(frame, checksum_start, checksum_at);
    return segments;
  }
  switch (kind & ~with_cwr) {
    case tcp_ip4:
      segments.kind = Kind::tcp_ip4;
      break;
    case tcp_ip6:
      segments.kind = Kind::tcp_ip6;
      break;
    case udp:
      segments.kind = Kind::udp;
      break;
    default:
      segments.kind = Kind::unknown;
      return segments;
  }
  segments.payload = segment_size;
  segments.checksum_start = checksum_start;
  segments.checksum_at = static_cast<uint16_t>(checksum_at);
  // The kernel's count of header bytes is a hint only.
  const std::size_t tcp_length = std::size_t{checksum_start} + tcp_length_at;
  if ((flags & needs_checksum) != 0 && tcp_length < frame.size())
    segments.headers = static_cast<uint16_t>(checksum_start +
                                             (segments.kind == Kind::udp ? udp_header : (frame[tcp_length] >> 4) * 4U));
  if (segments.headers == 0 || segments.headers > frame.size()) segments.kind = Kind::unknown;
  return segments;
}

VnetHeader VnetHeader::of(std::span<const uint8_t> frame, const chip::Segments& segments) {
  using Kind = chip::Segments::Kind;
  VnetHeader header{};
  if (!segments.is_aggregate()) return header;
  header.flags = needs_checksum;
  header.kind = segments.kind == Kind::tcp_ip4 ? tcp_ip4 : segments.kind == Kind::tcp_ip6 ? tcp_ip6 : udp;
  if (segments.kind != Kind::udp && (frame[segments.checksum_start + tcp_flags_at] & cwr) != 0) header.kind |= with_cwr;
  header.headers = segments.headers;
  header.segment_size = segments.payload;
  header.checksum_start = segments.checksum_start;
  header.checksum_offset = static_cast<uint16_t>(segments.checksum_at - segments.checksum_start);
  return header;
}

}  // namespace vswitch
