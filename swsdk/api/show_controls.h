// The settings of the chip and of its ports that are numbered controls, or stand alone, for people.
#pragma once

#include <string>

#include "api/columns.h"
#include "chip/chip.h"

namespace api {

/// What is not 0 of them.
Rows show_controls(const chip::Chip& chip);

/// The cells of two of their rows: "prunes-ingress,prunes-egress", "ff02:: mask ffff::; ...".
std::string network_group_text(uint32_t settings);
std::string reserved_multicast_text(const std::vector<chip::Ip6Match>& addresses);

}  // namespace api
