#include <soc/cmic.h>

#include "api/call.h"

using api::hex;
using api::out;
using api::unmodelled;

void soc_linkscan_pause(int unit) { unmodelled(__func__, unit); }

void soc_linkscan_continue(int unit) { unmodelled(__func__, unit); }

int soc_miim_read(int unit, uint32 phy_id, uint8 phy_reg_addr, uint16* phy_rd_data) {
  return unmodelled(__func__, unit, phy_id, phy_reg_addr, out(phy_rd_data));
}

int soc_miim_write(int unit, uint32 phy_id, uint8 phy_reg_addr, uint16 phy_wr_data) {
  return unmodelled(__func__, unit, phy_id, phy_reg_addr, hex(phy_wr_data));
}

int soc_miimc45_read(int unit, uint32 phy_id, uint8 phy_devad, uint16 phy_reg_addr, uint16* phy_rd_data) {
  return unmodelled(__func__, unit, phy_id, phy_devad, phy_reg_addr, out(phy_rd_data));
}

int soc_miimc45_write(int unit, uint32 phy_id, uint8 phy_devad, uint16 phy_reg_addr, uint16 phy_wr_data) {
  return unmodelled(__func__, unit, phy_id, phy_devad, phy_reg_addr, hex(phy_wr_data));
}
