// Rules that send control protocols to the CPU, and the related egress entries.
#include <sai.h>

#include <initializer_list>

#include "core/log.h"
#include "core/result.h"
#include "core/sdk.h"
#include "core/unit.h"
#include "field/entry.h"

using sai::failed;
using sai::FieldEntry;
using sai::log_if_failed;
using sai::result;
using sai::sdk_address;
using sai::vlan_id;
using sai::vlan_id_mask;

namespace {

/// The wording of a failed step of a rule. Meant: the families differ.
enum class Wording { call, call_in_group, plain };

/// What the caller gives; a rule reads what its steps need.
struct Given {
  int32_t port = 0;
  int32_t vlan = 0;
  const uint8_t* mac = nullptr;
  uint8_t icmp_type = 0;
  const uint8_t* src_ip6 = nullptr;
  const uint8_t* dst_ip6 = nullptr;
  int32_t destination = 0;
};

struct Trap : FieldEntry {
  Wording wording;
  Given given;

  /// Whether `call`, which returned `result`, succeeded; a failure has the family's wording.
  bool passed_as_worded(int result, const char* call) {
    return wording == Wording::call_in_group ? passed_in_group(result, call) : passed(result, call);
  }

  /// The same for steps that the plain family words without the call's name.
  bool passed_as_worded(int result, const char* call, sai::Format<const char*, int, const char*> plain) {
    if (wording != Wording::plain) return passed_as_worded(result, call);
    rv = result;
    return !failed(rv, plain, function, id);
  }
};

constexpr uint8_t all_ones[16] = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
                                  0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
constexpr const uint8_t* broadcast = all_ones;

// ----------------------------------------------------------------------------------------- steps of the rules ----

using Step = bool (*)(Trap& trap);

// Meant, here and for the output port: the message never names the group.
bool in_port(Trap& trap) {
  return trap.passed(bcm_field_qualify_InPort(trap.unit, trap.id, trap.given.port, BCM_FIELD_EXACT_MATCH_MASK),
                     "bcm_field_qualify_InPort");
}

template <int mask>
bool out_port(Trap& trap) {
  return trap.passed(bcm_field_qualify_OutPort(trap.unit, trap.id, trap.given.port, mask), "bcm_field_qualify_OutPort");
}

bool outer_vlan(Trap& trap) {
  return trap.passed_as_worded(bcm_field_qualify_OuterVlan(trap.unit, trap.id, vlan_id(trap.given.vlan), vlan_id_mask),
                               "bcm_field_qualify_OuterVlan");
}

bool src_mac(Trap& trap) {
  return trap.passed_as_worded(
      bcm_field_qualify_SrcMac(trap.unit, trap.id, sdk_address(trap.given.mac), sdk_address(all_ones)),
      "bcm_field_qualify_SrcMac");
}

bool dst_mac(Trap& trap) {
  constexpr uint8_t none[6] = {};
  trap.rv = bcm_field_qualify_DstMac(trap.unit, trap.id, sdk_address(trap.given.mac), sdk_address(all_ones));
  const uint8_t* const mac = trap.given.mac == nullptr ? none : trap.given.mac;
  return !failed(trap.rv, "%s bcm_field_qualify_DstMac group %d entry %d mac %2X:%2X:%2X:%2X:%2X:%2X failed: %s",
                 trap.function, trap.group, trap.id, mac[0], mac[1], mac[2], mac[3], mac[4], mac[5]);
}

bool ipv6_multicast_mac(Trap& trap) {
  constexpr uint8_t mac[6] = {0x33, 0x33};
  constexpr uint8_t mask[6] = {0xFF, 0xFF};
  return trap.passed_as_worded(bcm_field_qualify_DstMac(trap.unit, trap.id, sdk_address(mac), sdk_address(mask)),
                               "bcm_field_qualify_DstMac");
}

template <uint16 type>
bool ether_type(Trap& trap) {
  return trap.passed_as_worded(bcm_field_qualify_EtherType(trap.unit, trap.id, type, 0xFFFF),
                               "bcm_field_qualify_EtherType");
}

template <bcm_field_IpType_t type>
bool ip_type(Trap& trap) {
  return trap.passed_as_worded(bcm_field_qualify_IpType(trap.unit, trap.id, type), "bcm_field_qualify_IpType");
}

template <uint8 protocol>
bool ip_protocol(Trap& trap) {
  return trap.passed_as_worded(bcm_field_qualify_IpProtocol(trap.unit, trap.id, protocol, 0xFF),
                               "bcm_field_qualify_IpProtocol", "%s set entry %d ip protocol type failed: %s");
}

template <uint8 ttl>
bool time_to_live(Trap& trap) {
  return trap.passed_as_worded(bcm_field_qualify_Ttl(trap.unit, trap.id, ttl, 0xFF), "bcm_field_qualify_Ttl");
}

template <uint8 header>
bool next_header(Trap& trap) {
  return trap.passed_as_worded(bcm_field_qualify_Ip6NextHeader(trap.unit, trap.id, header, 0xFF),
                               "bcm_field_qualify_Ip6NextHeader");
}

bool icmp_type(Trap& trap) {
  // Meant: the message names the call for the type only.
  return trap.passed_as_worded(
      bcm_field_qualify_IcmpTypeCode(trap.unit, trap.id, static_cast<uint16>(trap.given.icmp_type << 8), 0xFFFF),
      "bcm_field_qualify_IcmpType");
}

template <bcm_l4_port_t port>
bool l4_dst_port(Trap& trap) {
  return trap.passed_as_worded(bcm_field_qualify_L4DstPort(trap.unit, trap.id, port, 0xFFFF),
                               "bcm_field_qualify_L4DstPort");
}

bool src_ip6(Trap& trap) {
  return trap.passed_as_worded(
      bcm_field_qualify_SrcIp6(trap.unit, trap.id, sdk_address(trap.given.src_ip6), sdk_address(all_ones)),
      "bcm_field_qualify_SrcIp6");
}

bool dst_ip6(Trap& trap) {
  return trap.passed_as_worded(
      bcm_field_qualify_DstIp6(trap.unit, trap.id, sdk_address(trap.given.dst_ip6), sdk_address(all_ones)),
      "bcm_field_qualify_DstIp6");
}

bool all_of_vlan_tag(Trap& trap) {
  // Meant: "OutVlan", and no group.
  return trap.passed(bcm_field_qualify_OuterVlan(trap.unit, trap.id, vlan_id(trap.given.vlan), 0xFFFF),
                     "bcm_field_qualify_OutVlan");
}

template <int priority>
bool entry_priority(Trap& trap) {
  return trap.passed_as_worded(bcm_field_entry_prio_set(trap.unit, trap.id, priority), "bcm_field_entry_prio_set");
}

bool act(Trap& trap, bcm_field_action_t action, uint32 param0, int param1) {
  return trap.passed_as_worded(bcm_field_action_add(trap.unit, trap.id, action, param0, static_cast<uint32>(param1)),
                               "bcm_field_action_add", "%s set entry %d action failed: %s");
}

template <uint32 priority>
bool packet_priority(Trap& trap) {
  return act(trap, bcmFieldActionPrioPktNew, priority, 0);
}

bool copy_to_cpu(Trap& trap) { return act(trap, bcmFieldActionCopyToCpu, 0, sai::cpu_port(trap.unit)); }

bool redirect_to_cpu(Trap& trap) { return act(trap, bcmFieldActionRedirectPort, 0, sai::cpu_port(trap.unit)); }

bool redirect_to_port(Trap& trap) { return act(trap, bcmFieldActionRedirectPort, 0, trap.given.destination); }

bool drop(Trap& trap) { return act(trap, bcmFieldActionDrop, 0, 0); }

// ------------------------------------------------------------------------------------------------- the rules ----

struct Rule {
  const char* name;
  Wording wording;
  std::initializer_list<Step> steps;
};

constexpr uint16 arp = 0x0806;
constexpr uint16 loop_detection = 0x9088;
constexpr uint8 igmp = 2;
constexpr uint8 udp = 17;
constexpr uint8 icmp6 = 58;
constexpr uint8 ospf = 89;

constexpr Rule ospf_ttl1{
    "sai_fp_ospf_ttl1_set",
    Wording::call,
    {in_port, ip_type<bcmFieldIpTypeIpv4Any>, ip_protocol<ospf>, time_to_live<1>, packet_priority<7>, copy_to_cpu}};

constexpr Rule loopd{"sai_fp_loopd_packet_to_cpu_set",
                     Wording::call_in_group,
                     {in_port, src_mac, ether_type<loop_detection>, packet_priority<7>, redirect_to_cpu}};

// Meant, for all three: they match a VLAN and no port.
constexpr Rule dhcp_request{"sai_fp_dhcp_requeset_to_cpu_set",
                            Wording::call_in_group,
                            {outer_vlan, ip_type<bcmFieldIpTypeIp>, ip_protocol<udp>, l4_dst_port<67>,
                             entry_priority<3>, packet_priority<6>, redirect_to_cpu}};

constexpr Rule dhcp_response{"sai_fp_dhcp_response_to_cpu_set",
                             Wording::call_in_group,
                             {outer_vlan, ip_type<bcmFieldIpTypeIp>, ip_protocol<udp>, l4_dst_port<68>,
                              entry_priority<3>, packet_priority<6>, redirect_to_cpu}};

constexpr Rule dhcpv6_request{"sai_fp_dhcpv6_req_to_cpu_set",
                              Wording::call_in_group,
                              {outer_vlan, ip_type<bcmFieldIpTypeIpv6>, ip_protocol<udp>, l4_dst_port<547>,
                               entry_priority<3>, packet_priority<7>, redirect_to_cpu}};

constexpr Rule igmp_packet{
    "sai_fp_igmp_packet_to_cpu", Wording::plain, {in_port, ip_protocol<igmp>, packet_priority<7>, redirect_to_cpu}};

constexpr Rule mld_packet{
    "sai_fp_mld_packet_set",
    Wording::plain,
    {in_port, ipv6_multicast_mac, next_header<icmp6>, icmp_type, packet_priority<1>, redirect_to_cpu}};

constexpr Rule arp_vlan{"sai_fp_arp_packet_vlan_qualify_set",
                        Wording::call_in_group,
                        {in_port, ether_type<arp>, dst_mac, packet_priority<7>, redirect_to_cpu}};

constexpr Rule arp_cpu{"sai_fp_arp_packet_cpu_qualify_set",
                       Wording::call_in_group,
                       {in_port, ether_type<arp>, dst_mac, packet_priority<7>, redirect_to_cpu}};

constexpr Rule arp_port{"sai_fp_arp_packet_port_qualify_set",
                        Wording::call_in_group,
                        {in_port, ether_type<arp>, dst_mac, packet_priority<7>, redirect_to_port}};

constexpr Rule mld_exclude{"sai_fp_mld_packet_exclude_filter_set",
                           Wording::call_in_group,
                           {out_port<BCM_FIELD_EXACT_MATCH_MASK>, src_ip6, dst_ip6, drop}};

// Meant: it matches the low 8 bits of the port and has no action.
constexpr Rule vport{"sai_fp_vport_qualify_set", Wording::call_in_group, {out_port<0xFF>, all_of_vlan_tag}};

bool create(Trap& trap, const int32_t* entry) {
  constexpr const char* call = "bcm_field_entry_create";
  trap.rv = entry == nullptr ? BCM_E_PARAM : bcm_field_entry_create(trap.unit, trap.group, &trap.id);
  switch (trap.wording) {
    case Wording::call:
      return !failed(trap.rv, "%s group %d %s failed: %s", trap.function, trap.group, call);
    case Wording::plain:
      return !failed(trap.rv, "%s create entry from group %d failed: %s", trap.function, trap.group);
    default:
      return trap.passed_in_group(trap.rv, call);
  }
}

bool build(Trap& trap, const Rule& rule, const int32_t* entry) {
  if (!create(trap, entry) || !trap.passed_as_worded(bcm_field_qualify_clear(trap.unit, trap.id),
                                                     "bcm_field_qualify_clear", "%s clear entry %d failed: %s"))
    return false;
  for (const Step step : rule.steps)
    if (!step(trap)) return false;
  return true;
}

int32_t install(const Rule& rule, int unit, int group, const Given& given, int32_t* entry) {
  Trap trap{{rule.name, unit, group}, rule.wording, given};
  if (build(trap, rule, entry))
    trap.passed_as_worded(bcm_field_entry_install(unit, trap.id), "bcm_field_entry_install",
                          "%s install entry %d failed: %s");
  if (trap.rv == BCM_E_NONE) *entry = trap.id;
  return sdk_to_sai(trap.rv);
}

}  // namespace

int32_t sai_fp_ospf_ttl1_set(int32_t unit, int32_t port, int32_t group, int32_t* entry) {
  return install(ospf_ttl1, unit, group, {.port = port}, entry);
}

int32_t sai_fp_loopd_packet_to_cpu_set(int32_t unit, int32_t port, const uint8_t* mac, int32_t group, int32_t* entry) {
  return install(loopd, unit, group, {.port = port, .mac = mac}, entry);
}

int32_t sai_fp_dhcp_requeset_to_cpu_set(int32_t unit, int32_t vlan, int32_t group, int32_t* entry) {
  return install(dhcp_request, unit, group, {.vlan = vlan}, entry);
}

int32_t sai_fp_dhcp_response_to_cpu_set(int32_t unit, int32_t vlan, int32_t group, int32_t* entry) {
  return install(dhcp_response, unit, group, {.vlan = vlan}, entry);
}

int32_t sai_fp_dhcpv6_req_to_cpu_set(int32_t unit, int32_t vlan, int32_t group, int32_t* entry) {
  return install(dhcpv6_request, unit, group, {.vlan = vlan}, entry);
}

int32_t sai_fp_igmp_packet_to_cpu(int32_t unit, int32_t port, int32_t group, int32_t* entry) {
  return install(igmp_packet, unit, group, {.port = port}, entry);
}

int32_t sai_fp_mld_packet_to_cpu(int32_t unit, int32_t port, int32_t group, int32_t* entry) {
  // Meant: each is installed even if others failed; the result is that of the last, the id that of the last installed.
  constexpr uint8_t types[] = {130, 131, 132, 143};
  int32_t last = SAI_E_NONE;
  for (const uint8_t type : types) last = install(mld_packet, unit, group, {.port = port, .icmp_type = type}, entry);
  return last;
}

int32_t sai_fp_arp_packet_vlan_qualify_set(int32_t unit, int32_t port, int32_t group, int32_t* entry,
                                           const uint8_t* mac) {
  return install(arp_vlan, unit, group, {.port = port, .mac = mac}, entry);
}

int32_t sai_fp_arp_packet_cpu_qualify_set(int32_t unit, int32_t port, int32_t group, int32_t* entry) {
  return install(arp_cpu, unit, group, {.port = port, .mac = broadcast}, entry);
}

int32_t sai_fp_arp_packet_port_qualify_set(int32_t unit, int32_t port, int32_t group, int32_t* entry,
                                           int32_t dest_port) {
  return install(arp_port, unit, group, {.port = port, .mac = broadcast, .destination = dest_port}, entry);
}

int32_t sai_fp_mld_packet_exclude_filter_set(int32_t unit, int32_t port, int32_t group, int32_t* entry,
                                             int32_t /*ignored*/, const uint8_t* dst_ip6, const uint8_t* src_ip6) {
  return install(mld_exclude, unit, group, {.port = port, .src_ip6 = src_ip6, .dst_ip6 = dst_ip6}, entry);
}

int32_t sai_fp_vport_qualify_set(int32_t unit, int32_t port, int32_t group, int32_t* entry, uint16_t vlan) {
  sai::trace("sai_fp_vport_qualify_set port %d vlan %d", port, vlan);
  Trap trap{{vport.name, unit, group}, vport.wording, {.port = port, .vlan = vlan}};
  build(trap, vport, entry);
  if (trap.rv == BCM_E_NONE) *entry = trap.id;  // Meant: not yet installed, for sai_fp_vport_qualify_action().
  return sdk_to_sai(trap.rv);
}

int32_t sai_fp_vport_qualify_action(int32_t unit, int32_t group, int32_t entry) {
  FieldEntry built{"sai_fp_vport_qualify_action", unit, group, entry};
  if (built.passed_in_group(bcm_field_action_add(unit, entry, bcmFieldActionRpDrop, 0, 0), "bcm_field_action_add"))
    built.passed_in_group(bcm_field_entry_install(unit, entry), "bcm_field_entry_install");
  return sdk_to_sai(built.rv);
}

int32_t sai_fp_entry_policer_detach(int32_t unit, int32_t entry) {
  constexpr int first_level = 0;
  return result(bcm_field_entry_policer_detach(unit, entry, first_level),
                "bcm_field_entry_policer_detach entry_id %d failed: %s", entry);
}
