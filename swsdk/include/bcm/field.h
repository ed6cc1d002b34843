/**
 * @file bcm/field.h
 * The field processor: groups of entries that match packets and act on them.
 */
#ifndef BCM_FIELD_H
#define BCM_FIELD_H

#include <bcm/types.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef int bcm_field_entry_t;
typedef int bcm_field_group_t;

/** Any group priority. */
#define BCM_FIELD_GROUP_PRIO_ANY (-2147483647)

/** A mask that matches all bits. */
#define BCM_FIELD_EXACT_MATCH_MASK (-1)

/** What an entry can match, and the stages that a group can work in. */
typedef enum bcm_field_qualify_e {
  bcmFieldQualifySrcIp6 = 0,
  bcmFieldQualifyDstIp6 = 1,
  bcmFieldQualifySrcMac = 6,
  bcmFieldQualifyDstMac = 7,
  bcmFieldQualifySrcIp = 9,
  bcmFieldQualifyDstIp = 10,
  bcmFieldQualifyInPort = 12,
  bcmFieldQualifyOuterVlan = 17,
  bcmFieldQualifyOuterVlanPri = 19,
  bcmFieldQualifyInnerVlan = 21,
  bcmFieldQualifyInnerVlanPri = 23,
  bcmFieldQualifyL4SrcPort = 27,
  bcmFieldQualifyL4DstPort = 28,
  bcmFieldQualifyEtherType = 29,
  bcmFieldQualifyIpProtocol = 30,
  bcmFieldQualifyDSCP = 31,
  bcmFieldQualifyTtl = 32,
  bcmFieldQualifyIpType = 61,
  bcmFieldQualifyStageIngress = 68,
  bcmFieldQualifyStageEgress = 72,
  bcmFieldQualifyOutPort = 86,
  bcmFieldQualifyVlanFormat = 90,
  bcmFieldQualifyIcmpTypeCode = 125,
  bcmFieldQualifyArpTargetIp4 = 288,
  bcmFieldQualifyTos = 31,
  bcmFieldQualifyIp6NextHeader = 30,
  bcm_field_qualify_force_int = -0x7fffffff - 1 /* allows numbers that have no name here */
} bcm_field_qualify_t;

/** What an entry can do to a packet. */
typedef enum bcm_field_action_e {
  bcmFieldActionPrioPktNew = 10,
  bcmFieldActionCopyToCpu = 23,
  bcmFieldActionRedirectPort = 29,
  bcmFieldActionDrop = 39,
  bcmFieldActionDropCancel = 40,
  bcmFieldActionRpDrop = 52,
  bcm_field_action_force_int = -0x7fffffff - 1 /* allows numbers that have no name here */
} bcm_field_action_t;

/** Kinds of IP packets. */
typedef enum bcm_field_IpType_e {
  bcmFieldIpTypeIpv4Any = 5,
  bcmFieldIpTypeIpv6 = 10,
  bcmFieldIpTypeIp = 11,
  bcm_field_IpType_force_int = -0x7fffffff - 1 /* allows numbers that have no name here */
} bcm_field_IpType_t;

/** A set of qualifiers; BCM_FIELD_QSET_INIT() empties it. */
typedef struct bcm_field_qset_s {
  uint32 w[55];
  uint32 udf_map[9];
} bcm_field_qset_t;

#define BCM_FIELD_QSET_INIT(qset) bcm_field_qset_t_init(&(qset))
#define BCM_FIELD_QSET_ADD(qset, q) ((qset).w[(q) / 32] |= 1U << ((q) % 32))
#define BCM_FIELD_QSET_TEST(qset, q) (((qset).w[(q) / 32] & (1U << ((q) % 32))) != 0U)

void bcm_field_qset_t_init(bcm_field_qset_t* qset);

/** Adds an action to an entry; what the parameters mean depends on the action. */
int bcm_field_action_add(int unit, bcm_field_entry_t entry, bcm_field_action_t action, uint32 param0, uint32 param1);

/** Creates an entry of a group and returns its number. */
int bcm_field_entry_create(int unit, bcm_field_group_t group, bcm_field_entry_t* entry);

/** Like bcm_field_entry_create(), with a number that the caller chooses. */
int bcm_field_entry_create_id(int unit, bcm_field_group_t group, bcm_field_entry_t entry);

int bcm_field_entry_destroy(int unit, bcm_field_entry_t entry);

/** Writes an entry to hardware. */
int bcm_field_entry_install(int unit, bcm_field_entry_t entry);

int bcm_field_entry_policer_attach(int unit, bcm_field_entry_t entry_id, int level, bcm_policer_t policer_id);
int bcm_field_entry_policer_detach(int unit, bcm_field_entry_t entry_id, int level);
int bcm_field_entry_policer_get(int unit, bcm_field_entry_t entry_id, int level, bcm_policer_t* policer_id);
int bcm_field_entry_prio_set(int unit, bcm_field_entry_t entry, int prio);

/** Writes an installed entry again after a change of its qualifiers or actions. */
int bcm_field_entry_reinstall(int unit, bcm_field_entry_t entry);

/** Removes an entry from hardware; it can be installed again. */
int bcm_field_entry_remove(int unit, bcm_field_entry_t entry);

/** Creates a group whose entries can match the fields of qset. */
int bcm_field_group_create(int unit, bcm_field_qset_t qset, int pri, bcm_field_group_t* group);

int bcm_field_group_enable_set(int unit, bcm_field_group_t group, int enable);
int bcm_field_group_priority_set(int unit, bcm_field_group_t group, int priority);

/** Each bcm_field_qualify function adds one match to an entry. */
int bcm_field_qualify_DSCP(int unit, bcm_field_entry_t entry, uint8 data, uint8 mask);

int bcm_field_qualify_DstIp(int unit, bcm_field_entry_t entry, bcm_ip_t data, bcm_ip_t mask);

/** Addresses are 16 bytes. */
int bcm_field_qualify_DstIp6(int unit, bcm_field_entry_t entry, uint8* data, uint8* mask);

/** Addresses are 6 bytes. */
int bcm_field_qualify_DstMac(int unit, bcm_field_entry_t entry, uint8* data, uint8* mask);

int bcm_field_qualify_EtherType(int unit, bcm_field_entry_t entry, uint16 data, uint16 mask);
int bcm_field_qualify_IcmpType(int unit, bcm_field_entry_t entry, uint8 data, uint8 mask);
int bcm_field_qualify_IcmpTypeCode(int unit, bcm_field_entry_t entry, uint16 data, uint16 mask);
int bcm_field_qualify_InPort(int unit, bcm_field_entry_t entry, bcm_port_t data, bcm_port_t mask);
int bcm_field_qualify_InPorts(int unit, bcm_field_entry_t entry, bcm_pbmp_t data, bcm_pbmp_t mask);
int bcm_field_qualify_Ip6NextHeader(int unit, bcm_field_entry_t entry, uint8 data, uint8 mask);
int bcm_field_qualify_IpProtocol(int unit, bcm_field_entry_t entry, uint8 data, uint8 mask);
int bcm_field_qualify_IpType(int unit, bcm_field_entry_t entry, bcm_field_IpType_t type);
int bcm_field_qualify_L4DstPort(int unit, bcm_field_entry_t entry, bcm_l4_port_t data, bcm_l4_port_t mask);
int bcm_field_qualify_L4SrcPort(int unit, bcm_field_entry_t entry, bcm_l4_port_t data, bcm_l4_port_t mask);
int bcm_field_qualify_OutPort(int unit, bcm_field_entry_t entry, bcm_port_t data, bcm_port_t mask);
int bcm_field_qualify_OuterVlan(int unit, bcm_field_entry_t entry, bcm_vlan_t data, bcm_vlan_t mask);
int bcm_field_qualify_SrcIp(int unit, bcm_field_entry_t entry, bcm_ip_t data, bcm_ip_t mask);

/** Addresses are 16 bytes. */
int bcm_field_qualify_SrcIp6(int unit, bcm_field_entry_t entry, uint8* data, uint8* mask);

/** Addresses are 6 bytes. */
int bcm_field_qualify_SrcMac(int unit, bcm_field_entry_t entry, uint8* data, uint8* mask);

int bcm_field_qualify_Tos(int unit, bcm_field_entry_t entry, uint8 data, uint8 mask);
int bcm_field_qualify_Ttl(int unit, bcm_field_entry_t entry, uint8 data, uint8 mask);

/** Removes all matches from an entry. */
int bcm_field_qualify_clear(int unit, bcm_field_entry_t entry);

#ifdef __cplusplus
}
#endif

#endif
