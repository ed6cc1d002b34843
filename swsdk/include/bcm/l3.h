/**
 * @file bcm/l3.h
 * Layer 3: interfaces, egress objects, hosts and routes.
 */
#ifndef BCM_L3_H
#define BCM_L3_H

#include <bcm/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Flags of interfaces, egress objects, hosts and routes. */
#define BCM_L3_HIT 0xc
#define BCM_L3_HIT_CLEAR 0x10
#define BCM_L3_ADD_TO_ARL 0x20
#define BCM_L3_REPLACE 0x100
#define BCM_L3_IPMC 0x800
#define BCM_L3_L2TOCPU 0x1000
#define BCM_L3_DEFIP_CPU 0x2000
#define BCM_L3_DEFIP_LOCAL 0x2000

/** A layer 3 interface. */
typedef struct bcm_l3_intf_s {
  uint32 l3a_flags;
  uint32 l3a_flags2;
  bcm_vrf_t l3a_vrf;
  bcm_if_t l3a_intf_id;
  bcm_mac_t l3a_mac_addr;
  bcm_vlan_t l3a_vid;
  bcm_vlan_t l3a_inner_vlan;
  int l3a_tunnel_idx;
  int l3a_ttl;
  int l3a_mtu;
  int l3a_mtu_forwarding;
  bcm_if_group_t l3a_group;
  int l3a_intf_class;
  int l3a_ip4_options_profile_id;
  int l3a_nat_realm_id;
  uint16 outer_tpid;
  uint32 l3a_intf_flags;
  uint8 native_routing_vlan_tags;
  bcm_gport_t l3a_source_vp;
} bcm_l3_intf_t;

/** An egress object: how a next hop is reached. */
typedef struct bcm_l3_egress_s {
  uint32 flags;
  uint32 flags2;
  bcm_if_t intf;
  bcm_mac_t mac_addr;
  bcm_vlan_t vlan;
  bcm_module_t module;
  bcm_port_t port;
  bcm_trunk_t trunk;
  bcm_if_t encap_id;
} bcm_l3_egress_t;

/** A host entry. */
typedef struct bcm_l3_host_s {
  uint32 l3a_flags;
  uint32 l3a_flags2;
  bcm_vrf_t l3a_vrf;
  bcm_ip_t l3a_ip_addr;
  bcm_ip6_t l3a_ip6_addr;
  bcm_cos_t l3a_pri;
  bcm_if_t l3a_intf;
  bcm_mac_t l3a_nexthop_mac;
  bcm_module_t l3a_modid;
  bcm_port_t l3a_port_tgid;
  int l3a_lookup_class;
} bcm_l3_host_t;

/** A route. */
typedef struct bcm_l3_route_s {
  uint32 l3a_flags;
  uint32 l3a_flags2;
  bcm_vrf_t l3a_vrf;
  bcm_ip_t l3a_subnet;
  bcm_ip6_t l3a_ip6_net;
  bcm_ip_t l3a_ip_mask;
  bcm_ip6_t l3a_ip6_mask;
  bcm_if_t l3a_intf;
  bcm_ip_t l3a_nexthop_ip;
  bcm_mac_t l3a_nexthop_mac;
  bcm_module_t l3a_modid;
  bcm_port_t l3a_port_tgid;
  bcm_vlan_t l3a_vid;
  bcm_cos_t l3a_pri;
  int l3a_lookup_class;
  bcm_multicast_t l3a_mc_group;
} bcm_l3_route_t;

/** Creates an egress object and returns its number in if_id. */
int bcm_l3_egress_create(int unit, uint32 flags, bcm_l3_egress_t* egr, bcm_if_t* if_id);

int bcm_l3_egress_destroy(int unit, bcm_if_t intf);

/** Returns the number of the egress object that equals the record. */
int bcm_l3_egress_find(int unit, bcm_l3_egress_t* egr, bcm_if_t* intf);

int bcm_l3_egress_get(int unit, bcm_if_t intf, bcm_l3_egress_t* egr);
void bcm_l3_egress_t_init(bcm_l3_egress_t* egr);
int bcm_l3_enable_set(int unit, int enable);
int bcm_l3_host_add(int unit, bcm_l3_host_t* info);
int bcm_l3_host_delete(int unit, bcm_l3_host_t* ip_addr);
int bcm_l3_host_find(int unit, bcm_l3_host_t* info);
void bcm_l3_host_t_init(bcm_l3_host_t* ip);

/** Creates an interface; fills in its number. */
int bcm_l3_intf_create(int unit, bcm_l3_intf_t* intf);

int bcm_l3_intf_delete(int unit, bcm_l3_intf_t* intf);
int bcm_l3_intf_delete_all(int unit);
int bcm_l3_intf_find(int unit, bcm_l3_intf_t* intf);
int bcm_l3_intf_find_vlan(int unit, bcm_l3_intf_t* intf);
void bcm_l3_intf_t_init(bcm_l3_intf_t* intf);
int bcm_l3_route_add(int unit, bcm_l3_route_t* info);
int bcm_l3_route_delete(int unit, bcm_l3_route_t* info);
int bcm_l3_route_get(int unit, bcm_l3_route_t* info);
void bcm_l3_route_t_init(bcm_l3_route_t* route);

#ifdef __cplusplus
}
#endif

#endif
