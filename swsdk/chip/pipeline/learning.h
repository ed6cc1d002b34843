// What frames do to the MAC table: sources are learned, destinations looked up.
#pragma once

#include <cstdint>
#include <vector>

#include "chip/mac_table.h"

namespace chip {

struct Chip;

/// Where a frame came from.
struct Source {
  Mac mac;
  uint16_t vlan;
  Place place;  // a port, or a virtual one
  uint32_t tunnel = 0;
};

/// The result of learning.
enum class Learned {
  present,       // the table had it in this place
  added,         // the table has it in this place now
  no_host,       // a multicast address, or all zeros
  not_learning,  // its VLAN, or the setting or spanning-tree state of its port, does not learn
  fixed,         // a fixed entry has it elsewhere
  limited,       // over a limit
  full,          // its bucket is full
};
inline bool is_in_place(Learned learned) { return learned == Learned::present || learned == Learned::added; }

Learned learn(Chip& chip, const Source& source);
/// The same for a caller that has already looked up the source's entry: `present`, or null.
Learned learn(Chip& chip, const Source& source, const MacEntry* present);

/// Whether learning would change nothing, because the table has the source in this place.
bool is_known(const Chip& chip, const Source& source);

/// The actions (of LearnLimit) for frames of a source that a limit keeps out of the table.
uint32_t actions_beyond_limit(const Chip& chip, const Source& source);

/// The scopes of those limits.
std::vector<MacScope> limits_exceeded(const Chip& chip, const Source& source);

/// The entry of a destination, or null. It is marked as hit if the chip is configured to.
const MacEntry* look_up(Chip& chip, int vlan, const Mac& mac);

}  // namespace chip
