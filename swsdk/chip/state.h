// The state of a chip as bytes.
#pragma once

#include <iosfwd>
#include <string>

#include "chip/chip.h"

namespace chip {

/// Everything on which depends what the chip does next: tables, settings, counters, meters, the clock, cables and
/// sensors, with the calls that made the entries.
std::string state_of(const Chip& chip);

/// Puts it into a new chip with as many ports. Throws std::exception when the bytes are no such state; the chip is of
/// no use then.
void load_state(const std::string& state, Chip& chip);

}  // namespace chip
