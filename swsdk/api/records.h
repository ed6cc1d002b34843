// The SDK's records as lists of their fields, so that one piece of code prints them all.
#pragma once

#include <bcm/field.h>
#include <bcm/init.h>
#include <bcm/ipmc.h>
#include <bcm/knet.h>
#include <bcm/l2.h>
#include <bcm/l3.h>
#include <bcm/mirror.h>
#include <bcm/policer.h>
#include <bcm/port.h>
#include <bcm/switch.h>
#include <bcm/trunk.h>
#include <bcm/vlan.h>
#include <swsdk/chip.h>

#include <tuple>

namespace api {

enum class Show { plain, hex, ip4 };

/// One field of a record: its name, where it is, and how its value is shown.
template <class Record, class T>
struct Field {
  const char* name;
  T Record::*where;
  Show show = Show::plain;
};

template <class Record, class T>
Field(const char*, T Record::*, Show = Show::plain) -> Field<Record, T>;

constexpr auto fields(const bcm_l2_addr_t*) {
  using R = bcm_l2_addr_t;
  return std::tuple{
      Field{"flags", &R::flags, Show::hex},
      Field{"mac", &R::mac},
      Field{"vid", &R::vid},
      Field{"port", &R::port},
      Field{"modid", &R::modid},
      Field{"tgid", &R::tgid},
      Field{"cos_dst", &R::cos_dst},
      Field{"cos_src", &R::cos_src},
      Field{"l2mc_group", &R::l2mc_group},
      Field{"l3mc_group", &R::l3mc_group},
      Field{"group", &R::group},
  };
}

constexpr auto fields(const bcm_l2_cache_addr_t*) {
  using R = bcm_l2_cache_addr_t;
  return std::tuple{
      Field{"flags", &R::flags, Show::hex},
      Field{"station_flags", &R::station_flags, Show::hex},
      Field{"mac", &R::mac},
      Field{"mac_mask", &R::mac_mask},
      Field{"vlan", &R::vlan},
      Field{"vlan_mask", &R::vlan_mask},
      Field{"src_port", &R::src_port},
      Field{"src_port_mask", &R::src_port_mask},
      Field{"dest_modid", &R::dest_modid},
      Field{"dest_port", &R::dest_port},
      Field{"dest_trunk", &R::dest_trunk},
      Field{"prio", &R::prio},
      Field{"dest_ports", &R::dest_ports},
      Field{"lookup_class", &R::lookup_class},
      Field{"subtype", &R::subtype},
      Field{"encap_id", &R::encap_id},
      Field{"group", &R::group},
      Field{"ethertype", &R::ethertype, Show::hex},
      Field{"ethertype_mask", &R::ethertype_mask, Show::hex},
  };
}

constexpr auto fields(const bcm_l2_learn_limit_t*) {
  using R = bcm_l2_learn_limit_t;
  return std::tuple{
      Field{"flags", &R::flags, Show::hex},
      Field{"vlan", &R::vlan},
      Field{"port", &R::port},
      Field{"trunk", &R::trunk},
      Field{"tunnel_id", &R::tunnel_id},
      Field{"limit", &R::limit},
  };
}

constexpr auto fields(const bcm_l3_intf_t*) {
  using R = bcm_l3_intf_t;
  return std::tuple{
      Field{"l3a_flags", &R::l3a_flags, Show::hex},
      Field{"l3a_flags2", &R::l3a_flags2, Show::hex},
      Field{"l3a_vrf", &R::l3a_vrf},
      Field{"l3a_intf_id", &R::l3a_intf_id},
      Field{"l3a_mac_addr", &R::l3a_mac_addr},
      Field{"l3a_vid", &R::l3a_vid},
      Field{"l3a_inner_vlan", &R::l3a_inner_vlan},
      Field{"l3a_tunnel_idx", &R::l3a_tunnel_idx},
      Field{"l3a_ttl", &R::l3a_ttl},
      Field{"l3a_mtu", &R::l3a_mtu},
      Field{"l3a_mtu_forwarding", &R::l3a_mtu_forwarding},
      Field{"l3a_group", &R::l3a_group},
      Field{"l3a_intf_class", &R::l3a_intf_class},
      Field{"l3a_ip4_options_profile_id", &R::l3a_ip4_options_profile_id},
      Field{"l3a_nat_realm_id", &R::l3a_nat_realm_id},
      Field{"outer_tpid", &R::outer_tpid, Show::hex},
      Field{"l3a_intf_flags", &R::l3a_intf_flags, Show::hex},
      Field{"native_routing_vlan_tags", &R::native_routing_vlan_tags},
      Field{"l3a_source_vp", &R::l3a_source_vp},
  };
}

constexpr auto fields(const bcm_l3_egress_t*) {
  using R = bcm_l3_egress_t;
  return std::tuple{
      Field{"flags", &R::flags, Show::hex},
      Field{"flags2", &R::flags2, Show::hex},
      Field{"intf", &R::intf},
      Field{"mac_addr", &R::mac_addr},
      Field{"vlan", &R::vlan},
      Field{"module", &R::module},
      Field{"port", &R::port},
      Field{"trunk", &R::trunk},
      Field{"encap_id", &R::encap_id},
  };
}

constexpr auto fields(const bcm_l3_host_t*) {
  using R = bcm_l3_host_t;
  return std::tuple{
      Field{"l3a_flags", &R::l3a_flags, Show::hex},
      Field{"l3a_flags2", &R::l3a_flags2, Show::hex},
      Field{"l3a_vrf", &R::l3a_vrf},
      Field{"l3a_ip_addr", &R::l3a_ip_addr, Show::ip4},
      Field{"l3a_ip6_addr", &R::l3a_ip6_addr},
      Field{"l3a_pri", &R::l3a_pri},
      Field{"l3a_intf", &R::l3a_intf},
      Field{"l3a_nexthop_mac", &R::l3a_nexthop_mac},
      Field{"l3a_modid", &R::l3a_modid},
      Field{"l3a_port_tgid", &R::l3a_port_tgid},
      Field{"l3a_lookup_class", &R::l3a_lookup_class},
  };
}

constexpr auto fields(const bcm_l3_route_t*) {
  using R = bcm_l3_route_t;
  return std::tuple{
      Field{"l3a_flags", &R::l3a_flags, Show::hex},
      Field{"l3a_flags2", &R::l3a_flags2, Show::hex},
      Field{"l3a_vrf", &R::l3a_vrf},
      Field{"l3a_subnet", &R::l3a_subnet, Show::ip4},
      Field{"l3a_ip6_net", &R::l3a_ip6_net},
      Field{"l3a_ip_mask", &R::l3a_ip_mask, Show::ip4},
      Field{"l3a_ip6_mask", &R::l3a_ip6_mask},
      Field{"l3a_intf", &R::l3a_intf},
      Field{"l3a_nexthop_ip", &R::l3a_nexthop_ip, Show::ip4},
      Field{"l3a_nexthop_mac", &R::l3a_nexthop_mac},
      Field{"l3a_modid", &R::l3a_modid},
      Field{"l3a_port_tgid", &R::l3a_port_tgid},
      Field{"l3a_vid", &R::l3a_vid},
      Field{"l3a_pri", &R::l3a_pri},
      Field{"l3a_lookup_class", &R::l3a_lookup_class},
      Field{"l3a_mc_group", &R::l3a_mc_group},
  };
}

constexpr auto fields(const bcm_vlan_port_t*) {
  using R = bcm_vlan_port_t;
  return std::tuple{
      Field{"criteria", &R::criteria},
      Field{"flags", &R::flags, Show::hex},
      Field{"vsi", &R::vsi},
      Field{"match_vlan", &R::match_vlan},
      Field{"match_inner_vlan", &R::match_inner_vlan},
      Field{"match_pcp", &R::match_pcp},
      Field{"match_ethertype", &R::match_ethertype, Show::hex},
      Field{"port", &R::port},
      Field{"pkt_pri", &R::pkt_pri},
      Field{"pkt_cfi", &R::pkt_cfi},
      Field{"egress_service_tpid", &R::egress_service_tpid, Show::hex},
      Field{"egress_vlan", &R::egress_vlan},
      Field{"egress_inner_vlan", &R::egress_inner_vlan},
      Field{"encap_id", &R::encap_id},
      Field{"qos_map_id", &R::qos_map_id},
      Field{"policer_id", &R::policer_id},
      Field{"egress_policer_id", &R::egress_policer_id},
      Field{"failover_id", &R::failover_id},
      Field{"failover_port_id", &R::failover_port_id},
      Field{"vlan_port_id", &R::vlan_port_id},
      Field{"ingress_network_group_id", &R::ingress_network_group_id},
      Field{"egress_network_group_id", &R::egress_network_group_id},
      Field{"if_class", &R::if_class},
      Field{"group", &R::group},
      Field{"class_id", &R::class_id},
      Field{"flags2", &R::flags2, Show::hex},
  };
}

constexpr auto fields(const bcm_vlan_control_vlan_t*) {
  using R = bcm_vlan_control_vlan_t;
  return std::tuple{
      Field{"vrf", &R::vrf},
      Field{"forwarding_vlan", &R::forwarding_vlan},
      Field{"ingress_if", &R::ingress_if},
      Field{"outer_tpid", &R::outer_tpid, Show::hex},
      Field{"flags", &R::flags, Show::hex},
      Field{"ip6_mcast_flood_mode", &R::ip6_mcast_flood_mode},
      Field{"ip4_mcast_flood_mode", &R::ip4_mcast_flood_mode},
      Field{"l2_mcast_flood_mode", &R::l2_mcast_flood_mode},
      Field{"if_class", &R::if_class},
      Field{"cosq", &R::cosq},
      Field{"qos_map_id", &R::qos_map_id},
      Field{"broadcast_group", &R::broadcast_group},
      Field{"unknown_multicast_group", &R::unknown_multicast_group},
      Field{"unknown_unicast_group", &R::unknown_unicast_group},
      Field{"aging_cycles", &R::aging_cycles},
      Field{"learn_flags", &R::learn_flags, Show::hex},
      Field{"flags2", &R::flags2, Show::hex},
  };
}

constexpr auto fields(const bcm_vlan_action_set_t*) {
  using R = bcm_vlan_action_set_t;
  return std::tuple{
      Field{"new_outer_vlan", &R::new_outer_vlan},
      Field{"new_inner_vlan", &R::new_inner_vlan},
      Field{"new_inner_pkt_prio", &R::new_inner_pkt_prio},
      Field{"new_outer_cfi", &R::new_outer_cfi},
      Field{"new_inner_cfi", &R::new_inner_cfi},
      Field{"ingress_if", &R::ingress_if},
      Field{"priority", &R::priority},
      Field{"dt_outer", &R::dt_outer},
      Field{"dt_outer_prio", &R::dt_outer_prio},
      Field{"dt_outer_pkt_prio", &R::dt_outer_pkt_prio},
      Field{"dt_outer_cfi", &R::dt_outer_cfi},
      Field{"dt_inner", &R::dt_inner},
      Field{"dt_inner_prio", &R::dt_inner_prio},
      Field{"dt_inner_pkt_prio", &R::dt_inner_pkt_prio},
      Field{"dt_inner_cfi", &R::dt_inner_cfi},
      Field{"ot_outer", &R::ot_outer},
      Field{"ot_outer_prio", &R::ot_outer_prio},
      Field{"ot_outer_pkt_prio", &R::ot_outer_pkt_prio},
      Field{"ot_outer_cfi", &R::ot_outer_cfi},
      Field{"ot_inner", &R::ot_inner},
      Field{"ot_inner_pkt_prio", &R::ot_inner_pkt_prio},
      Field{"ot_inner_cfi", &R::ot_inner_cfi},
      Field{"it_outer", &R::it_outer},
      Field{"it_outer_pkt_prio", &R::it_outer_pkt_prio},
      Field{"it_outer_cfi", &R::it_outer_cfi},
      Field{"it_inner", &R::it_inner},
      Field{"it_inner_prio", &R::it_inner_prio},
      Field{"it_inner_pkt_prio", &R::it_inner_pkt_prio},
      Field{"it_inner_cfi", &R::it_inner_cfi},
      Field{"ut_outer", &R::ut_outer},
      Field{"ut_outer_pkt_prio", &R::ut_outer_pkt_prio},
      Field{"ut_outer_cfi", &R::ut_outer_cfi},
      Field{"ut_inner", &R::ut_inner},
      Field{"ut_inner_pkt_prio", &R::ut_inner_pkt_prio},
      Field{"ut_inner_cfi", &R::ut_inner_cfi},
      Field{"policer_id", &R::policer_id},
      Field{"outer_tpid", &R::outer_tpid, Show::hex},
      Field{"inner_tpid", &R::inner_tpid, Show::hex},
      Field{"action_id", &R::action_id},
      Field{"class_id", &R::class_id},
      Field{"flags", &R::flags, Show::hex},
  };
}

constexpr auto fields(const bcm_vlan_ip_t*) {
  using R = bcm_vlan_ip_t;
  return std::tuple{
      Field{"flags", &R::flags, Show::hex},
      Field{"ip4", &R::ip4, Show::ip4},
      Field{"mask", &R::mask, Show::ip4},
      Field{"ip6", &R::ip6},
      Field{"prefix", &R::prefix},
      Field{"vid", &R::vid},
      Field{"prio", &R::prio},
  };
}

constexpr auto fields(const bcm_trunk_info_t*) {
  using R = bcm_trunk_info_t;
  return std::tuple{
      Field{"flags", &R::flags, Show::hex},    Field{"psc", &R::psc},
      Field{"ipmc_psc", &R::ipmc_psc},         Field{"dlf_index", &R::dlf_index},
      Field{"mc_index", &R::mc_index},         Field{"ipmc_index", &R::ipmc_index},
      Field{"dynamic_size", &R::dynamic_size}, Field{"dynamic_age", &R::dynamic_age},
      Field{"master_tid", &R::master_tid},
  };
}

constexpr auto fields(const bcm_trunk_member_t*) {
  using R = bcm_trunk_member_t;
  return std::tuple{
      Field{"flags", &R::flags, Show::hex},
      Field{"gport", &R::gport},
      Field{"dynamic_scaling_factor", &R::dynamic_scaling_factor},
      Field{"dynamic_load_weight", &R::dynamic_load_weight},
      Field{"dynamic_queue_size_weight", &R::dynamic_queue_size_weight},
  };
}

constexpr auto fields(const bcm_mirror_destination_t*) {
  using R = bcm_mirror_destination_t;
  return std::tuple{
      Field{"mirror_dest_id", &R::mirror_dest_id},
      Field{"flags", &R::flags, Show::hex},
      Field{"gport", &R::gport},
  };
}

constexpr auto fields(const bcm_ipmc_addr_t*) {
  using R = bcm_ipmc_addr_t;
  return std::tuple{
      Field{"s_ip_addr", &R::s_ip_addr, Show::ip4},
      Field{"mc_ip_addr", &R::mc_ip_addr, Show::ip4},
      Field{"s_ip6_addr", &R::s_ip6_addr},
      Field{"mc_ip6_addr", &R::mc_ip6_addr},
      Field{"vid", &R::vid},
      Field{"vrf", &R::vrf},
      Field{"cos", &R::cos},
      Field{"ts", &R::ts},
      Field{"port_tgid", &R::port_tgid},
      Field{"v", &R::v},
      Field{"mod_id", &R::mod_id},
      Field{"group", &R::group},
      Field{"flags", &R::flags, Show::hex},
      Field{"lookup_class", &R::lookup_class},
      Field{"l3a_intf", &R::l3a_intf},
      Field{"rp_id", &R::rp_id},
      Field{"s_ip_mask", &R::s_ip_mask, Show::ip4},
      Field{"ing_intf", &R::ing_intf},
      Field{"mc_ip_mask", &R::mc_ip_mask, Show::ip4},
      Field{"mc_ip6_mask", &R::mc_ip6_mask},
      Field{"group_l2", &R::group_l2},
      Field{"s_ip6_mask", &R::s_ip6_mask},
      Field{"priority", &R::priority},
  };
}

constexpr auto fields(const bcm_policer_config_t*) {
  using R = bcm_policer_config_t;
  return std::tuple{
      Field{"flags", &R::flags, Show::hex},
      Field{"mode", &R::mode},
      Field{"ckbits_sec", &R::ckbits_sec},
      Field{"ckbits_burst", &R::ckbits_burst},
      Field{"cbits_burst_lower", &R::cbits_burst_lower},
      Field{"pkbits_sec", &R::pkbits_sec},
      Field{"pkbits_burst", &R::pkbits_burst},
      Field{"pbits_burst_lower", &R::pbits_burst_lower},
      Field{"action_id", &R::action_id},
      Field{"sharing_mode", &R::sharing_mode},
  };
}

constexpr auto fields(const bcm_knet_netif_t*) {
  using R = bcm_knet_netif_t;
  return std::tuple{
      Field{"id", &R::id},
      Field{"type", &R::type},
      Field{"flags", &R::flags, Show::hex},
      Field{"mac_addr", &R::mac_addr},
      Field{"vlan", &R::vlan},
      Field{"port", &R::port},
      Field{"cosq", &R::cosq},
      Field{"name", &R::name},
      Field{"cb_user_data", &R::cb_user_data},
  };
}

constexpr auto fields(const bcm_switch_temperature_monitor_t*) {
  using R = bcm_switch_temperature_monitor_t;
  return std::tuple{
      Field{"curr", &R::curr},
      Field{"peak", &R::peak},
  };
}

constexpr auto fields(const bcm_switch_network_group_config_t*) {
  using R = bcm_switch_network_group_config_t;
  return std::tuple{
      Field{"dest_network_group_id", &R::dest_network_group_id},
      Field{"config_flags", &R::config_flags, Show::hex},
  };
}

constexpr auto fields(const bcm_field_qset_t*) {
  using R = bcm_field_qset_t;
  return std::tuple{
      Field{"w", &R::w},
      Field{"udf_map", &R::udf_map},
  };
}

constexpr auto fields(const bcm_port_info_t*) {
  using R = bcm_port_info_t;
  return std::tuple{
      Field{"action_mask", &R::action_mask, Show::hex},
      Field{"action_mask2", &R::action_mask2, Show::hex},
      Field{"enable", &R::enable},
      Field{"linkstatus", &R::linkstatus},
      Field{"autoneg", &R::autoneg},
      Field{"speed", &R::speed},
      Field{"duplex", &R::duplex},
      Field{"linkscan", &R::linkscan},
      Field{"learn", &R::learn},
      Field{"discard", &R::discard},
      Field{"vlanfilter", &R::vlanfilter},
      Field{"untagged_priority", &R::untagged_priority},
      Field{"untagged_vlan", &R::untagged_vlan},
      Field{"stp_state", &R::stp_state},
      Field{"pfm", &R::pfm},
      Field{"loopback", &R::loopback},
      Field{"phy_master", &R::phy_master},
      Field{"interface", &R::interface},
      Field{"pause_tx", &R::pause_tx},
      Field{"pause_rx", &R::pause_rx},
      Field{"encap_mode", &R::encap_mode},
      Field{"pause_mac", &R::pause_mac},
      Field{"local_advert", &R::local_advert, Show::hex},
      Field{"remote_advert_valid", &R::remote_advert_valid},
      Field{"remote_advert", &R::remote_advert, Show::hex},
      Field{"mcast_limit", &R::mcast_limit},
      Field{"mcast_limit_enable", &R::mcast_limit_enable},
      Field{"bcast_limit", &R::bcast_limit},
      Field{"bcast_limit_enable", &R::bcast_limit_enable},
      Field{"dlfbc_limit", &R::dlfbc_limit},
      Field{"dlfbc_limit_enable", &R::dlfbc_limit_enable},
      Field{"speed_max", &R::speed_max},
      Field{"ability", &R::ability, Show::hex},
      Field{"frame_max", &R::frame_max},
      Field{"mdix", &R::mdix},
      Field{"mdix_status", &R::mdix_status},
      Field{"medium", &R::medium},
      Field{"fault", &R::fault, Show::hex},
  };
}

constexpr auto fields(const bcm_info_t*) {
  using R = bcm_info_t;
  return std::tuple{
      Field{"vendor", &R::vendor, Show::hex},
      Field{"device", &R::device, Show::hex},
      Field{"revision", &R::revision},
      Field{"capability", &R::capability, Show::hex},
  };
}

constexpr auto fields(const bcm_port_config_t*) {
  using R = bcm_port_config_t;
  return std::tuple{
      Field{"fe", &R::fe}, Field{"ge", &R::ge},   Field{"xe", &R::xe},
      Field{"e", &R::e},   Field{"cpu", &R::cpu}, Field{"all", &R::all},
  };
}

constexpr auto fields(const swsdk_board*) {
  using R = swsdk_board;
  return std::tuple{
      Field{"units", &R::units},
      Field{"ports", &R::ports},
      Field{"chip_type", &R::chip_type},
  };
}

constexpr auto fields(const swsdk_temperature*) {
  using R = swsdk_temperature;
  return std::tuple{
      Field{"current", &R::current},
      Field{"peak", &R::peak},
  };
}

}  // namespace api
