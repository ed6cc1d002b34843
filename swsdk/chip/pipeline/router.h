// What routing to one destination and to many have in common.
#pragma once

#include "chip/pipeline/packet.h"

namespace chip {

/// Whether an IP packet whose header can be read may be passed on: it lives on for another hop, and its header is right
/// and has no options.
bool can_pass_on(const Packet& packet);

/// What becomes of a frame that may not be passed on: the CPU gets it, if its port says so.
void refuse(Passage& frame);

}  // namespace chip
