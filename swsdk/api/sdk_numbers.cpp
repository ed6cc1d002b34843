// The chip does not use the SDK, but many of its numbers are the SDK's own: they arrive in calls and are passed on
// unchanged. This file compares each with its name.
#include <bcm/cosq.h>
#include <bcm/error.h>
#include <bcm/field.h>
#include <bcm/ipmc.h>
#include <bcm/knet.h>
#include <bcm/l2.h>
#include <bcm/l3.h>
#include <bcm/mirror.h>
#include <bcm/multicast.h>
#include <bcm/policer.h>
#include <bcm/port.h>
#include <bcm/rate.h>
#include <bcm/stat.h>
#include <bcm/stg.h>
#include <bcm/switch.h>
#include <bcm/trunk.h>
#include <bcm/vlan.h>

#include <cstdint>

#include "api/gports.h"
#include "chip/chip.h"
#include "chip/counter_numbers.h"

namespace chip {

namespace {

template <class Own, class Sdk>
constexpr bool same(Own own, Sdk sdk) {
  return static_cast<int64_t>(own) == static_cast<int64_t>(sdk);
}

}  // namespace

// Results
static_assert(same(Status::ok, BCM_E_NONE));
static_assert(same(Status::internal, BCM_E_INTERNAL));
static_assert(same(Status::no_memory, BCM_E_MEMORY));
static_assert(same(Status::bad_unit, BCM_E_UNIT));
static_assert(same(Status::bad_parameter, BCM_E_PARAM));
static_assert(same(Status::empty, BCM_E_EMPTY));
static_assert(same(Status::full, BCM_E_FULL));
static_assert(same(Status::not_found, BCM_E_NOT_FOUND));
static_assert(same(Status::exists, BCM_E_EXISTS));
static_assert(same(Status::timeout, BCM_E_TIMEOUT));
static_assert(same(Status::busy, BCM_E_BUSY));
static_assert(same(Status::failed, BCM_E_FAIL));
static_assert(same(Status::disabled, BCM_E_DISABLED));
static_assert(same(Status::bad_id, BCM_E_BADID));
static_assert(same(Status::no_resource, BCM_E_RESOURCE));
static_assert(same(Status::bad_configuration, BCM_E_CONFIG));
static_assert(same(Status::unavailable, BCM_E_UNAVAIL));
static_assert(same(Status::not_initialized, BCM_E_INIT));
static_assert(same(Status::bad_port, BCM_E_PORT));

// Gports
static_assert(same(api::gport::local, BCM_GPORT_TYPE_LOCAL));
static_assert(same(api::gport::module_port, BCM_GPORT_TYPE_MODPORT));
static_assert(same(api::gport::trunk, BCM_GPORT_TYPE_TRUNK));
static_assert(same(api::gport::mirror, BCM_GPORT_TYPE_MIRROR));
static_assert(same(PortSet::capacity, BCM_PBMP_PORT_MAX));

// Ports
static_assert(same(PortFilters::check_ingress, BCM_PORT_VLAN_MEMBER_INGRESS));
static_assert(same(PortFilters::check_egress, BCM_PORT_VLAN_MEMBER_EGRESS));
static_assert(same(PortFilters::broadcast, BCM_PORT_FLOOD_BLOCK_BCAST));
static_assert(same(PortFilters::unknown_unicast, BCM_PORT_FLOOD_BLOCK_UNKNOWN_UCAST));
static_assert(same(PortFilters::unknown_multicast, BCM_PORT_FLOOD_BLOCK_UNKNOWN_MCAST));
static_assert(same(PortForwardings::learn, BCM_PORT_LEARN_ARL));
static_assert(same(PortForwardings::to_cpu, BCM_PORT_LEARN_CPU));
static_assert(same(PortForwardings::forward, BCM_PORT_LEARN_FWD));
static_assert(same(Loopback::none, BCM_PORT_LOOPBACK_NONE));
static_assert(same(Loopback::mac, BCM_PORT_LOOPBACK_MAC));
static_assert(same(Loopback::phy, BCM_PORT_LOOPBACK_PHY));
static_assert(same(Duplex::half, BCM_PORT_DUPLEX_HALF));
static_assert(same(Duplex::full, BCM_PORT_DUPLEX_FULL));
static_assert(same(StormRates::unknown_destination, BCM_RATE_DLF));
static_assert(same(StormRates::multicast, BCM_RATE_MCAST));
static_assert(same(StormRates::broadcast, BCM_RATE_BCAST));

// PHYs
static_assert(same(PhyControl::error_correction, BCM_PORT_PHY_CONTROL_FORWARD_ERROR_CORRECTION));
static_assert(same(PhyControl::rx_peak_filter, BCM_PORT_PHY_CONTROL_RX_PEAK_FILTER));
static_assert(same(PhyControl::rx_low_frequency_peak_filter, BCM_PORT_PHY_CONTROL_RX_LOW_FREQ_PEAK_FILTER));
static_assert(same(PhyControl::rx_vga, BCM_PORT_PHY_CONTROL_RX_VGA));
static_assert(same(PhyControl::rx_tap1, BCM_PORT_PHY_CONTROL_RX_TAP1));
static_assert(same(PhyControl::rx_tap2, BCM_PORT_PHY_CONTROL_RX_TAP2));
static_assert(same(PhyControl::rx_tap3, BCM_PORT_PHY_CONTROL_RX_TAP3));
static_assert(same(PhyControl::rx_tap4, BCM_PORT_PHY_CONTROL_RX_TAP4));
static_assert(same(PhyControl::rx_tap5, BCM_PORT_PHY_CONTROL_RX_TAP5));
static_assert(same(PhyControl::rx_tap6, BCM_PORT_PHY_CONTROL_RX_TAP6));
static_assert(same(PhyControl::tx_fir_pre, BCM_PORT_PHY_CONTROL_TX_FIR_PRE));
static_assert(same(PhyControl::tx_fir_main, BCM_PORT_PHY_CONTROL_TX_FIR_MAIN));
static_assert(same(PhyControl::tx_fir_post, BCM_PORT_PHY_CONTROL_TX_FIR_POST));
static_assert(same(PhyControl::tx_fir_post2, BCM_PORT_PHY_CONTROL_TX_FIR_POST2));
static_assert(same(PhyControl::tx_fir_post3, BCM_PORT_PHY_CONTROL_TX_FIR_POST3));
static_assert(same(PhyControl::dfe, BCM_PORT_PHY_CONTROL_FIRMWARE_DFE_ENABLE));
static_assert(same(PhyControl::low_power_dfe, BCM_PORT_PHY_CONTROL_FIRMWARE_LP_DFE_ENABLE));
static_assert(same(PhyControl::br_dfe, BCM_PORT_PHY_CONTROL_FIRMWARE_BR_DFE_ENABLE));
static_assert(same(PhyControl::error_correction_cl91, BCM_PORT_PHY_CONTROL_FORWARD_ERROR_CORRECTION_CL91));
static_assert(same(PhyControl::error_correction_cl108, BCM_PORT_PHY_CONTROL_FORWARD_ERROR_CORRECTION_CL108));

// Layer 2
static_assert(same(MacEntry::discard_source, BCM_L2_DISCARD_SRC));
static_assert(same(MacEntry::discard_destination, BCM_L2_DISCARD_DST));
static_assert(same(MacEntry::copy_to_cpu, BCM_L2_COPY_TO_CPU));
static_assert(same(MacEntry::fixed, BCM_L2_STATIC));
static_assert(same(MacTable::Change::removed, BCM_L2_CALLBACK_DELETE));
static_assert(same(MacTable::Change::added, BCM_L2_CALLBACK_ADD));
static_assert(same(L2CacheEntry::bpdu, BCM_L2_CACHE_BPDU));
static_assert(same(LearnLimit::drop, BCM_L2_LEARN_LIMIT_ACTION_DROP));
static_assert(same(LearnLimit::to_cpu, BCM_L2_LEARN_LIMIT_ACTION_CPU));
static_assert(same(LearnLimit::prefer, BCM_L2_LEARN_LIMIT_ACTION_PREFER));
static_assert(same(Mirrors::Mode::off, BCM_MIRROR_DISABLE));
static_assert(same(Mirrors::Mode::l2, BCM_MIRROR_L2));
static_assert(same(Mirrors::Mode::l2_and_l3, BCM_MIRROR_L2_L3));
static_assert(same(Mirrors::enable, BCM_MIRROR_PORT_ENABLE));
static_assert(same(Mirrors::ingress, BCM_MIRROR_PORT_INGRESS));
static_assert(same(Mirrors::egress, BCM_MIRROR_PORT_EGRESS));
static_assert(same(StpState::disable, BCM_STG_STP_DISABLE));
static_assert(same(StpState::block, BCM_STG_STP_BLOCK));
static_assert(same(StpState::listen, BCM_STG_STP_LISTEN));
static_assert(same(StpState::learn, BCM_STG_STP_LEARN));
static_assert(same(StpState::forward, BCM_STG_STP_FORWARD));
static_assert(same(Mirrors::replace, BCM_MIRROR_DEST_REPLACE));
static_assert(same(Mirrors::with_id, BCM_MIRROR_DEST_WITH_ID));
static_assert(same(Trunks::with_id, BCM_TRUNK_FLAG_WITH_ID));
static_assert(same(TrunkCriterion::source_mac, BCM_TRUNK_PSC_SRCMAC));
static_assert(same(TrunkCriterion::destination_mac, BCM_TRUNK_PSC_DSTMAC));
static_assert(same(TrunkCriterion::both_macs, BCM_TRUNK_PSC_SRCDSTMAC));
static_assert(same(TrunkCriterion::source_ip, BCM_TRUNK_PSC_SRCIP));
static_assert(same(TrunkCriterion::destination_ip, BCM_TRUNK_PSC_DSTIP));
static_assert(same(TrunkCriterion::both_ips, BCM_TRUNK_PSC_SRCDSTIP));

// VLANs
static_assert(same(VlanControl::learn_disable, BCM_VLAN_LEARN_DISABLE));
static_assert(same(VlanControl::l2_lookup_disable, BCM_VLAN_L2_LOOKUP_DISABLE));
static_assert(same(VlanControl::flood_nowhere, BCM_VLAN_MCAST_FLOOD_NONE));
static_assert(same(VlanControlOfChip::translate, bcmVlanTranslate));
static_assert(same(VlanControlOfPort::prefer_ip4, bcmVlanPortPreferIP4));
static_assert(same(VlanControlOfPort::prefer_mac, bcmVlanPortPreferMAC));
static_assert(same(VlanControlOfPort::translate_ingress, bcmVlanTranslateIngressEnable));
static_assert(same(VlanControlOfPort::translate_egress, bcmVlanTranslateEgressEnable));
static_assert(same(VlanControlOfPort::lookup_mac, bcmVlanLookupMACEnable));
static_assert(same(VlanControlOfPort::lookup_ip, bcmVlanLookupIPEnable));
static_assert(same(VlanControlOfPort::translate_first_key, bcmVlanPortTranslateKeyFirst));
static_assert(same(VlanControlOfPort::translate_second_key, bcmVlanPortTranslateKeySecond));
static_assert(same(VlanControls::key_port_double, bcmVlanTranslateKeyPortDouble));
static_assert(same(VlanControls::key_port_outer, bcmVlanTranslateKeyPortOuter));
static_assert(same(TagAction::none, bcmVlanActionNone));
static_assert(same(TagAction::add, bcmVlanActionAdd));
static_assert(same(TagAction::replace, bcmVlanActionReplace));
static_assert(same(TagAction::remove, bcmVlanActionDelete));
static_assert(same(TagAction::copy, bcmVlanActionCopy));
static_assert(same(VirtualPort::match_port_vlan, BCM_VLAN_PORT_MATCH_PORT_VLAN));
static_assert(same(VirtualPort::match_port_vlan_stacked, BCM_VLAN_PORT_MATCH_PORT_VLAN_STACKED));

// Switch controls
static_assert(same(SwitchControlOfPort::non_ip_l3_error_to_cpu, bcmSwitchNonIpL3ErrToCpu));
static_assert(same(SwitchControlOfPort::ip6_l3_destination_miss_to_cpu, bcmSwitchV6L3DstMissToCpu));
static_assert(same(SwitchControlOfPort::ip4_l3_destination_miss_to_cpu, bcmSwitchV4L3DstMissToCpu));
static_assert(same(SwitchControlOfPort::arp_reply_to_cpu, bcmSwitchArpReplyToCpu));
static_assert(same(SwitchControlOfPort::arp_request_to_cpu, bcmSwitchArpRequestToCpu));
static_assert(same(SwitchControlOfPort::neighbor_discovery_to_cpu, bcmSwitchNdPktToCpu));
static_assert(same(SwitchControlOfPort::dhcp_to_cpu, bcmSwitchDhcpPktToCpu));
static_assert(same(SwitchControlOfPort::dhcp_drop, bcmSwitchDhcpPktDrop));
static_assert(same(SwitchControlOfPort::ip4_reserved_multicast_flood, bcmSwitchV4ResvdMcPktFlood));
static_assert(same(SwitchControlOfPort::ip6_reserved_multicast_to_cpu, bcmSwitchV6ResvdMcPktToCpu));
static_assert(same(SwitchControlOfPort::ip6_reserved_multicast_flood, bcmSwitchV6ResvdMcPktFlood));
static_assert(same(SwitchControlOfChip::directed_mirroring, bcmSwitchDirectedMirroring));
static_assert(same(SwitchControlOfChip::mld_reserved_multicast_enable, bcmSwitchMldReservedMcastEnable));
static_assert(same(SwitchControlOfChip::l3_egress_mode, bcmSwitchL3EgressMode));
static_assert(same(SwitchControlOfChip::ipmc_same_vlan_l3_route, bcmSwitchIpmcSameVlanL3Route));
static_assert(same(SwitchControlOfChip::l2_destination_hit_enable, bcmSwitchL2DstHitEnable));
static_assert(same(SwitchControlOfChip::flexible_mirror_destinations, bcmSwitchFlexibleMirrorDestinations));

// Layer 3, multicast, policers
static_assert(same(L3Interface::in_mac_table, BCM_L3_ADD_TO_ARL));
static_assert(same(L3Entry::any_hit, BCM_L3_HIT));
static_assert(same(L3Entry::to_cpu, BCM_L3_L2TOCPU | BCM_L3_DEFIP_CPU));
static_assert(same(MulticastRoute::from_any_port, BCM_IPMC_SOURCE_PORT_NOCHECK));
static_assert(same(MulticastGroups::with_id, BCM_MULTICAST_WITH_ID));
static_assert(same(MulticastGroups::l2, BCM_MULTICAST_TYPE_L2));
static_assert(same(MulticastGroups::l3, BCM_MULTICAST_TYPE_L3));
static_assert(same(MulticastGroups::vlan, BCM_MULTICAST_TYPE_VLAN));
static_assert(same(NetworkGroups::remap_multicast, BCM_SWITCH_NETWORK_GROUP_MCAST_REMAP_ENABLE));
static_assert(same(NetworkGroups::prune_ingress, BCM_SWITCH_NETWORK_GROUP_INGRESS_PRUNE_ENABLE));
static_assert(same(NetworkGroups::prune_egress, BCM_SWITCH_NETWORK_GROUP_EGRESS_PRUNE_ENABLE));
static_assert(same(Policers::two_rates_three_colors, bcmPolicerModeTrTcm));

// Counters
static_assert(same(counter::in_octets, snmpIfInOctets));
static_assert(same(counter::in_unicast, snmpIfInUcastPkts));
static_assert(same(counter::in_non_unicast, snmpIfInNUcastPkts));
static_assert(same(counter::in_discards, snmpIfInDiscards));
static_assert(same(counter::in_errors, snmpIfInErrors));
static_assert(same(counter::out_octets, snmpIfOutOctets));
static_assert(same(counter::out_unicast, snmpIfOutUcastPkts));
static_assert(same(counter::out_non_unicast, snmpIfOutNUcastPkts));
static_assert(same(counter::out_discards, snmpIfOutDiscards));
static_assert(same(counter::ip4_received, snmpIpInReceives));
static_assert(same(counter::ip4_header_errors, snmpIpInHdrErrors));
static_assert(same(counter::ip4_forwarded, snmpIpForwDatagrams));
static_assert(same(counter::ip4_discards, snmpIpInDiscards));
static_assert(same(counter::mtu_discards, snmpDot1dBasePortMtuExceededDiscards));
static_assert(same(counter::bridge_in_frames, snmpDot1dTpPortInFrames));
static_assert(same(counter::bridge_out_frames, snmpDot1dTpPortOutFrames));
static_assert(same(counter::bridge_in_discards, snmpDot1dPortInDiscards));
static_assert(same(counter::ether_multicast, snmpEtherStatsMulticastPkts));
static_assert(same(counter::ether_broadcast, snmpEtherStatsBroadcastPkts));
static_assert(same(counter::ether_first_size, snmpEtherStatsPkts64Octets));
static_assert(same(counter::ether_oversize, snmpEtherStatsOversizePkts));
static_assert(same(counter::ether_in_oversize, snmpEtherRxOversizePkts));
static_assert(same(counter::ether_out_oversize, snmpEtherTxOversizePkts));
static_assert(same(counter::ether_octets, snmpEtherStatsOctets));
static_assert(same(counter::ether_frames, snmpEtherStatsPkts));
static_assert(same(counter::ether_good_out, snmpEtherStatsTXNoErrors));
static_assert(same(counter::ether_good_in, snmpEtherStatsRXNoErrors));
static_assert(same(counter::too_long_frames, snmpDot3StatsFrameTooLongs));
static_assert(same(counter::all_in_octets, snmpIfHCInOctets));
static_assert(same(counter::all_in_unicast, snmpIfHCInUcastPkts));
static_assert(same(counter::all_in_multicast, snmpIfHCInMulticastPkts));
static_assert(same(counter::all_in_broadcast, snmpIfHCInBroadcastPkts));
static_assert(same(counter::all_out_octets, snmpIfHCOutOctets));
static_assert(same(counter::all_out_unicast, snmpIfHCOutUcastPkts));
static_assert(same(counter::all_out_multicast, snmpIfHCOutMulticastPkts));
static_assert(same(counter::all_out_broadcast, snmpIfHCOutBroadcastPckts));
static_assert(same(counter::ip6_received, snmpIpv6IfStatsInReceives));
static_assert(same(counter::ip6_header_errors, snmpIpv6IfStatsInHdrErrors));
static_assert(same(counter::ip6_discards, snmpIpv6IfStatsInDiscards));
static_assert(same(counter::ip6_forwarded, snmpIpv6IfStatsOutForwDatagrams));
static_assert(same(counter::ip6_multicast_in, snmpIpv6IfStatsInMcastPkts));
static_assert(same(counter::ip6_multicast_out, snmpIpv6IfStatsOutMcastPkts));
static_assert(same(counter::in_broadcast, snmpIfInBroadcastPkts));
static_assert(same(counter::in_multicast, snmpIfInMulticastPkts));
static_assert(same(counter::out_broadcast, snmpIfOutBroadcastPkts));
static_assert(same(counter::out_multicast, snmpIfOutMulticastPkts));
static_assert(same(counter::group_bridged, snmpBcmIPMCBridgedPckts));
static_assert(same(counter::group_routed, snmpBcmIPMCRoutedPckts));
static_assert(same(counter::group_dropped, snmpBcmIPMCInDroppedPckts));
static_assert(same(counter::ether_first_large_size, snmpBcmEtherStatsPkts1519to1522Octets));
static_assert(same(counter::in_first_size, snmpBcmReceivedPkts64Octets));
static_assert(same(counter::out_first_size, snmpBcmTransmittedPkts64Octets));
static_assert(same(counter::in_tagged, snmpBcmRxVlanTagFrame));
static_assert(same(counter::in_double_tagged, snmpBcmRxDoubleVlanTagFrame));
static_assert(same(counter::out_tagged, snmpBcmTxVlanTagFrame));
static_assert(same(counter::out_double_tagged, snmpBcmTxDoubleVlanTagFrame));

// Queues and network interfaces
static_assert(same(Queues::strict, BCM_COSQ_STRICT));
static_assert(same(Queues::deficit_round_robin, BCM_COSQ_DEFICIT_ROUND_ROBIN));
static_assert(same(NetworkInterfaces::max_type, BCM_KNET_NETIF_T_TX_LOCAL_PORT));

// The field processor
static_assert(same(FieldQualifier::source_ip6, bcmFieldQualifySrcIp6));
static_assert(same(FieldQualifier::destination_ip6, bcmFieldQualifyDstIp6));
static_assert(same(FieldQualifier::source_mac, bcmFieldQualifySrcMac));
static_assert(same(FieldQualifier::destination_mac, bcmFieldQualifyDstMac));
static_assert(same(FieldQualifier::source_ip, bcmFieldQualifySrcIp));
static_assert(same(FieldQualifier::destination_ip, bcmFieldQualifyDstIp));
static_assert(same(FieldQualifier::in_port, bcmFieldQualifyInPort));
static_assert(same(FieldQualifier::outer_vlan, bcmFieldQualifyOuterVlan));
static_assert(same(FieldQualifier::outer_vlan_priority, bcmFieldQualifyOuterVlanPri));
static_assert(same(FieldQualifier::inner_vlan, bcmFieldQualifyInnerVlan));
static_assert(same(FieldQualifier::inner_vlan_priority, bcmFieldQualifyInnerVlanPri));
static_assert(same(FieldQualifier::l4_source_port, bcmFieldQualifyL4SrcPort));
static_assert(same(FieldQualifier::l4_destination_port, bcmFieldQualifyL4DstPort));
static_assert(same(FieldQualifier::ether_type, bcmFieldQualifyEtherType));
static_assert(same(FieldQualifier::ip_protocol, bcmFieldQualifyIpProtocol));
static_assert(same(FieldQualifier::ip_protocol, bcmFieldQualifyIp6NextHeader));
static_assert(same(FieldQualifier::dscp, bcmFieldQualifyDSCP));
static_assert(same(FieldQualifier::dscp, bcmFieldQualifyTos));
static_assert(same(FieldQualifier::ttl, bcmFieldQualifyTtl));
static_assert(same(FieldQualifier::ip_type, bcmFieldQualifyIpType));
static_assert(same(FieldQualifier::out_port, bcmFieldQualifyOutPort));
static_assert(same(FieldQualifier::vlan_format, bcmFieldQualifyVlanFormat));
static_assert(same(FieldQualifier::icmp_type_code, bcmFieldQualifyIcmpTypeCode));
static_assert(same(FieldQualifier::arp_target_ip, bcmFieldQualifyArpTargetIp4));
static_assert(same(FieldAction::packet_priority, bcmFieldActionPrioPktNew));
static_assert(same(FieldAction::copy_to_cpu, bcmFieldActionCopyToCpu));
static_assert(same(FieldAction::redirect_port, bcmFieldActionRedirectPort));
static_assert(same(FieldAction::drop, bcmFieldActionDrop));
static_assert(same(FieldAction::drop_cancel, bcmFieldActionDropCancel));
static_assert(same(FieldAction::drop_red, bcmFieldActionRpDrop));
static_assert(same(field_ip_types[0].number, bcmFieldIpTypeIpv4Any));
static_assert(same(field_ip_types[1].number, bcmFieldIpTypeIpv6));
static_assert(same(field_ip_types[2].number, bcmFieldIpTypeIp));
static_assert(same(FieldProcessor::ingress_stage, bcmFieldQualifyStageIngress));
static_assert(same(FieldProcessor::egress_stage, bcmFieldQualifyStageEgress));
static_assert(same(FieldGroup::any_priority, BCM_FIELD_GROUP_PRIO_ANY));

}  // namespace chip
