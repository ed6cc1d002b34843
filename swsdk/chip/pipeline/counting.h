// What frames add to the counters of the ports that they pass. Sizes are those on the cable: with the checksum, and
// never below the shortest that there is.
#pragma once

#include <cstddef>

#include "chip/counters.h"
#include "chip/pipeline/egress_frame.h"
#include "chip/pipeline/packet.h"

namespace chip {

/// A frame that came in, be it passed on or not.
void count_received(Counters& counters, const Packet& packet);
/// Why one that came in was not passed on.
void count_discarded(Counters& counters, const Packet& packet, Drop reason);

/// A frame that left a port.
void count_sent(Counters& counters, int port, const EgressHeader& header, std::size_t length);

/// Why one did not leave.
enum class NotSent { rate, too_long };
void count_not_sent(Counters& counters, int port, NotSent reason);

}  // namespace chip
