// The host table: routes to single IPv4 addresses. It is a hash table, so it can refuse an address before it is full.
#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>

#include "chip/hash.h"
#include "chip/l3_entries.h"

namespace chip {

struct HostKey {
  int vrf;
  uint32_t address;
  auto operator<=>(const HostKey&) const = default;
  std::size_t hash() const { return hash_of(vrf, address); }
};

class Hosts : public L3Entries<HostKey> {
 public:
  static constexpr int ways = 8;
  static constexpr int buckets = 1024;
  static constexpr int capacity = ways * buckets;

  /// An existing entry is replaced only if `replace` is set.
  Status add(const HostKey& key, const L3Entry& entry, bool replace) {
    int& used = used_[static_cast<std::size_t>(bucket_of(key))];
    const bool is_new = L3Entries::find(key) == nullptr;
    const Status status = L3Entries::add(key, entry, replace, used == ways);
    if (status == Status::ok && is_new) ++used;
    return status;
  }

  Status remove(const HostKey& key) {
    const Status status = L3Entries::remove(key);
    if (status == Status::ok) --used_[static_cast<std::size_t>(bucket_of(key))];
    return status;
  }

  void clear() {
    L3Entries::clear();
    used_ = {};
  }

  static int bucket_of(const HostKey& key) {
    constexpr uint32_t golden_ratio = 0x9E3779B1;  // spreads adjacent addresses over all buckets
    constexpr int top_bits = 10;
    static_assert(buckets == 1 << top_bits);
    return static_cast<int>((key.address + static_cast<uint32_t>(key.vrf)) * golden_ratio >> (32 - top_bits));
  }

  template <class Archive>
  void save(Archive& archive) const {
    L3Entries::save(archive);
    archive(used_);
  }
  template <class Archive>
  void load(Archive& archive) {
    L3Entries::load(archive);
    archive(used_);
  }

 private:
  std::array<int, buckets> used_{};
};

}  // namespace chip
