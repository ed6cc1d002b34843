// What `help` prints.
#pragma once

#include "words.h"

namespace saish {

/// What all commands and all of the shell's own go by.
constexpr const char* help_on_all = "all";
constexpr const char* help_on_shell = "shell";

/// An overview; or what the words name, a command or a family; or else the commands that all of them are found in.
/// Throws BadInput when there is none.
void print_help(const Words& words);

}  // namespace saish
