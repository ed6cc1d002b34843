#include <soc/cmic.h>

#include "api/call.h"
#include "api/convert.h"
#include "api/events.h"

using api::Call;
using api::hex;
using api::out;
using chip::Chip;
using chip::PhyRegisters;
using chip::Status;

void soc_linkscan_pause(int unit) {
  Call(calls::soc_linkscan_pause(unit)).answer([](Chip& chip) {
    chip.link_scan.pause();
    return Status::ok;
  });
}

void soc_linkscan_continue(int unit) {
  Call(calls::soc_linkscan_continue(unit)).answer([&](Chip& chip) {
    chip.link_scan.resume();
    api::tell_links(unit, chip);
    return Status::ok;
  });
}

int soc_miim_read(int unit, uint32 phy_id, uint8 phy_reg_addr, uint16* phy_rd_data) {
  return Call(calls::soc_miim_read(unit, phy_id, phy_reg_addr, phy_rd_data)).answer([&](Chip& chip) {
    const PhyRegisters::Key key{phy_id, PhyRegisters::clause22, phy_reg_addr};
    return api::tell(chip.phy_registers.read(key), Status::bad_parameter, *phy_rd_data);
  });
}

int soc_miim_write(int unit, uint32 phy_id, uint8 phy_reg_addr, uint16 phy_wr_data) {
  return Call(calls::soc_miim_write(unit, phy_id, phy_reg_addr, phy_wr_data)).answer([&](Chip& chip) {
    return chip.phy_registers.write({phy_id, PhyRegisters::clause22, phy_reg_addr}, phy_wr_data);
  });
}

int soc_miimc45_read(int unit, uint32 phy_id, uint8 phy_devad, uint16 phy_reg_addr, uint16* phy_rd_data) {
  return Call(calls::soc_miimc45_read(unit, phy_id, phy_devad, phy_reg_addr, phy_rd_data)).answer([&](Chip& chip) {
    const PhyRegisters::Key key{phy_id, phy_devad, phy_reg_addr};
    return api::tell(chip.phy_registers.read(key), Status::bad_parameter, *phy_rd_data);
  });
}

int soc_miimc45_write(int unit, uint32 phy_id, uint8 phy_devad, uint16 phy_reg_addr, uint16 phy_wr_data) {
  return Call(calls::soc_miimc45_write(unit, phy_id, phy_devad, phy_reg_addr, phy_wr_data)).answer([&](Chip& chip) {
    return chip.phy_registers.write({phy_id, phy_devad, phy_reg_addr}, phy_wr_data);
  });
}
