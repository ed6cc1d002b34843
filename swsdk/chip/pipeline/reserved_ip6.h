// Reserved IPv6 multicast.
#pragma once

#include "chip/chip.h"
#include "chip/pipeline/packet.h"

namespace chip {

/// Whether the destination of an IPv6 packet is reserved and the chip is configured to treat it as such.
inline bool is_reserved_ip6(const Passage& frame) {
  constexpr auto control = SwitchControlOfChip::mld_reserved_multicast_enable;
  const Chip& chip = frame.chip;
  if (!chip.switch_controls.is_on(control) || !chip.reserved_multicast.contains(frame.packet.fields.destination_ip6))
    return false;
  frame.by(decider::ChipControl{control});
  frame.by(decider::ReservedAddresses{});
  return true;
}

}  // namespace chip
