#include "chip/chip.h"
#include "chip/pipeline/stages.h"

namespace chip {

void assign_vlan(Passage& frame) {
  Packet& packet = frame.packet;
  if (packet.vlan() != 0) return;
  int vlan = 0;
  frame.chip.port_forwarding.get(packet.port, &PortForwarding::untagged_vlan, vlan);
  packet.set_vlan(vlan);
}

}  // namespace chip
