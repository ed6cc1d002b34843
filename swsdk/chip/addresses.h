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
  const auto word = [&](std::size_t at) { return static_cast<uint64_t>(mac[at] << 8 | mac[at + 1]); };
  return word(0) << 32 | word(2) << 16 | word(4);
}
inline bool is_broadcast(const Mac& mac) { return number_of(mac) == 0xFFFFFFFFFFFF; }

}  // namespace chip
