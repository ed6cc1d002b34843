#include "chip/chip.h"
#include "chip/pipeline/stages.h"

namespace chip {

// The model has no queues in which a frame could wait: excess frames are dropped.
bool is_within_shape(Passage& frame, Port port, std::size_t length) {
  const PortRate& rate = frame.chip.port_rates.egress()[port];
  if (!rate.is_limit()) return true;
  frame.by(decider::EgressRate{port});
  return frame.chip.meters.take_frame(Meters::Kind::port_egress, port, frame.chip.now, rate, length);
}

}  // namespace chip
