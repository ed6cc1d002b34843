// How the SDK starts, and what it exports for each unit in addition to its functions.
#pragma once

#include <soc/drv.h>
#include <swsdk/board.h>

#include <array>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "chip/chip.h"

namespace api {

/// What the SDK exports about its units.
struct UnitData {
  uint64_t version = 0;  // of changes, so that an older one does not replace a newer one
  swsdk_board board{};
  int attached = 0;
  std::array<int, SOC_MAX_NUM_DEVICES> l3_egress_modes{};  // by unit, of those that are attached
};

/// "units(version, board, attached, modes)", for the clients of this process, and read again.
std::string text_of(const UnitData& data);
UnitData unit_data_of(std::string_view text);

/// What is exported now, and its version.
UnitData present_unit_data();
uint64_t unit_data_version();

/// Exports what the chip's process says. `from_start`: it is another process than before.
void publish(const UnitData& data, bool from_start = false);

/// Clears what is exported of each unit: this process has switched the chips off. `is_gone`: or would have, but the
/// process that has them is gone.
void clear_exported_units(bool is_gone = false);

/// How many units are exported as attached.
int published_units();

/// The board that sdk_main() finds.
swsdk_board present_board();
/// The board of a chip that is switched off and on.
swsdk_board lasting_board();
void choose_board(const swsdk_board& board);
bool is_board(const swsdk_board& board);
/// Makes the present board the one that lasts.
void keep_board();

/// Held while units are attached and detached. Not to be taken by who holds a unit's lock.
extern std::mutex power_lock;

/// Sets the L3 module's record of an attached unit to the egress mode that its switch control sets. The unit is locked.
void publish_egress_mode(int unit);

/// Detaches all units, and clears what is exported for them.
void power_off_units();

struct ReadyUnit {
  bool initialized = false;
  std::unique_ptr<chip::Chip> chip;
};

/// Has these units attached instead of those that are. If the board stays and as many are, their listeners stay.
void replace_units(const swsdk_board& board, std::vector<ReadyUnit> units);

}  // namespace api
