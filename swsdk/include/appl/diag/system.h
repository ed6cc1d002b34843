/**
 * @file appl/diag/system.h
 * System start-up.
 */
#ifndef APPL_DIAG_SYSTEM_H
#define APPL_DIAG_SYSTEM_H

#ifdef __cplusplus
extern "C" {
#endif

/** Brings a unit up. */
int system_init(int unit);

#ifdef __cplusplus
}
#endif

#endif
