// The Chip SDK's port bitmaps, made from single ports.
#pragma once

#include "core/sdk.h"

namespace sai {

constexpr bool fits_bitmap(int port) { return 0 <= port && port < BCM_PBMP_PORT_MAX; }

inline bcm_pbmp_t no_ports() {
  bcm_pbmp_t ports;
  BCM_PBMP_CLEAR(ports);
  return ports;
}

/// The caller sees to it that the port fits.
inline bcm_pbmp_t only_port(int port) {
  bcm_pbmp_t ports = no_ports();
  BCM_PBMP_PORT_ADD(ports, port);
  return ports;
}

}  // namespace sai
