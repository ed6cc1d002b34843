// What the host table and the route table have in common: entries with a next hop, which record that they were used.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory_resource>
#include <unordered_map>
#include <vector>

#include "chip/addresses.h"
#include "chip/origin.h"
#include "chip/place.h"
#include "chip/status.h"

namespace chip {

struct L3Entry {
  // Bits of `hit`.
  static constexpr uint32_t source_hit = 0x4;
  static constexpr uint32_t destination_hit = 0x8;
  static constexpr uint32_t any_hit = source_hit | destination_hit;

  // A flag of hosts and one of routes: matching packets go to the CPU.
  static constexpr uint32_t to_cpu = 0x1000 | 0x2000;

  uint32_t flags = 0;
  uint32_t hit = 0;
  int interface = 0;  // or an egress object
  uint32_t next_hop_ip = 0;
  Mac next_hop{};
  Place place{};
  uint16_t vlan = 0;
  Origin origin{};
};

/// Entries by their key, which has a `hash()`: lookup time does not depend on their number.
template <class Key>
class L3Entries {
 public:
  /// `capacity`: the maximum number of entries; memory for all of them is reserved, so the table never rehashes.
  explicit L3Entries(std::size_t capacity) { entries_.reserve(capacity); }

  L3Entry* find(const Key& key) {
    const auto entry = entries_.find(key);
    return entry == entries_.end() ? nullptr : &entry->second;
  }

  const L3Entry* find(const Key& key) const {
    const auto entry = entries_.find(key);
    return entry == entries_.end() ? nullptr : &entry->second;
  }

  /// Records that frames used an entry.
  Status hit(const Key& key, uint32_t hits) {
    L3Entry* const entry = find(key);
    if (entry == nullptr) return Status::not_found;
    entry->hit |= hits & L3Entry::any_hit;
    return Status::ok;
  }

  /// The marks of the entries, in the table's own order.
  using Hits = std::vector<uint32_t>;
  Hits hits() const {
    Hits result;
    for (const auto& [key, entry] : entries_) result.push_back(entry.hit);
    return result;
  }
  /// Of the same entries.
  void restore(const Hits& hits) {
    auto hit = hits.begin();
    for (auto& [key, entry] : entries_) entry.hit = *hit++;
  }

  /// How many entries use an interface or egress object.
  int uses(int interface) const {
    const auto found = uses_.find(interface);
    return found == uses_.end() ? 0 : found->second;
  }

  std::size_t size() const { return entries_.size(); }
  /// A copy of the entries in the order of their keys.
  std::map<Key, L3Entry> all() const { return {entries_.begin(), entries_.end()}; }

 protected:
  /// `full`: whether a new entry is refused.
  Status add(const Key& key, const L3Entry& entry, bool replace, bool full) {
    const auto present = entries_.find(key);
    if (present == entries_.end()) {
      if (full) return Status::full;
      entries_.emplace(key, entry);
    } else {
      if (!replace) return Status::exists;
      --uses_[present->second.interface];
      present->second = entry;
    }
    ++uses_[entry.interface];
    return Status::ok;
  }

  Status remove(const Key& key) {
    const auto entry = entries_.find(key);
    if (entry == entries_.end()) return Status::not_found;
    --uses_[entry->second.interface];
    entries_.erase(entry);
    return Status::ok;
  }

  void clear() {
    entries_.clear();
    uses_.clear();
  }

 private:
  struct Hash {
    std::size_t operator()(const Key& key) const { return key.hash(); }
  };

  std::pmr::unsynchronized_pool_resource pool_;  // keeps the entries close together
  std::pmr::unordered_map<Key, L3Entry, Hash> entries_{&pool_};
  std::unordered_map<int, int> uses_;  // entries with 0 stay
};

}  // namespace chip
