// All tables of the chip as text, and how they differ from the tables that a script would leave.
#pragma once

#include <string>
#include <vector>

namespace saish {

struct Table {
  std::string title;  // its name, and the unit where there are several
  std::vector<std::string> lines;
};

/// One of the chip's tables as text. Throws BadInput when there is no such unit.
std::string shown_table(int unit, const std::string& table);

/// What swsdk_check() prints of an initialized unit.
std::string leftovers(int unit);

/// Of all units.
std::vector<Table> tables();

/// Runs the scripts silently on a fresh chip, and prints all tables that they leave. Throws as Session::run_script, and
/// BadInput when the tables cannot be printed. Every program that compares tables does this after --tables.
void print_tables_after(const std::vector<std::string>& scripts);

/// Prints in which tables the chip differs from one on which only the script ran, in a process of its own: on the same
/// board, with the same links. Counters are left out, because frames change them and scripts do not. Throws Unexpected
/// when the chip differs, BadInput when the script fails there.
void compare_with(const std::string& script);

/// Prints in which tables the chip differs from a saved state; throws likewise.
void compare_with_state(const std::string& path);

/// Prints the lines that only one of the two has: "-" intended, "+" there. Returns their number.
int print_differences(const std::vector<Table>& intended, const std::vector<Table>& actual);

}  // namespace saish
