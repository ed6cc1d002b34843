// Gports: ports of every kind in one number, the kind in its top six bits.
#pragma once

namespace chip::gport {

constexpr int kind_shift = 26;
constexpr int local = 1;
constexpr int module_port = 2;
constexpr int trunk = 3;
constexpr int mirror = 15;
constexpr int virtual_port = 17;

/// What each chip of the board is to itself.
constexpr int my_module = 0;

constexpr int kind(int port) { return static_cast<int>(static_cast<unsigned>(port) >> kind_shift); }

/// What a gport says beside its kind.
constexpr int number(int port) { return port & ((1 << kind_shift) - 1); }

/// The gport of that kind and number.
constexpr int of(int kind, int number) { return (kind << kind_shift) | number; }

/// Whether it is a gport that names a port, of this chip or another; a plain number is none.
constexpr bool names_port(int port) { return kind(port) == local || kind(port) == module_port; }

/// The gport of a port of this chip.
constexpr int of_port(int port) { return (module_port << kind_shift) | port; }

/// The port that a plain number or a gport of this chip's ports is; a number that is no port for every other gport.
constexpr int port_of(int port) {
  constexpr int number_mask = 0x7FF;
  constexpr int module_mask = 0x7FFF << 11;
  if (kind(port) == local || (kind(port) == module_port && (port & module_mask) == 0)) return port & number_mask;
  return port;
}

}  // namespace chip::gport
