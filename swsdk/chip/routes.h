// The route table: IPv4 subnets, of which the one with the longest prefix takes an address.
#pragma once

#include <array>
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
    const std::size_t before = size();
    const Status status = L3Entries::add(key, entry, replace, before >= capacity);
    if (size() > before) ++of_length(key.length);
    return status;
  }

  Status remove(const RouteKey& key) {
    const Status status = L3Entries::remove(key);
    if (status == Status::ok) --of_length(key.length);
    return status;
  }

  void clear() {
    L3Entries::clear();
    of_length_ = {};
  }

  /// The entry that an address takes, or null.
  L3Entry* lookup(int vrf, uint32_t address) {
    for (int length = longest; length >= 0; --length) {
      if (of_length(length) == 0) continue;
      if (L3Entry* const entry = find(RouteKey{vrf, address & mask(length), length})) return entry;
    }
    return nullptr;
  }

 private:
  int& of_length(int length) { return of_length_[static_cast<std::size_t>(length)]; }

  std::array<int, longest + 1> of_length_{};  // how many entries have a prefix of that length
};

}  // namespace chip
