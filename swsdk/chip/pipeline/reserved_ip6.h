// Reserved IPv6 multicast.
#pragma once

#include "chip/chip.h"

namespace chip {

/// Whether an address is reserved and the chip is configured to treat it as such.
inline bool is_reserved(const Chip& chip, const Ip6& address) {
  return chip.switch_controls.is_on(SwitchControlOfChip::mld_reserved_multicast_enable) &&
         chip.reserved_multicast.contains(address);
}

}  // namespace chip
