// Addresses as values.
#pragma once

#include <array>
#include <cstdint>

namespace chip {

using Mac = std::array<uint8_t, 6>;
using Ip6 = std::array<uint8_t, 16>;

/// Whether an address is multicast or broadcast. No frame comes from such an address.
inline bool is_group(const Mac& mac) { return (mac[0] & 1) != 0; }

}  // namespace chip
