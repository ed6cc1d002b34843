// The tables of layer 2 for people.
#pragma once

#include <vector>

#include "api/columns.h"
#include "chip/chip.h"

namespace api {

Rows show_learn_limits(const chip::Chip& chip);
Rows show_mac_table(const chip::Chip& chip);
/// That table with these entries alone.
Rows mac_rows(const std::vector<chip::MacEntry>& entries);
Rows show_mac_vlans(const chip::Chip& chip);
Rows show_mirrors(const chip::Chip& chip);
Rows show_spanning_trees(const chip::Chip& chip);
Rows show_subnet_vlans(const chip::Chip& chip);
Rows show_trunks(const chip::Chip& chip);

}  // namespace api
