// What the program says.
#pragma once

#include <string>

namespace vswitch {

/// Prints a line of the program's own on standard error, after what was printed before.
void tell(const std::string& line);

}  // namespace vswitch
