// The first stage: finds the headers of a frame.
#pragma once

#include <cstdint>
#include <span>

#include "chip/pipeline/packet.h"

namespace chip {

/// Reads the headers of a frame that came in at `port`, and nothing beyond its end, into a new packet. False when one
/// of them is cut short or contradicts itself; the packet is of no use then.
bool parse(int port, std::span<const uint8_t> frame, Packet& packet);

}  // namespace chip
