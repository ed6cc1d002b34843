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

/// What became of a source.
enum class Learned {
  present,       // the table had it in this place
  added,         // the table has it in this place now
  no_host,       // a group's address, or all zeros
  not_learning,  // its VLAN or the state or setting of its port has the table left alone
  fixed,         // a fixed entry has it elsewhere
  limited,       // one too many
  full,          // its bucket has no room
};
inline bool is_in_place(Learned learned) { return learned == Learned::present || learned == Learned::added; }

Learned learn(Chip& chip, const Source& source);
/// The same, by who has looked up already what the table has of the source: `present`, or null.
Learned learn(Chip& chip, const Source& source, const MacEntry* present);

/// What a limit that keeps a source out has done with its frames: actions of LearnLimit.
uint32_t actions_beyond_limit(const Chip& chip, const Source& source);

/// The entry of a destination, which is marked as hit when the chip does so; or null.
const MacEntry* look_up(Chip& chip, int vlan, const Mac& mac);

}  // namespace chip
