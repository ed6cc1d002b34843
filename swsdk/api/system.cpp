#include "api/system.h"

#include <appl/diag/system.h>
#include <soc/drv.h>

#include <array>
#include <atomic>

#include "api/call.h"
#include "api/events.h"

int soc_ndev = 0;
soc_control_t* soc_control[SOC_MAX_NUM_DEVICES] = {};

extern "C" {
int sdk_main(int argc, char** argv);

/// Records that the chip's L3 module keeps by unit; bit 0 of the first word is the L3 egress mode.
uint32* l3_module_data[SOC_MAX_NUM_DEVICES] = {};
}

std::mutex api::power_lock;

namespace {

std::array<soc_control_t, SOC_MAX_NUM_DEVICES> unit_information;
std::array<uint32, SOC_MAX_NUM_DEVICES> l3_modules;

std::mutex data_lock;
std::atomic<uint64_t> exported_version = 0;
api::UnitData exported;  // guarded by `data_lock`, as is changing what is exported
bool cleared = true;     // that of all units; the same

soc_port_set_t port_set(const chip::PortSet& ports) {
  soc_port_set_t set{};
  set.min = ports.lowest();
  set.max = ports.highest();
  set.bitmap = api::bitmap(ports);
  return set;
}

/// Writes it atomically: in the client of a chip, another thread than the application's may change it.
template <class T>
void set(T& place, T value) {
  if (place != value) __atomic_store_n(&place, value, __ATOMIC_RELEASE);
}

void export_unit(std::size_t unit, const swsdk_board& board) {
  const chip::Ports ports(board.ports);
  soc_info_t info{};
  info.cmic_port = chip::Ports::cpu.number();
  info.chip_type = static_cast<decltype(info.chip_type)>(board.chip_type);
  info.ether = port_set(ports.ethernet());
  info.port = port_set(ports.ethernet());
  info.all = port_set(ports.all());
  unit_information[unit].info = info;
  set(l3_module_data[unit], &l3_modules[unit]);
  set(soc_control[unit], &unit_information[unit]);
}

/// What is exported of a unit that stays is not written again: the application may have changed it, or be reading it.
/// Nor is it cleared when the unit is switched off, since another process may have done that.
void replace_exported(const api::UnitData& data) {
  const bool same_board = data.board.ports == exported.board.ports && data.board.chip_type == exported.board.chip_type;
  for (std::size_t unit = 0; unit < static_cast<std::size_t>(data.attached); ++unit) {
    set(l3_modules[unit], uint32{data.l3_egress_modes[unit] != 0 ? 1U : 0U});
    if (cleared || !same_board || static_cast<int>(unit) >= exported.attached) export_unit(unit, data.board);
  }
  cleared = cleared && data.attached == 0;
  set(soc_ndev, data.attached);
  exported = data;
}

/// Exports the data that `change` changes, and tells the clients.
template <class Change>
void export_changed(Change change) {
  std::string text;
  {
    const std::lock_guard guard(data_lock);
    api::UnitData data = exported;
    change(data);
    ++data.version;
    replace_exported(data);
    exported_version = data.version;
    text = api::text_of(data);
  }
  // The client that causes it hears of it with its answer.
  api::for_each_caller([&](api::Caller& caller) {
    if (&caller != api::present_caller().get()) caller.tell(text);
  });
}

void tell_mac_changes(int number, chip::Chip& chip) {
  chip.mac_table.observe([number](chip::MacTable::Change change, const chip::MacEntry& entry) {
    api::tell_mac_change(number, change, entry);
  });
}

}  // namespace

std::string api::text_of(const UnitData& data) {
  return call_text("units",
                   {data.version, in(&data.board), data.attached, array(data.l3_egress_modes.data(), data.attached)},
                   Form::wire, 0);
}

api::UnitData api::unit_data_of(std::string_view text) {
  UnitData data;
  const std::vector<std::string_view> given = items(text.substr(std::min(text.find('('), text.size())), '(', ')');
  if (given.size() != 4) throw Unreadable(text, "description of units");
  parse_value(given[0], data.version);
  parse_value(given[1], data.board);
  parse_value(given[2], data.attached);
  parse_items(given[3], data.l3_egress_modes.data(), data.l3_egress_modes.size());
  const bool fits = data.attached >= 0 && data.attached <= SOC_MAX_NUM_DEVICES && data.board.ports >= 1 &&
                    data.board.ports < chip::PortSet::capacity;
  if (!fits) throw Unreadable(text, "description of units of this SDK");
  return data;
}

api::UnitData api::present_unit_data() {
  const std::lock_guard guard(data_lock);
  UnitData data = exported;
  if (data.attached == 0) data.board = present_board();
  return data;
}

uint64_t api::unit_data_version() { return exported_version.load(std::memory_order_acquire); }

void api::publish(const UnitData& data, bool from_start) {
  const std::lock_guard guard(data_lock);
  if (data.version <= exported.version && !from_start) return;
  replace_exported(data);
}

int api::published_units() {
  const std::lock_guard guard(data_lock);
  return exported.attached;
}

int sdk_main(int argc, char** argv) {
  if (api::RemoteChip* const chip = api::remote_chip()) chip->look_again();
  return api::call_without_unit(calls::sdk_main(argc, argv), [] {
    const std::lock_guard guard(api::power_lock);
    const swsdk_board board = api::present_board();
    // A second start finds the units attached and changes nothing.
    for (int unit = api::attached_units(); unit < board.units; ++unit)
      tell_mac_changes(unit, *api::attach_unit(std::make_unique<chip::Chip>(board.ports)).chip);
    export_changed([&](api::UnitData& data) {
      data.board = board;
      data.attached = api::attached_units();
    });
    return BCM_E_NONE;
  });
}

int system_init(int unit) {
  const auto initialize = [&]() -> int {
    api::Unit* const attached = api::find_unit(unit);
    if (attached == nullptr) return BCM_E_UNIT;
    const std::lock_guard guard(attached->lock);
    if (!attached->chip) return BCM_E_UNIT;
    attached->chip->reset();
    attached->initialized = true;
    api::publish_egress_mode(unit);
    api::tell_links(unit, *attached->chip);
    return BCM_E_NONE;
  };
  return api::call_without_unit(calls::system_init(unit), initialize);
}

void api::publish_egress_mode(int unit) {
  const auto index = static_cast<std::size_t>(unit);
  const bool is_on = find_unit(unit)->chip->switch_controls.is_on(chip::SwitchControlOfChip::l3_egress_mode);
  {
    const std::lock_guard guard(data_lock);
    if (static_cast<int>(index) >= exported.attached || (exported.l3_egress_modes[index] != 0) == is_on) return;
  }
  export_changed([&](UnitData& data) { data.l3_egress_modes[index] = is_on ? 1 : 0; });
}

void api::power_off_units() {
  detach_units();
  export_changed([](UnitData& data) {
    data.board = lasting_board();
    data.attached = 0;
    data.l3_egress_modes = {};
  });
  // What a client switches off stays readable in the process of the chip, as in those of other clients.
  if (present_caller() == nullptr) clear_exported_units();
}

void api::replace_units(const swsdk_board& board, std::vector<ReadyUnit> units) {
  const std::lock_guard guard(power_lock);
  const swsdk_board present = present_board();
  const bool stay_on = board.units == present.units && board.ports == present.ports &&
                       board.chip_type == present.chip_type && static_cast<int>(units.size()) == attached_units();
  if (!stay_on) power_off_units();
  choose_board(board);
  UnitData data{.board = board, .attached = static_cast<int>(units.size())};
  for (std::size_t number = 0; number < units.size(); ++number) {
    ReadyUnit& ready = units[number];
    const int unit_number = static_cast<int>(number);
    tell_mac_changes(unit_number, *ready.chip);
    const auto& controls = ready.chip->switch_controls;
    data.l3_egress_modes[number] = controls.is_on(chip::SwitchControlOfChip::l3_egress_mode) ? 1 : 0;
    Unit& unit = stay_on ? *find_unit(unit_number) : attach_unit(std::move(ready.chip));
    const std::lock_guard unit_guard(unit.lock);
    if (stay_on) set_chip(unit, std::move(ready.chip));
    unit.initialized = ready.initialized;
  }
  export_changed([&](UnitData& exported_data) {
    data.version = exported_data.version;
    exported_data = data;
  });
}

void api::clear_exported_units(bool is_gone) {
  const std::lock_guard guard(data_lock);
  if (is_gone) exported.attached = 0;
  if (exported.attached > 0) return;  // another process has switched them on again
  set(soc_ndev, 0);
  for (soc_control_t*& control : soc_control) control = nullptr;
  for (uint32*& module : l3_module_data) module = nullptr;
  cleared = true;
}
