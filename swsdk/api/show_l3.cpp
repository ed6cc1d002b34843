#include "api/show_l3.h"

#include <bcm/ipmc.h>
#include <bcm/l3.h>
#include <bcm/vlan.h>

#include "api/calls/arguments.h"
#include "api/columns.h"

namespace {

using chip::L3Entry;
using std::to_string;

/// One VLAN, or an outer and an inner one.
std::string vlans_text(int outer, int inner) {
  return outer == 0 ? "-" : to_string(outer) + (inner == 0 ? "" : ":" + to_string(inner));
}

std::string target_text(int interface) {
  return (interface >= chip::EgressObjects::first_id ? "egress " : "interface ") + to_string(interface);
}

std::string hit_text(uint32_t hit) {
  return api::flag_names(hit, {{L3Entry::source_hit, "source"}, {L3Entry::destination_hit, "destination"}});
}

std::string encapsulation_text(int id) {
  using namespace chip::encapsulation;
  if (is_virtual_port(id)) return "virtual port " + to_string(id - first_of_virtual_ports);
  return is_interface(id) ? "interface " + to_string(id) : "as it is";
}

std::string type_text(uint32_t type) {
  using chip::MulticastGroups;
  return type == MulticastGroups::l2 ? "L2" : type == MulticastGroups::l3 ? "L3" : "VLAN";
}

std::string address_text(const chip::Ip6& address, bool ip6) {
  if (ip6) return api::text(api::ip6(address.data()));
  const auto byte = [&](std::size_t index) { return uint32_t{address[index]}; };
  return api::text(api::ip4(byte(0) << 24 | byte(1) << 16 | byte(2) << 8 | byte(3)));
}

/// Burst of a meter in bytes.
std::string burst_text(const chip::Meter& meter) {
  constexpr uint64_t bits_per_kilobit = 1000;
  return to_string((meter.burst_kilobits * bits_per_kilobit + meter.burst_bits) / 8);
}

}  // namespace

api::Rows api::show_l3_interfaces(const chip::Chip& chip) {
  Rows rows{{"interface", "VRF", "MAC", "VLAN", "TTL", "flags"}};
  for (const auto& [id, interface] : chip.l3_interfaces.all())
    rows.push_back({to_string(id), to_string(interface.vrf), mac_text(interface.mac),
                    vlans_text(interface.vlan, interface.inner_vlan), to_string(interface.ttl),
                    flag_names(interface.flags, {{BCM_L3_ADD_TO_ARL, "in-mac-table"}, {BCM_L3_IPMC, "multicast"}})});
  return rows;
}

api::Rows api::show_egress_objects(const chip::Chip& chip) {
  Rows rows{{"egress", "interface", "MAC", "VLAN", "port", "used by"}};
  for (const auto& [id, object] : chip.egress_objects.all())
    rows.push_back({to_string(id), to_string(object.interface), mac_text(object.mac), vlans_text(object.vlan, 0),
                    place_text(object.place), to_string(chip.hosts.uses(id) + chip.routes.uses(id))});
  return rows;
}

api::Rows api::show_hosts(const chip::Chip& chip) { return host_rows(chip.hosts.all()); }

api::Rows api::host_rows(const std::map<chip::HostKey, L3Entry>& entries) {
  Rows rows{{"host", "VRF", "by", "MAC", "port", "flags", "hit"}};
  for (const auto& [key, host] : entries)
    rows.push_back({text(ip4(key.address)), to_string(key.vrf), target_text(host.interface), mac_text(host.next_hop),
                    place_text(host.place), flag_names(host.flags, {{BCM_L3_L2TOCPU, "to-cpu"}}), hit_text(host.hit)});
  return rows;
}

api::Rows api::show_routes(const chip::Chip& chip) { return route_rows(chip.routes.all()); }

api::Rows api::route_rows(const std::map<chip::RouteKey, L3Entry>& entries) {
  constexpr uint32_t local = 0x4000;  // the SDK's name for this flag has another value
  Rows rows{{"subnet", "VRF", "by", "next hop", "MAC", "port", "flags", "hit"}};
  for (const auto& [key, route] : entries)
    rows.push_back({text(ip4(key.subnet)) + "/" + to_string(key.length), to_string(key.vrf),
                    target_text(route.interface), text(ip4(route.next_hop_ip)), mac_text(route.next_hop),
                    place_text(route.place), flag_names(route.flags, {{BCM_L3_DEFIP_CPU, "to-cpu"}, {local, "local"}}),
                    hit_text(route.hit)});
  return rows;
}

/// A line per encapsulation of a group, with the ports that have a copy in it.
api::Rows api::show_multicast_groups(const chip::Chip& chip) {
  Rows rows{{"group", "type", "ports", "encapsulation"}};
  for (const auto& [id, group] : chip.multicast_groups.all()) {
    if (group.members.empty()) rows.push_back({to_string(id.number()), type_text(group.type), "-", "-"});
    std::map<int, chip::PortSet> ports;
    for (const chip::MulticastMember& member : group.members) ports[member.encapsulation].add(member.port);
    for (const auto& [encapsulation, set] : ports)
      rows.push_back({to_string(id.number()), type_text(group.type), text(set), encapsulation_text(encapsulation)});
  }
  return rows;
}

api::Rows api::show_multicast_routes(const chip::Chip& chip) {
  Rows rows{{"address", "source", "VLAN", "VRF", "group", "interface", "flags"}};
  for (const auto& [key, route] : chip.multicast_routes.all())
    rows.push_back({address_text(key.address, key.ip6),
                    key.source == chip::Ip6{} ? "*" : address_text(key.source, key.ip6), to_string(key.vlan),
                    to_string(key.vrf), to_string(route.group.number()), to_string(route.interface),
                    flag_names(route.flags, {{BCM_IPMC_SOURCE_PORT_NOCHECK, "from-any-port"}})});
  return rows;
}

api::Rows api::show_virtual_ports(const chip::Chip& chip) {
  std::map<chip::VirtualPortId, std::string> members;
  for (const auto& [id, vlan] : chip.vlans.all())
    for (const chip::VirtualPortId member : vlan.virtual_members) {
      std::string& list = members[member];
      list += (list.empty() ? "" : ",") + to_string(id);
    }
  Rows rows{{"virtual port", "port", "match", "becomes", "in VLANs", "network groups", "flags"}};
  for (const auto& [id, virtual_port] : chip.virtual_ports.all()) {
    const bool stacked = virtual_port.criteria == chip::VirtualPort::match_port_vlan_stacked;
    rows.push_back({to_string(id.number()), place_text(virtual_port.port),
                    vlans_text(virtual_port.match_vlan, stacked ? virtual_port.match_inner_vlan : 0),
                    vlans_text(virtual_port.egress_vlan, virtual_port.egress_inner_vlan),
                    members.contains(id) ? members[id] : "-",
                    to_string(virtual_port.ingress_network_group) + "," + to_string(virtual_port.egress_network_group),
                    flag_names(virtual_port.flags, {{BCM_VLAN_PORT_INNER_VLAN_PRESERVE, "keeps-inner"},
                                                    {BCM_VLAN_PORT_INNER_VLAN_ADD, "adds-inner"},
                                                    {BCM_VLAN_PORT_NETWORK, "network"},
                                                    {BCM_VLAN_PORT_OUTER_VLAN_PRESERVE, "keeps-outer"},
                                                    {BCM_VLAN_PORT_TRANSPARENT, "transparent"},
                                                    {BCM_VLAN_PORT_VLAN_TRANSLATION, "translates"}})});
  }
  return rows;
}

api::Rows api::show_policers(const chip::Chip& chip) {
  Rows rows{{"policer", "mode", "kbit/s", "burst", "peak kbit/s", "peak burst", "flags", "attached"}};
  for (const auto& [id, policer] : chip.policers.all())
    rows.push_back({to_string(id), to_string(policer.mode), to_string(policer.committed.kilobits_per_second),
                    burst_text(policer.committed), to_string(policer.peak.kilobits_per_second),
                    burst_text(policer.peak), text(hex(policer.flags)), to_string(policer.attached)});
  return rows;
}
