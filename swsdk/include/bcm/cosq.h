/**
 * @file bcm/cosq.h
 * Queues of a port.
 */
#ifndef BCM_COSQ_H
#define BCM_COSQ_H

#include <bcm/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** How queues share a port. */
#define BCM_COSQ_STRICT 1
#define BCM_COSQ_ROUND_ROBIN 2
#define BCM_COSQ_WEIGHTED_ROUND_ROBIN 3
#define BCM_COSQ_WEIGHTED_FAIR_QUEUING 4
#define BCM_COSQ_DEFICIT_ROUND_ROBIN 5

/** Sets how the queues share a port; weights has one entry for each queue. */
int bcm_cosq_sched_set(int unit, int mode, const int* weights, int delay);

#ifdef __cplusplus
}
#endif

#endif
