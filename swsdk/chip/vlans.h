// The VLAN table: members, untagged members and the control record of each VLAN.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <map>
#include <optional>
#include <set>

#include "chip/origin.h"
#include "chip/ports.h"
#include "chip/status.h"
#include "chip/vlan_id.h"

namespace chip {

/// How one VLAN treats its frames.
struct VlanControl {
  static constexpr uint32_t learn_disable = 0x1;
  static constexpr uint32_t l2_lookup_disable = 0x80000;
  static constexpr int flood_nowhere = 2;  // a flood mode

  uint32_t flags = 0;
  int ip6_multicast_flood_mode = 0;
  int ip4_multicast_flood_mode = 0;
  int l2_multicast_flood_mode = 0;
  // Floods of each kind go to the members of a group alone, or to all of the VLAN.
  std::optional<GroupId> broadcast_group{};
  std::optional<GroupId> unknown_multicast_group{};
  std::optional<GroupId> unknown_unicast_group{};

  bool operator==(const VlanControl&) const = default;
};

struct Vlan {
  std::set<VirtualPortId> virtual_members{};
  PortSet members;
  PortSet untagged;
  VlanControl control;
  int spanning_tree = 0;  // its group
  Origin origin{};
};

class Vlans {
 public:
  static constexpr int default_id = 1;
  static constexpr int capacity = max_vlan;

  explicit Vlans(const Ports& ports) : ports_(ports) { reset(); }

  /// Only the default VLAN, with every Ethernet port as an untagged and the CPU port as a tagged member.
  void reset();

  Status create(int id);
  /// The default VLAN cannot be destroyed.
  Status destroy(int id);
  /// Destroys all but the default VLAN.
  Status destroy_all();

  /// Adds members; those that are in `untagged` too become untagged, the others tagged.
  Status add_ports(int id, const PortSet& members, const PortSet& untagged);
  /// Ports that are not members are ignored.
  Status remove_ports(int id, const PortSet& members);

  /// Virtual ports tag by their own settings. Adding a member again changes nothing.
  Status add_virtual_port(int id, VirtualPortId virtual_port);
  Status remove_virtual_port(int id, VirtualPortId virtual_port);

  /// Sets where a VLAN floods some kinds of multicast frames: 0 to all, 1 those without a group to all, flood_nowhere.
  Status set_multicast_flood(int id, std::initializer_list<int VlanControl::*> kinds, int mode);

  Status set_control(int id, const VlanControl& control);

  Status set_spanning_tree(int id, int group);
  /// The spanning-tree group of VLANs that are still to be created.
  int default_spanning_tree() const { return default_spanning_tree_; }
  void set_default_spanning_tree(int group) { default_spanning_tree_ = group; }

  const Vlan* find(int id) const { return is_vlan(id) ? by_id_[static_cast<std::size_t>(id)] : nullptr; }
  /// Why there is no VLAN of that id.
  static Status absent(int id) { return is_vlan(id) ? Status::not_found : Status::bad_parameter; }
  const std::map<int, Vlan>& all() const { return vlans_; }

  template <class Archive>
  void save(Archive& archive) const {
    archive(vlans_, default_spanning_tree_);
  }
  template <class Archive>
  void load(Archive& archive) {
    archive(vlans_, default_spanning_tree_);
    by_id_ = {};
    for (auto& [id, vlan] : vlans_) by_id_[static_cast<std::size_t>(id)] = &vlan;
  }

 private:
  template <class Body>
  Status with(int id, Body body);
  /// Returns false, and changes nothing, when there is one.
  bool insert(int id, const Vlan& vlan);

  const Ports& ports_;
  std::map<int, Vlan> vlans_;
  std::array<Vlan*, max_vlan + 1> by_id_{};  // the same VLANs, for lookup in constant time
  int default_spanning_tree_ = 0;
};

}  // namespace chip
