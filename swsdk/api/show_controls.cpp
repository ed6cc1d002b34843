#include "api/show_controls.h"

#include <map>

#include "api/calls/arguments.h"

namespace {

using api::Rows;

/// By number: for a control per port its ports, else the value for the chip.
void add_switch_controls(const chip::Chip& chip, Rows& rows) {
  for (const auto& [control, of_each_port, name] : chip::SwitchControls::infos()) {
    const int of_chip = *chip.switch_controls.get(control);
    const chip::PortSet& on = chip.switch_controls.ports_with(static_cast<chip::SwitchControlOfPort>(control));
    if (of_each_port && !on.empty()) rows.push_back({name, "on ports " + text(on)});
    if (!of_each_port && of_chip != 0) rows.push_back({name, std::to_string(of_chip)});
  }
}

/// By number and value. Of the two preferences, the one that holds.
void add_vlan_controls(const chip::Chip& chip, Rows& rows) {
  if (const int translate = chip.vlan_controls.translate(); translate != 0)
    rows.push_back({"VLAN translation", std::to_string(translate)});
  using enum chip::VlanControlOfPort;
  for (const auto& [control, name] : chip::VlanControls::infos) {
    if (control == prefer_mac) continue;
    std::map<int, chip::PortSet> ports;  // by value
    for (const chip::Port port : chip.ports.all()) {
      const int value = control == prefer_ip4 ? (chip.vlan_controls.prefers_subnet(port) ? 1 : 0)
                                              : chip.vlan_controls.of_port(port, control).value;
      ports[value].add(port);
    }
    ports.erase(0);
    for (const auto& [value, on] : ports)
      rows.push_back({name, (value == 1 ? "" : std::to_string(value) + ' ') + "on ports " + text(on)});
  }
}

}  // namespace

Rows api::show_controls(const chip::Chip& chip) {
  Rows rows{{"control", "value"}};
  add_switch_controls(chip, rows);
  add_vlan_controls(chip, rows);
  if (chip.unicast_routing) rows.push_back({"unicast routing", "1"});
  if (chip.multicast_routing) rows.push_back({"multicast routing", "1"});
  for (int group = 0; group < chip::NetworkGroups::count; ++group)
    if (const uint32_t settings = *chip.network_groups.find(group); settings != 0)
      rows.push_back({"network group " + std::to_string(group), network_group_text(settings)});
  if (const auto& outer = chip.reserved_multicast.of_outer_header(); !outer.empty())
    rows.push_back({"reserved IPv6 multicast", reserved_multicast_text(outer)});
  if (const auto& inner = chip.reserved_multicast.of_inner_header(); !inner.empty())
    rows.push_back({"reserved inner IPv6 multicast", reserved_multicast_text(inner)});
  return rows;
}

std::string api::network_group_text(uint32_t settings) {
  using chip::NetworkGroups;
  return flag_names(settings, {{NetworkGroups::remap_multicast, "remaps-multicast"},
                               {NetworkGroups::prune_ingress, "prunes-ingress"},
                               {NetworkGroups::prune_egress, "prunes-egress"}});
}

std::string api::reserved_multicast_text(const std::vector<chip::Ip6Match>& addresses) {
  std::string result;
  for (const chip::Ip6Match& one : addresses)
    result += (result.empty() ? "" : "; ") + text(ip6(one.address.data())) + " mask " + text(ip6(one.mask.data()));
  return result;
}
