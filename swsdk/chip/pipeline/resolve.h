// The port by which a frame leaves for a place.
#pragma once

#include <optional>

#include "chip/pipeline/packet.h"

namespace chip {

/// The exit of a packet to a place. On a trunk, one of the members that have a link carries it, picked by the fields
/// that the trunk's criterion names: packets that are alike in them go the same way. A virtual port has the port that
/// it is on. Nothing where there is no such trunk or virtual port, or no member has a link.
std::optional<Exit> exit_to(const Passage& frame, const Place& place);

}  // namespace chip
