// What frames do to the MAC table: sources are learned, destinations looked up.
#pragma once

#include "chip/chip.h"

namespace chip {

/// Where a frame came from.
struct Source {
  Mac mac;
  uint16_t vlan;
  int port;  // a port, or the gport of a virtual one
  uint32_t tunnel = 0;
};

/// Whether the table has the source in its place afterwards.
bool learn(Chip& chip, const Source& source);

/// The entry of a destination, which is marked as hit when the chip does so; or null.
const MacEntry* look_up(Chip& chip, int vlan, const Mac& mac);

}  // namespace chip
