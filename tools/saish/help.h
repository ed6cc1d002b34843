// What `help` prints.
#pragma once

#include <string>

#include "words.h"

namespace saish {

/// The names for all commands and for all of the shell's own.
constexpr const char* help_on_all = "all";
constexpr const char* help_on_shell = "shell";

/// An overview; or the command or family that the words name; or else the commands in which all the words are found.
/// Throws BadInput when there is none. `tables` are the names that `show` takes.
void print_help(const Words& words, const std::string& tables);

}  // namespace saish
