// What the host table and the route table have in common: entries with a next hop, which record that they were used.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <unordered_map>
#include <vector>

#include "chip/addresses.h"
#include "chip/hash_index.h"
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
  L3Entry* find(const Key& key) { return entries_.find(key); }
  const L3Entry* find(const Key& key) const { return entries_.find(key); }

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
    entries_.for_each([&](const Key&, const L3Entry& entry) { result.push_back(entry.hit); });
    return result;
  }
  /// Of the same entries.
  void restore(const Hits& hits) {
    auto hit = hits.begin();
    entries_.for_each([&](const Key&, L3Entry& entry) { entry.hit = *hit++; });
  }

  /// How many entries use an interface or egress object.
  int uses(int interface) const {
    const auto found = uses_.find(interface);
    return found == uses_.end() ? 0 : found->second;
  }

  std::size_t size() const { return entries_.size(); }
  /// A copy of the entries in the order of their keys.
  std::map<Key, L3Entry> all() const {
    std::map<Key, L3Entry> result;
    entries_.for_each([&](const Key& key, const L3Entry& entry) { result.emplace(key, entry); });
    return result;
  }

  template <class Archive>
  void save(Archive& archive) const {
    archive(all());
  }
  template <class Archive>
  void load(Archive& archive) {
    std::map<Key, L3Entry> entries;
    archive(entries);
    clear();
    for (const auto& [key, entry] : entries) add(key, entry, false, false);
  }

 protected:
  /// `full`: whether a new entry is refused.
  Status add(const Key& key, const L3Entry& entry, bool replace, bool full) {
    if (const L3Entry* const present = find(key)) {
      if (!replace) return Status::exists;
      --uses_[present->interface];
    } else if (full) {
      return Status::full;
    }
    entries_[key] = entry;
    ++uses_[entry.interface];
    return Status::ok;
  }

  Status remove(const Key& key) {
    const L3Entry* const entry = find(key);
    if (entry == nullptr) return Status::not_found;
    --uses_[entry->interface];
    entries_.erase(key);
    return Status::ok;
  }

  void clear() {
    entries_.clear();
    uses_.clear();
  }

 private:
  HashIndex<Key, L3Entry> entries_;
  std::unordered_map<int, int> uses_;  // entries with 0 stay
};

}  // namespace chip
