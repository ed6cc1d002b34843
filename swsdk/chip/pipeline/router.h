// What unicast and multicast routing have in common.
#pragma once

#include "chip/pipeline/packet.h"

namespace chip {

/// Whether an IP packet with a readable header may be forwarded: its TTL allows another hop, and its header is correct
/// and has no options.
bool can_pass_on(const Packet& packet);

/// Handles a packet that may not be forwarded: the CPU gets it, if the control of its port is on.
void refuse(Passage& frame);

}  // namespace chip
