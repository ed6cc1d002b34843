// Gports: ports of every kind in one number, the kind in its top six bits.
#pragma once

namespace chip::gport {

constexpr int kind_shift = 26;
constexpr int local = 1;
constexpr int module_port = 2;

constexpr int kind(int port) { return static_cast<int>(static_cast<unsigned>(port) >> kind_shift); }

/// The gport of a port of this chip, which is module 0.
constexpr int of_port(int port) { return (module_port << kind_shift) | port; }

/// The port that a plain number or a gport of this chip's ports is; a number that is no port for every other gport.
constexpr int port_of(int port) {
  constexpr int number_mask = 0x7FF;
  constexpr int module_mask = 0x7FFF << 11;
  if (kind(port) == local || (kind(port) == module_port && (port & module_mask) == 0)) return port & number_mask;
  return port;
}

}  // namespace chip::gport
