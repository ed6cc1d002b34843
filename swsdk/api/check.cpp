#include "api/check.h"

#include <bcm/l3.h>

#include <set>
#include <string>

namespace {

using chip::Chip;
using std::to_string;
using Found = std::vector<api::Entry>;

/// libsai.so makes it at start-up, for virtual ports; an application without any takes the ports out of it.
constexpr int virtual_port_vlan = 4095;

void check_vlans(const Chip& chip, Found& found) {
  for (const auto& [id, vlan] : chip.vlans.all())
    if (id != chip::Vlans::default_id && id != virtual_port_vlan && vlan.members.empty() &&
        vlan.virtual_members.empty())
      found.push_back({"VLAN " + to_string(id) + " has no members", vlan.origin});
}

void check_spanning_trees(const Chip& chip, Found& found) {
  std::set<int> used{chip::SpanningTrees::first_id, chip.spanning_trees.default_id()};
  for (const auto& [id, vlan] : chip.vlans.all()) used.insert(vlan.spanning_tree);
  for (const auto& [id, states] : chip.spanning_trees.all())
    if (!used.contains(id))
      found.push_back({"spanning-tree group " + to_string(id) + " has no VLANs",
                       chip.spanning_trees.origin_of_state(id, chip::Ports::cpu)});
}

void check_trunks(const Chip& chip, Found& found) {
  for (const auto& [id, trunk] : chip.trunks.all())
    if (trunk.members.empty()) found.push_back({"trunk " + to_string(id.number()) + " has no members", trunk.origin});
}

void check_mirrors(const Chip& chip, Found& found) {
  std::set<chip::MirrorId> used;
  for (const auto& [source, directions] : chip.mirrors.sources()) used.insert(source.second);
  for (const auto& [id, to] : chip.mirrors.destinations())
    if (!used.contains(id))
      found.push_back({"mirror destination " + to_string(id.number()) + " has no sources", to.origin});
}

/// A virtual port in no VLAN, and tags of one that is gone.
void check_virtual_ports(const Chip& chip, Found& found) {
  std::set<chip::VirtualPortId> members;
  for (const auto& [id, vlan] : chip.vlans.all())
    members.insert(vlan.virtual_members.begin(), vlan.virtual_members.end());
  for (const auto& [id, virtual_port] : chip.virtual_ports.all())
    if (!members.contains(id))
      found.push_back({"virtual port " + to_string(id.number()) + " is in no VLAN", virtual_port.origin});
  for (const auto& [key, action] : chip.egress_actions.all()) {
    const auto* const id = std::get_if<chip::VirtualPortId>(&key.port_class);
    if (id != nullptr && chip.virtual_ports.find(*id) == nullptr)
      found.push_back(
          {"tags at egress of virtual port " + to_string(id->number()) + ", which does not exist", action.origin});
  }
}

/// Groups for floods are made before the VLANs that use them, so one without a VLAN is none of these.
void check_multicast_groups(const Chip& chip, Found& found) {
  std::set<chip::GroupId> used;
  for (const auto& [key, route] : chip.multicast_routes.all()) used.insert(route.group);
  for (const auto& [vlan, record] : chip.vlans.all())
    for (const auto& group :
         {record.control.broadcast_group, record.control.unknown_multicast_group, record.control.unknown_unicast_group})
      if (group) used.insert(*group);
  for (const auto& [id, group] : chip.multicast_groups.all()) {
    const std::string name = "multicast group " + to_string(id.number());
    if (group.type != chip::MulticastGroups::vlan && !used.contains(id))
      found.push_back({name + " is used by no route and no VLAN", group.origin});
    for (const chip::MulticastMember& member : group.members) {
      using namespace chip::encapsulation;
      const int number = member.encapsulation - first_of_virtual_ports;
      if (is_virtual_port(member.encapsulation) && chip.virtual_ports.find(chip::VirtualPortId::of(number)) == nullptr)
        found.push_back(
            {name + " has the member virtual port " + to_string(number) + ", which does not exist", group.origin});
    }
  }
}

/// Whether frames can reach the router through an interface that is its own address in a VLAN.
bool is_reachable(const Chip& chip, const chip::L3Interface& interface) {
  if ((interface.flags & (chip::L3Interface::in_mac_table | BCM_L3_IPMC)) != chip::L3Interface::in_mac_table)
    return false;
  const chip::Vlan* const vlan = chip.vlans.find(interface.vlan);
  return vlan != nullptr && (vlan->members.highest() > chip::Ports::cpu.number() || !vlan->virtual_members.empty());
}

void check_l3_interfaces(const Chip& chip, Found& found) {
  std::set<int> used;
  for (const auto& [id, object] : chip.egress_objects.all()) used.insert(object.interface);
  for (const auto& [key, route] : chip.multicast_routes.all()) used.insert(route.interface);
  for (const auto& [group, record] : chip.multicast_groups.all())
    for (const chip::MulticastMember& member : record.members) used.insert(member.encapsulation);
  for (const auto& [id, interface] : chip.l3_interfaces.all())
    if (!used.contains(id) && chip.hosts.uses(id) + chip.routes.uses(id) == 0 && !is_reachable(chip, interface))
      found.push_back(
          {"L3 interface " + to_string(id) + " of VLAN " + to_string(interface.vlan) + " is used by nothing",
           interface.origin});
}

void check_egress_objects(const Chip& chip, Found& found) {
  for (const auto& [id, object] : chip.egress_objects.all())
    if (chip.hosts.uses(id) + chip.routes.uses(id) == 0)
      found.push_back({"egress object " + to_string(id) + " is used by no host and no route", object.origin});
}

/// A group that is not enabled matches no frame, nor does an entry that is not installed.
void check_field(const Chip& chip, Found& found) {
  for (const auto& [id, group] : chip.field_processor.groups())
    if (!group.enabled) found.push_back({"field group " + to_string(id) + " is not enabled", group.origin});
  for (const auto& [id, entry] : chip.field_processor.entries())
    if (!entry.installed)
      found.push_back(
          {"field entry " + to_string(id) + " of group " + to_string(entry.group) + " is uninstalled", entry.origin});
}

void check_policers(const Chip& chip, Found& found) {
  for (const auto& [id, policer] : chip.policers.all())
    if (policer.attached == 0)
      found.push_back({"policer " + to_string(id) + " is attached to nothing", policer.origin});
}

}  // namespace

std::vector<api::Entry> api::leftovers(const chip::Chip& chip) {
  Found found;
  for (const auto check :
       {check_vlans, check_spanning_trees, check_trunks, check_mirrors, check_virtual_ports, check_multicast_groups,
        check_l3_interfaces, check_egress_objects, check_field, check_policers})
    check(chip, found);
  return found;
}
