/**
 * @file bcm/error.h
 * The codes that the SDK's functions return.
 */
#ifndef BCM_ERROR_H
#define BCM_ERROR_H

#ifdef __cplusplus
extern "C" {
#endif

/** 0 is success, every other code an error. */
typedef enum bcm_error_e {
  BCM_E_NONE = 0,
  BCM_E_INTERNAL = -1,
  BCM_E_MEMORY = -2,
  BCM_E_UNIT = -3,
  BCM_E_PARAM = -4,
  BCM_E_EMPTY = -5,
  BCM_E_FULL = -6,
  BCM_E_NOT_FOUND = -7,
  BCM_E_EXISTS = -8,
  BCM_E_TIMEOUT = -9,
  BCM_E_BUSY = -10,
  BCM_E_FAIL = -11,
  BCM_E_DISABLED = -12,
  BCM_E_BADID = -13,
  BCM_E_RESOURCE = -14,
  BCM_E_CONFIG = -15,
  BCM_E_UNAVAIL = -16,
  BCM_E_INIT = -17,
  BCM_E_PORT = -18
} bcm_error_t;

#ifdef __cplusplus
}
#endif

#endif
