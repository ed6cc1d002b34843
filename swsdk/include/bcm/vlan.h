/**
 * @file bcm/vlan.h
 * VLANs: membership, properties, translation of tags, virtual ports.
 */
#ifndef BCM_VLAN_H
#define BCM_VLAN_H

#include <bcm/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Flags of a VLAN's properties. */
#define BCM_VLAN_LEARN_DISABLE 0x1
#define BCM_VLAN_L2_LOOKUP_DISABLE 0x80000

/** Flags of a subnet. */
#define BCM_VLAN_SUBNET_IP6 0x4000

/** Flags of a virtual port. */
#define BCM_VLAN_PORT_INNER_VLAN_PRESERVE 0x4
#define BCM_VLAN_PORT_INNER_VLAN_ADD 0x8
#define BCM_VLAN_PORT_NETWORK 0x80
#define BCM_VLAN_PORT_OUTER_VLAN_PRESERVE 0x100
#define BCM_VLAN_PORT_TRANSPARENT 0x400
#define BCM_VLAN_PORT_VLAN_TRANSLATION 0x80000

/** Controls of a unit. */
typedef enum bcm_vlan_control_e {
  bcmVlanTranslate = 5,
  bcm_vlan_control_force_int = -0x7fffffff - 1 /* allows numbers that have no name here */
} bcm_vlan_control_t;

/** Controls of a port. A number can have another meaning than in bcm_vlan_control_t. */
typedef enum bcm_vlan_control_port_e {
  bcmVlanPortPreferIP4 = 0,
  bcmVlanPortPreferMAC = 1,
  bcmVlanTranslateIngressEnable = 2,
  bcmVlanTranslateEgressEnable = 5,
  bcmVlanLookupMACEnable = 8,
  bcmVlanLookupIPEnable = 9,
  bcmVlanPortTranslateKeyFirst = 14,
  bcmVlanPortTranslateKeySecond = 15,
  bcm_vlan_control_port_force_int = -0x7fffffff - 1 /* allows numbers that have no name here */
} bcm_vlan_control_port_t;

/** What a port looks up for a translation: values of the two translate key controls. */
typedef enum bcm_vlan_translate_key_e {
  bcmVlanTranslateKeyPortDouble = 7,
  bcmVlanTranslateKeyPortOuter = 8,
  bcm_vlan_translate_key_force_int = -0x7fffffff - 1 /* allows numbers that have no name here */
} bcm_vlan_translate_key_t;

/** Where multicast frames of a VLAN are flooded. */
typedef enum bcm_vlan_mcast_flood_e {
  BCM_VLAN_MCAST_FLOOD_ALL = 0,
  BCM_VLAN_MCAST_FLOOD_UNKNOWN = 1,
  BCM_VLAN_MCAST_FLOOD_NONE = 2,
  bcm_vlan_mcast_flood_force_int = -0x7fffffff - 1 /* allows numbers that have no name here */
} bcm_vlan_mcast_flood_t;

/** What happens to a tag or to one of its fields. */
typedef enum bcm_vlan_action_e {
  bcmVlanActionNone = 0,
  bcmVlanActionAdd = 1,
  bcmVlanActionReplace = 2,
  bcmVlanActionDelete = 3,
  bcmVlanActionCopy = 4,
  bcm_vlan_action_force_int = -0x7fffffff - 1 /* allows numbers that have no name here */
} bcm_vlan_action_t;

/** What a virtual port matches. */
typedef enum bcm_vlan_port_match_e {
  BCM_VLAN_PORT_MATCH_PORT_VLAN = 3,
  BCM_VLAN_PORT_MATCH_PORT_VLAN_STACKED = 4,
  bcm_vlan_port_match_force_int = -0x7fffffff - 1 /* allows numbers that have no name here */
} bcm_vlan_port_match_t;

/** A virtual port: the frames of a port that match. */
typedef struct bcm_vlan_port_s {
  bcm_vlan_port_match_t criteria;
  uint32 flags;
  bcm_vlan_t vsi;
  bcm_vlan_t match_vlan;
  bcm_vlan_t match_inner_vlan;
  int match_pcp;
  bcm_port_ethertype_t match_ethertype;
  bcm_gport_t port;
  uint8 pkt_pri;
  uint8 pkt_cfi;
  uint16 egress_service_tpid;
  bcm_vlan_t egress_vlan;
  bcm_vlan_t egress_inner_vlan;
  bcm_if_t encap_id;
  int qos_map_id;
  bcm_policer_t policer_id;
  bcm_policer_t egress_policer_id;
  bcm_failover_t failover_id;
  bcm_gport_t failover_port_id;
  bcm_gport_t vlan_port_id;
  bcm_switch_network_group_t ingress_network_group_id;
  bcm_switch_network_group_t egress_network_group_id;
  uint32 if_class;
  uint32 group;
  uint16 class_id;
  uint32 flags2;
} bcm_vlan_port_t;

/** The properties of a VLAN. */
typedef struct bcm_vlan_control_vlan_s {
  bcm_vrf_t vrf;
  bcm_vlan_t forwarding_vlan;
  bcm_if_t ingress_if;
  uint16 outer_tpid;
  uint32 flags;
  bcm_vlan_mcast_flood_t ip6_mcast_flood_mode;
  bcm_vlan_mcast_flood_t ip4_mcast_flood_mode;
  bcm_vlan_mcast_flood_t l2_mcast_flood_mode;
  int if_class;
  bcm_cos_queue_t cosq;
  int qos_map_id;
  bcm_multicast_t broadcast_group;
  bcm_multicast_t unknown_multicast_group;
  bcm_multicast_t unknown_unicast_group;
  int aging_cycles;
  uint32 learn_flags;
  uint32 flags2;
} bcm_vlan_control_vlan_t;

/** What to do with the tags of frames that have two (dt), an outer (ot), an inner (it) or no (ut) tag. */
typedef struct bcm_vlan_action_set_s {
  bcm_vlan_t new_outer_vlan;
  bcm_vlan_t new_inner_vlan;
  uint8 new_inner_pkt_prio;
  uint8 new_outer_cfi;
  uint8 new_inner_cfi;
  bcm_if_t ingress_if;
  int priority;
  bcm_vlan_action_t dt_outer;
  bcm_vlan_action_t dt_outer_prio;
  bcm_vlan_action_t dt_outer_pkt_prio;
  bcm_vlan_action_t dt_outer_cfi;
  bcm_vlan_action_t dt_inner;
  bcm_vlan_action_t dt_inner_prio;
  bcm_vlan_action_t dt_inner_pkt_prio;
  bcm_vlan_action_t dt_inner_cfi;
  bcm_vlan_action_t ot_outer;
  bcm_vlan_action_t ot_outer_prio;
  bcm_vlan_action_t ot_outer_pkt_prio;
  bcm_vlan_action_t ot_outer_cfi;
  bcm_vlan_action_t ot_inner;
  bcm_vlan_action_t ot_inner_pkt_prio;
  bcm_vlan_action_t ot_inner_cfi;
  bcm_vlan_action_t it_outer;
  bcm_vlan_action_t it_outer_pkt_prio;
  bcm_vlan_action_t it_outer_cfi;
  bcm_vlan_action_t it_inner;
  bcm_vlan_action_t it_inner_prio;
  bcm_vlan_action_t it_inner_pkt_prio;
  bcm_vlan_action_t it_inner_cfi;
  bcm_vlan_action_t ut_outer;
  bcm_vlan_action_t ut_outer_pkt_prio;
  bcm_vlan_action_t ut_outer_cfi;
  bcm_vlan_action_t ut_inner;
  bcm_vlan_action_t ut_inner_pkt_prio;
  bcm_vlan_action_t ut_inner_cfi;
  bcm_policer_t policer_id;
  uint16 outer_tpid;
  uint16 inner_tpid;
  int action_id;
  uint32 class_id;
  uint32 flags;
} bcm_vlan_action_set_t;

/** A subnet whose frames get a VLAN. */
typedef struct bcm_vlan_ip_s {
  uint32 flags;
  bcm_ip_t ip4;
  bcm_ip_t mask;
  bcm_ip6_t ip6;
  int prefix;
  bcm_vlan_t vid;
  int prio;
} bcm_vlan_ip_t;

void bcm_vlan_action_set_t_init(bcm_vlan_action_set_t* action);
int bcm_vlan_control_port_get(int unit, int port, bcm_vlan_control_port_t type, int* arg);
int bcm_vlan_control_port_set(int unit, int port, bcm_vlan_control_port_t type, int arg);
int bcm_vlan_control_set(int unit, bcm_vlan_control_t type, int arg);
int bcm_vlan_control_vlan_get(int unit, bcm_vlan_t vlan, bcm_vlan_control_vlan_t* control);
int bcm_vlan_control_vlan_set(int unit, bcm_vlan_t vlan, bcm_vlan_control_vlan_t control);
void bcm_vlan_control_vlan_t_init(bcm_vlan_control_vlan_t* data);
int bcm_vlan_create(int unit, bcm_vlan_t vid);
int bcm_vlan_destroy(int unit, bcm_vlan_t vid);
int bcm_vlan_destroy_all(int unit);
int bcm_vlan_dtag_add(int unit, int port, bcm_vlan_t old_vid, bcm_vlan_t new_vid, int prio);
int bcm_vlan_dtag_delete(int unit, int port, bcm_vlan_t old_vid);
int bcm_vlan_dtag_range_add(int unit, int port, bcm_vlan_t old_vid_low, bcm_vlan_t old_vid_high, bcm_vlan_t new_vid,
                            int int_prio);
int bcm_vlan_dtag_range_delete(int unit, int port, bcm_vlan_t old_vid_low, bcm_vlan_t old_vid_high);
int bcm_vlan_gport_add(int unit, bcm_vlan_t vlan, bcm_gport_t port, int flags);
int bcm_vlan_gport_delete(int unit, bcm_vlan_t vlan, bcm_gport_t port);
int bcm_vlan_init(int unit);

/** Assigns a VLAN to frames from a subnet. */
int bcm_vlan_ip_add(int unit, bcm_vlan_ip_t* vlan_ip);

int bcm_vlan_ip_delete(int unit, bcm_vlan_ip_t* vlan_ip);
int bcm_vlan_ip_delete_all(int unit);
void bcm_vlan_ip_t_init(bcm_vlan_ip_t* vlan_ip);

/** Assigns a VLAN to frames from a station; mac is 6 bytes. */
int bcm_vlan_mac_add(int unit, uint8* mac, bcm_vlan_t vid, int prio);

int bcm_vlan_mac_delete(int unit, uint8* mac);
int bcm_vlan_mac_delete_all(int unit);
int bcm_vlan_mcast_flood_set(int unit, bcm_vlan_t vlan, bcm_vlan_mcast_flood_t mode);

/** Adds the ports of pbmp to a VLAN; those of ubmp send untagged. */
int bcm_vlan_port_add(int unit, bcm_vlan_t vid, bcm_pbmp_t pbmp, bcm_pbmp_t ubmp);

/** Creates a virtual port; fills in its number. */
int bcm_vlan_port_create(int unit, bcm_vlan_port_t* vlan_port);

int bcm_vlan_port_destroy(int unit, bcm_gport_t gport);
int bcm_vlan_port_find(int unit, bcm_vlan_port_t* vlan_port);
int bcm_vlan_port_remove(int unit, bcm_vlan_t vid, bcm_pbmp_t pbmp);
void bcm_vlan_port_t_init(bcm_vlan_port_t* vlan_port);

/** Functions without egress in their name translate arriving frames. */
int bcm_vlan_translate_add(int unit, int port, bcm_vlan_t old_vid, bcm_vlan_t new_vid, int prio);

int bcm_vlan_translate_delete(int unit, int port, bcm_vlan_t old_vid);

/** Sets what happens to the tags of departing frames. */
int bcm_vlan_translate_egress_action_add(int unit, int port_class, bcm_vlan_t outer_vlan, bcm_vlan_t inner_vlan,
                                         bcm_vlan_action_set_t* action);

int bcm_vlan_translate_egress_action_delete(int unit, int port_class, bcm_vlan_t outer_vlan, bcm_vlan_t inner_vlan);

/** Translates the VLAN of departing frames. */
int bcm_vlan_translate_egress_add(int unit, int port, bcm_vlan_t old_vid, bcm_vlan_t new_vid, int prio);

int bcm_vlan_translate_egress_delete(int unit, int port, bcm_vlan_t old_vid);
int bcm_vlan_translate_egress_get(int unit, int port, bcm_vlan_t old_vid, bcm_vlan_t* new_vid, int* prio);
int bcm_vlan_translate_get(int unit, int port, bcm_vlan_t old_vid, bcm_vlan_t* new_vid, int* prio);

#ifdef __cplusplus
}
#endif

#endif
