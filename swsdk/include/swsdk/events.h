/**
 * @file swsdk/events.h
 * What happens to a chip from outside: links, events of the MAC table, and time.
 */
#ifndef SWSDK_EVENTS_H
#define SWSDK_EVENTS_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Puts a link up or down, as plugging a cable does: the link scan thread calls the handlers of `bcm_linkscan_register`.
 * A link that is so already has been otherwise for a moment; the handlers are called again. While link scanning is
 * paused or disabled, none is called; those of links that are not as before are when it goes on. A port that is
 * disabled has no link: its handlers are called when it is enabled with a cable in it, and when it is disabled. A cable
 * outlives `system_init`: the link is up again after it, and the handlers are called.
 *
 * @param port  an Ethernet port
 * @param up    non-zero: the link went up; 0: it went down
 * @return 0, or -1 when there is no such initialized unit or port
 */
int swsdk_link_event(int unit, int port, int up);

/**
 * Raises an event of the MAC table: the L2 thread calls the functions of `bcm_l2_addr_register`.
 *
 * @param operation  what happened: `BCM_L2_CALLBACK_ADD`, `BCM_L2_CALLBACK_DELETE` or another code
 * @param vid        VLAN of the address, 1 to 4095
 * @param mac        the address, 6 bytes
 * @param port       its port
 * @return 0, or -1 when there is no such initialized unit or port, or the VLAN is out of range
 */
int swsdk_l2_event(int unit, int operation, int vid, const unsigned char* mac, int port);

/**
 * Lets time pass on a unit's chip, whose clock stands still otherwise; that of `swsdk-switch` follows real time and is
 * moved on. Each time the age time of `bcm_l2_age_timer_set`
 * has passed, the L2 thread removes the addresses that are not static and were not hit during that time;
 * swsdk_events_drain() waits for it.
 *
 * @param seconds  0 or more
 * @return 0, or -1 when there is no such initialized unit or seconds is negative
 */
int swsdk_clock_step(int unit, int seconds);

/**
 * Moves a unit's clock like swsdk_clock_step(), but by nanoseconds.
 *
 * @param nanoseconds  how far
 * @return 0, or -1 when there is no such initialized unit
 */
int swsdk_clock_advance(int unit, uint64_t nanoseconds);

/** Waits until all raised events have been delivered, including those that callbacks raise meanwhile, and all time has
 *  passed. Returns at once when it is called from a callback. */
void swsdk_events_drain(void);

#ifdef __cplusplus
}
#endif

#endif
