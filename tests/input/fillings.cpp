#include "input/fillings.h"

#include <arpa/inet.h>
#include <bcm/ipmc.h>
#include <bcm/l3.h>
#include <bcm/multicast.h>
#include <bcm/port.h>
#include <bcm/vlan.h>
#include <sai.h>
#include <swsdk/chip.h>

#include <algorithm>
#include <array>
#include <string>

#include "input/arguments.h"

namespace {

using input::Filling;

using Mac = std::array<uint8_t, 6>;

Mac mac_of(int i) { return {2, 1, 0, 0, static_cast<uint8_t>(i >> 8), static_cast<uint8_t>(i)}; }

/// What nothing in the scene and no call that fills has.
constexpr Mac new_mac = {2, 2};
constexpr int32_t new_vlan = 4000;
constexpr uint32_t new_ip = 0x0A000063;
constexpr uint32_t new_group = 0xE1020399;
constexpr uint8_t new_group6[16] = {0xFF, 0x99};
constexpr uint8_t source6[16] = {0x20};

// Calls of the SDK that fill its tables: number i of each.

/// With the port below, as many pairs as a table has room for.
bcm_vlan_t vlan_of(int i) { return static_cast<bcm_vlan_t>(2 + i / 8); }
int port_of(int i) { return 1 + i % 8; }

int fill_interfaces(int i) {
  bcm_l3_intf_t interface;
  bcm_l3_intf_t_init(&interface);
  std::copy_n(mac_of(i).data(), sizeof interface.l3a_mac_addr, interface.l3a_mac_addr);
  interface.l3a_vid = 10;
  return bcm_l3_intf_create(0, &interface);
}

int fill_next_hops(int i) {
  bcm_l3_intf_t interface;
  bcm_l3_intf_t_init(&interface);
  interface.l3a_vid = 10;
  bcm_l3_intf_find_vlan(0, &interface);
  bcm_l3_egress_t next_hop;
  bcm_l3_egress_t_init(&next_hop);
  next_hop.intf = interface.l3a_intf_id;
  next_hop.port = 3;
  std::copy_n(mac_of(i).data(), sizeof next_hop.mac_addr, next_hop.mac_addr);
  bcm_if_t id = 0;
  return bcm_l3_egress_create(0, 0, &next_hop, &id);
}

int fill_multicast_groups(int /*i*/) {
  bcm_multicast_t group = 0;
  return bcm_multicast_create(0, BCM_MULTICAST_TYPE_L3, &group);
}

/// All with one group, so that there is room for others.
int fill_multicast_routes(int i) {
  static bcm_multicast_t group = 0;
  if (i == 1) bcm_multicast_create(0, BCM_MULTICAST_TYPE_L3, &group);
  bcm_ipmc_addr_t route;
  bcm_ipmc_addr_t_init(&route);
  route.mc_ip_addr = 0xE2000000 + static_cast<uint32_t>(i);
  route.vid = 10;
  route.group = group;
  return bcm_ipmc_add(0, &route);
}

int fill_virtual_ports(int i) {
  bcm_vlan_port_t virtual_port;
  bcm_vlan_port_t_init(&virtual_port);
  virtual_port.criteria = BCM_VLAN_PORT_MATCH_PORT_VLAN;
  virtual_port.match_vlan = vlan_of(i);
  bcm_port_gport_get(0, port_of(i), &virtual_port.port);
  return bcm_vlan_port_create(0, &virtual_port);
}

int fill_egress_translations(int i) { return bcm_vlan_translate_egress_add(0, port_of(i), vlan_of(i), 2, 0); }

int fill_egress_actions(int i) {
  bcm_vlan_action_set_t action;
  bcm_vlan_action_set_t_init(&action);
  return bcm_vlan_translate_egress_action_add(0, port_of(i), vlan_of(i), 2, &action);
}

// Calls of functions that need room in such a table.

int32_t join(int /*i*/) { return sai_ipmc_add(0, 10, 20, 3, new_group, new_mac.data()); }
int32_t join6(int /*i*/) { return sai_ipv6_ipmc_add(0, 10, 20, 3, new_group6, source6, new_mac.data()); }
int32_t join_reported(int /*i*/) { return sai_multicast_egress_add(0, 10, new_group, new_mac.data(), 3, 20); }

/// The next hop is another one than in the scene by its port.
int32_t host(int /*i*/) { return sai_l3_host_route_create(0, new_ip, new_mac.data(), Mac{2}.data(), 5, 10, 0); }
int32_t subnet(int /*i*/) {
  return sai_l3_subnet_route_create(0, 0x0A630000, 0xFFFF0000, new_ip, new_mac.data(), Mac{2}.data(), 5, 10, 0);
}

void learn_behind_virtual_port() {
  swsdk_l2_learn(0, 20, new_mac.data(), static_cast<int>(input::chosen["vport_id"]), 0);
}
template <uint8_t dtag>
int32_t host_behind_virtual_port(int /*i*/) {
  learn_behind_virtual_port();
  return sai_l3_host_route_create(0, new_ip, mac_of(0).data(), new_mac.data(), 3, 20, dtag);
}
template <uint8_t dtag>
int32_t subnet_behind_virtual_port(int /*i*/) {
  learn_behind_virtual_port();
  return sai_l3_subnet_route_create(0, 0x0A630000, 0xFFFF0000, new_ip, mac_of(0).data(), new_mac.data(), 3, 20, dtag);
}

int32_t new_virtual_port(int /*i*/) {
  sai_vport_t vport{
      .priority = 3, .match_vlan = new_vlan, .match_inner_vlan = 0, .vlan = 20, .outer_vlan = 0, .vport_id = 0};
  return sai_vport_create(0, 3, &vport);
}

const Filling all_fillings[] = {
    {"sai_bpdu_set", {"mac"}},
    {"sai_lldp_set"},
    {.function = "sai_knet_netif_init",
     .call = [](int i) { return sai_knet_netif_init(0, i, std::to_string(i).c_str(), mac_of(i).data()); }},
    {"sai_l2_mac_entry_add", {"mac", "vlan"}},
    {.function = "sai_trunk_create",
     .call =
         [](int) {
           int32_t tid = 0;
           return sai_trunk_create(0, 0, &tid);
         }},
    {.function = "sai_vlan_translate_add",
     .call = [](int i) { return sai_vlan_translate_add(0, port_of(i), vlan_of(i), 0, vlan_of(i), 0); }},
    {"sai_mirror_dest_port_set", {"session"}},
    {"sai_l3_host_route_create", {"ip"}},
    {"sai_l3_subnet_route_create", {"subnet"}, 0x10000},
    {"sai_ipmc_add", {"group_ip"}},
    {"sai_vport_fp_policer_set"},
    {"sai_ifp_l2_group_create"},
    {"sai_efp_l2_group_create"},
    {"sai_ifp_mac_ipv4_group_create"},
    {"sai_efp_mac_ipv4_group_create"},
    {"sai_ifp_mac_ipv6_group_create"},
    {"sai_efp_mac_ipv6_group_create"},
    {"sai_system_ipv4_fp_create"},
    {"sai_system_ipv6_fp_create"},
    {"sai_fp_mld_group_create"},
    {"sai_fp_mld_exclude_group_create"},
    {"sai_fp_vport_group_create"},
    {"sai_ipsg_init"},
    {"sai_acl_l2_entry_install"},
    {"sai_acl_std_l3_entry_install"},
    {"sai_acl_ext_l3_entry_install"},
    {"sai_acl_l2_l3_entry_install"},
    {"sai_fp_ospf_ttl1_set"},
    {"sai_fp_loopd_packet_to_cpu_set"},
    {"sai_fp_dhcp_requeset_to_cpu_set"},
    {"sai_fp_dhcp_response_to_cpu_set"},
    {"sai_fp_dhcpv6_req_to_cpu_set"},
    {"sai_fp_igmp_packet_to_cpu"},
    {"sai_fp_arp_packet_vlan_qualify_set"},
    {"sai_fp_arp_packet_cpu_qualify_set"},
    {"sai_fp_arp_packet_port_qualify_set"},
    {"sai_fp_mld_packet_exclude_filter_set"},
    {"sai_fp_vport_qualify_set"},
    {"sai_ipsg_verify_config"},
    {"sai_ipsg_parameter_config"},
    {"sai_fp_mld_packet_to_cpu"},
    {.function = "sai_port_protocol_vlan_add",
     .call = [](int i) { return sai_port_protocol_vlan_add(0, 3, 1, static_cast<uint16_t>(0x0900 + i), 10); }},
    {.function = "sai_trunk_set", .call = [](int) { return sai_trunk_set(0, 1, 0, 0x1FF, 9); }},
    {.function = "sai_vlan_mac_add", .call = [](int i) { return sai_vlan_mac_add(0, mac_of(i).data(), 10, 3); }},
    {.function = "sai_vlan_ip_subnet_add",
     .call =
         [](int i) {
           const uint32_t ip = 0x0B000000 + (static_cast<uint32_t>(i) << 8);
           return sai_vlan_ip_subnet_add(0, htonl(ip), htonl(0xFFFFFF00), 10, 3);
         }},
    {.function = "sai_vlan_ipv6_subnet_add",
     .call =
         [](int i) {
           const bcm_ip6_t ip = {0x20, 1, static_cast<uint8_t>(i >> 8), static_cast<uint8_t>(i)};
           return sai_vlan_ipv6_subnet_add(0, &ip, 64, 10, 3);
         }},
    {.function = "sai_vlan_dtag_add",
     .call = [](int i) { return sai_vlan_dtag_add(0, port_of(i), vlan_of(i), 3, 34, 3); }},
    {.function = "sai_vlan_dtag_add",
     .call = [](int) { return sai_vlan_dtag_add(0, 9, 100, 3, new_vlan, 3); },
     .table = "bcm_vlan_translate_egress_action_add",
     .fill = fill_egress_actions},
    {.function = "sai_vlan_dtag_range_add",
     .call = [](int i) { return sai_vlan_dtag_range_add(0, port_of(i), vlan_of(i), vlan_of(i), 0, 34, 3); }},
    {.function = "sai_vlan_dtag_range_add",
     .call = [](int) { return sai_vlan_dtag_range_add(0, 9, 100, 104, 0, new_vlan, 3); },
     .table = "bcm_vlan_translate_egress_action_add",
     .fill = fill_egress_actions},
    {.function = "sai_vlan_translate_add",
     .call = [](int) { return sai_vlan_translate_add(0, 9, 100, 3, new_vlan, 3); },
     .table = "bcm_vlan_translate_egress_add",
     .fill = fill_egress_translations},
    {.function = "sai_vport_create",
     .call = new_virtual_port,
     .table = "bcm_vlan_port_create",
     .fill = fill_virtual_ports},
    {.function = "sai_vport_create",
     .call = new_virtual_port,
     .table = "bcm_vlan_translate_egress_action_add",
     .fill = fill_egress_actions},
    {.function = "sai_vlan_vport_init",
     .call = [](int) { return sai_vlan_vport_init(0); },
     .table = "bcm_multicast_create",
     .fill =
         [](int i) {
           if (i == 1) bcm_vlan_destroy(0, 4095);  // which the scene has already
           return fill_multicast_groups(i);
         }},
    {.function = "sai_l3_intf_create",
     .call = [](int) { return sai_l3_intf_create(0, new_mac.data(), new_vlan); },
     .table = "bcm_l3_intf_create",
     .fill = fill_interfaces},
    {.function = "sai_l3_host_route_create", .call = host, .table = "bcm_l3_egress_create", .fill = fill_next_hops},
    {.function = "sai_l3_host_route_create",
     .call = host_behind_virtual_port<0>,
     .table = "bcm_l3_intf_create",
     .fill = fill_interfaces},
    {.function = "sai_l3_host_route_create",
     .call = host_behind_virtual_port<1>,
     .table = "bcm_l3_intf_create",
     .fill = fill_interfaces},
    {.function = "sai_l3_subnet_route_create", .call = subnet, .table = "bcm_l3_egress_create", .fill = fill_next_hops},
    {.function = "sai_l3_subnet_route_create",
     .call = subnet_behind_virtual_port<0>,
     .table = "bcm_l3_intf_create",
     .fill = fill_interfaces},
    {.function = "sai_l3_subnet_route_create",
     .call = subnet_behind_virtual_port<1>,
     .table = "bcm_l3_intf_create",
     .fill = fill_interfaces},
    {.function = "sai_ipmc_add", .call = join, .table = "bcm_l3_intf_create", .fill = fill_interfaces},
    {.function = "sai_ipmc_add", .call = join, .table = "bcm_ipmc_add", .fill = fill_multicast_routes},
    {.function = "sai_ipv6_ipmc_add", .call = join6, .table = "bcm_l3_intf_create", .fill = fill_interfaces},
    {.function = "sai_ipv6_ipmc_add", .call = join6, .table = "bcm_multicast_create", .fill = fill_multicast_groups},
    {.function = "sai_ipv6_ipmc_add", .call = join6, .table = "bcm_ipmc_add", .fill = fill_multicast_routes},
    {.function = "sai_multicast_egress_add",
     .call = join_reported,
     .table = "bcm_l3_intf_create",
     .fill = fill_interfaces},
    {.function = "sai_multicast_egress_add",
     .call = join_reported,
     .table = "bcm_multicast_create",
     .fill = fill_multicast_groups},
    {.function = "sai_multicast_egress_add",
     .call = join_reported,
     .table = "bcm_ipmc_add",
     .fill = fill_multicast_routes},
};

}  // namespace

std::span<const Filling> input::fillings() { return all_fillings; }
