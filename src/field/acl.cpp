// Entries of access control lists.
#include <arpa/inet.h>
#include <sai.h>
#include <stddef.h>

#include "core/result.h"
#include "core/sdk.h"
#include "field/entry.h"

using sai::failed;
using sai::FieldEntry;
using sai::result;
using sai::sdk_address;
using sai::vlan_id_mask;

static_assert(offsetof(sai_acl_rule_t, src_mac) == 12 && offsetof(sai_acl_rule_t, src_ip) == 48 &&
                  offsetof(sai_acl_rule_t, l4_src_port) == 136 && sizeof(sai_acl_rule_t) == 172,
              "callers that were compiled long ago pass it");

namespace {

/// The steps that build a kind of rule, in addition to the port, the priority and the action that all rules have.
struct Installer {
  const char* name;
  bool layer2;    ///< MAC addresses, outer VLAN, EtherType
  bool source;    ///< kind of IP packet and source address
  bool extended;  ///< IP protocol, type of service, destination address, TCP and UDP ports
};

constexpr Installer l2{"sai_acl_l2_entry_install", true, false, false};
constexpr Installer std_l3{"sai_acl_std_l3_entry_install", false, true, false};
constexpr Installer ext_l3{"sai_acl_ext_l3_entry_install", false, true, true};
constexpr Installer l2_l3{"sai_acl_l2_l3_entry_install", true, true, true};

bool qualify_port(FieldEntry& entry, int direction, int port) {
  // Meant: the output port's failure is worded as the input port's.
  constexpr const char* worded = "bcm_field_qualify_InPort";
  switch (direction) {
    case SAI_ACL_INGRESS:
      return entry.passed(bcm_field_qualify_InPort(entry.unit, entry.id, port, BCM_FIELD_EXACT_MATCH_MASK), worded);
    case SAI_ACL_EGRESS:
      return entry.passed(bcm_field_qualify_OutPort(entry.unit, entry.id, port, BCM_FIELD_EXACT_MATCH_MASK), worded);
    default:
      sai_err("%s Invalid direction", entry.function);
      entry.rv = BCM_E_INTERNAL;
      return false;
  }
}

bool qualify_ip_type(FieldEntry& entry, const sai_acl_rule_t& rule) {
  if (rule.ip_type != SAI_ACL_IPV4 && rule.ip_type != SAI_ACL_IPV6) {
    sai_err("%s Invalid ip type", entry.function);
    entry.rv = BCM_E_INTERNAL;
    return false;
  }
  const bcm_field_IpType_t type = rule.ip_type == SAI_ACL_IPV4 ? bcmFieldIpTypeIp : bcmFieldIpTypeIpv6;
  return entry.passed(bcm_field_qualify_IpType(entry.unit, entry.id, type), "bcm_field_qualify_IpType");
}

bool qualify_outer_vlan(FieldEntry& entry, const sai_acl_rule_t& rule) {
  constexpr int priority_bit = 13;
  int data = rule.vlan_id & vlan_id_mask;
  int mask = data;  // Meant: without a priority the id is its own mask, so that VLAN 0 matches all.
  if (rule.vlan_pri_mask != 0) {
    data |= rule.vlan_pri << priority_bit;
    mask = (rule.vlan_mask & vlan_id_mask) | rule.vlan_pri_mask << priority_bit;
  }
  return entry.passed(
      bcm_field_qualify_OuterVlan(entry.unit, entry.id, static_cast<bcm_vlan_t>(data), static_cast<bcm_vlan_t>(mask)),
      "bcm_field_qualify_OuterVlan");
}

bool qualify_layer2(FieldEntry& entry, const sai_acl_rule_t& rule) {
  return entry.passed(
             bcm_field_qualify_SrcMac(entry.unit, entry.id, sdk_address(rule.src_mac), sdk_address(rule.src_mac_mask)),
             "bcm_field_qualify_SrcMac") &&
         entry.passed(
             bcm_field_qualify_DstMac(entry.unit, entry.id, sdk_address(rule.dst_mac), sdk_address(rule.dst_mac_mask)),
             "bcm_field_qualify_DstMac") &&
         qualify_outer_vlan(entry, rule) &&
         entry.passed(bcm_field_qualify_EtherType(entry.unit, entry.id, rule.ether_type, rule.ether_type_mask),
                      "bcm_field_qualify_EtherType");
}

bool qualify_protocol(FieldEntry& entry, const sai_acl_rule_t& rule) {
  return rule.ip_protocol < 0 ||
         entry.passed(bcm_field_qualify_IpProtocol(entry.unit, entry.id, static_cast<uint8>(rule.ip_protocol),
                                                   rule.ip_protocol_mask),
                      "bcm_field_qualify_IpProtocol");
}

// Meant, here and for the addresses: the results are ignored.
void qualify_service(const FieldEntry& entry, const sai_acl_rule_t& rule) {
  const auto shifted = [&](int bits, int factor) { return static_cast<uint8>((rule.tos_value & bits) * factor); };
  constexpr uint8 mask = 0xFF;  // Meant: the whole byte, even where only three bits are given.
  switch (rule.tos_mode) {
    case SAI_ACL_TOS:
      bcm_field_qualify_Tos(entry.unit, entry.id, shifted(15, 2), mask);
      break;
    case SAI_ACL_DSCP:
      bcm_field_qualify_DSCP(entry.unit, entry.id, shifted(63, 4), mask);
      break;
    case SAI_ACL_PRECEDENCE:
      bcm_field_qualify_DSCP(entry.unit, entry.id, shifted(7, 32), mask);
      break;
    default:
      break;
  }
}

void qualify_source(const FieldEntry& entry, const sai_acl_rule_t& rule) {
  if (rule.ip_type == SAI_ACL_IPV4)
    bcm_field_qualify_SrcIp(entry.unit, entry.id, ntohl(rule.src_ip), ntohl(rule.src_ip_mask));
  else
    bcm_field_qualify_SrcIp6(entry.unit, entry.id, sdk_address(rule.src_ip6), sdk_address(rule.src_ip6_mask));
}

void qualify_destination(const FieldEntry& entry, const sai_acl_rule_t& rule) {
  if (rule.ip_type == SAI_ACL_IPV4)
    bcm_field_qualify_DstIp(entry.unit, entry.id, ntohl(rule.dst_ip), ntohl(rule.dst_ip_mask));
  else
    bcm_field_qualify_DstIp6(entry.unit, entry.id, sdk_address(rule.dst_ip6), sdk_address(rule.dst_ip6_mask));
}

bool qualify_l4_ports(FieldEntry& entry, const sai_acl_rule_t& rule) {
  const auto number = [](uint32_t port) { return static_cast<bcm_l4_port_t>(port); };
  return (rule.l4_src_port == 0 ||
          entry.passed(bcm_field_qualify_L4SrcPort(entry.unit, entry.id, number(rule.l4_src_port),
                                                   number(rule.l4_src_port_mask)),
                       "bcm_field_qualify_L4SrcPort")) &&
         (rule.l4_dst_port == 0 ||
          entry.passed(bcm_field_qualify_L4DstPort(entry.unit, entry.id, number(rule.l4_dst_port),
                                                   number(rule.l4_dst_port_mask)),
                       "bcm_field_qualify_L4DstPort"));
}

bool qualify(FieldEntry& entry, const Installer& installer, const sai_acl_rule_t& rule) {
  if (installer.source && !qualify_ip_type(entry, rule)) return false;
  if (installer.layer2 && !qualify_layer2(entry, rule)) return false;
  if (installer.extended && !qualify_protocol(entry, rule)) return false;
  if (installer.extended) qualify_service(entry, rule);
  if (installer.source) qualify_source(entry, rule);
  if (installer.extended) qualify_destination(entry, rule);
  return !installer.extended || qualify_l4_ports(entry, rule);
}

int32_t install(const Installer& installer, int unit, int port, int direction, int group, const sai_acl_rule_t* rule,
                int32_t* id) {
  FieldEntry entry{installer.name, unit, group};
  entry.rv = rule == nullptr || id == nullptr ? BCM_E_PARAM : bcm_field_entry_create(unit, group, &entry.id);
  if (id != nullptr) *id = entry.id;  // Meant: already here, so that the caller can destroy a partly built entry.
  // Meant: the text names the call that takes an id.
  if (failed(entry.rv, "%s group %d bcm_field_entry_create_id 0x%x(%d) failed: %s", installer.name, group, entry.id,
             entry.id))
    return sdk_to_sai(entry.rv);

  const bcm_field_action_t action = rule->action == SAI_ACL_PERMIT ? bcmFieldActionDropCancel : bcmFieldActionDrop;
  if (entry.passed(bcm_field_qualify_clear(unit, entry.id), "bcm_field_qualify_clear") &&
      qualify_port(entry, direction, port) && qualify(entry, installer, *rule) &&
      // Meant: the entry's id is its priority.
      entry.passed(bcm_field_entry_prio_set(unit, entry.id, entry.id), "bcm_field_entry_prio_set") &&
      entry.passed(bcm_field_action_add(unit, entry.id, action, 0, 0), "bcm_field_action_add"))
    entry.passed(bcm_field_entry_install(unit, entry.id), "bcm_field_entry_install");
  return sdk_to_sai(entry.rv);
}

}  // namespace

int32_t sai_acl_l2_entry_install(int32_t unit, int32_t port, int32_t direction, int32_t group,
                                 const sai_acl_rule_t* rule, int32_t* entry) {
  return install(l2, unit, port, direction, group, rule, entry);
}

int32_t sai_acl_std_l3_entry_install(int32_t unit, int32_t port, int32_t direction, int32_t group,
                                     const sai_acl_rule_t* rule, int32_t* entry) {
  return install(std_l3, unit, port, direction, group, rule, entry);
}

int32_t sai_acl_ext_l3_entry_install(int32_t unit, int32_t port, int32_t direction, int32_t group,
                                     const sai_acl_rule_t* rule, int32_t* entry) {
  return install(ext_l3, unit, port, direction, group, rule, entry);
}

int32_t sai_acl_l2_l3_entry_install(int32_t unit, int32_t port, int32_t direction, int32_t group,
                                    const sai_acl_rule_t* rule, int32_t* entry) {
  return install(l2_l3, unit, port, direction, group, rule, entry);
}

int32_t sai_fp_entry_destroy(int32_t unit, int32_t entry) {
  const int rv = bcm_field_entry_remove(unit, entry);
  if (failed(rv, "sai_fp_entry_destroy bcm_field_entry_remove entry %d failed: %s", entry)) return sdk_to_sai(rv);
  return result(bcm_field_entry_destroy(unit, entry),
                "sai_fp_entry_destroy bcm_field_entry_destroy entry %d failed: %s", entry);
}
