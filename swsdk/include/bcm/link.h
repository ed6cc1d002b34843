/**
 * @file bcm/link.h
 * Link scanning.
 */
#ifndef BCM_LINK_H
#define BCM_LINK_H

#include <bcm/port.h>
#include <bcm/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Called for each change of a link. */
typedef void (*bcm_linkscan_handler_t)(int unit, bcm_port_t port, bcm_port_info_t* info);

/** Scans the links every us microseconds. */
int bcm_linkscan_enable_set(int unit, int us);

/** Registers f for all changes of links. */
int bcm_linkscan_register(int unit, bcm_linkscan_handler_t f);

int bcm_linkscan_unregister(int unit, bcm_linkscan_handler_t f);

#ifdef __cplusplus
}
#endif

#endif
