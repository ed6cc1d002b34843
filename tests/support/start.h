// Brings the virtual chip up for a test.
#pragma once

#include <swsdk/chip.h>

#include <string>

namespace support {

/// A board of `units` chips with `ports` Ethernet ports, attached and initialized, on a chip that was off.
void start_chip(int units = 1, int ports = 12);

/// The same, but `system_init` is still to come.
void attach_chip(int units = 1, int ports = 12);

/// One of a unit's tables as people see it.
std::string table(const char* name, int unit = 0);

}  // namespace support
