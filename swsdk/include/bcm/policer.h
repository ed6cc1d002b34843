/**
 * @file bcm/policer.h
 * Policers.
 */
#ifndef BCM_POLICER_H
#define BCM_POLICER_H

#include <bcm/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Flags of a policer. */
#define BCM_POLICER_COLOR_BLIND 0x4
#define BCM_POLICER_COLOR_MERGE_OR 0x10
#define BCM_POLICER_COLOR_MERGE_DUAL 0x20
#define BCM_POLICER_MODE_BYTES 0x40

/** How a policer measures. */
typedef enum bcm_policer_mode_e {
  bcmPolicerModeTrTcm = 3,
  bcm_policer_mode_force_int = -0x7fffffff - 1 /* allows numbers that have no name here */
} bcm_policer_mode_t;

/** A policer: committed (c) and peak (p) rates and bursts. */
typedef struct bcm_policer_config_s {
  uint32 flags;
  bcm_policer_mode_t mode;
  uint32 ckbits_sec;
  uint32 ckbits_burst;
  uint32 cbits_burst_lower;
  uint32 pkbits_sec;
  uint32 pkbits_burst;
  uint32 pbits_burst_lower;
  uint32 action_id;
  uint32 sharing_mode;
} bcm_policer_config_t;

void bcm_policer_config_t_init(bcm_policer_config_t* pol_cfg);

/** Creates a policer and returns its number. */
int bcm_policer_create(int unit, bcm_policer_config_t* pol_cfg, bcm_policer_t* policer_id);

int bcm_policer_destroy(int unit, bcm_policer_t policer_id);
int bcm_policer_get(int unit, bcm_policer_t policer_id, bcm_policer_config_t* pol_cfg);
int bcm_policer_init(int unit);
int bcm_policer_set(int unit, bcm_policer_t policer_id, bcm_policer_config_t* pol_cfg);

#ifdef __cplusplus
}
#endif

#endif
