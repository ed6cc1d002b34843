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

/// What becomes of an IP packet for the router, or of one that a multicast route takes.
enum class IpEvent { received, header_error, discarded, forwarded, group_bridged, group_routed, group_dropped };
void count_ip(Counters& counters, const Packet& packet, IpEvent event);
/// An IP packet that left a port.
void count_sent_ip(Counters& counters, int port, const Packet& packet, bool routed);

/// Why one did not leave.
enum class NotSent { rate, too_long, field_rule };
void count_not_sent(Counters& counters, int port, NotSent reason);

}  // namespace chip
