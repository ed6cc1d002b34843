// How the SDK starts, and what it exports for each unit in addition to its functions.
#pragma once

#include <swsdk/board.h>

namespace api {

/// What sdk_main() finds.
extern swsdk_board present_board;

/// Sets the L3 module's record of an attached unit to the egress mode that its switch control sets.
void publish_egress_mode(int unit);

/// Detaches all units, and clears what is exported for them.
void power_off_units();

}  // namespace api
