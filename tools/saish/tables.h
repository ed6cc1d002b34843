// All tables of the chip as people see them, and how those that a script would leave differ from those that are there.
#pragma once

#include <string>
#include <vector>

namespace saish {

struct Table {
  std::string title;  // its name, and the unit where there are several
  std::vector<std::string> lines;
};

/// Of all units.
std::vector<Table> tables();

/// One text, as the process that runs a script on a fresh chip hands it over.
std::string text(const std::vector<Table>& tables);

/// Prints in which tables the chip differs from one on which only the script ran, in a process of its own. Throws
/// Unexpected when it differs, BadInput when the script fails there.
void compare_with(const std::string& script);

/// Prints the lines that only one of the two has: "-" intended, "+" there. How many they are.
int print_differences(const std::vector<Table>& intended, const std::vector<Table>& actual);

}  // namespace saish
