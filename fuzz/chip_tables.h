// The chip's tables that are compared with simple models, one function for each.
#pragma once

#include <chip/place.h>
#include <chip/status.h>

#include "input.h"

namespace fuzz {

/// The ports of the chip under test, as the models know them.
constexpr int ethernet_ports = 12;
constexpr bool is_port(chip::Port port) { return port.number() >= 0 && port.number() <= ethernet_ports; }
constexpr bool is_vlan(int vlan) { return vlan >= 1 && vlan <= 4095; }

inline void same(chip::Status status, chip::Status expected, const char* file = __builtin_FILE(),
                 int line = __builtin_LINE()) {
  if (status != expected)
    std::fprintf(stderr, "status %d, expected %d\n", static_cast<int>(status), static_cast<int>(expected));
  require(status == expected, "the table answers otherwise than its model", file, line);
}

void fuzz_slots(Input& input);
void fuzz_keyed_slots(Input& input);
void fuzz_policers(Input& input);
void fuzz_field_processor(Input& input);

void fuzz_vlans(Input& input);
void fuzz_spanning_trees(Input& input);
void fuzz_mac_table(Input& input);
void fuzz_trunks(Input& input);
void fuzz_mirrors(Input& input);
void fuzz_translations(Input& input);

void fuzz_hosts(Input& input);
void fuzz_routes(Input& input);
void fuzz_multicast_groups(Input& input);
void fuzz_virtual_ports(Input& input);
void fuzz_interfaces(Input& input);

}  // namespace fuzz
