// VLANs of untagged frames by their source: by MAC address, or by IP subnet.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "chip/addresses.h"
#include "chip/hashed_map.h"
#include "chip/origin.h"
#include "chip/status.h"
#include "chip/vlan_id.h"

namespace chip {

/// The VLAN and priority of an untagged frame.
struct VlanAssignment {
  uint16_t vlan = 0;
  int priority = 0;
  Origin origin{};
};

/// The leading `prefix` bits of addresses; the others are 0, and an IPv4 address is in the first four bytes.
struct Subnet {
  bool is_ip6;
  int prefix;
  Ip6 address;
  auto operator<=>(const Subnet&) const = default;
  std::size_t hash() const;
};

/// Nothing when the ones of the mask do not come first.
std::optional<Subnet> subnet_of_ip4(uint32_t address, uint32_t mask);
/// Nothing when the prefix is longer than an address.
std::optional<Subnet> subnet_of_ip6(const Ip6& address, int prefix);

template <class Key, std::size_t Capacity>
class VlanAssignments {
 public:
  static constexpr std::size_t capacity = Capacity;

  Status add(const Key& key, const VlanAssignment& to) {
    constexpr int max_priority = 7;
    if (!is_vlan(to.vlan) || to.priority < 0 || to.priority > max_priority) return Status::bad_parameter;
    if (find(key) != nullptr) return Status::exists;
    if (assignments_.size() == capacity) return Status::full;
    assignments_.put(key, to);
    return Status::ok;
  }
  Status remove(const Key& key) { return assignments_.remove(key) ? Status::ok : Status::not_found; }
  void clear() { assignments_.clear(); }

  const VlanAssignment* find(const Key& key) const { return assignments_.find(key); }
  const auto& all() const { return assignments_.all(); }

  template <class Archive>
  void serialize(Archive& archive) {
    archive(assignments_);
  }

 private:
  HashedMap<Key, VlanAssignment> assignments_;
};

using MacVlans = VlanAssignments<Mac, 1024>;
using SubnetVlans = VlanAssignments<Subnet, 512>;

/// The assignment of the smallest subnet that contains an address, or null.
const VlanAssignment* find_around(const SubnetVlans& subnets, const Subnet& address);

}  // namespace chip
