// The MAC table: the place of each address, by VLAN. It is a hash table, so it can refuse an address before it is full.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <unordered_map>
#include <utility>
#include <variant>
#include <vector>

#include "chip/addresses.h"
#include "chip/origin.h"
#include "chip/place.h"
#include "chip/ports.h"
#include "chip/status.h"
#include "chip/vlan_id.h"

namespace chip {

struct MacEntry {
  // Flags.
  static constexpr uint32_t discard_source = 0x2;
  static constexpr uint32_t discard_destination = 0x4;
  static constexpr uint32_t copy_to_cpu = 0x8;
  static constexpr uint32_t fixed = 0x20;  // neither ages nor moves
  static constexpr uint32_t all_flags = discard_source | discard_destination | copy_to_cpu | fixed;

  Mac mac{};
  uint16_t vlan = 0;
  uint32_t flags = 0;
  Place place{};
  uint32_t tunnel = 0;  // through which the address was learned; 0: none
  bool source_hit = false;
  bool destination_hit = false;
  Origin origin{};

  bool is(uint32_t flag) const { return (flags & flag) != 0; }
  bool operator==(const MacEntry&) const = default;
};

/// Addresses that are counted together: all, those of a VLAN, those at a place, or those learned through a tunnel.
struct AllAddresses {
  auto operator<=>(const AllAddresses&) const = default;
};
struct VlanAddresses {
  int vlan;
  auto operator<=>(const VlanAddresses&) const = default;
};
struct TunnelAddresses {
  uint32_t tunnel;
  auto operator<=>(const TunnelAddresses&) const = default;
};
using MacScope = std::variant<AllAddresses, VlanAddresses, Place, TunnelAddresses>;

/// The scopes that count an entry.
std::vector<MacScope> scopes_of(const MacEntry& entry);

class MacTable {
 public:
  static constexpr int ways = 4;
  static constexpr int buckets = 8192;
  static constexpr int capacity = ways * buckets;
  static constexpr int default_age_time = 300;  // seconds
  static constexpr int max_age_time = 0xFFFFF;

  // Flags of remove_if().
  static constexpr uint32_t fixed_too = 0x1;
  static constexpr uint32_t pending_too = 0x2;  // the table learns at once and has no pending entries
  static constexpr uint32_t silently = 0x4;

  enum class Change { removed, added };
  using Observer = std::function<void(Change, const MacEntry&)>;

  /// What frames change in a table during the life of an Undo is put back at its end. The observer hears of neither.
  class Undo;

  explicit MacTable(const Ports& ports) : ports_(ports) {}

  /// Sets the callback for every change except a reset. Returns the one before.
  Observer observe(Observer observer) { return std::exchange(observer_, std::move(observer)); }

  /// No entries, and the default age time. The observer stays.
  void reset();

  /// Replaces the entry with the same VLAN and address, if there is one.
  Status add(const MacEntry& entry);
  const MacEntry* find(int vlan, const Mac& mac) const {
    const std::size_t slot = slot_of(vlan, mac);
    return slot == none ? nullptr : &entries_[slot];
  }
  /// Why there is no entry of that VLAN and address.
  static Status absent(int vlan) { return is_vlan(vlan) ? Status::not_found : Status::bad_parameter; }
  Status remove(int vlan, const Mac& mac);

  /// Removes the entries for which `matches` returns true; static ones only with `fixed_too`.
  template <class Matches>
  Status remove_if(uint32_t flags, Matches matches) {
    if ((flags & ~(fixed_too | pending_too | silently)) != 0) return Status::bad_parameter;
    for (std::size_t slot = 0; slot < capacity; ++slot) {
      const MacEntry& entry = entries_[slot];
      if (keys_[slot] != 0 && matches(entry) && (!entry.is(MacEntry::fixed) || flags & fixed_too))
        take_out(slot, flags & silently);
    }
    return Status::ok;
  }

  /// Marks an entry that find() returned as hit, on one side: &MacEntry::source_hit or &MacEntry::destination_hit.
  void hit(const MacEntry& entry, bool MacEntry::*side) {
    if (undo_ != nullptr) [[unlikely]]
      keep_for_undo(slot_of(entry.vlan, entry.mac));
    const_cast<MacEntry&>(entry).*side = true;
  }

  /// Seconds between two aging runs; 0 for none. The new interval starts at once.
  Status set_age_time(int seconds);
  int age_time() const { return age_time_; }
  /// Advances time: each aging run removes the entries that were not hit since the run before, except fixed ones.
  void pass(int seconds);

  int size() const { return size_; }
  /// The number of entries in a scope that are not fixed.
  int learned(const MacScope& scope) const;
  /// The entries in table order.
  std::vector<MacEntry> all() const;

  /// Whether an entry can have that place; trunks and virtual ports are not looked up.
  bool is_place(const Place& place) const;
  template <class Archive>
  void save(Archive& archive) const {
    std::map<std::size_t, MacEntry> entries;
    for (std::size_t slot = 0; slot < capacity; ++slot)
      if (keys_[slot] != 0) entries.emplace(slot, entries_[slot]);
    archive(entries, age_time_, since_aging_);
  }
  /// Into a new table.
  template <class Archive>
  void load(Archive& archive) {
    std::map<std::size_t, MacEntry> entries;
    archive(entries, age_time_, since_aging_);
    for (const auto& [slot, entry] : entries) put_in(slot, entry);
  }

  static int bucket_of(int vlan, const Mac& mac) { return static_cast<int>(bucket_of(key_of(vlan, mac))); }

 private:
  struct ScopeHash {
    std::size_t operator()(const MacScope& scope) const;
  };

  static constexpr std::size_t none = capacity;

  static constexpr uint64_t used = uint64_t{1} << 63;  // in every key but that of a free slot

  static uint64_t key_of(int vlan, const Mac& mac) { return used | static_cast<uint64_t>(vlan) << 48 | number_of(mac); }
  static std::size_t bucket_of(uint64_t key) {
    constexpr uint64_t spread = 0x9E3779B97F4A7C15;  // an odd number without a pattern spreads every bit upward
    static_assert(buckets == 1 << 13);
    return static_cast<std::size_t>((key ^ used) * spread >> (64 - 13));
  }
  /// The bucket's slot that has the key, 0 for the first free one, or none.
  std::size_t slot_in(std::size_t bucket, uint64_t key) const {
    for (std::size_t slot = bucket * ways; slot < (bucket + 1) * ways; ++slot)
      if (keys_[slot] == key) return slot;
    return none;
  }
  std::size_t slot_of(int vlan, const Mac& mac) const {
    const uint64_t key = key_of(vlan, mac);
    return slot_in(bucket_of(key), key);
  }
  void put_in(std::size_t slot, const MacEntry& entry);
  void take_out(std::size_t slot, bool silent);
  void count(const MacEntry& entry, int change);
  void age();
  /// Keeps a slot for the Undo, before it changes.
  void keep_for_undo(std::size_t slot);

  const Ports& ports_;
  // By slot, bucket after bucket. The keys are apart, so that those of a bucket share a line of the cache.
  std::vector<uint64_t> keys_ = std::vector<uint64_t>(capacity);  // 0: free
  std::vector<MacEntry> entries_ = std::vector<MacEntry>(capacity, MacEntry{.origin = Origin::none()});
  int size_ = 0;
  std::unordered_map<MacScope, int, ScopeHash> learned_;
  Observer observer_;
  Undo* undo_ = nullptr;
  int age_time_ = default_age_time;
  int since_aging_ = 0;
};

class MacTable::Undo {
 public:
  explicit Undo(MacTable& table) : table_(table), observer_(table.observe({})) { table.undo_ = this; }
  ~Undo();
  Undo(const Undo&) = delete;
  Undo& operator=(const Undo&) = delete;

 private:
  friend class MacTable;

  struct Saved {
    std::size_t slot;
    bool was_free;
    MacEntry entry;
  };

  MacTable& table_;
  Observer observer_;
  std::vector<Saved> saved_;  // the oldest first
};

}  // namespace chip
