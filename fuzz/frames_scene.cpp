#include <sai.h>
#include <swsdk/chip.h>

#include "frames.h"

namespace fuzz {

namespace {

constexpr uint8_t router[6] = {2, 0, 0, 0, 0, 0xE0};
constexpr uint8_t host[6] = {0, 0, 0, 0, 0, 1};
constexpr uint8_t any_host[16] = {};
constexpr uint8_t group6[16] = {0xFF, 5, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1};
constexpr uint32_t network = 0x0A000100;  // 10.0.1.0
constexpr uint32_t group4 = 0xE1000001;   // 225.0.0.1

void bridge_vlans() {
  for (uint16_t vlan = 1; vlan <= 4; ++vlan) {
    sai_vlan_create(0, vlan);
    for (uint16_t port = 1; port <= 6; ++port) sai_vlan_port_add(0, vlan, port, (vlan ^ port) & 1);
  }
  for (uint16_t port = 1; port <= 6; ++port) sai_port_untagged_vlan_set(0, port, 1 + port % 3);
}

void use_virtual_ports() {
  sai_vlan_vport_init(0);
  for (uint16_t number = 1; number <= 2; ++number) {
    sai_vport_t single{number, number, 0, 2, 0, 0};
    sai_vport_create(0, number, &single);
    sai_vport_t both{1, 3, number, 0, 3, 0};
    sai_vport_create(0, number, &both);
  }
  int32_t group = 0;
  int32_t entry = 0;
  int32_t policer = 0;
  sai_fp_vport_group_create(0, &group);
  sai_fp_vport_qualify_set(0, 1, group, &entry, 2);
  sai_vport_fp_policer_set(0, entry, &policer, 1000, 2000, 100, 2000);
  sai_fp_vport_qualify_action(0, group, entry);
}

void route() {
  for (int vlan = 1; vlan <= 4; ++vlan) sai_l3_intf_create(0, router, vlan);
  sai_l3_enable_set(0, 1);
  for (uint16_t port = 1; port <= 4; ++port) {
    swsdk_l2_learn(0, port, host, port, 0);
    sai_l3_host_route_create(0, network + port, router, host, port, port, port == 4);
  }
  sai_l3_subnet_route_create(0, network - 0x100, 0xFFFFFF00, network + 1, router, host, 1, 1, 0);
}

void route_multicast() {
  for (uint8_t port = 1; port <= 4; ++port) {
    sai_multicast_egress_add(0, 1, group4, router, port, port);
    sai_ipv6_ipmc_add(0, 1, port, port, group6, any_host, router);
  }
}

void translate() {
  sai_port_vlan_translate_init(0);
  for (int port = 1; port <= 2; ++port) {
    sai_vlan_translate_add(0, port, 5, 0, 2, 3);
    sai_vlan_dtag_add(0, port, 6, 1, 3, 2);
    sai_vlan_dtag_range_add(0, port, 7, 9, 0, 4, 5);
  }
}

void assign_vlans() {
  for (int port = 1; port <= 4; ++port) {
    sai_port_mac_vlan_set(0, port, 1);
    sai_port_subnet_vlan_set(0, port, 1);
    sai_port_protocol_vlan_add(0, port, 0, 0x0806, 3);
  }
  sai_vlan_mac_add(0, host, 2, 1);
  sai_vlan_ip_subnet_add(0, network, 0xFFFFFF00, 3, 2);
}

void bundle_ports() {
  int32_t trunk = 0;
  sai_trunk_create(0, 0, &trunk);
  sai_trunk_set(0, trunk, 3, 1U << 5 | 1U << 6, 2);
}

void mirror() {
  sai_mirror_init(0);
  sai_mirror_dest_port_set(0, 0, 4);
  for (int port = 1; port <= 2; ++port) sai_mirror_source_port_set(0, 0, port, 3);
}

void make_rules() {
  int32_t group = 0;
  int32_t entry = 0;
  sai_ifp_l2_group_create(0, &group);
  sai_system_ipv4_fp_create(0, &group);
  sai_fp_arp_packet_port_qualify_set(0, 1, group, &entry, 2);
  sai_fp_arp_packet_cpu_qualify_set(0, 2, group, &entry);
  sai_fp_igmp_packet_to_cpu(0, 1, group, &entry);
  sai_system_ipv6_fp_create(0, &group);
  sai_fp_mld_packet_to_cpu(0, 1, group, &entry);
  sai_ipsg_init(0, &group);
  sai_ipsg_verify_config(group, 2, 0, 3, &entry);
}

void limit_rates() {
  sai_rate_bcast_set(0, 1, 1, 2);
  sai_rate_dlfbc_set(0, 2, 1, 1);
  sai_port_rate_ingress_set(0, 1, 100, 10);
  sai_port_rate_egress_pps_set(0, 2, 3, 2);
  sai_cpu_rate_egress_set(0, 1000, 100);
}

void loop_back() {
  sai_port_loopback_set(0, 3, 1);
  sai_port_loopback_set(0, 4, 2);
}

}  // namespace

Allowed set_up(Input& input) {
  const auto chosen = input.any<uint16_t>();
  Allowed allowed;
  for (int port = 1; port <= front_ports; ++port) swsdk_link_event(0, port, 1);
  bridge_vlans();
  constexpr struct {
    void (*step)();
    bool mirror, hairpin, loop;
    int members;
  } steps[] = {
      {use_virtual_ports, false, true, false, 4},
      {route, false, true, false, 0},
      {route_multicast, false, true, false, 8},
      {translate, false, false, false, 0},
      {assign_vlans, false, false, false, 0},
      {bundle_ports, false, false, false, 0},
      {mirror, true, true, false, 0},
      {make_rules, false, true, false, 0},
      {limit_rates, false, false, false, 0},
      {loop_back, false, true, true, 0},
  };
  if ((chosen & 0x8000) != 0) sai_port_frame_max_set(0, 3, allowed.longest[3] = 1518);
  unsigned bit = 1;
  for (const auto& step : steps) {
    if ((chosen & bit) != 0) {
      step.step();
      allowed.mirror |= step.mirror;
      allowed.hairpin |= step.hairpin;
      allowed.loop |= step.loop;
      allowed.members += step.members;
    }
    bit <<= 1;
  }
  return allowed;
}

}  // namespace fuzz
