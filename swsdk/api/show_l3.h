// The tables of layer 3, multicast and virtual ports for people.
#pragma once

#include <map>

#include "api/columns.h"
#include "chip/chip.h"

namespace api {

Rows show_egress_objects(const chip::Chip& chip);
Rows show_hosts(const chip::Chip& chip);
/// That table with these entries alone.
Rows host_rows(const std::map<chip::HostKey, chip::L3Entry>& entries);
Rows show_l3_interfaces(const chip::Chip& chip);
Rows show_multicast_groups(const chip::Chip& chip);
Rows show_multicast_routes(const chip::Chip& chip);
Rows show_policers(const chip::Chip& chip);
Rows show_routes(const chip::Chip& chip);
Rows route_rows(const std::map<chip::RouteKey, chip::L3Entry>& entries);
Rows show_virtual_ports(const chip::Chip& chip);

}  // namespace api
