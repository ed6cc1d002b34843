/**
 * @file bcm/trunk.h
 * Trunks.
 */
#ifndef BCM_TRUNK_H
#define BCM_TRUNK_H

#include <bcm/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** How a trunk picks the member for a frame. */
#define BCM_TRUNK_PSC_SRCMAC 1
#define BCM_TRUNK_PSC_DSTMAC 2
#define BCM_TRUNK_PSC_SRCDSTMAC 3
#define BCM_TRUNK_PSC_SRCIP 4
#define BCM_TRUNK_PSC_DSTIP 5
#define BCM_TRUNK_PSC_SRCDSTIP 6

/** Flags for the creation of a trunk. */
#define BCM_TRUNK_FLAG_WITH_ID 0x10

/** The settings of a trunk. */
typedef struct bcm_trunk_info_s {
  uint32 flags;
  int psc;
  int ipmc_psc;
  int dlf_index;
  int mc_index;
  int ipmc_index;
  int dynamic_size;
  int dynamic_age;
  bcm_trunk_t master_tid;
} bcm_trunk_info_t;

/** A member of a trunk. */
typedef struct bcm_trunk_member_s {
  uint32 flags;
  bcm_gport_t gport;
  int dynamic_scaling_factor;
  int dynamic_load_weight;
  int dynamic_queue_size_weight;
} bcm_trunk_member_t;

/** Creates a trunk; tid is read with BCM_TRUNK_FLAG_WITH_ID, otherwise written. */
int bcm_trunk_create(int unit, uint32 flags, bcm_trunk_t* tid);

int bcm_trunk_destroy(int unit, bcm_trunk_t tid);
int bcm_trunk_detach(int unit);
void bcm_trunk_info_t_init(bcm_trunk_info_t* trunk_info);
int bcm_trunk_init(int unit);
void bcm_trunk_member_t_init(bcm_trunk_member_t* trunk_member);

/** Takes one of the BCM_TRUNK_PSC_ values. */
int bcm_trunk_psc_set(int unit, bcm_trunk_t tid, int psc);

int bcm_trunk_set(int unit, bcm_trunk_t tid, bcm_trunk_info_t* trunk_info, int member_count,
                  bcm_trunk_member_t* member_array);

#ifdef __cplusplus
}
#endif

#endif
