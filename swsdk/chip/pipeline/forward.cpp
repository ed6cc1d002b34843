#include "chip/chip.h"
#include "chip/pipeline/stages.h"

namespace chip {

void forward(Passage& frame) {
  if (frame.dropped()) return;
  if (frame.verdict.redirect_port)
    frame.copies.push_back({.port = *frame.verdict.redirect_port});
  else if (!route(frame) && !route_multicast(frame))
    bridge(frame);
  if (frame.copies.empty() && frame.cpu_reasons == 0) frame.stop(Drop::no_destination);
}

}  // namespace chip
