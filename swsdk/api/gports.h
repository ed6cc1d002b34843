// Gports: ports of every kind in one number, the kind in its top six bits. Only this file decodes and encodes them.
#pragma once

#include <optional>

#include "chip/place.h"

namespace api {

namespace gport {

constexpr int kind_shift = 26;
constexpr int local = 1;
constexpr int module_port = 2;
constexpr int trunk = 3;
constexpr int mirror = 15;
constexpr int virtual_port = 17;

constexpr int kind(int gport) { return static_cast<int>(static_cast<unsigned>(gport) >> kind_shift); }

/// What a gport holds in addition to its kind.
constexpr int number(int gport) { return gport & ((1 << kind_shift) - 1); }

constexpr int of(int kind, int number) { return (kind << kind_shift) | number; }

/// Whether it is a gport that names a port, of this chip or another; a plain number does not.
constexpr bool names_port(int gport) { return kind(gport) == local || kind(gport) == module_port; }

}  // namespace gport

/// The module number of each chip of the board to itself.
constexpr int my_module = 0;

/// The port that a plain number or a gport of this chip's ports names; for any other gport, a port that no chip has.
constexpr chip::Port port_of(int gport) {
  constexpr int number_mask = 0x7FF;
  constexpr int module_mask = 0x7FFF << 11;
  const bool is_mine = (gport & module_mask) == my_module;
  if (gport::kind(gport) == gport::local || (gport::kind(gport) == gport::module_port && is_mine))
    return chip::Port::of(gport & number_mask);
  return chip::Port::of(gport);
}

/// The virtual port that a gport names, if any.
constexpr std::optional<chip::VirtualPortId> virtual_port_of(int gport) {
  if (gport::kind(gport) != gport::virtual_port) return std::nullopt;
  return chip::VirtualPortId::of(gport::number(gport));
}

/// The port or virtual port that a plain number or a gport names; for any other gport, a port that no chip has.
inline chip::Place port_place_of(int gport) {
  if (const std::optional<chip::VirtualPortId> virtual_port = virtual_port_of(gport)) return *virtual_port;
  return port_of(gport);
}

/// The same, where the gport can also name a trunk.
inline chip::Place place_of(int gport) {
  if (gport::kind(gport) == gport::trunk) return chip::TrunkId::of(gport::number(gport));
  return port_place_of(gport);
}

/// The mirror destination that a gport names; for any other gport, a destination that never exists.
constexpr chip::MirrorId mirror_of(int gport) {
  return chip::MirrorId::of(gport::kind(gport) == gport::mirror ? gport::number(gport) : -1);
}

constexpr int gport_of(chip::Port port) { return gport::of(gport::module_port, port.number()); }
constexpr int local_gport_of(chip::Port port) { return gport::of(gport::local, port.number()); }
constexpr int gport_of(chip::TrunkId trunk) { return gport::of(gport::trunk, trunk.number()); }
constexpr int gport_of(chip::VirtualPortId virtual_port) {
  return gport::of(gport::virtual_port, virtual_port.number());
}
constexpr int gport_of(chip::MirrorId mirror) { return gport::of(gport::mirror, mirror.number()); }

/// A place as in records that also take plain port numbers.
inline int sdk_port(const chip::Place& place) {
  if (const chip::Port* const port = std::get_if<chip::Port>(&place)) return port->number();
  return std::visit([](auto id) { return gport_of(id); }, place);
}

}  // namespace api
