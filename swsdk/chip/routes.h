// The route table: IPv4 subnets, of which the one with the longest prefix takes an address.
#pragma once

#include <bit>
#include <compare>
#include <cstddef>
#include <cstdint>

#include "chip/hash.h"
#include "chip/l3_entries.h"

namespace chip {

struct RouteKey {
  int vrf;
  uint32_t subnet;
  int length;  // of the prefix
  auto operator<=>(const RouteKey&) const = default;
  std::size_t hash() const { return hash_of(vrf, subnet, length); }
};

class Routes : public L3Entries<RouteKey> {
 public:
  static constexpr std::size_t capacity = 8192;
  static constexpr int longest = 32;

  Routes() : L3Entries(capacity) {}

  static constexpr uint32_t mask(int length) { return length == 0 ? 0 : ~uint32_t{0} << (longest - length); }

  /// The key of a subnet; false when the ones of the mask do not come first.
  static bool make_key(int vrf, uint32_t subnet, uint32_t mask_bits, RouteKey& key) {
    const int length = std::countl_one(mask_bits);
    key = {vrf, subnet & mask_bits, length};
    return mask(length) == mask_bits;
  }

  /// An entry that is there already is refused unless it is to be replaced.
  Status add(const RouteKey& key, const L3Entry& entry, bool replace) {
    return L3Entries::add(key, entry, replace, size() >= capacity);
  }
  using L3Entries::clear;
  using L3Entries::remove;

  /// The entry that an address takes, or null.
  const L3Entry* lookup(int vrf, uint32_t address) const {
    for (int length = longest; length >= 0; --length)
      if (const L3Entry* const entry = find(RouteKey{vrf, address & mask(length), length})) return entry;
    return nullptr;
  }
};

}  // namespace chip
