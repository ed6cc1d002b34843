// Spanning-tree groups: VLANs that share the state of each port.
#pragma once

#include <array>
#include <cstddef>
#include <map>
#include <vector>

#include "chip/origin.h"
#include "chip/port_table.h"
#include "chip/slots.h"
#include "chip/vlans.h"

namespace chip {

enum class StpState : int { disable, block, listen, learn, forward };

class SpanningTrees {
 public:
  static constexpr int first_id = 1;
  static constexpr int capacity = 256;

  SpanningTrees(const Ports& ports, Vlans& vlans) : ports_(ports), vlans_(vlans) { reset(); }

  /// Only the first group, which is the default one and has every VLAN; its ports forward.
  void reset();

  /// The group of VLANs that were not added to another one.
  Status set_default(int id);
  int default_id() const { return vlans_.default_spanning_tree(); }

  /// A new group has no VLANs, and all its ports except the CPU's are disabled.
  Status create(int id);
  /// Moves the VLANs of the group to the default one, which cannot be destroyed.
  Status destroy(int id);
  /// Destroys all but the default group.
  void destroy_all();

  /// Moves a VLAN from its group to this one.
  Status add_vlan(int id, int vlan);
  /// Moves VLANs to the default group.
  Status remove_vlan(int id, int vlan);
  Status remove_vlans(int id);

  Status set_state(int id, Port port, int state);
  /// The state of a port in a group, or null.
  const StpState* state(int id, Port port) const {
    const PortTable<StpState>* const states = groups_.find(id);
    return states == nullptr ? nullptr : states->find(port);
  }
  /// Which call made the state of a port of the chip what it is.
  Origin origin_of_state(int id, Port port) const { return origins_[static_cast<std::size_t>(id)].at(port.index()); }
  /// Why there is no such state.
  Status absent_state(int id, Port /*port*/) const {
    const Status status = check(id);
    return status == Status::ok ? Status::bad_port : status;
  }
  /// Whether a port of the chip forwards frames of the VLANs of a group.
  bool forwards(int id, Port port) const { return forwarding_[static_cast<std::size_t>(id)].contains(port); }

  /// The state of each port, by group.
  const std::map<int, PortTable<StpState>>& all() const { return groups_.all(); }

  template <class Archive>
  void serialize(Archive& archive) {
    archive(groups_, forwarding_, origins_);
  }

 private:
  PortTable<StpState> states(StpState of_ethernet) const;
  void note_new(int id);
  void note_forwarding(int id);
  Status check(int id) const;

  const Ports& ports_;
  Vlans& vlans_;
  Slots<PortTable<StpState>> groups_{first_id, capacity};
  std::array<PortSet, first_id + capacity> forwarding_;           // the ports that forward, by group
  std::array<std::vector<Origin>, first_id + capacity> origins_;  // of their states, by group and port
};

}  // namespace chip
