// The egress objects: next hops that hosts and routes share.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>

#include "chip/addresses.h"
#include "chip/hash.h"
#include "chip/keyed_slots.h"
#include "chip/origin.h"
#include "chip/place.h"

namespace chip {

struct EgressObject {
  int interface = 0;
  Mac mac{};
  uint16_t vlan = 0;
  Place place{};
  Origin origin{};

  bool operator==(const EgressObject&) const = default;
  std::size_t hash() const { return hash_of(interface, number_of(mac), vlan, number_of(place)); }
};

class EgressObjects {
 public:
  static constexpr int first_id = 100000;  // distinct from interface ids, so that an entry can refer to either
  static constexpr int capacity = 16384;

  Status create(const EgressObject& object, int& id) { return objects_.add(object, id); }
  Status remove(int id) { return objects_.remove(id); }
  void clear() { objects_.clear(); }

  const EgressObject* find(int id) const { return objects_.find(id); }
  /// Why there is no object of that id.
  Status absent(int id) const { return objects_.absent(id); }

  /// The id of the object that is the same in everything.
  std::optional<int> find_same(const EgressObject& object) const { return objects_.find_id(object); }

  const std::map<int, EgressObject>& all() const { return objects_.all(); }

  template <class Archive>
  void serialize(Archive& archive) {
    archive(objects_);
  }

 private:
  KeyedSlots<EgressObject, whole<EgressObject>> objects_{first_id, capacity};
};

}  // namespace chip
