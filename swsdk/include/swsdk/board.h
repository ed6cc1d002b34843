/**
 * @file swsdk/board.h
 * The board around the chips: how many there are, what their sensors read, and the PHYs on the management bus.
 *
 * A chip starts as the real one does: `sdk_main` attaches the units, `system_init` initializes one. Before the first, a
 * call returns `BCM_E_UNIT`; before the second, `BCM_E_INIT`.
 */
#ifndef SWSDK_BOARD_H
#define SWSDK_BOARD_H

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

/**
 * Switches the chips off: detaches all units and forgets their tables, the board, the journal, all faults and pending
 * events, and waits for a callback that is running. Calls that are running end first; later ones return `BCM_E_UNIT`
 * until `sdk_main`. What the SDK exports of the units is not to be read meanwhile. Not to be called from a callback.
 */
void swsdk_power_off(void);

/**
 * Tells how often a unit was switched on since its process began. With another number than before it is a new chip,
 * whose links have to be set again.
 *
 * @return the number, from 1; 0 when there is no such initialized unit
 */
int swsdk_starts(int unit);

/** A reading of a temperature sensor, in tenths of a degree Celsius. */
typedef struct swsdk_temperature {
  int current; /**< now */
  int peak;    /**< the highest so far */
} swsdk_temperature;

/**
 * Sets the readings of all temperature sensors of a chip, and thereby the number of sensors, 2 at load. They
 * outlive `system_init`.
 *
 * @param readings  the readings in the sensors' order; may be null when count is 0
 * @param count     how many, 0 to 256
 * @return 0, or -1 when there is no such initialized unit or the count is out of range, and nothing is changed
 */
int swsdk_temperatures_set(int unit, const swsdk_temperature* readings, int count);

/** In place of a device: the register is one of clause 22. */
#define SWSDK_PHY_CLAUSE22 (-1)

/**
 * Reads a register of a PHY on the management bus. The PHY of an Ethernet port has the port's number; a register that
 * was never written is 0.
 *
 * @param phy     address of the PHY, 0 to 255
 * @param device  its device by clause 45, 0 to 31, or `SWSDK_PHY_CLAUSE22`
 * @param reg     number of the register, 0 to 65535, by clause 22 to 31
 * @return the value, or -1 when there is no such initialized unit or register
 */
int swsdk_phy_register_get(int unit, int phy, int device, int reg);

/**
 * Sets a register of a PHY. The other arguments are those of swsdk_phy_register_get().
 *
 * @param value  0 to 65535
 * @return 0, or -1 when there is no such initialized unit or register or the value is out of range
 */
int swsdk_phy_register_set(int unit, int phy, int device, int reg, int value);

#ifdef __cplusplus
}
#endif

#endif
