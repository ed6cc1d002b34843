/**
 * @file bcm/stg.h
 * Spanning tree groups.
 */
#ifndef BCM_STG_H
#define BCM_STG_H

#include <bcm/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** States of a port in a group. */
typedef enum bcm_stg_stp_e {
  BCM_STG_STP_DISABLE = 0,
  BCM_STG_STP_BLOCK = 1,
  BCM_STG_STP_LISTEN = 2,
  BCM_STG_STP_LEARN = 3,
  BCM_STG_STP_FORWARD = 4
} bcm_stg_stp_t;

int bcm_stg_clear(int unit);
int bcm_stg_count_get(int unit, int* max_stg);
int bcm_stg_create_id(int unit, bcm_stg_t stg);
int bcm_stg_default_get(int unit, bcm_stg_t* stg_ptr);
int bcm_stg_default_set(int unit, bcm_stg_t stg);
int bcm_stg_destroy(int unit, bcm_stg_t stg);
int bcm_stg_init(int unit);

/** States are bcm_stg_stp_t values. */
int bcm_stg_stp_get(int unit, bcm_stg_t stg, bcm_port_t port, int* stp_state);

int bcm_stg_stp_set(int unit, bcm_stg_t stg, bcm_port_t port, int stp_state);
int bcm_stg_vlan_add(int unit, bcm_stg_t stg, bcm_vlan_t vid);
int bcm_stg_vlan_remove(int unit, bcm_stg_t stg, bcm_vlan_t vid);
int bcm_stg_vlan_remove_all(int unit, bcm_stg_t stg);

#ifdef __cplusplus
}
#endif

#endif
