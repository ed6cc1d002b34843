/**
 * @file bcm/init.h
 * Units.
 */
#ifndef BCM_INIT_H
#define BCM_INIT_H

#include <bcm/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** What a unit is. */
typedef struct bcm_info_s {
  uint32 vendor;
  uint32 device;
  uint32 revision;
  uint32 capability;
} bcm_info_t;

/** Reads which chip the unit is. */
int bcm_info_get(int unit, bcm_info_t* info);

#ifdef __cplusplus
}
#endif

#endif
