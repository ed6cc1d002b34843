/**
 * @file bcm/ipmc.h
 * Forwarding of IP multicast.
 */
#ifndef BCM_IPMC_H
#define BCM_IPMC_H

#include <bcm/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Flags of an entry. */
#define BCM_IPMC_IP6 0x20
#define BCM_IPMC_SOURCE_PORT_NOCHECK 0x80000000U

/** An entry of the IP multicast table. */
typedef struct bcm_ipmc_addr_s {
  bcm_ip_t s_ip_addr;
  bcm_ip_t mc_ip_addr;
  bcm_ip6_t s_ip6_addr;
  bcm_ip6_t mc_ip6_addr;
  bcm_vlan_t vid;
  bcm_vrf_t vrf;
  bcm_cos_t cos;
  int ts;
  int port_tgid;
  int v;
  int mod_id;
  bcm_multicast_t group;
  uint32 flags;
  int lookup_class;
  bcm_if_t l3a_intf;
  int rp_id;
  bcm_ip_t s_ip_mask;
  bcm_if_t ing_intf;
  bcm_ip_t mc_ip_mask;
  bcm_ip6_t mc_ip6_mask;
  bcm_multicast_t group_l2;
  bcm_ip6_t s_ip6_mask;
  int priority;
} bcm_ipmc_addr_t;

int bcm_ipmc_add(int unit, bcm_ipmc_addr_t* data);
void bcm_ipmc_addr_t_init(bcm_ipmc_addr_t* data);
int bcm_ipmc_enable(int unit, int enable);
int bcm_ipmc_find(int unit, bcm_ipmc_addr_t* data);
int bcm_ipmc_init(int unit);
int bcm_ipmc_remove(int unit, bcm_ipmc_addr_t* data);

#ifdef __cplusplus
}
#endif

#endif
