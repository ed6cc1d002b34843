// Updates the counters of ports. Sizes are those on the wire: with the checksum, and padded to the minimum.
#pragma once

#include <cstddef>

#include "chip/counters.h"
#include "chip/pipeline/egress_frame.h"
#include "chip/pipeline/packet.h"

namespace chip {

// A packet can be an aggregate, all of whose frames count.

/// A frame that was received, whether it is forwarded or not.
void count_received(Counters& counters, const Packet& packet);
/// A received frame that was not forwarded.
void count_discarded(Counters& counters, const Packet& packet, Drop reason);

/// Frames of that length that left a port.
void count_sent(Counters& counters, Port port, const EgressHeader& header, std::size_t length, std::size_t frames);

/// What happens to an IP packet in the router or in a multicast route.
enum class IpEvent { received, header_error, discarded, forwarded, group_bridged, group_routed, group_dropped };
void count_ip(Counters& counters, const Packet& packet, IpEvent event);
/// So many frames of an IP packet that left a port.
void count_sent_ip(Counters& counters, Port port, const Packet& packet, bool routed, std::size_t frames);

/// Frames that were not sent by a port. Only the port's own limits and the egress entries make it a discard.
void count_not_sent(Counters& counters, Port port, Drop reason, std::size_t frames);

}  // namespace chip
