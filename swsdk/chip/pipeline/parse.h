// The parser: reads the headers of a frame.
#pragma once

#include <cstdint>
#include <span>

#include "chip/pipeline/packet.h"

namespace chip {

/// Reads the headers of a frame received at `port` into a new packet, and never past its end. `fields.readable` is the
/// innermost readable header: a frame is bridged by its Ethernet header, even if the others are malformed. False when
/// the Ethernet header, tags included, is truncated; the packet is unusable then.
bool parse(Port port, std::span<const uint8_t> frame, Packet& packet);

}  // namespace chip
