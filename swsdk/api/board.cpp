#include <soc/drv.h>
#include <swsdk/board.h>

#include <optional>
#include <vector>

#include "api/call.h"
#include "api/events.h"
#include "api/kernel_commands.h"
#include "api/recording.h"
#include "api/system.h"

using chip::Chip;

namespace {

constexpr swsdk_board factory_board{.units = 1, .ports = 12, .chip_type = 0};

std::mutex boards_lock;
swsdk_board chosen_board = factory_board;  // guarded by `boards_lock`
swsdk_board kept_board = factory_board;    // the same

chip::PhyRegisters::Key phy_register(int phy, int device, int reg) {
  return {static_cast<uint32_t>(phy), device, static_cast<uint32_t>(reg)};
}

}  // namespace

static_assert(SWSDK_PHY_CLAUSE22 == chip::PhyRegisters::clause22);

swsdk_board api::present_board() {
  const std::lock_guard guard(boards_lock);
  return chosen_board;
}

void api::choose_board(const swsdk_board& board) {
  const std::lock_guard guard(boards_lock);
  chosen_board = board;
}

bool api::is_board(const swsdk_board& board) {
  return board.units >= 0 && board.units <= SOC_MAX_NUM_DEVICES && board.ports >= 1 &&
         board.ports < chip::PortSet::capacity && board.chip_type >= 0;
}

swsdk_board api::lasting_board() {
  const std::lock_guard guard(boards_lock);
  return kept_board;
}

void api::keep_board() {
  const std::lock_guard guard(boards_lock);
  kept_board = chosen_board;
}

void swsdk_board_get(swsdk_board* board) {
  const auto get = [=] {
    *board = api::present_board();
    return 0;
  };
  if (board != nullptr && api::ask(__func__, get, -1, api::out(board)) != 0) *board = {};
}

int swsdk_board_set(const swsdk_board* board) {
  if (board == nullptr || !api::is_board(*board)) return -1;
  const auto set = [=] {
    const std::lock_guard guard(api::power_lock);
    if (api::attached_units() > 0) return -1;
    api::choose_board(*board);
    api::record(api::Kind::action, "swsdk_board_set", 0, {api::in(board)});
    return 0;
  };
  if (api::remote_chip() == nullptr) return set();
  return static_cast<int>(api::call_remote(api::Kind::action, __func__, {api::in(board)}, -1));
}

void swsdk_power_off() {
  if (api::RemoteChip* const chip = api::remote_chip()) {
    chip->power_off();
  } else {
    const std::lock_guard guard(api::power_lock);
    api::stop_event_threads();
    api::power_off_units();
    api::choose_board(api::lasting_board());
    api::clear_faults();
    api::own_journal().record(0);
    api::own_journal().clear();
    api::forget_kernel_commands();
  }
  api::add_power_off_to_recording();
}

int swsdk_starts(int unit) {
  const auto count = [=](const Chip&) { return api::find_unit(unit)->starts; };
  return api::ask_chip(__func__, unit, count, 0);
}

int swsdk_temperatures_set(int unit, const swsdk_temperature* readings, int count) {
  if (count < 0 || count > chip::TemperatureSensors::capacity || (readings == nullptr && count > 0)) return -1;
  std::vector<chip::Temperature> temperatures;
  for (int i = 0; i < count; ++i) temperatures.push_back({readings[i].current, readings[i].peak});
  const auto set = [&](Chip& chip) {
    chip.temperature_sensors.set(temperatures);
    return 0;
  };
  return api::act(__func__, unit, set, api::array(readings, count), count);
}

int swsdk_phy_register_get(int unit, int phy, int device, int reg) {
  const auto read = [&](const Chip& chip) {
    const std::optional<uint16_t> value = chip.phy_registers.read(phy_register(phy, device, reg));
    return value ? int{*value} : -1;
  };
  return api::ask_chip(__func__, unit, read, -1, phy, device, reg);
}

int swsdk_phy_register_set(int unit, int phy, int device, int reg, int value) {
  const auto write = [&](Chip& chip) {
    return api::zero_if_ok(chip.phy_registers.write(phy_register(phy, device, reg), static_cast<uint32_t>(value)));
  };
  return api::act(__func__, unit, write, phy, device, reg, value);
}
