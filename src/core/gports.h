// Gports: ports of every kind in one number, the kind in its top six bits.
#pragma once

#include "core/sdk.h"

namespace sai::gport {

/// The kind of virtual ports, for which the SDK's headers have no name here.
constexpr unsigned vlan_port = 17;

constexpr unsigned kind(int port) { return static_cast<unsigned>(port) >> 26; }

/// Whether `port` is a gport; plain port numbers, including negative ones, are not.
constexpr bool is_gport(int port) { return BCM_GPORT_TYPE_LOCAL <= kind(port) && kind(port) <= 51; }

constexpr bool is_vlan_port(int port) { return kind(port) == vlan_port; }

constexpr int of_kind(unsigned kind, int number) { return static_cast<int>(kind << 26) | number; }

constexpr int local_port(int port) { return of_kind(BCM_GPORT_TYPE_LOCAL, port & 0x7FF); }

constexpr int module_port(int module, int port) {
  return of_kind(BCM_GPORT_TYPE_MODPORT, (module & 0x7FFF) << 11 | (port & 0x7FF));
}

}  // namespace sai::gport
