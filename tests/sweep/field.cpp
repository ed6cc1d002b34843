#include "sweep/sweep.h"

namespace sweep {

namespace {

using Create = int32_t (*)(int32_t unit, int32_t* group);

constexpr uint8_t mac[6] = {0x02, 0, 0, 0, 0, 0x01};
constexpr uint8_t ip6[16] = {0x20, 0x01};

int32_t group;
int32_t entry;

std::function<void()> in(Create create) {
  return [create] { create(unit, &group); };
}

Row creation(const char* name, Create create) {
  return {name, [create] { return create(unit, out<int32_t>()); }};
}

/// A rule with something for every qualifier.
sai_acl_rule_t rule(uint32_t ip_type, uint32_t tos_mode) {
  sai_acl_rule_t rule{};
  rule.action = 1;
  rule.ip_type = ip_type;
  rule.l4_src_port = rule.l4_dst_port = 80;
  rule.ip_protocol = 6;
  rule.tos_mode = tos_mode;
  return rule;
}

const sai_acl_rule_t ipv4 = rule(2, 1);
const sai_acl_rule_t ipv6 = rule(3, 2);

using Install = int32_t (*)(int32_t, int32_t, int32_t, int32_t, const sai_acl_rule_t*, int32_t*);

/// The id is told at once; some qualifiers may fail unnoticed.
Row installation(const std::string& name, Install install, const sai_acl_rule_t& rule, Create create) {
  return {.name = name,
          .call = [install, &rule] { return install(unit, 1, 0, group, &rule, out<int32_t>()); },
          .failures = {{"bcm_field_qualify_Tos bcm_field_qualify_DSCP bcm_field_qualify_SrcIp bcm_field_qualify_DstIp "
                        "bcm_field_qualify_SrcIp6 bcm_field_qualify_DstIp6",
                        goes_on, no_line}},
          .outputs = always,
          .scene = in(create)};
}

Row trap(const char* name, const std::function<int32_t(int32_t* entry)>& set,
         Create create = sai_system_ipv4_fp_create) {
  return {.name = name, .call = [set] { return set(out<int32_t>()); }, .scene = in(create)};
}

}  // namespace

Rows field() {
  return {
      creation("sai_ifp_l2_group_create", sai_ifp_l2_group_create),
      creation("sai_efp_l2_group_create", sai_efp_l2_group_create),
      creation("sai_ifp_mac_ipv4_group_create", sai_ifp_mac_ipv4_group_create),
      creation("sai_efp_mac_ipv4_group_create", sai_efp_mac_ipv4_group_create),
      creation("sai_ifp_mac_ipv6_group_create", sai_ifp_mac_ipv6_group_create),
      creation("sai_efp_mac_ipv6_group_create", sai_efp_mac_ipv6_group_create),
      creation("sai_system_ipv4_fp_create", sai_system_ipv4_fp_create),
      creation("sai_system_ipv6_fp_create", sai_system_ipv6_fp_create),
      creation("sai_fp_mld_group_create", sai_fp_mld_group_create),
      creation("sai_fp_vport_group_create", sai_fp_vport_group_create),
      creation("sai_fp_mld_exclude_group_create", sai_fp_mld_exclude_group_create),
      creation("sai_ipsg_init", sai_ipsg_init),

      installation("sai_acl_l2_entry_install", sai_acl_l2_entry_install, ipv4, sai_ifp_l2_group_create),
      installation("sai_acl_std_l3_entry_install", sai_acl_std_l3_entry_install, ipv4, sai_ifp_mac_ipv4_group_create),
      installation("sai_acl_std_l3_entry_install, IPv6", sai_acl_std_l3_entry_install, ipv6,
                   sai_ifp_mac_ipv6_group_create),
      installation("sai_acl_ext_l3_entry_install", sai_acl_ext_l3_entry_install, ipv4, sai_ifp_mac_ipv4_group_create),
      installation("sai_acl_ext_l3_entry_install, IPv6", sai_acl_ext_l3_entry_install, ipv6,
                   sai_ifp_mac_ipv6_group_create),
      installation("sai_acl_l2_l3_entry_install", sai_acl_l2_l3_entry_install, ipv4, sai_ifp_mac_ipv4_group_create),
      installation("sai_acl_l2_l3_entry_install, IPv6", sai_acl_l2_l3_entry_install, ipv6,
                   sai_ifp_mac_ipv6_group_create),
      {.name = "sai_fp_entry_destroy",
       .call = [] { return sai_fp_entry_destroy(unit, entry); },
       .scene =
           [] {
             sai_system_ipv4_fp_create(unit, &group);
             sai_fp_ospf_ttl1_set(unit, 1, group, &entry);
           }},

      trap("sai_fp_ospf_ttl1_set", [](int32_t* id) { return sai_fp_ospf_ttl1_set(unit, 1, group, id); }),
      trap("sai_fp_loopd_packet_to_cpu_set",
           [](int32_t* id) { return sai_fp_loopd_packet_to_cpu_set(unit, 1, mac, group, id); }),
      trap("sai_fp_dhcp_requeset_to_cpu_set",
           [](int32_t* id) { return sai_fp_dhcp_requeset_to_cpu_set(unit, 10, group, id); }),
      trap("sai_fp_dhcp_response_to_cpu_set",
           [](int32_t* id) { return sai_fp_dhcp_response_to_cpu_set(unit, 10, group, id); }),
      trap(
          "sai_fp_dhcpv6_req_to_cpu_set", [](int32_t* id) { return sai_fp_dhcpv6_req_to_cpu_set(unit, 10, group, id); },
          sai_system_ipv6_fp_create),
      trap("sai_fp_igmp_packet_to_cpu", [](int32_t* id) { return sai_fp_igmp_packet_to_cpu(unit, 1, group, id); }),
      // Four entries one after the other: a failure ends the work on one of them, and the last one's result counts.
      {.name = "sai_fp_mld_packet_to_cpu",
       .call = [] { return sai_fp_mld_packet_to_cpu(unit, 1, group, out<int32_t>()); },
       .failures = {{"bcm_field_entry_create bcm_field_qualify_clear bcm_field_qualify_InPort bcm_field_qualify_DstMac "
                     "bcm_field_qualify_Ip6NextHeader bcm_field_qualify_IcmpTypeCode bcm_field_action_add "
                     "bcm_field_entry_install",
                     ">bcm_field_entry_create"}},
       .outputs = always,
       .scene = in(sai_system_ipv6_fp_create)},
      trap("sai_fp_arp_packet_vlan_qualify_set",
           [](int32_t* id) { return sai_fp_arp_packet_vlan_qualify_set(unit, 1, group, id, mac); }),
      trap("sai_fp_arp_packet_cpu_qualify_set",
           [](int32_t* id) { return sai_fp_arp_packet_cpu_qualify_set(unit, 1, group, id); }),
      trap("sai_fp_arp_packet_port_qualify_set",
           [](int32_t* id) { return sai_fp_arp_packet_port_qualify_set(unit, 1, group, id, 2); }),
      trap(
          "sai_fp_mld_packet_exclude_filter_set",
          [](int32_t* id) { return sai_fp_mld_packet_exclude_filter_set(unit, 1, group, id, 0, ip6, ip6); },
          sai_fp_mld_exclude_group_create),
      trap(
          "sai_fp_vport_qualify_set", [](int32_t* id) { return sai_fp_vport_qualify_set(unit, 1, group, id, 10); },
          sai_fp_vport_group_create),
      {.name = "sai_fp_vport_qualify_action",
       .call = [] { return sai_fp_vport_qualify_action(unit, group, entry); },
       .scene =
           [] {
             sai_fp_vport_group_create(unit, &group);
             sai_fp_vport_qualify_set(unit, 1, group, &entry, 10);
           }},
      {.name = "sai_fp_entry_policer_detach",
       .call = [] { return sai_fp_entry_policer_detach(unit, entry); },
       .scene =
           [] {
             int32_t policer = 0;
             sai_system_ipv4_fp_create(unit, &group);
             sai_fp_ospf_ttl1_set(unit, 1, group, &entry);
             sai_vport_fp_policer_set(unit, entry, &policer, 1000, 2000, 1500, 1500);
           }},
      {.name = "sai_dhcp_packet_to_cpu",
       .call = [] { return sai_dhcp_packet_to_cpu(unit, 1); },
       .failures = {{"bcm_switch_control_port_set", goes_on}},
       .result = always_0,
       .ports = 3},

      // The second priority is tried when the first fails. A success of the drop entry is 0, whatever the code.
      {.name = "sai_ipsg_verify_config",
       .call = [] { return sai_ipsg_verify_config(group, 10, 0, 1, out<int32_t>(0)); },
       .failures = {{"bcm_field_entry_prio_set#1", "bcm_field_entry_prio_set *"}},
       .result = zero_unless_failed,
       .scene = in(sai_ipsg_init)},
      {.name = "sai_ipsg_verify_config, to another port",
       .call = [] { return sai_ipsg_verify_config(group, 10, 0, 2, &entry); },
       .result = zero_unless_failed,
       .scene =
           [] {
             sai_ipsg_init(unit, &group);
             entry = 0;
             sai_ipsg_verify_config(group, 10, 0, 1, &entry);
           }},
      {.name = "sai_ipsg_parameter_config",
       .call = [] { return sai_ipsg_parameter_config(group, 0xA, 0xFF, 10, 0, 1, out<int32_t>(0)); },
       .failures = {{"bcm_field_entry_create", stops, " failed!"},
                    {"bcm_field_entry_prio_set#1", "bcm_field_entry_prio_set *"}},
       .scene = in(sai_ipsg_init)},
      {.name = "sai_ipsg_parameter_config, to another port",
       .call = [] { return sai_ipsg_parameter_config(group, 0xA, 0xFF, 10, 0, 2, &entry); },
       .scene =
           [] {
             sai_ipsg_init(unit, &group);
             entry = 0;
             sai_ipsg_parameter_config(group, 0xA, 0xFF, 10, 0, 1, &entry);
           }},
  };
}

}  // namespace sweep
