/**
 * @file swsdk/tables.h
 * Shows the chip's tables, and changes them as frames would.
 */
#ifndef SWSDK_TABLES_H
#define SWSDK_TABLES_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Prints one of a unit's tables for people, a line per entry under a line of headings.
 *
 * @param unit    number of an attached unit
 * @param table   one of swsdk_show_table()
 * @param buffer  where to print to; always ended by a zero byte when size is not 0; may be null when size is 0
 * @param size    size of the buffer in bytes; what does not fit is left out
 * @return length of the whole text in bytes, without a zero byte; -1 when there is no such unit or table
 */
long swsdk_show(int unit, const char* table, char* buffer, size_t size);

/**
 * Names the tables that swsdk_show() knows.
 *
 * @return the name of table number `index`, from 0, or null past the last
 */
const char* swsdk_show_table(int index);

/**
 * Lets a unit's chip learn where an address is, as from the source address of a frame that arrived. Known addresses are
 * marked as hit, and move when they came from elsewhere. The callbacks of `bcm_l2_addr_register` are called.
 *
 * @param vid     VLAN of the frame, 1 to 4095
 * @param mac     its source address, 6 bytes
 * @param port    the port where it arrived, or the gport of a virtual one; the address of a frame from a trunk's member
 *                is learned on the trunk
 * @param tunnel  the tunnel it came through; 0 for none
 * @return 1 when the address is in the table for that place now; 0 when it is not: it is a multicast address or all
 *         zeros, has a static entry elsewhere, its VLAN does not exist or does not learn, nor does the port's
 *         spanning-tree state there, a learn limit is reached, or its bucket is full; -1 when there is no such
 *         initialized unit or port, or the VLAN is out of range
 */
int swsdk_l2_learn(int unit, int vid, const unsigned char* mac, int port, unsigned tunnel);

/**
 * Looks an address up in the MAC table, as for the destination address of a frame. While the switch control
 * `bcmSwitchL2DstHitEnable` is on, its entry is marked as hit.
 *
 * @return 1 when there is an entry, 0 when there is none; -1 when there is no such initialized unit, or the VLAN is out
 *         of range
 */
int swsdk_l2_lookup(int unit, int vid, const unsigned char* mac);

/**
 * Marks a host of layer 3 as used, as by frames that it sent or that went to it.
 *
 * @param address  the host's IPv4 address, in host byte order
 * @param hits     bits of `BCM_L3_HIT` to set: 0x4 as a source, 0x8 as a destination; other bits are ignored
 * @return 0, or -1 when there is no such initialized unit or host
 */
int swsdk_l3_host_hit(int unit, unsigned address, unsigned hits);

/**
 * Marks a route of layer 3 as used.
 *
 * @param subnet  the route's IPv4 subnet, in host byte order
 * @param mask    the route's mask, in host byte order
 * @param hits    as for swsdk_l3_host_hit()
 * @return 0, or -1 when there is no such initialized unit or route
 */
int swsdk_l3_route_hit(int unit, unsigned subnet, unsigned mask, unsigned hits);

/**
 * Sets one of a port's counters, as frames do.
 *
 * @param port   an Ethernet port or the CPU port
 * @param stat   number of the statistic, a `bcm_stat_val_t`
 * @return 0, or -1 when there is no such initialized unit, port or statistic
 */
int swsdk_counter_set(int unit, int port, int stat, unsigned long long value);

#ifdef __cplusplus
}
#endif

#endif
