// The tables of layer 2 for people.
#pragma once

#include <string>

#include "chip/chip.h"

namespace api {

std::string show_learn_limits(const chip::Chip& chip);
std::string show_mac_table(const chip::Chip& chip);
std::string show_mac_vlans(const chip::Chip& chip);
std::string show_mirrors(const chip::Chip& chip);
std::string show_spanning_trees(const chip::Chip& chip);
std::string show_subnet_vlans(const chip::Chip& chip);
std::string show_trunks(const chip::Chip& chip);

}  // namespace api
