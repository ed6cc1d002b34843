// What the tables of hosts and of routes have in common: entries that lead somewhere, and that note when they are used.
#pragma once

#include <cstdint>
#include <map>
#include <unordered_map>

#include "chip/addresses.h"
#include "chip/status.h"

namespace chip {

struct L3Entry {
  // Bits of `hit`.
  static constexpr uint32_t source_hit = 0x4;
  static constexpr uint32_t destination_hit = 0x8;
  static constexpr uint32_t any_hit = source_hit | destination_hit;

  uint32_t flags = 0;
  uint32_t flags2 = 0;
  uint32_t hit = 0;
  int interface = 0;  // or an egress object
  uint32_t next_hop_ip = 0;
  Mac next_hop{};
  int module = 0;
  int port = 0;
  uint16_t vlan = 0;
  int priority = 0;
  int lookup_class = 0;
  int multicast_group = 0;
};

template <class Key>
class L3Entries {
 public:
  enum class Hits { keep, clear };

  /// Copies an entry out, with its hits as they were before.
  Status find(const Key& key, Hits hits, L3Entry& found) {
    const auto entry = entries_.find(key);
    if (entry == entries_.end()) return Status::not_found;
    found = entry->second;
    if (hits == Hits::clear) entry->second.hit = 0;
    return Status::ok;
  }
  const L3Entry* find(const Key& key) const {
    const auto entry = entries_.find(key);
    return entry == entries_.end() ? nullptr : &entry->second;
  }

  /// Notes that frames used an entry.
  Status hit(const Key& key, uint32_t hits) {
    const auto entry = entries_.find(key);
    if (entry == entries_.end()) return Status::not_found;
    entry->second.hit |= hits & L3Entry::any_hit;
    return Status::ok;
  }

  /// How many entries lead to an interface or egress object.
  int uses(int interface) const {
    const auto found = uses_.find(interface);
    return found == uses_.end() ? 0 : found->second;
  }

  const std::map<Key, L3Entry>& all() const { return entries_; }

 protected:
  /// `full`: there is no room for a new entry.
  Status add(const Key& key, const L3Entry& entry, bool replace, bool full) {
    const auto present = entries_.find(key);
    if (present == entries_.end()) {
      if (full) return Status::full;
      entries_.emplace(key, entry);
    } else {
      if (!replace) return Status::exists;
      release(present->second);
      present->second = entry;
    }
    ++uses_[entry.interface];
    return Status::ok;
  }

  Status remove(const Key& key) {
    const auto entry = entries_.find(key);
    if (entry == entries_.end()) return Status::not_found;
    release(entry->second);
    entries_.erase(entry);
    return Status::ok;
  }

  void clear() {
    entries_.clear();
    uses_.clear();
  }

 private:
  void release(const L3Entry& entry) {
    const auto used = uses_.find(entry.interface);
    if (--used->second == 0) uses_.erase(used);
  }

  std::map<Key, L3Entry> entries_;
  std::unordered_map<int, int> uses_;
};

}  // namespace chip
