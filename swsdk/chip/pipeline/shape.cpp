#include "chip/chip.h"
#include "chip/pipeline/stages.h"

namespace chip {

// There are no queues in which a frame could wait until its time has come: what is too much is lost.
bool is_within_shape(Passage& frame, int port, std::size_t length) {
  const auto rate = frame.chip.port_rates.egress().find(port);
  return rate == frame.chip.port_rates.egress().end() ||
         frame.meters.take_frame(Meters::Kind::port_egress, port, frame.chip.now, rate->second, length);
}

}  // namespace chip
