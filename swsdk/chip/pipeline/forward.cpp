#include "chip/chip.h"
#include "chip/pipeline/stages.h"

namespace chip {

void forward(Passage& frame) {
  if (frame.dropped()) return;
  if (const std::optional<Port> to = frame.verdict.redirect_port)
    frame.copies.emplace_back(Exit{*to, *to});
  else if (!route(frame) && !route_multicast(frame))
    bridge(frame);
  if (frame.copies.empty() && frame.cpu_reasons == 0) frame.stop(frame.nowhere);
}

}  // namespace chip
