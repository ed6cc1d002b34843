// What unicast and multicast routing have in common.
#pragma once

#include "chip/pipeline/packet.h"

namespace chip {

/// Why an IP packet with a readable header may not be forwarded, or none: its header has to be correct and without
/// options, and its TTL has to allow another hop.
Drop why_not_passed_on(const Packet& packet);

/// Handles a packet that may not be forwarded: the CPU gets it, if the control of its port is on.
void refuse(Passage& frame, Drop reason);

}  // namespace chip
