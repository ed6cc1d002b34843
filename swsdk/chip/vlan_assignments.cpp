#include "chip/vlan_assignments.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <iterator>

namespace chip {

namespace {

/// The address without what comes after the prefix.
Ip6 cut(Ip6 address, int prefix) {
  auto byte = static_cast<std::size_t>(prefix / 8);
  if (prefix % 8 != 0) address[byte++] &= static_cast<uint8_t>(0xFF00 >> prefix % 8);
  std::fill(address.begin() + static_cast<std::ptrdiff_t>(byte), address.end(), uint8_t{0});
  return address;
}

}  // namespace

std::size_t Subnet::hash() const {
  std::array<uint64_t, 2> halves{};
  std::memcpy(halves.data(), address.data(), sizeof halves);
  return hash_of(is_ip6, prefix, halves[0], halves[1]);
}

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

const VlanAssignment* find_around(const SubnetVlans& subnets, const Subnet& address) {
  // Subnets of one family are in order of their prefixes: the smaller a subnet, the nearer to the end.
  auto end = subnets.all().upper_bound(address);
  while (end != subnets.all().begin()) {
    const Subnet& longest = std::prev(end)->first;
    if (longest.is_ip6 != address.is_ip6) break;
    const Subnet around{address.is_ip6, longest.prefix, cut(address.address, longest.prefix)};
    if (const VlanAssignment* const found = subnets.find(around)) return found;
    end = subnets.all().lower_bound({address.is_ip6, longest.prefix, Ip6{}});
  }
  return nullptr;
}

}  // namespace chip
