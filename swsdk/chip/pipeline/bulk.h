// Which aggregates can pass through the chip as one frame.
#pragma once

#include "chip/pipeline/packet.h"

namespace chip {

/// Whether each frame of aggregates that come in at a port is metered, mirrored, too long or, possibly, looped back.
bool must_be_cut_at(const Chip& chip, Port port, const Segments& segments);

/// Whether an aggregate, before anything has been done with it, is one of which all frames go the same way: from a host
/// that is known to be there, and not to the CPU.
bool is_bulk(const Passage& frame);

}  // namespace chip
