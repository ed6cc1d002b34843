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

/// The caller checks that the port fits. Each word is stored whole: setting a bit in a cleared bitmap delays the copy
/// that the SDK takes by the time of several calls.
inline bcm_pbmp_t only_port(int port) {
  constexpr int bits = 32;
  bcm_pbmp_t ports;
  for (int i = 0; i < BCM_PBMP_PORT_MAX / bits; ++i) ports.pbits[i] = port / bits == i ? 1U << port % bits : 0;
  return ports;
}

}  // namespace sai
