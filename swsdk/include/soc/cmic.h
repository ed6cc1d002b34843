/**
 * @file soc/cmic.h
 * Link scanning and the PHY registers, below the public API.
 */
#ifndef SOC_CMIC_H
#define SOC_CMIC_H

#include <bcm/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Pauses link scanning until soc_linkscan_continue(). */
void soc_linkscan_pause(int unit);

void soc_linkscan_continue(int unit);

/** Reads a register by clause 22. */
int soc_miim_read(int unit, uint32 phy_id, uint8 phy_reg_addr, uint16* phy_rd_data);

int soc_miim_write(int unit, uint32 phy_id, uint8 phy_reg_addr, uint16 phy_wr_data);

/** Reads a register of device phy_devad by clause 45. */
int soc_miimc45_read(int unit, uint32 phy_id, uint8 phy_devad, uint16 phy_reg_addr, uint16* phy_rd_data);

int soc_miimc45_write(int unit, uint32 phy_id, uint8 phy_devad, uint16 phy_reg_addr, uint16 phy_wr_data);

#ifdef __cplusplus
}
#endif

#endif
