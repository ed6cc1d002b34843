#include "chip/chip.h"
#include "chip/pipeline/stages.h"

namespace chip {

void admit(Passage& frame) {
  constexpr int checksum = 4;
  const PortMac* const mac = frame.chip.port_macs.find(frame.packet.port);
  if (mac == nullptr) return;  // the CPU port has none
  if (!mac->link()) return frame.stop(Drop::port_down);
  const int length = static_cast<int>(frame.packet.bytes.size()) + checksum;
  // A tag does not count.
  const int tag = frame.packet.outer_tagged ? 4 : 0;
  if (length > mac->frame_max + tag) frame.stop(Drop::too_long);
}

}  // namespace chip
