#include "chip/chip.h"
#include "chip/pipeline/stages.h"

namespace chip {

void admit(Passage& frame) {
  const Packet& packet = frame.packet;
  const PortMac* const mac = frame.chip.port_macs.find(packet.port);
  if (mac != nullptr) {  // the CPU port has none
    if (!mac->link()) {
      frame.by(decider::Link{packet.port});
      return frame.stop(Drop::port_down);
    }
    if (!mac->takes(packet.frame_size(), packet.outer_tagged)) {
      frame.by(decider::FrameMax{packet.port});
      return frame.stop(Drop::too_long);
    }
  } else if (packet.frame_size() > PortMacs::max_frame_max) {
    return frame.stop(Drop::too_long);
  }
  const PortRate& rate = frame.chip.port_rates.ingress()[packet.port];
  if (rate.is_limit()) {
    frame.by(decider::IngressRate{packet.port});
    if (!frame.chip.meters.take_frame(Meters::Kind::port_ingress, packet.port, frame.chip.now, rate,
                                      packet.bytes.size()))
      frame.stop(Drop::rate);
  }
  if (!packet.has_header) frame.stop(Drop::malformed);
}

}  // namespace chip
