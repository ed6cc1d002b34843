/**
 * @file bcm/mcast.h
 * Layer 2 multicast.
 */
#ifndef BCM_MCAST_H
#define BCM_MCAST_H

#include <bcm/types.h>

#ifdef __cplusplus
extern "C" {
#endif

int bcm_mcast_init(int unit);

#ifdef __cplusplus
}
#endif

#endif
