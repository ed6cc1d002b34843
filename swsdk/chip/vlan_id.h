// The numbers of VLANs.
#pragma once

namespace chip {

constexpr int min_vlan = 1;
constexpr int max_vlan = 4095;

constexpr bool is_vlan(int number) { return number >= min_vlan && number <= max_vlan; }

}  // namespace chip
