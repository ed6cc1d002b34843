// Encapsulation ids: how a member of a multicast group sends its copy.
#pragma once

#include "chip/place.h"

namespace chip::encapsulation {

/// A layer 2 member sends its copy unchanged.
constexpr int as_it_is = -1;

constexpr int first_of_virtual_ports = 0x100000;  // the ids below are those of layer 3 interfaces

/// The copy is routed through a layer 3 interface, into that interface's VLAN.
constexpr int of_interface(int interface) { return interface; }

/// The copy leaves through a virtual port, with that port's tags.
constexpr int of_virtual_port(VirtualPortId id) { return first_of_virtual_ports + id.number(); }

constexpr bool is_interface(int id) { return id > 0 && id < first_of_virtual_ports; }
constexpr bool is_virtual_port(int id) { return id > first_of_virtual_ports; }

}  // namespace chip::encapsulation
