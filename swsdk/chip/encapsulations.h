// Encapsulation ids: what a member of a multicast group makes of its copy.
#pragma once

namespace chip::encapsulation {

/// A member of layer 2 sends its copy as it is.
constexpr int as_it_is = -1;

constexpr int first_of_virtual_ports = 0x100000;  // the ids below are those of layer 3 interfaces

/// The copy leaves through a layer 3 interface, which makes it a routed one of its own VLAN.
constexpr int of_interface(int interface) { return interface; }

/// The copy leaves through a virtual port, with the tags that it gives.
constexpr int of_virtual_port(int number) { return first_of_virtual_ports + number; }

constexpr bool is_interface(int id) { return id > 0 && id < first_of_virtual_ports; }
constexpr bool is_virtual_port(int id) { return id > first_of_virtual_ports; }

}  // namespace chip::encapsulation
