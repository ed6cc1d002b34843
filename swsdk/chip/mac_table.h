// The MAC table: where each address is, by VLAN. A hash table, so that it can refuse an address while it has room.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <unordered_map>
#include <utility>
#include <vector>

#include "chip/addresses.h"
#include "chip/ports.h"
#include "chip/status.h"

namespace chip {

struct MacEntry {
  // What is special about an entry.
  static constexpr uint32_t discard_source = 0x2;
  static constexpr uint32_t discard_destination = 0x4;
  static constexpr uint32_t copy_to_cpu = 0x8;
  static constexpr uint32_t fixed = 0x20;  // neither ages nor moves
  static constexpr uint32_t on_trunk = 0x80;
  static constexpr uint32_t all_flags = discard_source | discard_destination | copy_to_cpu | fixed | on_trunk;

  Mac mac{};
  uint16_t vlan = 0;
  uint32_t flags = 0;
  int port = 0;         // a port, or the gport of a virtual one; 0 on a trunk
  int trunk = 0;        // on a trunk
  uint32_t tunnel = 0;  // through which it was learned; 0: none
  bool source_hit = false;
  bool destination_hit = false;

  bool is(uint32_t flag) const { return (flags & flag) != 0; }
  bool same_place(const MacEntry& other) const {
    return is(on_trunk) == other.is(on_trunk) && port == other.port && trunk == other.trunk && tunnel == other.tunnel;
  }
  bool operator==(const MacEntry&) const = default;
};

/// Addresses that are counted together.
struct MacScope {
  enum class Kind : uint32_t { system, vlan, port, trunk, tunnel };
  Kind kind;
  uint32_t id;
  auto operator<=>(const MacScope&) const = default;
};

/// The scopes that count an entry.
std::vector<MacScope> scopes_of(const MacEntry& entry);

class MacTable {
 public:
  static constexpr int ways = 4;
  static constexpr int buckets = 8192;
  static constexpr int capacity = ways * buckets;
  static constexpr int lowest_vlan = 1;
  static constexpr int highest_vlan = 4095;
  static constexpr int usual_age_time = 300;
  static constexpr int longest_age_time = 0xFFFFF;

  // How a deletion of many entries goes.
  static constexpr uint32_t fixed_too = 0x1;
  static constexpr uint32_t pending_too = 0x2;  // the table learns at once and has no pending entries
  static constexpr uint32_t silently = 0x4;

  enum class Change { removed, added };
  using Observer = std::function<void(Change, const MacEntry&)>;

  explicit MacTable(const Ports& ports) : ports_(ports), slots_(capacity) {}

  /// Who is told of every change but a reset.
  void observe(Observer observer) { observer_ = std::move(observer); }

  /// No entries, and the usual age time. The observer stays.
  void reset();

  /// The entry takes the place of the one with its VLAN and address.
  Status add(const MacEntry& entry);
  const MacEntry* find(int vlan, const Mac& mac) const;
  Status find(int vlan, const Mac& mac, MacEntry& found) const;
  Status remove(int vlan, const Mac& mac);

  /// Removes the entries that `matches` holds for.
  template <class Matches>
  Status remove_if(uint32_t flags, Matches matches) {
    if ((flags & ~(fixed_too | pending_too | silently)) != 0) return Status::bad_parameter;
    for (Slot& slot : slots_)
      if (slot.key != 0 && matches(slot.entry) && (!slot.entry.is(MacEntry::fixed) || flags & fixed_too))
        take_out(slot, flags & silently);
    return Status::ok;
  }

  /// Notes that a frame came from, or went to, the address of an entry of the table, as find() told it.
  void hit(const MacEntry& entry, bool MacEntry::*side) { const_cast<MacEntry&>(entry).*side = true; }

  /// Seconds between two ageings; 0 for none. A new time starts to run at once.
  Status set_age_time(int seconds);
  int age_time() const { return age_time_; }
  /// Lets time pass: each ageing removes the entries that were not hit since the one before, but for fixed ones.
  void pass(int seconds);

  int size() const { return size_; }
  /// How many entries that are not fixed a scope has.
  int learned(const MacScope& scope) const;
  /// The entries in the order in which they lie in the table.
  std::vector<MacEntry> all() const;

  static bool is_vlan(int vlan) { return vlan >= lowest_vlan && vlan <= highest_vlan; }
  /// Whether an address can be where the entry says; trunks are not looked up.
  bool is_place(const MacEntry& entry) const;
  static int bucket_of(int vlan, const Mac& mac);

 private:
  struct Slot {
    uint64_t key = 0;  // of its entry; 0: it is free
    MacEntry entry;
  };
  struct ScopeHash {
    std::size_t operator()(const MacScope& scope) const {
      return std::hash<uint64_t>()(static_cast<uint64_t>(scope.kind) << 32 | scope.id);
    }
  };

  static constexpr std::size_t none = capacity;

  /// The bucket's slot that has the key, 0 for the first free one, or none.
  std::size_t slot_in(int bucket, uint64_t key) const;
  std::size_t slot_of(int vlan, const Mac& mac) const;
  void put_in(Slot& slot, const MacEntry& entry);
  void take_out(Slot& slot, bool silent);
  void count(const MacEntry& entry, int change);
  void age();

  const Ports& ports_;
  std::vector<Slot> slots_;  // bucket after bucket
  int size_ = 0;
  std::unordered_map<MacScope, int, ScopeHash> learned_;
  Observer observer_;
  int age_time_ = usual_age_time;
  int since_ageing_ = 0;
};

}  // namespace chip
