/**
 * @file bcm/types.h
 * Plain types, port bitmaps and global port numbers.
 */
#ifndef BCM_TYPES_H
#define BCM_TYPES_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef uint8_t uint8;
typedef uint16_t uint16;
typedef uint32_t uint32;
typedef uint64_t uint64;

typedef uint16 bcm_vlan_t;
typedef uint8 bcm_mac_t[6];
/** An IPv4 address in host byte order. */
typedef uint32 bcm_ip_t;
typedef uint8 bcm_ip6_t[16];
typedef int bcm_port_t;
/** A port of any kind in one number; BCM_GPORT_TYPE_ values tell the kind. */
typedef int bcm_gport_t;
typedef int bcm_module_t;
typedef int bcm_if_t;
typedef int bcm_if_group_t;
typedef int bcm_trunk_t;
typedef int bcm_stg_t;
typedef int bcm_vrf_t;
typedef int bcm_multicast_t;
typedef int bcm_policer_t;
typedef int bcm_cos_t;
typedef int bcm_cos_queue_t;
typedef int bcm_failover_t;
typedef int bcm_l4_port_t;
typedef uint16 bcm_ethertype_t;
typedef uint16 bcm_port_ethertype_t;
typedef uint32 bcm_tunnel_id_t;
typedef int bcm_switch_network_group_t;

/** Kinds of global ports; unsigned, unlike the global ports themselves. */
#define BCM_GPORT_TYPE_LOCAL 1U
#define BCM_GPORT_TYPE_MODPORT 2U
#define BCM_GPORT_TYPE_TRUNK 3U
#define BCM_GPORT_TYPE_MIRROR 15U

/** Ports of a bitmap: 0 to BCM_PBMP_PORT_MAX - 1. */
#define BCM_PBMP_PORT_MAX 256

/** A set of ports. Use the macros below, which take the bitmap itself, not its address. */
typedef struct bcm_pbmp_s {
  uint32 pbits[8];
} bcm_pbmp_t;

#define BCM_PBMP_CLEAR(pbmp)                                                                                   \
  ((pbmp).pbits[0] = (pbmp).pbits[1] = (pbmp).pbits[2] = (pbmp).pbits[3] = (pbmp).pbits[4] = (pbmp).pbits[5] = \
       (pbmp).pbits[6] = (pbmp).pbits[7] = 0U)
#define BCM_PBMP_IS_NULL(pbmp)                                                                                  \
  (((pbmp).pbits[0] | (pbmp).pbits[1] | (pbmp).pbits[2] | (pbmp).pbits[3] | (pbmp).pbits[4] | (pbmp).pbits[5] | \
    (pbmp).pbits[6] | (pbmp).pbits[7]) == 0U)
#define BCM_PBMP_ASSIGN(dst, src) ((dst) = (src))
#define BCM_PBMP_MEMBER(pbmp, port) (((pbmp).pbits[(port) / 32] & (1U << ((port) % 32))) != 0U)
#define BCM_PBMP_PORT_ADD(pbmp, port) ((pbmp).pbits[(port) / 32] |= 1U << ((port) % 32))
#define BCM_PBMP_PORT_REMOVE(pbmp, port) ((pbmp).pbits[(port) / 32] &= ~(1U << ((port) % 32)))

/** Runs the statement that follows for each port of the bitmap, in ascending order. */
#define BCM_PBMP_ITER(pbmp, port)                        \
  for ((port) = 0; (port) < BCM_PBMP_PORT_MAX; ++(port)) \
    if (BCM_PBMP_MEMBER(pbmp, port))

#ifdef __cplusplus
}
#endif

#endif
