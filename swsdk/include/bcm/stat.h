/**
 * @file bcm/stat.h
 * Statistics of a port.
 */
#ifndef BCM_STAT_H
#define BCM_STAT_H

#include <bcm/stat_names.h>
#include <bcm/types.h>

#ifdef __cplusplus
extern "C" {
#endif

#define BCM_STAT_NAME_ENUMERATOR(name) name,
#define BCM_STAT_NAME_STRING(name) #name,

/** The statistics, in the order of BCM_STAT_NAME_LIST(). */
typedef enum bcm_stat_val_e {
  snmpIfInOctets = 0,
  /* clang-format off */
  BCM_STAT_NAME_LIST_TAIL(BCM_STAT_NAME_ENUMERATOR)
  /* clang-format on */
  snmpValCount,                            /* number of statistics */
  bcm_stat_val_force_int = -0x7fffffff - 1 /* allows numbers that have no name here */
} bcm_stat_val_t;

/** Initializes an array of snmpValCount names. */
#define BCM_STAT_NAME_INITIALIZER \
  { BCM_STAT_NAME_LIST(BCM_STAT_NAME_STRING) }

int bcm_stat_clear(int unit, bcm_port_t port);
int bcm_stat_get(int unit, bcm_port_t port, bcm_stat_val_t type, uint64* value);

/** Reads nstat statistics of one port. */
int bcm_stat_multi_get(int unit, bcm_port_t port, int nstat, bcm_stat_val_t* stat_arr, uint64* value_arr);

int bcm_stat_sync(int unit);

#ifdef __cplusplus
}
#endif

#endif
