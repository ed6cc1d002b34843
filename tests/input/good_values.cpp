// What is good for each parameter and each field of sai.h, in the scene of the tests.
#include <bcm/l2.h>
#include <bcm/trunk.h>
#include <gtest/gtest.h>

#include "input/arguments.h"

std::map<std::string, int64_t, std::less<>> input::chosen;

int64_t input::good(std::string_view function, std::string_view name) {
  // What is not the same everywhere.
  static const std::map<std::string, std::string, std::less<>> aliases = {
      {"sai_acl_l2_entry_install.group", "ifp_l2"},
      {"sai_acl_std_l3_entry_install.group", "ifp_ipv4"},
      {"sai_acl_ext_l3_entry_install.group", "ifp_ipv4"},
      {"sai_acl_l2_l3_entry_install.group", "ifp_ipv4"},
      {"sai_fp_dhcpv6_req_to_cpu_set.group", "ipv6"},
      {"sai_fp_mld_packet_to_cpu.group", "ipv6"},
      {"sai_fp_mld_packet_exclude_filter_set.group", "mld_exclude"},
      {"sai_fp_vport_qualify_set.group", "vport"},
      {"sai_fp_vport_qualify_action.group", "vport"},
      {"sai_fp_vport_qualify_action.entry", "vport_entry"},
      {"sai_ipsg_verify_config.group", "ipsg"},
      {"sai_ipsg_verify_config.entry", "none"},
      {"sai_ipsg_parameter_config.group", "ipsg"},
      {"sai_ipsg_parameter_config.entry", "none"},
      {"sai_multicast_egress_add.group", "group_ip"},
      {"sai_multicast_egress_del.group", "group_ip"},
      {"sai_multicast_destroy.group", "group_ip"},
      {"sai_ipmc_add.group", "group_ip"},
      {"sai_ipv6_ipmc_add.group", "group_ip6"},
      {"sai_ipv6_multicast_egress_del.group", "group_ip6"},
      {"sai_ipv6_multicast_destroy.group", "group_ip6"},
      {"sai_trunk_create.flags", "with_id"},
      {"sai_l2_mac_learn_limit_set.flags", "port_scope"},
      {"sai_l2_mac_learn_limit_get.flags", "port_scope"},
      {"sai_vport_create.vlan", "user_vlan"},
      {"sai_mirror_dest_port_unset.session", "unused_session"},
      {"sai_vport_fp_policer_destroy.policer_id", "unused_policer"},
      {"sai_vlan_ip_subnet_add.ip", "network_subnet"},
      {"sai_vlan_ip_subnet_add.mask", "network_mask"},
      {"sai_vlan_ip_subnet_del.ip", "network_subnet"},
      {"sai_vlan_ip_subnet_del.mask", "network_mask"},
      {"sai_vport_destroy.vlan", "user_vlan"},
  };
  // clang-format off
  static const std::map<std::string, int64_t, std::less<>> values = {
      {"unit", 0}, {"port", 3}, {"target", 4}, {"dest_port", 4}, {"port_out", 0},
      {"vlan", 10}, {"vid", 10}, {"user_vlan", 20}, {"user_vid", 20}, {"report_vid", 20}, {"old_vid", 31},
      {"new_vid", 32}, {"inner_vid", 33}, {"outer_vid", 34}, {"inner_lo", 41}, {"inner_hi", 44}, {"match_vlan", 51},
      {"match_inner_vlan", 0}, {"outer_vlan", 0},
      {"stg", 2}, {"tid", 1}, {"trunk", 1}, {"session", 0}, {"netif_id", 2}, {"module", 0}, {"destination", SAI_LOG_FILE},
      {"mode", 1}, {"direction", 0}, {"selector", 0}, {"psc", 0}, {"type", 1}, {"ip_type", 2}, {"tos_mode", 1},
      {"frame_type", 1}, {"ether_type", 0x0800}, {"fec_type", 1}, {"dfe_type", 1}, {"pf_type", 1}, {"tap", 1},
      {"state", 4}, {"ip_protocol", 6}, {"command", 36996}, {"action", 1},
      {"enable", 1}, {"enabled", 1}, {"disable", 1}, {"tagged", 1}, {"up", 0}, {"dtag", 0}, {"autoneg", 1},
      {"duplex", 1}, {"speed", 1000}, {"pause_tx", 1}, {"pause_rx", 1}, {"size", 1518}, {"ifg", 96},
      {"rate", 64}, {"burst", 64}, {"pps", 64}, {"seconds", 300}, {"limit", 10}, {"count", 0}, {"delay", 0},
      {"weights", 1}, {"prio", 3}, {"egress_prio", 3}, {"egress_priority", 3}, {"priority", 3}, {"prefix", 64},
      {"ckbits_sec", 64}, {"pkbits_sec", 128}, {"cburst_bytes", 4096}, {"pburst_bytes", 4096},
      {"member_bitmap", 3}, {"member_count", 2}, {"flags", 0}, {"level", 7}, {"rv", 0}, {"facility", 8},
      {"syslog_options", 0}, {"ignored", 0}, {"value", 0}, {"value1", 0}, {"value2", 0}, {"avg_len", 16},
      {"max_len", 16}, {"max", 0}, {"current", 0}, {"query", 0}, {"scope_id", 0}, {"is_vport", 0},
      {"phy_addr", 3}, {"reg", 2}, {"devad", 1}, {"data", 0}, {"pre", 1}, {"main", 1}, {"post", 1}, {"post2", 1},
      {"post3", 1}, {"fir", 0}, {"pf", 0}, {"taps", 0}, {"values", 0},
      {"ip", 0x0A00000A}, {"subnet", 0x0A010000}, {"mask", 0xFFFF0000}, {"nexthop_ip", 0x0A00000A},
      {"src_ip", 0x0A00000A}, {"src_ip_mask", 0xFFFFFFFF}, {"dst_ip", 0}, {"dst_ip_mask", 0}, {"ip6", 0x20},
      {"src_ip6", 0x20}, {"dst_ip6", 0x20}, {"src_ip6_mask", 0xFF}, {"dst_ip6_mask", 0xFF}, {"source", 0x20},
      {"mac", 2}, {"router_mac", 6}, {"host_mac", 2}, {"nexthop_mac", 2}, {"system_mac", 2}, {"src_mac", 2},
      {"dst_mac", 2}, {"src_mac_mask", 0xFF}, {"dst_mac_mask", 0xFF}, {"ether_type_mask", 0xFFFF},
      {"vlan_id", 10}, {"vlan_mask", 0xFFF}, {"vlan_pri", 1}, {"vlan_pri_mask", 7}, {"l4_src_port", 80},
      {"l4_dst_port", 80}, {"l4_src_port_mask", 0xFFFF}, {"l4_dst_port_mask", 0xFFFF}, {"ip_protocol_mask", 0xFF},
      {"tos_value", 1}, {"reserved", 0}, {"reserved1", 0}, {"reserved2", 0}, {"unread0", 0}, {"unread1", 0},
      {"unread2", 0},
      {"none", 0}, {"group_ip", 0xE1020304}, {"group_ip6", 0xFF}, {"unused_session", 1}, {"network_subnet", 0x010A}, {"network_mask", 0xFFFF},
      {"with_id", BCM_TRUNK_FLAG_WITH_ID},
      {"port_scope", BCM_L2_LEARN_LIMIT_PORT},
  };
  // clang-format on
  const std::string both = std::string(function) + '.' + std::string(name);
  const auto alias = aliases.find(both);
  const std::string_view key = alias == aliases.end() ? name : std::string_view(alias->second);
  if (const auto found = chosen.find(key); found != chosen.end()) return found->second;
  if (const auto found = values.find(key); found != values.end()) return found->second;
  ADD_FAILURE() << both << " has no good value here";
  return 0;
}
