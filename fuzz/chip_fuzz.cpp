// One of the chip's tables and a simple model of it, given the same operations.
#include <iterator>

#include "chip_tables.h"

namespace {

constexpr void (*tables[])(fuzz::Input&) = {
    fuzz::fuzz_slots,
    fuzz::fuzz_keyed_slots,
    fuzz::fuzz_policers,
    fuzz::fuzz_field_processor,
    fuzz::fuzz_vlans,
    fuzz::fuzz_spanning_trees,
    fuzz::fuzz_mac_table,
    fuzz::fuzz_trunks,
    fuzz::fuzz_mirrors,
    fuzz::fuzz_translations,
    fuzz::fuzz_hosts,
    fuzz::fuzz_routes,
    fuzz::fuzz_multicast_groups,
    fuzz::fuzz_virtual_ports,
    fuzz::fuzz_interfaces,
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fuzz::Input input(data, size);
  tables[input.from(0, static_cast<int>(std::size(tables)) - 1)](input);
  return 0;
}
