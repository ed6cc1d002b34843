// Which member of a trunk carries a frame.
#pragma once

#include <optional>

#include "chip/pipeline/packet.h"
#include "chip/trunks.h"

namespace chip {

/// Picks one of the members that have a link by the fields that the trunk's criterion names: frames that are alike in
/// them go the same way. Nothing when no member has a link.
std::optional<int> pick_member(const Chip& chip, const Trunk& trunk, const Packet& packet);

}  // namespace chip
