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

constexpr std::size_t tcp_length_at = 12;
constexpr std::size_t tcp_flags_at = 13;
constexpr uint8_t cwr = 0x80;

}  // namespace

std::optional<chip::Segments> VnetHeader::apply(std::span<uint8_t> frame) const {
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
      return std::nullopt;
  }
  // The kernel's count of header bytes is a hint only.
  const std::size_t end_of_tcp_length = checksum_start + tcp_length_at + 1;
  if ((flags & needs_checksum) == 0 || frame.size() < end_of_tcp_length) return std::nullopt;
  const std::size_t transport_header = segments.kind == Kind::udp ? 8 : (frame[end_of_tcp_length - 1] >> 4) * 4U;
  segments.payload = segment_size;
  segments.checksum_start = checksum_start;
  segments.checksum_at = static_cast<uint16_t>(checksum_at);
  segments.headers = static_cast<uint16_t>(checksum_start + transport_header);
  if (frame.size() < segments.headers) return std::nullopt;
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
