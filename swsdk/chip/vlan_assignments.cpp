#include "chip/vlan_assignments.h"

#include <bit>

namespace chip {

namespace {

/// The address without what comes after the prefix.
Ip6 cut(Ip6 address, int prefix) {
  for (int bit = prefix; bit < 128; ++bit)
    address[static_cast<std::size_t>(bit / 8)] &= static_cast<uint8_t>(~(0x80 >> bit % 8));
  return address;
}

}  // namespace

std::optional<Subnet> subnet_of_ip4(uint32_t address, uint32_t mask) {
  const int prefix = std::countl_one(mask);
  if (std::popcount(mask) != prefix) return std::nullopt;
  Ip6 bytes{};
  for (std::size_t i = 0; i < 4; ++i) bytes[i] = static_cast<uint8_t>(address >> (24 - 8 * i));
  return Subnet{false, prefix, cut(bytes, prefix)};
}

std::optional<Subnet> subnet_of_ip6(const Ip6& address, int prefix) {
  if (prefix < 0 || prefix > 128) return std::nullopt;
  return Subnet{true, prefix, cut(address, prefix)};
}

}  // namespace chip
