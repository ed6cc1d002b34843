// The virtual ports: each stands for the frames of a port that have given tags.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>

#include "chip/hash.h"
#include "chip/keyed_slots.h"
#include "chip/origin.h"
#include "chip/ports.h"
#include "chip/vlan_id.h"

namespace chip {

struct VirtualPort {
  // What a virtual port matches: the outer tag of its port's frames, or both tags.
  static constexpr int match_port_vlan = 3;
  static constexpr int match_port_vlan_stacked = 4;

  int criteria = 0;
  uint32_t flags = 0;
  Port port{};  // the physical one
  uint16_t match_vlan = 0;
  uint16_t match_inner_vlan = 0;
  uint16_t egress_vlan = 0;
  uint16_t egress_inner_vlan = 0;
  int ingress_network_group = 0;
  int egress_network_group = 0;
  Origin origin{};
};

class VirtualPorts {
 public:
  static constexpr int first_number = 1;
  static constexpr int capacity = 4096;

  explicit VirtualPorts(const Ports& ports) : ports_(ports) {}

  /// Creates a virtual port; `id` is set. No two match the same frames.
  Status create(const VirtualPort& virtual_port, VirtualPortId& id) {
    if (const Status status = check_match(virtual_port); status != Status::ok) return status;
    if (virtual_port.egress_vlan > max_vlan || virtual_port.egress_inner_vlan > max_vlan) return Status::bad_parameter;
    return virtual_ports_.add(virtual_port, id);
  }

  Status destroy(VirtualPortId id) { return virtual_ports_.remove(id); }
  void clear() { virtual_ports_.clear(); }

  const VirtualPort* find(VirtualPortId id) const { return virtual_ports_.find(id); }
  /// Why there is no virtual port of that id.
  Status absent(VirtualPortId id) const { return virtual_ports_.absent(id); }

  /// The virtual port that matches the same frames as `wanted`.
  std::optional<VirtualPortId> find_match(const VirtualPort& wanted) const {
    return check_match(wanted) == Status::ok ? virtual_ports_.find_id(match_of(wanted)) : std::nullopt;
  }
  /// Why none matches them.
  Status absent_match(const VirtualPort& wanted) const {
    const Status status = check_match(wanted);
    return status == Status::ok ? Status::not_found : status;
  }

  /// The virtual port that takes a port's frames with these tags, whatever they have inside, or with both of them.
  std::optional<VirtualPortId> matching(Port port, int outer) const { return matching(port, outer, any_inner); }
  std::optional<VirtualPortId> matching(Port port, int outer, int inner) const {
    return virtual_ports_.find_id({port, outer, inner});
  }

  const std::map<VirtualPortId, VirtualPort>& all() const { return virtual_ports_.all(); }

  template <class Archive>
  void serialize(Archive& archive) {
    archive(virtual_ports_);
  }

 private:
  struct Match {
    Port port;
    int outer;
    int inner;  // any_inner: whatever there is inside
    bool operator==(const Match&) const = default;
    std::size_t hash() const { return hash_of(port.number(), outer, inner); }
  };
  static constexpr int any_inner = 0;

  static Match match_of(const VirtualPort& virtual_port) {
    const bool stacked = virtual_port.criteria == VirtualPort::match_port_vlan_stacked;
    return {virtual_port.port, virtual_port.match_vlan, stacked ? virtual_port.match_inner_vlan : any_inner};
  }

  /// Whether there can be a virtual port with such a match.
  Status check_match(const VirtualPort& virtual_port) const {
    const bool stacked = virtual_port.criteria == VirtualPort::match_port_vlan_stacked;
    if (!stacked && virtual_port.criteria != VirtualPort::match_port_vlan) return Status::bad_parameter;
    if (!is_vlan(virtual_port.match_vlan)) return Status::bad_parameter;
    if (stacked && !is_vlan(virtual_port.match_inner_vlan)) return Status::bad_parameter;
    return ports_.has(virtual_port.port) ? Status::ok : Status::bad_port;
  }

  const Ports& ports_;
  KeyedSlots<VirtualPort, match_of, VirtualPortId> virtual_ports_{first_number, capacity};
};

}  // namespace chip
