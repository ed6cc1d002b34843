#include "checksum.h"

#include <cstddef>

namespace vswitch {

namespace {

constexpr unsigned tcp = 6;
constexpr unsigned udp = 17;

unsigned word(std::span<const uint8_t> bytes, std::size_t at) {
  return at + 2 <= bytes.size() ? static_cast<unsigned>(bytes[at] << 8 | bytes[at + 1]) : 0;
}

unsigned sum(std::span<const uint8_t> bytes) {
  unsigned result = 0;
  for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) result += word(bytes, at);
  return bytes.size() % 2 == 0 ? result : result + (static_cast<unsigned>(bytes.back()) << 8);
}

/// Of the addresses of the IP header at a place, and the segment after it.
void fill_in(std::span<const uint8_t> addresses, unsigned protocol, std::span<uint8_t> segment) {
  const std::size_t at = protocol == tcp ? 16 : 6;
  if ((protocol != tcp && protocol != udp) || segment.size() < at + 2) return;
  segment[at] = segment[at + 1] = 0;
  unsigned total = sum(addresses) + protocol + static_cast<unsigned>(segment.size()) + sum(segment);
  while (total >> 16 != 0) total = (total & 0xFFFF) + (total >> 16);
  const unsigned checksum = total == 0xFFFF ? total : 0xFFFF - total;  // 0 would mean that there is no checksum
  segment[at] = static_cast<uint8_t>(checksum >> 8);
  segment[at + 1] = static_cast<uint8_t>(checksum);
}

}  // namespace

void complete_checksum(std::span<uint8_t> frame) {
  std::size_t at = 12;
  while (word(frame, at) == 0x8100 || word(frame, at) == 0x88A8) at += 4;
  const unsigned type = word(frame, at);
  at += 2;
  if (type == 0x0800 && at + 20 <= frame.size()) {
    const std::size_t header = (frame[at] & 0xFU) * 4U;
    const std::size_t length = word(frame, at + 2);  // the rest is padding
    if (header < 20 || length < header || at + length > frame.size()) return;
    fill_in(frame.subspan(at + 12, 8), frame[at + 9], frame.subspan(at + header, length - header));
  } else if (type == 0x86DD && at + 40 <= frame.size()) {
    const std::size_t length = word(frame, at + 4);
    if (at + 40 + length > frame.size()) return;
    fill_in(frame.subspan(at + 8, 32), frame[at + 6], frame.subspan(at + 40, length));
  }
}

}  // namespace vswitch
