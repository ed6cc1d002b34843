// The tables of layer 3, multicast and virtual ports for people.
#pragma once

#include <string>

#include "chip/chip.h"

namespace api {

std::string show_egress_objects(const chip::Chip& chip);
std::string show_hosts(const chip::Chip& chip);
std::string show_l3_interfaces(const chip::Chip& chip);
std::string show_multicast_groups(const chip::Chip& chip);
std::string show_multicast_routes(const chip::Chip& chip);
std::string show_policers(const chip::Chip& chip);
std::string show_routes(const chip::Chip& chip);
std::string show_virtual_ports(const chip::Chip& chip);

}  // namespace api
