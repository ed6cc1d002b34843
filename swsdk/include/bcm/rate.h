/**
 * @file bcm/rate.h
 * Rate limits of broadcast, multicast and unknown destinations.
 */
#ifndef BCM_RATE_H
#define BCM_RATE_H

#include <bcm/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Kinds of frames that are limited. */
#define BCM_RATE_DLF 0x1
#define BCM_RATE_MCAST 0x2
#define BCM_RATE_BCAST 0x4

int bcm_rate_bcast_set(int unit, int pps, int flags, int port);
int bcm_rate_dlfbc_set(int unit, int pps, int flags, int port);
int bcm_rate_mcast_set(int unit, int pps, int flags, int port);

#ifdef __cplusplus
}
#endif

#endif
