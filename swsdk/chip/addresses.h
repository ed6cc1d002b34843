// Addresses as values.
#pragma once

#include <array>
#include <cstdint>

namespace chip {

using Mac = std::array<uint8_t, 6>;
using Ip6 = std::array<uint8_t, 16>;

}  // namespace chip
