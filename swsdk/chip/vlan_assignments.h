// The VLANs that untagged frames get by where they come from: by source MAC address, or by subnet of the source.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>

#include "chip/addresses.h"
#include "chip/status.h"

namespace chip {

/// What an untagged frame gets.
struct VlanAssignment {
  uint16_t vlan = 0;
  int priority = 0;
};

/// The leading `prefix` bits of addresses; the others are 0, and an IPv4 address is in the first four bytes.
struct Subnet {
  bool is_ip6;
  int prefix;
  Ip6 address;
  auto operator<=>(const Subnet&) const = default;
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
    constexpr int highest_vlan = 4095;
    constexpr int highest_priority = 7;
    if (to.vlan < 1 || to.vlan > highest_vlan || to.priority < 0 || to.priority > highest_priority)
      return Status::bad_parameter;
    if (assignments_.contains(key)) return Status::exists;
    if (assignments_.size() == capacity) return Status::full;
    assignments_[key] = to;
    return Status::ok;
  }
  Status remove(const Key& key) { return assignments_.erase(key) == 1 ? Status::ok : Status::not_found; }
  void clear() { assignments_.clear(); }

  const std::map<Key, VlanAssignment>& all() const { return assignments_; }

 private:
  std::map<Key, VlanAssignment> assignments_;
};

using MacVlans = VlanAssignments<Mac, 1024>;
using SubnetVlans = VlanAssignments<Subnet, 512>;

}  // namespace chip
