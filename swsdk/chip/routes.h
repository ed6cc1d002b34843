// The route table: IPv4 subnets with longest-prefix match.
#pragma once

#include <array>
#include <bit>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>

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
  static constexpr int max_length = 32;

  static constexpr uint32_t mask(int length) { return length == 0 ? 0 : ~uint32_t{0} << (max_length - length); }

  /// The key of a subnet; nothing when the ones of the mask do not come first.
  static std::optional<RouteKey> key_of(int vrf, uint32_t subnet, uint32_t mask_bits) {
    const int length = std::countl_one(mask_bits);
    if (mask(length) != mask_bits) return std::nullopt;
    return RouteKey{vrf, subnet & mask_bits, length};
  }

  /// An existing entry is replaced only if `replace` is set.
  Status add(const RouteKey& key, const L3Entry& entry, bool replace) {
    const std::size_t before = size();
    const Status status = L3Entries::add(key, entry, replace, before >= capacity);
    if (size() > before && ++of_length(key.length) == 1) lengths_ |= bit(key.length);
    return status;
  }

  Status remove(const RouteKey& key) {
    const Status status = L3Entries::remove(key);
    if (status == Status::ok && --of_length(key.length) == 0) lengths_ &= ~bit(key.length);
    return status;
  }

  void clear() {
    L3Entries::clear();
    of_length_ = {};
    lengths_ = 0;
  }

  /// The entry with the longest prefix that contains an address, or null.
  L3Entry* lookup(int vrf, uint32_t address) {
    for (uint64_t rest = lengths_; rest != 0;) {
      const int length = 63 - std::countl_zero(rest);
      if (L3Entry* const entry = find(key_around(vrf, address, length))) return entry;
      rest &= ~bit(length);
    }
    return nullptr;
  }
  /// The key of that entry.
  std::optional<RouteKey> key_of_longest(int vrf, uint32_t address) const {
    for (int length = max_length; length >= 0; --length)
      if (const RouteKey key = key_around(vrf, address, length); find(key) != nullptr) return key;
    return std::nullopt;
  }

  template <class Archive>
  void save(Archive& archive) const {
    L3Entries::save(archive);
    archive(of_length_, lengths_);
  }
  template <class Archive>
  void load(Archive& archive) {
    L3Entries::load(archive);
    archive(of_length_, lengths_);
  }

 private:
  static RouteKey key_around(int vrf, uint32_t address, int length) { return {vrf, address & mask(length), length}; }
  static uint64_t bit(int length) { return uint64_t{1} << length; }
  int& of_length(int length) { return of_length_[static_cast<std::size_t>(length)]; }

  std::array<int, max_length + 1> of_length_{};  // how many entries have a prefix of that length
  uint64_t lengths_ = 0;                         // those that any entry has, as bits
};

}  // namespace chip
