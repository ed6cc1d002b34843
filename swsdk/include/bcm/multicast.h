/**
 * @file bcm/multicast.h
 * Multicast groups of all kinds.
 */
#ifndef BCM_MULTICAST_H
#define BCM_MULTICAST_H

#include <bcm/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Flags and kinds of groups. */
#define BCM_MULTICAST_WITH_ID 0x1
#define BCM_MULTICAST_TYPE_L2 0x10000
#define BCM_MULTICAST_TYPE_L3 0x20000
#define BCM_MULTICAST_TYPE_VLAN 0x400000

/** Creates a group; group is read with BCM_MULTICAST_WITH_ID, otherwise written. */
int bcm_multicast_create(int unit, uint32 flags, bcm_multicast_t* group);

int bcm_multicast_destroy(int unit, bcm_multicast_t group);
int bcm_multicast_egress_add(int unit, bcm_multicast_t group, bcm_gport_t port, bcm_if_t encap_id);
int bcm_multicast_egress_delete(int unit, bcm_multicast_t group, bcm_gport_t port, bcm_if_t encap_id);

/** Lists at most port_max members of a group. */
int bcm_multicast_egress_get(int unit, bcm_multicast_t group, int port_max, bcm_gport_t* port_array,
                             bcm_if_t* encap_id_array, int* port_count);

int bcm_multicast_init(int unit);
int bcm_multicast_l2_encap_get(int unit, bcm_multicast_t group, bcm_gport_t port, bcm_vlan_t vlan, bcm_if_t* encap_id);
int bcm_multicast_l3_encap_get(int unit, bcm_multicast_t group, bcm_gport_t port, bcm_if_t intf, bcm_if_t* encap_id);
int bcm_multicast_vlan_encap_get(int unit, bcm_multicast_t group, bcm_gport_t port, bcm_gport_t vlan_port_id,
                                 bcm_if_t* encap_id);

#ifdef __cplusplus
}
#endif

#endif
