// The virtual ports: each is those frames of a port that have given tags.
#pragma once

#include <cstddef>
#include <cstdint>

#include "chip/gports.h"
#include "chip/hash.h"
#include "chip/keyed_slots.h"
#include "chip/ports.h"

namespace chip {

struct VirtualPort {
  // What a virtual port matches: the outer tag of its port's frames, or both tags.
  static constexpr int match_port_vlan = 3;
  static constexpr int match_port_vlan_stacked = 4;

  int criteria = 0;
  uint32_t flags = 0;
  int port = 0;  // the physical one, as a number or as a gport
  uint16_t match_vlan = 0;
  uint16_t match_inner_vlan = 0;
  uint16_t egress_vlan = 0;
  uint16_t egress_inner_vlan = 0;
  int ingress_network_group = 0;
  int egress_network_group = 0;
};

class VirtualPorts {
 public:
  static constexpr int first_number = 1;
  static constexpr int capacity = 4096;
  static constexpr int highest_vlan = 4095;

  explicit VirtualPorts(const Ports& ports) : ports_(ports) {}

  /// Makes a virtual port and tells its gport. No two match the same frames.
  Status create(const VirtualPort& virtual_port, int& gport) {
    if (const Status status = check(virtual_port); status != Status::ok) return status;
    if (virtual_port.egress_vlan > highest_vlan || virtual_port.egress_inner_vlan > highest_vlan)
      return Status::bad_parameter;
    int number = 0;
    const Status status = virtual_ports_.add(virtual_port, number);
    if (status == Status::ok) gport = gport::of(gport::virtual_port, number);
    return status;
  }

  Status destroy(int gport) {
    return is_virtual(gport) ? virtual_ports_.remove(gport::number(gport)) : Status::bad_port;
  }

  void clear() { virtual_ports_.clear(); }

  static bool is_virtual(int gport) { return gport::kind(gport) == gport::virtual_port; }

  const VirtualPort* find(int gport) const {
    return is_virtual(gport) ? virtual_ports_.find(gport::number(gport)) : nullptr;
  }
  /// Why there is no virtual port of that gport.
  Status absent(int gport) const {
    return is_virtual(gport) ? virtual_ports_.absent(gport::number(gport)) : Status::bad_port;
  }

  /// The gport of the virtual port that matches the same frames as `wanted`.
  Status find_match(const VirtualPort& wanted, int& gport) const {
    if (const Status status = check(wanted); status != Status::ok) return status;
    int number = 0;
    const Status status = virtual_ports_.find_id(match_of(wanted), number);
    if (status == Status::ok) gport = gport::of(gport::virtual_port, number);
    return status;
  }

  /// The gport of the virtual port that takes a frame's tags; 0 for `inner` is for one that takes any. 0 when there is
  /// none.
  int matching(int port, int outer, int inner) const {
    int number = 0;
    const Status status = virtual_ports_.find_id({port, outer, inner}, number);
    return status == Status::ok ? gport::of(gport::virtual_port, number) : 0;
  }

  /// By number, which is what a gport says beside its kind.
  const std::map<int, VirtualPort>& all() const { return virtual_ports_.all(); }

 private:
  struct Match {
    int port;
    int outer;
    int inner;  // any_inner: whatever there is inside
    bool operator==(const Match&) const = default;
    std::size_t hash() const { return hash_of(port, outer, inner); }
  };
  static constexpr int any_inner = 0;

  static Match match_of(const VirtualPort& virtual_port) {
    const bool stacked = virtual_port.criteria == VirtualPort::match_port_vlan_stacked;
    return {gport::port_of(virtual_port.port), virtual_port.match_vlan,
            stacked ? virtual_port.match_inner_vlan : any_inner};
  }

  /// Whether there can be a virtual port with such a match.
  Status check(const VirtualPort& virtual_port) const {
    const auto is_vlan = [](int vlan) { return vlan > 0 && vlan <= highest_vlan; };
    const bool stacked = virtual_port.criteria == VirtualPort::match_port_vlan_stacked;
    if (!stacked && virtual_port.criteria != VirtualPort::match_port_vlan) return Status::bad_parameter;
    if (!is_vlan(virtual_port.match_vlan)) return Status::bad_parameter;
    if (stacked && !is_vlan(virtual_port.match_inner_vlan)) return Status::bad_parameter;
    return ports_.has(gport::port_of(virtual_port.port)) ? Status::ok : Status::bad_port;
  }

  const Ports& ports_;
  KeyedSlots<VirtualPort, match_of> virtual_ports_{first_number, capacity};
};

}  // namespace chip
