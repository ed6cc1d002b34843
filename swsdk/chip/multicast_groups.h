// The multicast groups by id; what kind of members they take is their type.
#pragma once

#include <cstdint>

#include "chip/slots.h"

namespace chip {

struct MulticastGroup {
  uint32_t type = 0;
};

class MulticastGroups {
 public:
  static constexpr int capacity = 4096;

  /// Types of groups, of which each has one.
  static constexpr uint32_t l2 = 0x10000;
  static constexpr uint32_t l3 = 0x20000;
  static constexpr uint32_t vlan = 0x400000;

  /// Makes a group; the flag `with_id` asks for the id that `id` holds.
  Status create(uint32_t flags, int& id) {
    constexpr uint32_t with_id = 0x1;
    const uint32_t type = flags & (l2 | l3 | vlan);
    if ((flags & ~(l2 | l3 | vlan | with_id)) != 0 || (type != l2 && type != l3 && type != vlan))
      return Status::bad_parameter;
    return flags & with_id ? groups_.add_with_id({type}, id) : groups_.add({type}, id);
  }
  Status destroy(int id) { return groups_.remove(id); }
  void clear() { groups_.clear(); }

  const std::map<int, MulticastGroup>& all() const { return groups_.all(); }

 private:
  Slots<MulticastGroup> groups_{1, capacity};
};

}  // namespace chip
