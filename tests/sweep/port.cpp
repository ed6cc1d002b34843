#include "sweep/sweep.h"

namespace sweep {

namespace {

constexpr int32_t one = 1;  // the port that most calls are about

struct Text {
  char text[16];
};

}  // namespace

Rows port() {
  return {
      {"sai_port_enable_set",
       [] { return sai_port_enable_set(unit, one, 1); },
       {{"soc_linkscan_pause", goes_on, no_line},
        {"bcm_port_enable_set", goes_on},
        {"soc_linkscan_continue", goes_on, no_line}},
       "bcm_port_enable_set"},
      {"sai_port_enable_get",
       [] { return sai_port_enable_get(unit, one, out<int32_t>()); },
       {{"soc_linkscan_pause", goes_on, no_line},
        {"bcm_port_enable_get", goes_on},
        {"soc_linkscan_continue", goes_on, no_line}},
       "bcm_port_enable_get"},
      {"sai_port_autoneg_set", [] { return sai_port_autoneg_set(unit, one, 1); }},
      // These three show the output, as bytes, in place of the text.
      {"sai_port_autoneg_get",
       [] { return sai_port_autoneg_get(unit, one, out<int32_t>()); },
       {{"bcm_port_autoneg_get", stops, "autoneg: \xA5\xA5\xA5\xA5"}}},
      {"sai_port_duplex_set", [] { return sai_port_duplex_set(unit, one, 1); }},
      {"sai_port_duplex_get",
       [] { return sai_port_duplex_get(unit, one, out<int32_t>()); },
       {{"bcm_port_duplex_get", stops, "duplex: \xA5\xA5\xA5\xA5"}}},
      {"sai_port_speed_set", [] { return sai_port_speed_set(unit, one, 1000); }},
      {"sai_port_speed_get",
       [] { return sai_port_speed_get(unit, one, out<int32_t>()); },
       {{"bcm_port_speed_get", stops, "speed: \xA5\xA5\xA5\xA5"}}},
      {"sai_port_pause_set", [] { return sai_port_pause_set(unit, one, 1, 1); }},
      {"sai_port_frame_max_set", [] { return sai_port_frame_max_set(unit, one, 1518); }},
      {"sai_port_learn_set", [] { return sai_port_learn_set(unit, one, BCM_PORT_LEARN_ARL); }},
      {"sai_port_learn_get", [] { return sai_port_learn_get(unit, one, out<int32_t>()); }},
      {"sai_port_interface_set", [] { return sai_port_interface_set(unit, one, 1); }},
      {"sai_port_interface_get", [] { return sai_port_interface_get(unit, one, out<int32_t>()); }},
      {"sai_port_untagged_vlan_set", [] { return sai_port_untagged_vlan_set(unit, one, 1); }},
      {"sai_port_link_status_get", [] { return sai_port_link_status_get(unit, one, out<int32_t>()); }},
      {"sai_port_loopback_set", [] { return sai_port_loopback_set(unit, one, 1); }},
      {"sai_port_isolate_set", [] { return sai_port_isolate_set(unit, one, 2); }},
      {"sai_port_isolate_reset", [] { return sai_port_isolate_reset(unit, one); }},
      {"sai_port_protocol_vlan_add", [] { return sai_port_protocol_vlan_add(unit, one, 1, 0x0800, 1); }},
      {.name = "sai_port_protocol_vlan_del",
       .call = [] { return sai_port_protocol_vlan_del(unit, one, 1, 0x0800); },
       .scene = [] { sai_port_protocol_vlan_add(unit, one, 1, 0x0800, 1); }},
      // The text's number, where the text belongs.
      {"sai_port_protocol_vlan_clear",
       [] { return sai_port_protocol_vlan_clear(unit, one); },
       {{"bcm_port_protocol_vlan_delete_all", stops, "protocol base vlan: %d"}}},
      {"sai_port_mac_vlan_set", [] { return sai_port_mac_vlan_set(unit, one, 1); }},
      {.name = "sai_port_mac_vlan_get",
       .call = [] { return sai_port_mac_vlan_get(unit, one, out<uint8_t>()); },
       .outputs = always},
      {"sai_port_subnet_vlan_set", [] { return sai_port_subnet_vlan_set(unit, one, 1); }},
      {.name = "sai_port_subnet_vlan_get",
       .call = [] { return sai_port_subnet_vlan_get(unit, one, out<uint8_t>()); },
       .outputs = always},
      {"sai_vlan_precedence_set", [] { return sai_vlan_precedence_set(unit, one, SAI_VLAN_PRECEDENCE_MAC); }},
      {"sai_port_ifg_set", [] { return sai_port_ifg_set(unit, one, 96); }},
      {"sai_port_ifg_get", [] { return sai_port_ifg_get(unit, one, out<int32_t>()); }},

      {"sai_rate_mcast_set", [] { return sai_rate_mcast_set(unit, one, 1, 100); }},
      {"sai_rate_dlfbc_set", [] { return sai_rate_dlfbc_set(unit, one, 1, 100); }},
      {"sai_rate_bcast_set", [] { return sai_rate_bcast_set(unit, one, 1, 100); }},
      {"sai_port_storm_ctrl_set, unknown unicast",
       [] {
         return sai_port_storm_ctrl_set(unit, one, {100, 1});
       }},
      {"sai_port_storm_ctrl_set, multicast",
       [] {
         return sai_port_storm_ctrl_set(unit, one, {100, 2});
       }},
      {"sai_port_storm_ctrl_set, broadcast",
       [] {
         return sai_port_storm_ctrl_set(unit, one, {100, 4});
       }},
      // The rate, where the text belongs.
      {"sai_cpu_rate_egress_set",
       [] { return sai_cpu_rate_egress_set(unit, 1000, 100); },
       {{"bcm_port_rate_egress_set", stops, "egress rate: 1000"}}},
      {"sai_cpu_rate_egress_get", [] { return sai_cpu_rate_egress_get(unit, out<uint32_t>(), out<uint32_t>()); }},
      {"sai_port_rate_egress_set", [] { return sai_port_rate_egress_set(unit, one, 1000, 100); }},
      {"sai_port_rate_egress_get",
       [] { return sai_port_rate_egress_get(unit, one, out<uint32_t>(), out<uint32_t>()); }},
      {"sai_port_rate_egress_pps_set", [] { return sai_port_rate_egress_pps_set(unit, one, 1000, 100); }},
      {"sai_port_rate_egress_pps_get",
       [] { return sai_port_rate_egress_pps_get(unit, one, out<uint32_t>(), out<uint32_t>()); }},
      {"sai_port_rate_ingress_set", [] { return sai_port_rate_ingress_set(unit, one, 1000, 100); }},
      {"sai_port_rate_ingress_get",
       [] { return sai_port_rate_ingress_get(unit, one, out<uint32_t>(), out<uint32_t>()); }},

      {"sai_phy_miim_read", [] { return sai_phy_miim_read(unit, 1, 2, out<uint16_t>()); }},
      {"sai_phy_miim_write", [] { return sai_phy_miim_write(unit, 1, 2, 3); }},
      {"sai_phy_miimc45_read", [] { return sai_phy_miimc45_read(unit, 1, 2, 3, out<uint16_t>()); }},
      {"sai_phy_miimc45_write", [] { return sai_phy_miimc45_write(unit, 1, 2, 3, 4); }},
      {"sai_port_phy_read", [] { return sai_port_phy_read(unit, one, 2, out<uint32_t>()); }},
      {"sai_port_phy_write", [] { return sai_port_phy_write(unit, one, 2, 3); }},
      {"sai_port_phy_tx_fir_set",
       [] { return sai_port_phy_tx_fir_set(unit, one, 1, 2, 3, 4, 5); },
       {{"bcm_port_phy_control_set", goes_on}}},
      {"sai_port_phy_tx_fir_get",
       [] { return sai_port_phy_tx_fir_get(unit, one, out<uint32_t, 5>()); },
       {{"bcm_port_phy_control_get", goes_on}},
       last_call,
       each_by_its_call},
      {"sai_port_phy_fec_set", [] { return sai_port_phy_fec_set(unit, one, 1, 1); }},
      {"sai_port_phy_fec_get", [] { return sai_port_phy_fec_get(unit, one, 1, out<uint32_t>()); }},
      {"sai_port_phy_dfe_set", [] { return sai_port_phy_dfe_set(unit, one, 1, 1); }},
      {"sai_port_phy_dfe_get", [] { return sai_port_phy_dfe_get(unit, one, 1, out<uint32_t>()); }},
      {"sai_port_phy_rx_pf_set", [] { return sai_port_phy_rx_pf_set(unit, one, 1, 1); }},
      {"sai_port_phy_rx_pf_get",
       [] { return sai_port_phy_rx_pf_get(unit, one, out<uint32_t, 3>()); },
       {{"bcm_port_phy_control_get", goes_on}},
       last_call,
       each_by_its_call},
      {"sai_port_phy_rxtap_set", [] { return sai_port_phy_rxtap_set(unit, one, 1, 1); }},
      {"sai_port_phy_rxtap_get",
       [] { return sai_port_phy_rxtap_get(unit, one, out<uint32_t, 6>()); },
       {{"bcm_port_phy_control_get", goes_on}},
       last_call,
       each_by_its_call},

      // It reads 312 counters, of which every 78th fails here; no line tells so.
      {.name = "sai_port_stat_show",
       .call = [] { return sai_port_stat_show(unit, one); },
       .failures = {{"bcm_stat_get", goes_on, no_line}},
       .every = 78},
      {"sai_port_stat_clean", [] { return sai_port_stat_clean(unit, one); }},
      {"sai_stat_clean", [] { return sai_stat_clean(unit); }, {{"bcm_stat_clear", goes_on}}},
      {"sai_port_mib_read",
       [] { return sai_port_mib_read(unit, one, out<uint64_t, 18>()); },
       {{"bcm_stat_get", goes_on, no_line}},
       always_0,
       always},
      {"sai_switch_temperature_monitor_get",
       [] {
         return sai_switch_temperature_monitor_get(unit, out<Text>()->text, sizeof(Text), out<Text>()->text,
                                                   sizeof(Text));
       }},
  };
}

}  // namespace sweep
