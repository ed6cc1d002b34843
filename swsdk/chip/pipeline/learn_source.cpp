#include "chip/chip.h"
#include "chip/learning.h"
#include "chip/pipeline/stages.h"

namespace chip {

void learn_source(Passage& frame) {
  if (frame.dropped() && frame.drop != Drop::trapped) return;
  const Packet& packet = frame.packet;
  learn(frame.chip, {packet.fields.source_mac, static_cast<uint16_t>(packet.vlan()), packet.source});
}

}  // namespace chip
