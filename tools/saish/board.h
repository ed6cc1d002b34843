// The board that the chip is on: chosen before the chip starts.
#pragma once

#include <string>

namespace saish {

/// The description of --board in a program's help.
constexpr const char* board_help =
    "the chips to start with, such as ports=64 or ports=24,units=2,chip_type=5; ports=12 and one unit otherwise";

/// Sets a board such as "ports=64" or "ports=24,units=2"; what is not named is unchanged. Throws BadInput.
void set_board(const std::string& text);

/// The present board, as set_board() takes it.
std::string board_text();

}  // namespace saish
