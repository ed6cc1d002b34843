// The MAC table at 1 K, 8 K and 32 K entries, which fill it completely. Goal: the cost per entry grows at most 1.5
// times.
#include <bcm/error.h>
#include <bcm/l2.h>
#include <sai.h>

#include <algorithm>
#include <random>

#include "scale.h"

using bench::each;
using bench::Range;
using bench::unit;

namespace {

constexpr int vlan = 10;
constexpr int port = 3;

/// As many addresses as the table takes, in random order.
std::vector<sai_l2_mac_entry_t> fill() {
  std::vector<sai_l2_mac_entry_t> result;
  int max = 0;
  int current = 0;
  bench::need(sai_l2_info(unit, &max, &current) == 0, "sai_l2_info");
  for (uint32_t number = 0; static_cast<int>(result.size()) < max; ++number) {
    sai_l2_mac_entry_t entry{};
    entry.mac[0] = 0x02;
    for (uint32_t i = 0; i < 4; ++i) entry.mac[5 - i] = static_cast<uint8_t>(number >> 8 * i);
    entry.vlan = vlan;
    entry.port = port;
    bcm_l2_addr_t address;
    bcm_l2_addr_t_init(&address, entry.mac, vlan);
    address.port = port;
    const int rv = bcm_l2_addr_add(unit, &address);
    bench::need(rv == BCM_E_NONE || rv == BCM_E_FULL, "bcm_l2_addr_add");
    if (rv == BCM_E_NONE) result.push_back(entry);  // otherwise its bucket is full, but others are not
  }
  bcm_l2_addr_delete_by_vlan(unit, vlan, 0);
  std::ranges::shuffle(result, std::mt19937());
  return result;
}

bool add_directly(const sai_l2_mac_entry_t& entry) {
  bcm_l2_addr_t address;
  bcm_l2_addr_t_init(&address, entry.mac, vlan);
  address.port = entry.port;
  return bcm_l2_addr_add(unit, &address) == BCM_E_NONE;
}

int take(int, bcm_l2_addr_t* address, void* user_data) {
  auto*& next = *static_cast<sai_l2_mac_entry_t**>(user_data);
  std::copy_n(address->mac, sizeof next->mac, next->mac);
  next->vlan = address->vid;
  next->port = address->port;
  next->flags = address->flags;
  ++next;
  return 0;
}

}  // namespace

int main() {
  bench::start_chip();
  std::vector<sai_l2_mac_entry_t> entries = fill();
  std::vector<sai_l2_mac_entry_t> shown(entries.size());
  return bench::scale(
      {1024, 8192, entries.size()},
      {{"sai_l2_mac_entry_add",
        each(entries, [](const auto& entry) { return sai_l2_mac_entry_add(unit, &entry) == 0; }),
        each(entries, add_directly)},
       {"sai_l2_addr_show", [&](Range) { return sai_l2_addr_show(unit, shown.data()) == 0; },
        [&](Range range) {
          sai_l2_mac_entry_t* next = shown.data();
          return bcm_l2_traverse(unit, take, &next) == BCM_E_NONE && next == shown.data() + range.count;
        }},
       {"sai_l2_mac_entry_del",
        each(entries, [](const auto& entry) { return sai_l2_mac_entry_del(unit, &entry, SAI_L2_DELETE_ENTRY) == 0; }),
        each(entries, [](auto& entry) { return bcm_l2_addr_delete(unit, entry.mac, vlan) == BCM_E_NONE; })}});
}
