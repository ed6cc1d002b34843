#include "api/calls/records.h"

#include <algorithm>
#include <cstring>

#include "api/calls/field_of.h"

using api::Field;
using api::Show;

bool api::Field::is_zero_in(const void* record) const {
  const auto* const bytes = static_cast<const char*>(in(record));
  return std::all_of(bytes, bytes + size, [](char byte) { return byte == 0; });
}

bool api::exceeds_model(std::span<const Field> fields, const void* record) {
  return std::any_of(fields.begin(), fields.end(),
                     [&](const Field& field) { return !field.modeled && !field.is_zero_in(record); });
}

void api::clear_unmodeled(std::span<const Field> fields, void* record) {
  for (const Field& field : fields)
    if (!field.modeled) std::memset(field.in(record), 0, field.size);
}

std::span<const Field> api::fields(const bcm_l2_addr_t*) {
  using R = bcm_l2_addr_t;
  static const Field list[] = {
      field("flags", &R::flags, Show::hex),
      field("mac", &R::mac),
      field("vid", &R::vid),
      field("port", &R::port),
      field("modid", &R::modid),
      field("tgid", &R::tgid),
      unmodeled("cos_dst", &R::cos_dst),
      unmodeled("cos_src", &R::cos_src),
      unmodeled("l2mc_group", &R::l2mc_group),
      unmodeled("l3mc_group", &R::l3mc_group),
      unmodeled("group", &R::group),
  };
  return list;
}

std::span<const Field> api::fields(const bcm_l2_cache_addr_t*) {
  using R = bcm_l2_cache_addr_t;
  static const Field list[] = {
      field("flags", &R::flags, Show::hex),
      unmodeled("station_flags", &R::station_flags, Show::hex),
      field("mac", &R::mac),
      field("mac_mask", &R::mac_mask),
      field("vlan", &R::vlan),
      field("vlan_mask", &R::vlan_mask),
      field("src_port", &R::src_port),
      field("src_port_mask", &R::src_port_mask),
      unmodeled("dest_modid", &R::dest_modid),
      unmodeled("dest_port", &R::dest_port),
      unmodeled("dest_trunk", &R::dest_trunk),
      unmodeled("prio", &R::prio),
      unmodeled("dest_ports", &R::dest_ports),
      unmodeled("lookup_class", &R::lookup_class),
      unmodeled("subtype", &R::subtype),
      unmodeled("encap_id", &R::encap_id),
      unmodeled("group", &R::group),
      unmodeled("ethertype", &R::ethertype, Show::hex),
      unmodeled("ethertype_mask", &R::ethertype_mask, Show::hex),
  };
  return list;
}

std::span<const Field> api::fields(const bcm_l2_learn_limit_t*) {
  using R = bcm_l2_learn_limit_t;
  static const Field list[] = {
      field("flags", &R::flags, Show::hex),
      field("vlan", &R::vlan),
      field("port", &R::port),
      field("trunk", &R::trunk),
      field("tunnel_id", &R::tunnel_id),
      field("limit", &R::limit),
  };
  return list;
}

std::span<const Field> api::fields(const bcm_l3_intf_t*) {
  using R = bcm_l3_intf_t;
  static const Field list[] = {
      field("l3a_flags", &R::l3a_flags, Show::hex),
      unmodeled("l3a_flags2", &R::l3a_flags2, Show::hex),
      field("l3a_vrf", &R::l3a_vrf),
      field("l3a_intf_id", &R::l3a_intf_id),
      field("l3a_mac_addr", &R::l3a_mac_addr),
      field("l3a_vid", &R::l3a_vid),
      field("l3a_inner_vlan", &R::l3a_inner_vlan),
      unmodeled("l3a_tunnel_idx", &R::l3a_tunnel_idx),
      field("l3a_ttl", &R::l3a_ttl),
      unmodeled("l3a_mtu", &R::l3a_mtu),
      unmodeled("l3a_mtu_forwarding", &R::l3a_mtu_forwarding),
      unmodeled("l3a_group", &R::l3a_group),
      unmodeled("l3a_intf_class", &R::l3a_intf_class),
      unmodeled("l3a_ip4_options_profile_id", &R::l3a_ip4_options_profile_id),
      unmodeled("l3a_nat_realm_id", &R::l3a_nat_realm_id),
      unmodeled("outer_tpid", &R::outer_tpid, Show::hex),
      unmodeled("l3a_intf_flags", &R::l3a_intf_flags, Show::hex),
      unmodeled("native_routing_vlan_tags", &R::native_routing_vlan_tags),
      unmodeled("l3a_source_vp", &R::l3a_source_vp),
  };
  return list;
}

std::span<const Field> api::fields(const bcm_l3_egress_t*) {
  using R = bcm_l3_egress_t;
  static const Field list[] = {
      unmodeled("flags", &R::flags, Show::hex),
      unmodeled("flags2", &R::flags2, Show::hex),
      field("intf", &R::intf),
      field("mac_addr", &R::mac_addr),
      field("vlan", &R::vlan),
      unmodeled("module", &R::module),
      field("port", &R::port),
      unmodeled("trunk", &R::trunk),
      unmodeled("encap_id", &R::encap_id),
  };
  return list;
}

std::span<const Field> api::fields(const bcm_l3_host_t*) {
  using R = bcm_l3_host_t;
  static const Field list[] = {
      field("l3a_flags", &R::l3a_flags, Show::hex),
      unmodeled("l3a_flags2", &R::l3a_flags2, Show::hex),
      field("l3a_vrf", &R::l3a_vrf),
      field("l3a_ip_addr", &R::l3a_ip_addr, Show::ip4),
      field("l3a_ip6_addr", &R::l3a_ip6_addr),
      unmodeled("l3a_pri", &R::l3a_pri),
      field("l3a_intf", &R::l3a_intf),
      field("l3a_nexthop_mac", &R::l3a_nexthop_mac),
      unmodeled("l3a_modid", &R::l3a_modid),
      field("l3a_port_tgid", &R::l3a_port_tgid),
      unmodeled("l3a_lookup_class", &R::l3a_lookup_class),
  };
  return list;
}

std::span<const Field> api::fields(const bcm_l3_route_t*) {
  using R = bcm_l3_route_t;
  static const Field list[] = {
      field("l3a_flags", &R::l3a_flags, Show::hex),
      unmodeled("l3a_flags2", &R::l3a_flags2, Show::hex),
      field("l3a_vrf", &R::l3a_vrf),
      field("l3a_subnet", &R::l3a_subnet, Show::ip4),
      field("l3a_ip6_net", &R::l3a_ip6_net),
      field("l3a_ip_mask", &R::l3a_ip_mask, Show::ip4),
      field("l3a_ip6_mask", &R::l3a_ip6_mask),
      field("l3a_intf", &R::l3a_intf),
      field("l3a_nexthop_ip", &R::l3a_nexthop_ip, Show::ip4),
      field("l3a_nexthop_mac", &R::l3a_nexthop_mac),
      unmodeled("l3a_modid", &R::l3a_modid),
      field("l3a_port_tgid", &R::l3a_port_tgid),
      field("l3a_vid", &R::l3a_vid),
      unmodeled("l3a_pri", &R::l3a_pri),
      unmodeled("l3a_lookup_class", &R::l3a_lookup_class),
      unmodeled("l3a_mc_group", &R::l3a_mc_group),
  };
  return list;
}

std::span<const Field> api::fields(const bcm_vlan_port_t*) {
  using R = bcm_vlan_port_t;
  static const Field list[] = {
      field("criteria", &R::criteria),
      field("flags", &R::flags, Show::hex),
      unmodeled("vsi", &R::vsi),
      field("match_vlan", &R::match_vlan),
      field("match_inner_vlan", &R::match_inner_vlan),
      unmodeled("match_pcp", &R::match_pcp),
      unmodeled("match_ethertype", &R::match_ethertype, Show::hex),
      field("port", &R::port),
      unmodeled("pkt_pri", &R::pkt_pri),
      unmodeled("pkt_cfi", &R::pkt_cfi),
      unmodeled("egress_service_tpid", &R::egress_service_tpid, Show::hex),
      field("egress_vlan", &R::egress_vlan),
      field("egress_inner_vlan", &R::egress_inner_vlan),
      unmodeled("encap_id", &R::encap_id),
      unmodeled("qos_map_id", &R::qos_map_id),
      unmodeled("policer_id", &R::policer_id),
      unmodeled("egress_policer_id", &R::egress_policer_id),
      unmodeled("failover_id", &R::failover_id),
      unmodeled("failover_port_id", &R::failover_port_id),
      field("vlan_port_id", &R::vlan_port_id),
      field("ingress_network_group_id", &R::ingress_network_group_id),
      field("egress_network_group_id", &R::egress_network_group_id),
      unmodeled("if_class", &R::if_class),
      unmodeled("group", &R::group),
      unmodeled("class_id", &R::class_id),
      unmodeled("flags2", &R::flags2, Show::hex),
  };
  return list;
}

std::span<const Field> api::fields(const bcm_vlan_control_vlan_t*) {
  using R = bcm_vlan_control_vlan_t;
  static const Field list[] = {
      unmodeled("vrf", &R::vrf),
      unmodeled("forwarding_vlan", &R::forwarding_vlan),
      unmodeled("ingress_if", &R::ingress_if),
      unmodeled("outer_tpid", &R::outer_tpid, Show::hex),
      field("flags", &R::flags, Show::hex),
      field("ip6_mcast_flood_mode", &R::ip6_mcast_flood_mode),
      field("ip4_mcast_flood_mode", &R::ip4_mcast_flood_mode),
      field("l2_mcast_flood_mode", &R::l2_mcast_flood_mode),
      unmodeled("if_class", &R::if_class),
      unmodeled("cosq", &R::cosq),
      unmodeled("qos_map_id", &R::qos_map_id),
      field("broadcast_group", &R::broadcast_group),
      field("unknown_multicast_group", &R::unknown_multicast_group),
      field("unknown_unicast_group", &R::unknown_unicast_group),
      unmodeled("aging_cycles", &R::aging_cycles),
      unmodeled("learn_flags", &R::learn_flags, Show::hex),
      unmodeled("flags2", &R::flags2, Show::hex),
  };
  return list;
}

std::span<const Field> api::fields(const bcm_vlan_action_set_t*) {
  using R = bcm_vlan_action_set_t;
  static const Field list[] = {
      field("new_outer_vlan", &R::new_outer_vlan),
      field("new_inner_vlan", &R::new_inner_vlan),
      field("new_inner_pkt_prio", &R::new_inner_pkt_prio),
      field("new_outer_cfi", &R::new_outer_cfi),
      field("new_inner_cfi", &R::new_inner_cfi),
      unmodeled("ingress_if", &R::ingress_if),
      field("priority", &R::priority),
      field("dt_outer", &R::dt_outer),
      field("dt_outer_prio", &R::dt_outer_prio),
      field("dt_outer_pkt_prio", &R::dt_outer_pkt_prio),
      field("dt_outer_cfi", &R::dt_outer_cfi),
      field("dt_inner", &R::dt_inner),
      field("dt_inner_prio", &R::dt_inner_prio),
      field("dt_inner_pkt_prio", &R::dt_inner_pkt_prio),
      field("dt_inner_cfi", &R::dt_inner_cfi),
      field("ot_outer", &R::ot_outer),
      field("ot_outer_prio", &R::ot_outer_prio),
      field("ot_outer_pkt_prio", &R::ot_outer_pkt_prio),
      field("ot_outer_cfi", &R::ot_outer_cfi),
      field("ot_inner", &R::ot_inner),
      field("ot_inner_pkt_prio", &R::ot_inner_pkt_prio),
      field("ot_inner_cfi", &R::ot_inner_cfi),
      field("it_outer", &R::it_outer),
      field("it_outer_pkt_prio", &R::it_outer_pkt_prio),
      field("it_outer_cfi", &R::it_outer_cfi),
      field("it_inner", &R::it_inner),
      field("it_inner_prio", &R::it_inner_prio),
      field("it_inner_pkt_prio", &R::it_inner_pkt_prio),
      field("it_inner_cfi", &R::it_inner_cfi),
      field("ut_outer", &R::ut_outer),
      field("ut_outer_pkt_prio", &R::ut_outer_pkt_prio),
      field("ut_outer_cfi", &R::ut_outer_cfi),
      field("ut_inner", &R::ut_inner),
      field("ut_inner_pkt_prio", &R::ut_inner_pkt_prio),
      field("ut_inner_cfi", &R::ut_inner_cfi),
      unmodeled("policer_id", &R::policer_id),
      unmodeled("outer_tpid", &R::outer_tpid, Show::hex),
      unmodeled("inner_tpid", &R::inner_tpid, Show::hex),
      unmodeled("action_id", &R::action_id),
      unmodeled("class_id", &R::class_id),
      unmodeled("flags", &R::flags, Show::hex),
  };
  return list;
}

std::span<const Field> api::fields(const bcm_vlan_ip_t*) {
  using R = bcm_vlan_ip_t;
  static const Field list[] = {
      field("flags", &R::flags, Show::hex),
      field("ip4", &R::ip4, Show::ip4),
      field("mask", &R::mask, Show::ip4),
      field("ip6", &R::ip6),
      field("prefix", &R::prefix),
      field("vid", &R::vid),
      field("prio", &R::prio),
  };
  return list;
}

std::span<const Field> api::fields(const bcm_trunk_info_t*) {
  using R = bcm_trunk_info_t;
  static const Field list[] = {
      unmodeled("flags", &R::flags, Show::hex),    field("psc", &R::psc),
      unmodeled("ipmc_psc", &R::ipmc_psc),         unmodeled("dlf_index", &R::dlf_index),
      unmodeled("mc_index", &R::mc_index),         unmodeled("ipmc_index", &R::ipmc_index),
      unmodeled("dynamic_size", &R::dynamic_size), unmodeled("dynamic_age", &R::dynamic_age),
      unmodeled("master_tid", &R::master_tid),
  };
  return list;
}

std::span<const Field> api::fields(const bcm_trunk_member_t*) {
  using R = bcm_trunk_member_t;
  static const Field list[] = {
      unmodeled("flags", &R::flags, Show::hex),
      field("gport", &R::gport),
      unmodeled("dynamic_scaling_factor", &R::dynamic_scaling_factor),
      unmodeled("dynamic_load_weight", &R::dynamic_load_weight),
      unmodeled("dynamic_queue_size_weight", &R::dynamic_queue_size_weight),
  };
  return list;
}

std::span<const Field> api::fields(const bcm_mirror_destination_t*) {
  using R = bcm_mirror_destination_t;
  static const Field list[] = {
      field("mirror_dest_id", &R::mirror_dest_id),
      field("flags", &R::flags, Show::hex),
      field("gport", &R::gport),
  };
  return list;
}

std::span<const Field> api::fields(const bcm_ipmc_addr_t*) {
  using R = bcm_ipmc_addr_t;
  static const Field list[] = {
      field("s_ip_addr", &R::s_ip_addr, Show::ip4),
      field("mc_ip_addr", &R::mc_ip_addr, Show::ip4),
      field("s_ip6_addr", &R::s_ip6_addr),
      field("mc_ip6_addr", &R::mc_ip6_addr),
      field("vid", &R::vid),
      field("vrf", &R::vrf),
      unmodeled("cos", &R::cos),
      unmodeled("ts", &R::ts),
      field("port_tgid", &R::port_tgid),
      field("v", &R::v),
      unmodeled("mod_id", &R::mod_id),
      field("group", &R::group),
      field("flags", &R::flags, Show::hex),
      unmodeled("lookup_class", &R::lookup_class),
      field("l3a_intf", &R::l3a_intf),
      unmodeled("rp_id", &R::rp_id),
      field("s_ip_mask", &R::s_ip_mask, Show::ip4),
      unmodeled("ing_intf", &R::ing_intf),
      field("mc_ip_mask", &R::mc_ip_mask, Show::ip4),
      field("mc_ip6_mask", &R::mc_ip6_mask),
      unmodeled("group_l2", &R::group_l2),
      field("s_ip6_mask", &R::s_ip6_mask),
      unmodeled("priority", &R::priority),
  };
  return list;
}

std::span<const Field> api::fields(const bcm_policer_config_t*) {
  using R = bcm_policer_config_t;
  static const Field list[] = {
      field("flags", &R::flags, Show::hex),
      field("mode", &R::mode),
      field("ckbits_sec", &R::ckbits_sec),
      field("ckbits_burst", &R::ckbits_burst),
      field("cbits_burst_lower", &R::cbits_burst_lower),
      field("pkbits_sec", &R::pkbits_sec),
      field("pkbits_burst", &R::pkbits_burst),
      field("pbits_burst_lower", &R::pbits_burst_lower),
      unmodeled("action_id", &R::action_id),
      unmodeled("sharing_mode", &R::sharing_mode),
  };
  return list;
}

std::span<const Field> api::fields(const bcm_knet_netif_t*) {
  using R = bcm_knet_netif_t;
  static const Field list[] = {
      field("id", &R::id),
      field("type", &R::type),
      field("flags", &R::flags, Show::hex),
      field("mac_addr", &R::mac_addr),
      unmodeled("vlan", &R::vlan),
      unmodeled("port", &R::port),
      unmodeled("cosq", &R::cosq),
      field("name", &R::name),
      unmodeled("cb_user_data", &R::cb_user_data),
  };
  return list;
}

std::span<const Field> api::fields(const bcm_switch_temperature_monitor_t*) {
  using R = bcm_switch_temperature_monitor_t;
  static const Field list[] = {
      field("curr", &R::curr),
      field("peak", &R::peak),
  };
  return list;
}

std::span<const Field> api::fields(const bcm_switch_network_group_config_t*) {
  using R = bcm_switch_network_group_config_t;
  static const Field list[] = {
      field("dest_network_group_id", &R::dest_network_group_id),
      field("config_flags", &R::config_flags, Show::hex),
  };
  return list;
}

std::span<const Field> api::fields(const bcm_field_qset_t*) {
  using R = bcm_field_qset_t;
  static const Field list[] = {
      field("w", &R::w),
      field("udf_map", &R::udf_map),
  };
  return list;
}

std::span<const Field> api::fields(const bcm_port_info_t*) {
  using R = bcm_port_info_t;
  static const Field list[] = {
      field("action_mask", &R::action_mask, Show::hex),
      field("action_mask2", &R::action_mask2, Show::hex),
      field("enable", &R::enable),
      field("linkstatus", &R::linkstatus),
      field("autoneg", &R::autoneg),
      field("speed", &R::speed),
      field("duplex", &R::duplex),
      field("linkscan", &R::linkscan),
      field("learn", &R::learn),
      field("discard", &R::discard),
      field("vlanfilter", &R::vlanfilter),
      field("untagged_priority", &R::untagged_priority),
      field("untagged_vlan", &R::untagged_vlan),
      field("stp_state", &R::stp_state),
      field("pfm", &R::pfm),
      field("loopback", &R::loopback),
      field("phy_master", &R::phy_master),
      field("interface", &R::interface),
      field("pause_tx", &R::pause_tx),
      field("pause_rx", &R::pause_rx),
      field("encap_mode", &R::encap_mode),
      field("pause_mac", &R::pause_mac),
      field("local_advert", &R::local_advert, Show::hex),
      field("remote_advert_valid", &R::remote_advert_valid),
      field("remote_advert", &R::remote_advert, Show::hex),
      field("mcast_limit", &R::mcast_limit),
      field("mcast_limit_enable", &R::mcast_limit_enable),
      field("bcast_limit", &R::bcast_limit),
      field("bcast_limit_enable", &R::bcast_limit_enable),
      field("dlfbc_limit", &R::dlfbc_limit),
      field("dlfbc_limit_enable", &R::dlfbc_limit_enable),
      field("speed_max", &R::speed_max),
      field("ability", &R::ability, Show::hex),
      field("frame_max", &R::frame_max),
      field("mdix", &R::mdix),
      field("mdix_status", &R::mdix_status),
      field("medium", &R::medium),
      field("fault", &R::fault, Show::hex),
  };
  return list;
}

std::span<const Field> api::fields(const bcm_info_t*) {
  using R = bcm_info_t;
  static const Field list[] = {
      field("vendor", &R::vendor, Show::hex),
      field("device", &R::device, Show::hex),
      field("revision", &R::revision),
      field("capability", &R::capability, Show::hex),
  };
  return list;
}

std::span<const Field> api::fields(const bcm_port_config_t*) {
  using R = bcm_port_config_t;
  static const Field list[] = {
      field("fe", &R::fe), field("ge", &R::ge),   field("xe", &R::xe),
      field("e", &R::e),   field("cpu", &R::cpu), field("all", &R::all),
  };
  return list;
}
