// Spanning-tree groups: VLANs that have the state of each port in common.
#pragma once

#include <array>
#include <cstddef>
#include <map>

#include "chip/slots.h"
#include "chip/vlans.h"

namespace chip {

enum class StpState : int { disable, block, listen, learn, forward };

class SpanningTrees {
 public:
  static constexpr int lowest_id = 1;
  static constexpr int capacity = 256;

  SpanningTrees(const Ports& ports, Vlans& vlans) : ports_(ports), vlans_(vlans) { reset(); }

  /// The first group alone, which is the default one and has every VLAN; its ports forward.
  void reset();

  /// The group that VLANs are in when nobody has said otherwise.
  Status set_default(int id);
  int default_id() const { return vlans_.default_spanning_tree(); }

  /// A group begins without VLANs, and with every port but the CPU's disabled.
  Status create(int id);
  /// The VLANs of a group that is destroyed go to the default one, which cannot be destroyed.
  Status destroy(int id);
  /// Destroys all but the default group.
  void destroy_all();

  /// Takes the VLAN out of the group that it is in.
  Status add_vlan(int id, int vlan);
  /// The VLAN goes to the default group.
  Status remove_vlan(int id, int vlan);
  Status remove_vlans(int id);

  Status set_state(int id, int port, int state);
  Status state(int id, int port, StpState& state) const;
  /// Whether a port of the chip forwards frames of the VLANs of a group.
  bool forwards(int id, int port) const { return forwarding_[static_cast<std::size_t>(id)].contains(port); }

  /// The state of each port, by group.
  const std::map<int, std::map<int, StpState>>& all() const { return groups_.all(); }

 private:
  using States = std::map<int, StpState>;  // by port

  States states(StpState of_ethernet) const;
  void note_forwarding(int id);
  Status check(int id) const;

  const Ports& ports_;
  Vlans& vlans_;
  Slots<States> groups_{lowest_id, capacity};
  std::array<PortSet, lowest_id + capacity> forwarding_;  // the ports that forward, by group
};

}  // namespace chip
