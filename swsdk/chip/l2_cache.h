// The L2 cache: entries that match control frames before the MAC table is looked at.
#pragma once

#include <cstdint>

#include "chip/addresses.h"
#include "chip/origin.h"
#include "chip/place.h"
#include "chip/slots.h"

namespace chip {

struct L2CacheEntry {
  static constexpr uint32_t bpdu = 0x10;  // passes ports that spanning tree blocks

  uint32_t flags = 0;
  Mac mac{};
  Mac mac_mask{};
  uint16_t vlan = 0;
  uint16_t vlan_mask = 0;
  Port source_port{};
  int source_port_mask = 0;
  Origin origin{};
};

class L2Cache {
 public:
  static constexpr int capacity = 128;
  static constexpr int any_index = -1;

  /// Writes an entry into slot `index`, or into the lowest free one for any_index; `used` is set to the slot.
  Status set(int index, const L2CacheEntry& entry, int& used) {
    if (index == any_index) return entries_.add(entry, used);
    const Status status = entries_.put(entry, index);
    if (status == Status::ok) used = index;
    return status;
  }
  Status remove(int index) { return entries_.remove(index); }
  void clear() { entries_.clear(); }

  const std::map<int, L2CacheEntry>& all() const { return entries_.all(); }

  template <class Archive>
  void serialize(Archive& archive) {
    archive(entries_);
  }

 private:
  Slots<L2CacheEntry> entries_{0, capacity};
};

}  // namespace chip
