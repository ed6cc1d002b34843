/**
 * @file bcm/l2.h
 * Layer 2: the table of addresses, the cache of special addresses, learn limits.
 */
#ifndef BCM_L2_H
#define BCM_L2_H

#include <bcm/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Flags of a table entry. */
#define BCM_L2_DISCARD_SRC 0x2
#define BCM_L2_DISCARD_DST 0x4
#define BCM_L2_COPY_TO_CPU 0x8
#define BCM_L2_STATIC 0x20
#define BCM_L2_TRUNK_MEMBER 0x80

/** Flags of a cache entry. */
#define BCM_L2_CACHE_CPU 0x1
#define BCM_L2_CACHE_BPDU 0x10

/** What happened to an entry. */
#define BCM_L2_CALLBACK_DELETE 0
#define BCM_L2_CALLBACK_ADD 1

/** Scopes and actions of a learn limit. */
#define BCM_L2_LEARN_LIMIT_SYSTEM 0x1
#define BCM_L2_LEARN_LIMIT_VLAN 0x2
#define BCM_L2_LEARN_LIMIT_PORT 0x4
#define BCM_L2_LEARN_LIMIT_TRUNK 0x8
#define BCM_L2_LEARN_LIMIT_ACTION_DROP 0x10
#define BCM_L2_LEARN_LIMIT_ACTION_CPU 0x20
#define BCM_L2_LEARN_LIMIT_ACTION_PREFER 0x40
#define BCM_L2_LEARN_LIMIT_TUNNEL 0x80

/** An entry of the layer 2 table. */
typedef struct bcm_l2_addr_s {
  uint32 flags;
  bcm_mac_t mac;
  bcm_vlan_t vid;
  int port;
  int modid;
  bcm_trunk_t tgid;
  bcm_cos_t cos_dst;
  bcm_cos_t cos_src;
  bcm_multicast_t l2mc_group;
  bcm_multicast_t l3mc_group;
  int group;
} bcm_l2_addr_t;

/** An entry of the layer 2 cache. */
typedef struct bcm_l2_cache_addr_s {
  uint32 flags;
  uint32 station_flags;
  bcm_mac_t mac;
  bcm_mac_t mac_mask;
  bcm_vlan_t vlan;
  bcm_vlan_t vlan_mask;
  bcm_port_t src_port;
  bcm_port_t src_port_mask;
  bcm_module_t dest_modid;
  bcm_port_t dest_port;
  bcm_trunk_t dest_trunk;
  int prio;
  bcm_pbmp_t dest_ports;
  int lookup_class;
  uint8 subtype;
  bcm_if_t encap_id;
  bcm_multicast_t group;
  bcm_ethertype_t ethertype;
  bcm_ethertype_t ethertype_mask;
} bcm_l2_cache_addr_t;

/** A limit of learned addresses; flags hold scope and action. */
typedef struct bcm_l2_learn_limit_s {
  uint32 flags;
  bcm_vlan_t vlan;
  bcm_port_t port;
  bcm_trunk_t trunk;
  bcm_tunnel_id_t tunnel_id;
  int limit;
} bcm_l2_learn_limit_t;

/** Called for each change of the table; operation is a BCM_L2_CALLBACK_ value. */
typedef void (*bcm_l2_addr_callback_t)(int unit, bcm_l2_addr_t* l2addr, int operation, void* userdata);

/** Visits one entry of the table. */
typedef int (*bcm_l2_traverse_cb)(int unit, bcm_l2_addr_t* info, void* user_data);

/** Adds the entry of the record's address and VLAN. */
int bcm_l2_addr_add(int unit, bcm_l2_addr_t* l2addr);

int bcm_l2_addr_delete(int unit, uint8* mac, bcm_vlan_t vid);
int bcm_l2_addr_delete_by_mac(int unit, uint8* mac, uint32 flags);
int bcm_l2_addr_delete_by_port(int unit, bcm_module_t mod, bcm_port_t port, uint32 flags);
int bcm_l2_addr_delete_by_trunk(int unit, bcm_trunk_t tid, uint32 flags);
int bcm_l2_addr_delete_by_vlan(int unit, bcm_vlan_t vid, uint32 flags);
int bcm_l2_addr_get(int unit, uint8* mac_addr, bcm_vlan_t vid, bcm_l2_addr_t* l2addr);

/** Registers callback for all changes of the table. */
int bcm_l2_addr_register(int unit, bcm_l2_addr_callback_t callback, void* userdata);

/** Clears the record and sets its address and VLAN. */
void bcm_l2_addr_t_init(bcm_l2_addr_t* l2addr, const uint8* mac_addr, bcm_vlan_t vid);

int bcm_l2_addr_unregister(int unit, bcm_l2_addr_callback_t callback, void* userdata);
int bcm_l2_age_timer_get(int unit, int* age_seconds);
int bcm_l2_age_timer_set(int unit, int age_seconds);
void bcm_l2_cache_addr_t_init(bcm_l2_cache_addr_t* addr);
int bcm_l2_cache_delete(int unit, int index);
int bcm_l2_cache_delete_all(int unit);

/** Writes an entry; index_used receives its index. */
int bcm_l2_cache_set(int unit, int index, bcm_l2_cache_addr_t* addr, int* index_used);

int bcm_l2_init(int unit);
int bcm_l2_learn_limit_disable(int unit);
int bcm_l2_learn_limit_enable(int unit);
int bcm_l2_learn_limit_get(int unit, bcm_l2_learn_limit_t* limit);
int bcm_l2_learn_limit_set(int unit, bcm_l2_learn_limit_t* limit);
void bcm_l2_learn_limit_t_init(bcm_l2_learn_limit_t* limit);

/** Calls trav_fn for each entry of the table. */
int bcm_l2_traverse(int unit, bcm_l2_traverse_cb trav_fn, void* user_data);

#ifdef __cplusplus
}
#endif

#endif
