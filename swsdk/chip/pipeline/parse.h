// The first stage: finds the headers of a frame.
#pragma once

#include <cstdint>
#include <span>

#include "chip/pipeline/packet.h"

namespace chip {

/// Reads the headers of a frame that came in at `port`, and nothing beyond its end, into a new packet. It tells how far
/// they can be read: a frame is bridged by its Ethernet header, whatever is wrong behind that. False when that one, its
/// tags included, is cut short; the packet is of no use then.
bool parse(int port, std::span<const uint8_t> frame, Packet& packet);

}  // namespace chip
