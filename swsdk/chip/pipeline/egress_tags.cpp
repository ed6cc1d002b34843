#include "chip/chip.h"
#include "chip/pipeline/stages.h"

namespace chip {

void make_egress_tags(Passage& frame, const Copy& copy, EgressHeader& header) {
  const auto vlan = frame.chip.vlans.all().find(header.vlan());
  if (vlan != frame.chip.vlans.all().end() && vlan->second.untagged.contains(copy.port)) header.outer_tag.reset();
}

}  // namespace chip
