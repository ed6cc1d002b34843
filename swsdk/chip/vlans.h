// The VLAN table: members, untagged members and the control record of each VLAN.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <map>
#include <set>

#include "chip/ports.h"
#include "chip/status.h"

namespace chip {

/// How one VLAN treats its frames.
struct VlanControl {
  static constexpr uint32_t learn_disable = 0x1;
  static constexpr uint32_t l2_lookup_disable = 0x80000;

  uint32_t flags = 0;
  int ip6_multicast_flood_mode = 0;
  int ip4_multicast_flood_mode = 0;
  int l2_multicast_flood_mode = 0;
  int broadcast_group = 0;
  int unknown_multicast_group = 0;
  int unknown_unicast_group = 0;

  bool operator==(const VlanControl&) const = default;
};

struct Vlan {
  std::set<int> virtual_members{};  // gports of virtual ports
  PortSet members;
  PortSet untagged;
  VlanControl control;
  int spanning_tree = 0;  // its group
};

class Vlans {
 public:
  static constexpr int lowest_id = 1;
  static constexpr int highest_id = 4095;
  static constexpr int default_id = 1;

  explicit Vlans(const Ports& ports) : ports_(ports) { reset(); }

  /// Back to the default VLAN alone, with every Ethernet port as an untagged and the CPU port as a tagged member.
  void reset();

  Status create(int id);
  /// The default VLAN cannot be destroyed.
  Status destroy(int id);
  /// Destroys all but the default VLAN.
  Status destroy_all();

  /// Makes `members` members; the ones that are in `untagged` too become untagged, the others tagged.
  Status add_ports(int id, const PortSet& members, const PortSet& untagged);
  /// A port that is no member is left alone.
  Status remove_ports(int id, const PortSet& members);

  /// Virtual ports have their own way to tag. One that is a member already stays one.
  Status add_virtual_port(int id, int gport);
  Status remove_virtual_port(int id, int gport);

  /// Sets where a VLAN floods some kinds of multicast frames: 0 to all, 1 those without a group to all, 2 nowhere.
  Status set_multicast_flood(int id, std::initializer_list<int VlanControl::*> kinds, int mode);

  Status control(int id, VlanControl& control) const;
  Status set_control(int id, const VlanControl& control);

  /// The spanning-tree group of a VLAN, and of those that are still to be created.
  Status spanning_tree(int id, int& group) const;
  Status set_spanning_tree(int id, int group);
  int default_spanning_tree() const { return default_spanning_tree_; }
  void set_default_spanning_tree(int group) { default_spanning_tree_ = group; }

  /// Null when there is none.
  const Vlan* find(int id) const { return is_valid(id) ? by_id_[static_cast<std::size_t>(id)] : nullptr; }
  const std::map<int, Vlan>& all() const { return vlans_; }

 private:
  static bool is_valid(int id) { return id >= lowest_id && id <= highest_id; }

  template <class Self, class Body>
  static Status with(Self& self, int id, Body body);
  /// False, and nothing done, when there is one.
  bool insert(int id, const Vlan& vlan);

  const Ports& ports_;
  std::map<int, Vlan> vlans_;
  std::array<Vlan*, highest_id + 1> by_id_{};  // the same, so that one is found at once
  int default_spanning_tree_ = 0;
};

}  // namespace chip
