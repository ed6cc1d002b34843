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
 * In the table "field", the column "installed" is "changed since" where an entry was changed after its installation:
 * frames still meet it as it was, until it is installed again. "hits" is what swsdk_field_hits() tells.
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
 * Prints what calls have left on a unit's chip and nothing uses, a line each, and below it the call that made it what
 * it is:
 *
 *     egress object 100001 is used by no host and no route
 *       call 208: bcm_l3_egress_create(0, 0, {intf=1, mac_addr=02:00:00:00:00:0c, port=3}, &100001) = 0
 *
 * A VLAN (other than the default one) without members, a spanning-tree group without VLANs, a trunk without members, a
 * mirror destination without sources; a virtual port in no VLAN, and tags at egress or a membership of one that is
 * gone; a multicast group that no route or VLAN uses; an L3 interface that nothing refers to and that no frame can
 * reach, because its VLAN has no ports or it was made for multicast; an egress object that no host and no route uses; a
 * field group that is not enabled, a field entry that is not installed, a policer that is attached to nothing.
 *
 * What may wait for its use is not among them: multicast groups for floods, field groups without entries, L3 interfaces
 * of VLANs with ports.
 *
 * @param unit    number of an initialized unit
 * @param buffer  where to print to; always ended by a zero byte when size is not 0; may be null when size is 0
 * @param size    size of the buffer in bytes; what does not fit is left out
 * @return length of the whole text in bytes, without a zero byte: 0 when nothing is left; -1 when there is no such
 *         initialized unit
 */
long swsdk_check(int unit, char* buffer, size_t size);

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
 *         zeros, has a static entry elsewhere, its VLAN does not exist or does not learn, nor does the port or its
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
