// The groups that the library lays out in the field processor.
#include <sai.h>

#include <initializer_list>

#include "core/log.h"
#include "core/result.h"
#include "core/sdk.h"

using sai::failed;
using sai::result;

namespace {

/// How the kinds of groups differ, apart from their rows.
enum class Kind {
  acl,          ///< its priority is its own id
  trap,         ///< its id is traced
  source_guard  ///< the message of a failed creation does not name the group
};

struct Group {
  Kind kind;
  const char* creating;  ///< its name in the message of a failed creation
  const char* enabling;  ///< its name in the message of a failed enable
  std::initializer_list<bcm_field_qualify_t> qualifiers;
};

// The names in messages are intended: some groups are called "any" once or twice, and "inress" stays.

constexpr Group ifp_l2{Kind::acl,
                       "l2 ingress",
                       "any",
                       {bcmFieldQualifySrcMac, bcmFieldQualifyDstMac, bcmFieldQualifyInPort, bcmFieldQualifyOuterVlan,
                        bcmFieldQualifyOuterVlanPri, bcmFieldQualifyInnerVlan, bcmFieldQualifyInnerVlanPri,
                        bcmFieldQualifyEtherType, bcmFieldQualifyStageIngress}};

constexpr Group efp_l2{
    Kind::acl,
    "l2 egress",
    "l2 egress",
    {bcmFieldQualifySrcMac, bcmFieldQualifyDstMac, bcmFieldQualifyOuterVlan, bcmFieldQualifyOuterVlanPri,
     bcmFieldQualifyEtherType, bcmFieldQualifyOutPort, bcmFieldQualifyStageEgress}};

constexpr Group ifp_mac_ipv4{
    Kind::acl,
    "ipv4 l2-l4 ingress",
    "ipv4 l2-l4 ingress",
    {bcmFieldQualifySrcMac, bcmFieldQualifyDstMac, bcmFieldQualifySrcIp, bcmFieldQualifyDstIp, bcmFieldQualifyInPort,
     bcmFieldQualifyOuterVlan, bcmFieldQualifyOuterVlanPri, bcmFieldQualifyInnerVlan, bcmFieldQualifyInnerVlanPri,
     bcmFieldQualifyL4SrcPort, bcmFieldQualifyL4DstPort, bcmFieldQualifyEtherType, bcmFieldQualifyIpProtocol,
     bcmFieldQualifyDSCP, bcmFieldQualifyIpType, bcmFieldQualifyStageIngress}};

constexpr Group efp_mac_ipv4{
    Kind::acl,
    "ipv4 l2-l4 egress",
    "ipv4 l2-l4 egress",
    {bcmFieldQualifySrcMac, bcmFieldQualifyDstMac, bcmFieldQualifySrcIp, bcmFieldQualifyDstIp, bcmFieldQualifyOuterVlan,
     bcmFieldQualifyOuterVlanPri, bcmFieldQualifyL4SrcPort, bcmFieldQualifyL4DstPort, bcmFieldQualifyEtherType,
     bcmFieldQualifyIpProtocol, bcmFieldQualifyDSCP, bcmFieldQualifyIpType, bcmFieldQualifyOutPort,
     bcmFieldQualifyStageEgress}};

constexpr Group ifp_mac_ipv6{
    Kind::acl,
    "ipv6 l2-l4 inress",
    "ipv6 l2-l4 inress",
    {bcmFieldQualifySrcIp6, bcmFieldQualifyDstIp6, bcmFieldQualifySrcMac, bcmFieldQualifyDstMac, bcmFieldQualifyInPort,
     bcmFieldQualifyOuterVlan, bcmFieldQualifyOuterVlanPri, bcmFieldQualifyInnerVlan, bcmFieldQualifyInnerVlanPri,
     bcmFieldQualifyL4SrcPort, bcmFieldQualifyL4DstPort, bcmFieldQualifyEtherType, bcmFieldQualifyIpProtocol,
     bcmFieldQualifyDSCP, bcmFieldQualifyIpType, bcmFieldQualifyStageIngress}};

constexpr Group efp_mac_ipv6{
    Kind::acl,
    "ipv6 l2-l4 egress",
    "ipv6 l2-l4 egress",
    {bcmFieldQualifySrcIp6, bcmFieldQualifyDstIp6, bcmFieldQualifySrcMac, bcmFieldQualifyDstMac,
     bcmFieldQualifyOuterVlan, bcmFieldQualifyOuterVlanPri, bcmFieldQualifyL4SrcPort, bcmFieldQualifyL4DstPort,
     bcmFieldQualifyEtherType, bcmFieldQualifyIpProtocol, bcmFieldQualifyDSCP, bcmFieldQualifyIpType,
     bcmFieldQualifyOutPort, bcmFieldQualifyStageEgress}};

// Meant: VLAN format, here and in the next group, and the ARP target address, though no rule matches on them.
constexpr Group system_ipv4{
    Kind::trap,
    "ipv4 any",
    "ipv4 any",
    {bcmFieldQualifySrcMac, bcmFieldQualifyDstMac, bcmFieldQualifyDstIp, bcmFieldQualifyInPort,
     bcmFieldQualifyOuterVlan, bcmFieldQualifyL4SrcPort, bcmFieldQualifyL4DstPort, bcmFieldQualifyEtherType,
     bcmFieldQualifyIpProtocol, bcmFieldQualifyTtl, bcmFieldQualifyIpType, bcmFieldQualifyVlanFormat,
     bcmFieldQualifyArpTargetIp4, bcmFieldQualifyStageIngress}};

constexpr Group system_ipv6{
    Kind::trap,
    "ipv6 any",
    "ipv6 any",
    {bcmFieldQualifyDstIp6, bcmFieldQualifySrcMac, bcmFieldQualifyDstMac, bcmFieldQualifyInPort,
     bcmFieldQualifyOuterVlan, bcmFieldQualifyL4SrcPort, bcmFieldQualifyL4DstPort, bcmFieldQualifyEtherType,
     bcmFieldQualifyIpProtocol, bcmFieldQualifyTtl, bcmFieldQualifyIpType, bcmFieldQualifyVlanFormat,
     bcmFieldQualifyIcmpTypeCode, bcmFieldQualifyStageIngress}};

constexpr Group mld{
    Kind::trap,
    "mld",
    "mld",
    {bcmFieldQualifyDstMac, bcmFieldQualifyInPort, bcmFieldQualifyIpProtocol, bcmFieldQualifyStageIngress}};

constexpr Group vport{
    Kind::trap, "vp", "any", {bcmFieldQualifyOuterVlan, bcmFieldQualifyOutPort, bcmFieldQualifyStageEgress}};

constexpr Group mld_exclude{Kind::trap,
                            "any",
                            "any",
                            {bcmFieldQualifySrcIp6, bcmFieldQualifyDstIp6, bcmFieldQualifyOuterVlan,
                             bcmFieldQualifyOutPort, bcmFieldQualifyStageEgress}};

constexpr Group source_guard{
    Kind::source_guard,
    "any",
    "any",
    {bcmFieldQualifySrcMac, bcmFieldQualifySrcIp, bcmFieldQualifyInPort, bcmFieldQualifyOuterVlan,
     bcmFieldQualifyL4SrcPort, bcmFieldQualifyL4DstPort, bcmFieldQualifyEtherType, bcmFieldQualifyIpProtocol,
     bcmFieldQualifyTtl, bcmFieldQualifyIpType, bcmFieldQualifyStageIngress}};

bool creation_failed(int rv, int unit, const Group& row, int id) {
  return row.kind == Kind::source_guard ? failed(rv, "unit %d create %s group failed: %s", unit, row.creating)
                                        : failed(rv, "unit %d create %s group %d failed: %s", unit, row.creating, id);
}

int32_t create(int unit, const Group& row, int32_t* group) {
  bcm_field_qset_t qualifiers;
  BCM_FIELD_QSET_INIT(qualifiers);
  for (const bcm_field_qualify_t qualifier : row.qualifiers) BCM_FIELD_QSET_ADD(qualifiers, qualifier);

  bcm_field_group_t id = 0;
  int rv = group == nullptr ? BCM_E_PARAM : bcm_field_group_create(unit, qualifiers, BCM_FIELD_GROUP_PRIO_ANY, &id);
  if (creation_failed(rv, unit, row, id)) return sdk_to_sai(rv);
  if (row.kind == Kind::acl) {
    rv = bcm_field_group_priority_set(unit, id, id);
    if (failed(rv, "unit %d set group %d priority %d failed: %s", unit, id, id)) return sdk_to_sai(rv);
  }
  rv = bcm_field_group_enable_set(unit, id, 1);
  if (rv != BCM_E_NONE) return result(rv, "unit %d enable %s group %d failed: %s", unit, row.enabling, id);
  *group = id;
  if (row.kind == Kind::trap) sai::trace("any group_id %d", id);
  return SAI_E_NONE;
}

}  // namespace

int32_t sai_ifp_l2_group_create(int32_t unit, int32_t* group) { return create(unit, ifp_l2, group); }

int32_t sai_efp_l2_group_create(int32_t unit, int32_t* group) { return create(unit, efp_l2, group); }

int32_t sai_ifp_mac_ipv4_group_create(int32_t unit, int32_t* group) { return create(unit, ifp_mac_ipv4, group); }

int32_t sai_efp_mac_ipv4_group_create(int32_t unit, int32_t* group) { return create(unit, efp_mac_ipv4, group); }

int32_t sai_ifp_mac_ipv6_group_create(int32_t unit, int32_t* group) { return create(unit, ifp_mac_ipv6, group); }

int32_t sai_efp_mac_ipv6_group_create(int32_t unit, int32_t* group) { return create(unit, efp_mac_ipv6, group); }

int32_t sai_system_ipv4_fp_create(int32_t unit, int32_t* group) { return create(unit, system_ipv4, group); }

int32_t sai_system_ipv6_fp_create(int32_t unit, int32_t* group) { return create(unit, system_ipv6, group); }

int32_t sai_fp_mld_group_create(int32_t unit, int32_t* group) { return create(unit, mld, group); }

int32_t sai_fp_vport_group_create(int32_t unit, int32_t* group) { return create(unit, vport, group); }

int32_t sai_fp_mld_exclude_group_create(int32_t unit, int32_t* group) { return create(unit, mld_exclude, group); }

int32_t sai_ipsg_init(int32_t unit, int32_t* group) { return create(unit, source_guard, group); }
