// Gports from their kind and their number.
#pragma once

#include <bcm/types.h>

namespace support {

/// The gport of a kind, such as BCM_GPORT_TYPE_TRUNK, with `number` below it.
constexpr bcm_gport_t gport(unsigned kind, int number) { return static_cast<bcm_gport_t>(kind << 26) | number; }

}  // namespace support
