// Access to the Chip SDK's information on a unit; no other file reads it.
#pragma once

#include "core/sdk.h"

namespace sai {

/// The port to which the switch's CPU is attached.
int cpu_port(int unit);

/// The unit's chip-type code; -1 when there is no such unit.
int chip_type(int unit);

/// Whether hosts and routes point at egress objects rather than at interfaces.
bool l3_egress_mode(int unit);

/// The port sets of a unit that the library walks.
enum class Ports { ethernet, front };

int lowest_port(int unit, Ports set);
int highest_port(int unit, Ports set);
bool has_port(int unit, Ports set, int port);
/// The whole set, from its bitmap only; empty when there is no such unit.
bcm_pbmp_t ports(int unit, Ports set);

/// Runs `body` for each port of the set in ascending order. Meant: the highest port is read again after each.
template <class Body>
void for_each_port(int unit, Ports set, Body body) {
  const int lowest = lowest_port(unit, set);
  if (lowest < 0) return;
  for (int port = lowest; port <= highest_port(unit, set); ++port)
    if (has_port(unit, set, port)) body(port);
}

}  // namespace sai
