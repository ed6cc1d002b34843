#include "api/units.h"

#include <appl/diag/system.h>
#include <soc/drv.h>
#include <swsdk/chip.h>
#include <swsdk/fault.h>
#include <swsdk/journal.h>

#include <array>
#include <string>

#include "api/call.h"
#include "api/events.h"
#include "api/kernel_commands.h"
#include "api/show.h"

int soc_ndev = 0;
soc_control_t* soc_control[SOC_MAX_NUM_DEVICES] = {};

extern "C" {
int sdk_main(int argc, char** argv);

/// Records that the chip's L3 module keeps by unit; bit 0 of the first word is the L3 egress mode.
uint32* l3_module_data[SOC_MAX_NUM_DEVICES] = {};
}

namespace {

constexpr swsdk_board factory_board{.units = 1, .ports = 12, .chip_type = 0};

swsdk_board present_board = factory_board;
std::array<api::Unit, SOC_MAX_NUM_DEVICES> units;
std::array<soc_control_t, SOC_MAX_NUM_DEVICES> unit_information;
std::array<uint32, SOC_MAX_NUM_DEVICES> l3_modules;
int attached_units = 0;  // soc_ndev is the application's to read; this one decides

soc_port_set_t port_set(const chip::PortSet& ports) {
  soc_port_set_t set{};
  set.min = ports.lowest();
  set.max = ports.highest();
  set.bitmap = api::bitmap(ports);
  return set;
}

void attach(std::size_t unit) {
  chip::Chip& chip = units[unit].chip.emplace(present_board.ports);
  chip.mac_table.observe([unit](chip::MacTable::Change change, const chip::MacEntry& entry) {
    api::tell_mac_change(static_cast<int>(unit), change, entry);
  });
  units[unit].pipeline.emplace(chip);
  units[unit].initialised = false;
  l3_modules[unit] = 0;
  l3_module_data[unit] = &l3_modules[unit];
  soc_control[unit] = &unit_information[unit];
  soc_info_t& info = unit_information[unit].info;
  info.cmic_port = chip::Ports::cpu;
  info.chip_type = static_cast<decltype(info.chip_type)>(present_board.chip_type);
  info.ether = port_set(chip.ports.ethernet());
  info.port = port_set(chip.ports.ethernet());
  info.all = port_set(chip.ports.all());
}

}  // namespace

api::Unit* api::find_unit(int unit) {
  return unit >= 0 && unit < attached_units ? &units[static_cast<std::size_t>(unit)] : nullptr;
}

int sdk_main(int argc, char** argv) {
  return api::call_without_unit(
      __func__,
      [] {
        // A second start finds the units attached and leaves them alone.
        for (; attached_units < present_board.units; ++attached_units) attach(static_cast<std::size_t>(attached_units));
        soc_ndev = attached_units;
        return BCM_E_NONE;
      },
      argc, argv);
}

void api::publish_egress_mode(int unit) {
  int mode = 0;
  const auto index = static_cast<std::size_t>(unit);
  units[index].chip->switch_controls.get(static_cast<int>(chip::SwitchControl::l3_egress_mode), mode);
  l3_modules[index] = mode != 0 ? 1 : 0;
}

int system_init(int unit) {
  // After a start the link scan takes every link to be down, so that it finds those up that have a cable.
  const auto find_links = [&](const chip::Chip& chip) {
    for (const auto& [port, mac] : chip.port_macs.all())
      if (mac.link()) api::tell_link(unit, port, true);
  };
  const auto initialise = [&]() -> int {
    api::Unit* const attached = api::find_unit(unit);
    if (attached == nullptr) return BCM_E_UNIT;
    const std::lock_guard guard(attached->lock);
    attached->chip->reset();
    attached->pipeline->reset();
    attached->initialised = true;
    api::publish_egress_mode(unit);
    find_links(*attached->chip);
    return BCM_E_NONE;
  };
  return api::call_without_unit(__func__, initialise, unit);
}

void swsdk_board_get(swsdk_board* board) { *board = present_board; }

int swsdk_board_set(const swsdk_board* board) {
  if (board == nullptr) return -1;
  const bool fits = board->units >= 0 && board->units <= SOC_MAX_NUM_DEVICES && board->ports >= 1 &&
                    board->ports < chip::PortSet::capacity && board->chip_type >= 0;
  if (!fits || attached_units > 0) return -1;
  present_board = *board;
  api::record(api::Kind::action, __func__, 0, {api::in(board)});
  return 0;
}

void swsdk_power_off() {
  api::stop_event_threads();
  soc_ndev = 0;
  attached_units = 0;
  for (api::Unit& unit : units) {
    unit.pipeline.reset();
    unit.chip.reset();
    unit.frame_handler = {};
    unit.initialised = false;
    unit.link_listeners.clear();
    unit.l2_listeners.clear();
  }
  for (soc_control_t*& control : soc_control) control = nullptr;
  for (uint32*& module : l3_module_data) module = nullptr;
  present_board = factory_board;
  swsdk_fault_clear();
  swsdk_journal_record(0);
  swsdk_journal_clear();
  api::forget_kernel_commands();
  api::add_power_off_to_recording();
}

long swsdk_show(int unit, const char* table, char* buffer, size_t size) {
  api::Unit* const attached = api::find_unit(unit);
  if (attached == nullptr || table == nullptr) return -1;
  const std::lock_guard guard(attached->lock);
  const std::optional<std::string> shown = api::show(*attached->chip, table);
  return shown ? static_cast<long>(api::copy_out(*shown, buffer, size)) : -1;
}
