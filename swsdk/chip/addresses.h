// Addresses as values.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace chip {

using Mac = std::array<uint8_t, 6>;
using Ip6 = std::array<uint8_t, 16>;

/// Whether an address is multicast or broadcast. No frame comes from such an address.
inline bool is_group(const Mac& mac) { return (mac[0] & 1) != 0; }

/// An address as a number.
inline uint64_t number_of(const Mac& mac) {
  // In two parts, of which each is a load and a change of the order of its bytes.
  const uint32_t high = uint32_t{mac[0]} << 24 | uint32_t{mac[1]} << 16 | uint32_t{mac[2]} << 8 | mac[3];
  const auto low = static_cast<uint16_t>(mac[4] << 8 | mac[5]);
  return uint64_t{high} << 16 | low;
}
inline bool is_broadcast(const Mac& mac) { return number_of(mac) == 0xFFFFFFFFFFFF; }

}  // namespace chip
