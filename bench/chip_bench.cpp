// The virtual chip's tables by the SDK's calls: additions and removals per second, and how much more one costs when the
// table is nearly full than when it is nearly empty.
#include <bcm/error.h>
#include <bcm/field.h>
#include <bcm/l2.h>
#include <bcm/l3.h>
#include <bcm/multicast.h>
#include <bcm/policer.h>
#include <bcm/switch.h>
#include <bcm/vlan.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>

#include "scale.h"
#include "thread_clock.h"

using bench::unit;

namespace {

constexpr int vlan = 10;
constexpr int port = 3;
constexpr int rounds = 5;
constexpr double growth_limit = 3;

/// The ids of the entries that the chip numbers itself.
std::array<int, 8192> ids;

bcm_field_group_t group;
bcm_if_t next_hop;

void write_mac(uint8_t* mac, int i) {
  mac[0] = 0x02;
  for (int byte = 0; byte < 4; ++byte) mac[5 - byte] = static_cast<uint8_t>(i >> 8 * byte);
}

bcm_l2_addr_t address(int i) {
  bcm_mac_t mac{};
  write_mac(mac, i);
  bcm_l2_addr_t result;
  bcm_l2_addr_t_init(&result, mac, vlan);
  result.port = port;
  return result;
}

bcm_l3_host_t host(int i) {
  bcm_l3_host_t result;
  bcm_l3_host_t_init(&result);
  result.l3a_intf = next_hop;
  result.l3a_ip_addr = 0xC0A80000 + static_cast<bcm_ip_t>(i);
  return result;
}

bcm_l3_route_t route(int i) {
  bcm_l3_route_t result;
  bcm_l3_route_t_init(&result);
  result.l3a_intf = next_hop;
  result.l3a_subnet = 0x0A000000 + (static_cast<bcm_ip_t>(i) << 8);
  result.l3a_ip_mask = 0xFFFFFF00;
  return result;
}

bcm_vlan_port_t virtual_port(int i) {
  bcm_vlan_port_t result;
  bcm_vlan_port_t_init(&result);
  result.criteria = BCM_VLAN_PORT_MATCH_PORT_VLAN_STACKED;
  result.port = static_cast<bcm_gport_t>(BCM_GPORT_TYPE_LOCAL << 26) | port;
  result.match_vlan = static_cast<bcm_vlan_t>(1 + i / 1024);
  result.match_inner_vlan = static_cast<bcm_vlan_t>(1 + i % 1024);
  return result;
}

int add_virtual_port(int i) {
  bcm_vlan_port_t entry = virtual_port(i);
  const int rv = bcm_vlan_port_create(unit, &entry);
  ids[static_cast<std::size_t>(i)] = entry.vlan_port_id;
  return rv;
}

int add_field_entry(int i) {
  int& entry = ids[static_cast<std::size_t>(i)];
  int rv = bcm_field_entry_create(unit, group, &entry);
  if (rv == BCM_E_NONE) rv = bcm_field_qualify_OuterVlan(unit, entry, static_cast<bcm_vlan_t>(i + 1), 0xFFF);
  return rv == BCM_E_NONE ? bcm_field_entry_install(unit, entry) : rv;
}

int add_policer(int i) {
  bcm_policer_config_t config;
  bcm_policer_config_t_init(&config);
  return bcm_policer_create(unit, &config, &ids[static_cast<std::size_t>(i)]);
}

int remove_field_entry(int i) {
  const int entry = ids[static_cast<std::size_t>(i)];
  const int rv = bcm_field_entry_remove(unit, entry);
  return rv == BCM_E_NONE ? bcm_field_entry_destroy(unit, entry) : rv;
}

/// All VLANs except the one that always exists and the one that other tables use.
bcm_vlan_t vid(int i) { return static_cast<bcm_vlan_t>(11 + i); }

int id(int i) { return ids[static_cast<std::size_t>(i)]; }

template <class Entry>
int by_record(int (*call)(int, Entry*), Entry entry) {
  return call(unit, &entry);
}

struct Table {
  const char* name;
  int entries;
  int (*add)(int i);
  int (*remove)(int i);
};

/// As many entries as fit, whatever buckets they fall into.
constexpr Table tables[] = {
    {"VLANs", 4080, [](int i) { return bcm_vlan_create(unit, vid(i)); },
     [](int i) { return bcm_vlan_destroy(unit, vid(i)); }},
    {"VLAN translations", 4088,
     [](int i) { return bcm_vlan_translate_add(unit, port, static_cast<bcm_vlan_t>(i + 1), vlan, 0); },
     [](int i) { return bcm_vlan_translate_delete(unit, port, static_cast<bcm_vlan_t>(i + 1)); }},
    {"MAC addresses", 8192, [](int i) { return by_record(bcm_l2_addr_add, address(i)); },
     [](int i) { return bcm_l2_addr_delete(unit, address(i).mac, vlan); }},
    {"hosts", 4096, [](int i) { return by_record(bcm_l3_host_add, host(i)); },
     [](int i) { return by_record(bcm_l3_host_delete, host(i)); }},
    {"routes", 8192, [](int i) { return by_record(bcm_l3_route_add, route(i)); },
     [](int i) { return by_record(bcm_l3_route_delete, route(i)); }},
    {"multicast groups", 4088,
     [](int i) { return bcm_multicast_create(unit, BCM_MULTICAST_TYPE_L3, &ids[static_cast<std::size_t>(i)]); },
     [](int i) { return bcm_multicast_destroy(unit, id(i)); }},
    {"field entries", 256, add_field_entry, remove_field_entry},
    {"virtual ports", 4096, add_virtual_port, [](int i) { return bcm_vlan_port_destroy(unit, id(i)); }},
    {"policers", 2040, add_policer, [](int i) { return bcm_policer_destroy(unit, id(i)); }},
};

/// The time per entry, for the entries from `first` to before `last`.
double measure(const Table& table, int (*work)(int i), int first, int last) {
  const double start = bench::thread_nanoseconds();
  for (int i = first; i < last; ++i) {
    const int rv = work(i);
    if (rv != BCM_E_NONE) std::fprintf(stderr, "%s, entry %d: %d\n", table.name, i, rv);
    bench::need(rv == BCM_E_NONE, table.name);
  }
  return (bench::thread_nanoseconds() - start) / (last - first);
}

/// @return the growth
double print(const Table& table) {
  const int eighth = table.entries / 8;
  double empty = std::numeric_limits<double>::infinity();
  double full = empty;
  double all = empty;
  for (int round = 0; round < rounds; ++round) {
    const auto both = [&](int first, int last) {
      return measure(table, table.add, first, last) + measure(table, table.remove, first, last);
    };
    // The same entries each time, so that only the other entries in the table differ.
    empty = std::min(empty, both(0, eighth));
    measure(table, table.add, eighth, table.entries);
    full = std::min(full, both(0, eighth));
    measure(table, table.remove, eighth, table.entries);
    all = std::min(all, both(0, table.entries));
  }
  std::printf("%-24s %9d %9.0f %8.2f\n", table.name, table.entries, 2e9 / all, full / empty);
  return full / empty;
}

/// Adds what entries refer to.
void set_up() {
  bcm_field_qset_t qualifiers;
  BCM_FIELD_QSET_INIT(qualifiers);
  BCM_FIELD_QSET_ADD(qualifiers, bcmFieldQualifyOuterVlan);
  BCM_FIELD_QSET_ADD(qualifiers, bcmFieldQualifyStageIngress);
  bcm_l3_intf_t intf;
  bcm_l3_intf_t_init(&intf);
  intf.l3a_vid = vlan;
  write_mac(intf.l3a_mac_addr, 1);
  bcm_l3_egress_t egress;
  bcm_l3_egress_t_init(&egress);
  egress.vlan = vlan;
  egress.port = port;
  write_mac(egress.mac_addr, 2);
  bool good = bcm_vlan_create(unit, vlan) == BCM_E_NONE &&
              bcm_field_group_create(unit, qualifiers, BCM_FIELD_GROUP_PRIO_ANY, &group) == BCM_E_NONE &&
              bcm_switch_control_set(unit, bcmSwitchL3EgressMode, 1) == BCM_E_NONE &&
              bcm_l3_intf_create(unit, &intf) == BCM_E_NONE;
  egress.intf = intf.l3a_intf_id;
  good = good && bcm_l3_egress_create(unit, 0, &egress, &next_hop) == BCM_E_NONE;
  bench::need(good, "setting up the chip");
}

}  // namespace

int main() {
  bench::start_chip();
  set_up();
  std::printf("%-24s %9s %9s %8s\n", "virtual chip", "entries", "a second", "growth");
  double worst = 0;
  for (const Table& table : tables) worst = std::max(worst, print(table));
  return worst <= growth_limit ? EXIT_SUCCESS : EXIT_FAILURE;
}
