// The IPv6 multicast addresses that hosts need to find each other.
#pragma once

#include "chip/chip.h"

namespace chip {

/// Whether the chip is told that the address is one of them.
inline bool is_reserved(const Chip& chip, const Ip6& address) {
  int enabled = 0;
  chip.switch_controls.get(static_cast<int>(SwitchControl::mld_reserved_multicast_enable), enabled);
  return enabled != 0 && chip.reserved_multicast.contains(address);
}

}  // namespace chip
