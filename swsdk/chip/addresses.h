// Addresses as values.
#pragma once

#include <array>
#include <cstdint>

namespace chip {

using Mac = std::array<uint8_t, 6>;
using Ip6 = std::array<uint8_t, 16>;

/// Whether it is the address of several stations: multicast or broadcast. No frame comes from one.
inline bool is_group(const Mac& mac) { return (mac[0] & 1) != 0; }

}  // namespace chip
