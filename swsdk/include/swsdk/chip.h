/**
 * @file swsdk/chip.h
 * The virtual chip itself: what is on the board before the SDK starts, and a look at the chip's tables.
 *
 * The chip starts as the real one does: `sdk_main` attaches the units, `system_init` initialises one. Before the first
 * a call answers `BCM_E_UNIT`, before the second `BCM_E_INIT`.
 */
#ifndef SWSDK_CHIP_H
#define SWSDK_CHIP_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

/** The board: what `sdk_main` finds. */
typedef struct swsdk_board {
  int units;     /**< number of chips, 0 to 16; 1 at load */
  int ports;     /**< Ethernet ports of each chip, numbered from 1, 1 to 255; 12 at load */
  int chip_type; /**< chip-type code of each chip, 0 or more; 0 at load */
} swsdk_board;

/** Reads the board. */
void swsdk_board_get(swsdk_board* board);

/**
 * Changes the board. Possible only while no unit is attached.
 *
 * @return 0; -1 when board is null, a field is outside its range or units are attached, and nothing is changed
 */
int swsdk_board_set(const swsdk_board* board);

/** Switches the chips off: detaches all units and forgets their tables, the board, the journal, all faults and pending
 *  events; a callback that is running is waited for. No SDK call may be running or follow until `sdk_main`. Not to be
 *  called from a callback. */
void swsdk_power_off(void);

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
 * Puts a link up or down, as plugging a cable does: the link scan thread calls the handlers of `bcm_linkscan_register`.
 * While link scanning is paused or disabled nobody is told; the link changes all the same. A cable outlives
 * `system_init`: the link is up again after it, and the handlers are told.
 *
 * @param port  an Ethernet port
 * @param up    non-zero: the link went up; 0: it went down
 * @return 0, or -1 when there is no such initialised unit or port
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
 * Lets a unit's chip learn where an address is, as from the source address of a frame that came in. Known addresses are
 * marked as hit, and move when they came from elsewhere. The listeners of `bcm_l2_addr_register` are told.
 *
 * @param vid     VLAN of the frame, 1 to 4095
 * @param mac     its source address, 6 bytes
 * @param port    the port where it came in, or the gport of a virtual one; the address of a frame from a trunk's member
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
 * @return 1 when there is an entry, 0 when there is none; -1 when there is no such initialised unit, or the VLAN is out
 *         of range
 */
int swsdk_l2_lookup(int unit, int vid, const unsigned char* mac);

/**
 * Lets time pass on a unit's chip, whose clock stands still otherwise. Each time the age time of `bcm_l2_age_timer_set`
 * has passed, the L2 thread removes the addresses that are not static and were not hit since the time before;
 * swsdk_events_drain() waits for it.
 *
 * @param seconds  0 or more
 * @return 0, or -1 when there is no such initialised unit or seconds is negative
 */
int swsdk_clock_step(int unit, int seconds);

/**
 * Marks a host of layer 3 as used, as by frames that it sent or that went to it.
 *
 * @param address  the host's IPv4 address, in host byte order
 * @param hits     bits of `BCM_L3_HIT` to set: 0x4 as a source, 0x8 as a destination; other bits are left out
 * @return 0, or -1 when there is no such initialised unit or host
 */
int swsdk_l3_host_hit(int unit, unsigned address, unsigned hits);

/**
 * Marks a route of layer 3 as used.
 *
 * @param subnet  the route's IPv4 subnet, in host byte order
 * @param mask    the route's mask
 * @param hits    as for swsdk_l3_host_hit()
 * @return 0, or -1 when there is no such initialised unit or route
 */
int swsdk_l3_route_hit(int unit, unsigned subnet, unsigned mask, unsigned hits);

/** Waits until all events that were raised have been told, those that callbacks raise meanwhile too, and all time has
 *  passed. Returns at once when it is called from a callback. */
void swsdk_events_drain(void);

/**
 * Sets one of a port's counters, as frames do.
 *
 * @param port   an Ethernet port or the CPU port
 * @param stat   number of the statistic, a `bcm_stat_val_t`
 * @return 0, or -1 when there is no such initialised unit, port or statistic
 */
int swsdk_counter_set(int unit, int port, int stat, unsigned long long value);

/** A reading of a temperature sensor, in tenths of a degree Celsius. */
typedef struct swsdk_temperature {
  int current; /**< now */
  int peak;    /**< the highest so far */
} swsdk_temperature;

/**
 * Sets the readings of all temperature sensors of a chip, and with them how many sensors it has; 2 at load. They
 * outlive `system_init`.
 *
 * @param readings  the readings in the sensors' order; may be null when count is 0
 * @param count     how many, 0 to 256
 * @return 0, or -1 when there is no such initialised unit or the count is out of range, and nothing is changed
 */
int swsdk_temperatures_set(int unit, const swsdk_temperature* readings, int count);

/** In place of a device: the register is one of clause 22. */
#define SWSDK_PHY_CLAUSE22 (-1)

/**
 * Reads a register of a PHY on the management bus. The PHY of an Ethernet port has the port's number; a register that
 * nobody wrote is 0.
 *
 * @param phy     address of the PHY, 0 to 255
 * @param device  its device by clause 45, 0 to 31, or `SWSDK_PHY_CLAUSE22`
 * @param reg     number of the register, 0 to 65535, by clause 22 to 31
 * @return the value, or -1 when there is no such initialised unit or register
 */
int swsdk_phy_register_get(int unit, int phy, int device, int reg);

/**
 * Sets a register of a PHY, of which the rest is as for swsdk_phy_register_get().
 *
 * @param value  0 to 65535
 * @return 0, or -1 when there is no such initialised unit or register or the value is out of range
 */
int swsdk_phy_register_set(int unit, int phy, int device, int reg, int value);

/**
 * Reads a command that was sent to the kernel module by `soc_knet_cmd_req`. The last 64 are kept.
 *
 * @param index   0 for the newest, 1 for the one before it, and so on
 * @param buffer  where to copy its bytes to; may be null when size is 0
 * @param size    size of the buffer in bytes; what does not fit is left out
 * @return length of the command in bytes, or 0 when there is none of that index
 */
size_t swsdk_kernel_command(int index, void* buffer, size_t size);

#ifdef __cplusplus
}
#endif

#endif
