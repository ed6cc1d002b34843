#include "api/system.h"

#include <appl/diag/system.h>
#include <soc/drv.h>

#include <array>

#include "api/call.h"
#include "api/events.h"

int soc_ndev = 0;
soc_control_t* soc_control[SOC_MAX_NUM_DEVICES] = {};

extern "C" {
int sdk_main(int argc, char** argv);

/// Records that the chip's L3 module keeps by unit; bit 0 of the first word is the L3 egress mode.
uint32* l3_module_data[SOC_MAX_NUM_DEVICES] = {};
}

namespace {

std::array<soc_control_t, SOC_MAX_NUM_DEVICES> unit_information;
std::array<uint32, SOC_MAX_NUM_DEVICES> l3_modules;

soc_port_set_t port_set(const chip::PortSet& ports) {
  soc_port_set_t set{};
  set.min = ports.lowest();
  set.max = ports.highest();
  set.bitmap = api::bitmap(ports);
  return set;
}

void attach(int number) {
  const auto index = static_cast<std::size_t>(number);
  chip::Chip& chip = *api::attach_unit(api::present_board.ports).chip;
  chip.mac_table.observe([number](chip::MacTable::Change change, const chip::MacEntry& entry) {
    api::tell_mac_change(number, change, entry);
  });
  l3_modules[index] = 0;
  l3_module_data[index] = &l3_modules[index];
  soc_control[index] = &unit_information[index];
  soc_info_t& info = unit_information[index].info;
  info.cmic_port = chip::Ports::cpu.number();
  info.chip_type = static_cast<decltype(info.chip_type)>(api::present_board.chip_type);
  info.ether = port_set(chip.ports.ethernet());
  info.port = port_set(chip.ports.ethernet());
  info.all = port_set(chip.ports.all());
}

}  // namespace

int sdk_main(int argc, char** argv) {
  return api::call_without_unit(
      __func__,
      [] {
        // A second start finds the units attached and changes nothing.
        while (api::attached_units() < api::present_board.units) attach(api::attached_units());
        soc_ndev = api::attached_units();
        return BCM_E_NONE;
      },
      argc, argv);
}

int system_init(int unit) {
  // After a start, link scan assumes that every link is down, so that it reports those with a cable as up.
  const auto find_links = [&](const chip::Chip& chip) {
    for (const auto& [port, mac] : chip.port_macs.all())
      if (mac.link()) api::tell_link(unit, port.number(), true);
  };
  const auto initialize = [&]() -> int {
    api::Unit* const attached = api::find_unit(unit);
    if (attached == nullptr) return BCM_E_UNIT;
    const std::lock_guard guard(attached->lock);
    attached->chip->reset();
    attached->pipeline->reset();
    attached->initialized = true;
    api::publish_egress_mode(unit);
    find_links(*attached->chip);
    return BCM_E_NONE;
  };
  return api::call_without_unit(__func__, initialize, unit);
}

void api::publish_egress_mode(int unit) {
  const bool is_on = find_unit(unit)->chip->switch_controls.is_on(chip::SwitchControlOfChip::l3_egress_mode);
  l3_modules[static_cast<std::size_t>(unit)] = is_on ? 1 : 0;
}

void api::power_off_units() {
  detach_units();
  soc_ndev = 0;  // for the application to read; attached_units() is what counts
  for (soc_control_t*& control : soc_control) control = nullptr;
  for (uint32*& module : l3_module_data) module = nullptr;
}
