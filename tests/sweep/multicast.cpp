#include "sweep/sweep.h"

namespace sweep {

namespace {

constexpr uint8_t router[6] = {0x02, 0, 0, 0, 0, 0x01};
constexpr uint32_t group = 0xE1000001;
constexpr uint8_t group6[16] = {0xFF, 0x0E, 1};
constexpr uint8_t source6[16] = {0x20, 0x01, 1};

void vlans() {
  for (const uint16_t vlan : std::initializer_list<uint16_t>{10, 20}) sai_vlan_create(unit, vlan);
}

int32_t add(int32_t port, int32_t vlan) { return sai_multicast_egress_add(unit, 10, group, router, port, vlan); }
int32_t add_strictly(int32_t port) { return sai_ipmc_add(unit, 10, 20, port, group, router); }
int32_t add6(uint8_t port) { return sai_ipv6_ipmc_add(unit, 10, 20, port, group6, source6, router); }

std::function<void()> with(const std::vector<std::function<int32_t()>>& members) {
  return [=] {
    vlans();
    for (const auto& member : members) member();
  };
}

/// A lookup's failure leads to creation.
const std::vector<Failure> lookups{{"bcm_l3_intf_find", goes_on, no_line},
                                   {"bcm_l3_intf_find", "- *", no_line, positive},
                                   {"bcm_ipmc_find", goes_on, no_line}};

/// The same where the group and its interface are there, but not the member's.
const std::vector<Failure> known_group =
    std::vector<Failure>{{"bcm_l3_intf_find#1", "bcm_l3_intf_create *", no_line},
                         {"bcm_l3_intf_find#1", goes_on, no_line, positive},
                         {"bcm_ipmc_find", "bcm_multicast_create bcm_ipmc_add *", no_line, non_zero}} +
    lookups;

/// Up to the member's own interface every failure is passed over.
const std::vector<Failure> lenient{
    {"bcm_l3_intf_create#1 bcm_multicast_create bcm_ipmc_add bcm_port_gport_get", goes_on}};

const std::vector<Failure> with_full_stop{
    {"bcm_l3_intf_create bcm_multicast_create bcm_ipmc_add bcm_port_gport_get bcm_multicast_l3_encap_get "
     "bcm_multicast_egress_add",
     stops, "%s."}};

/// A query that tells no count ends no group.
const Failure uncounted{"bcm_multicast_egress_get", stops, no_line, non_zero};

/// Unlike with IPv4, the first failure ends it.
const std::vector<Failure> strict_leave{
    {"bcm_multicast_egress_delete", "bcm_multicast_egress_get", no_line, positive},  // the member is there still
    uncounted};
constexpr const char* strict_leave_result =
    "bcm_ipmc_find#1 bcm_port_gport_get bcm_l3_intf_find bcm_multicast_l3_encap_get bcm_multicast_egress_delete "
    "bcm_multicast_egress_get";

/// The last member takes the group along, and what becomes of that does not show.
const std::vector<Failure> last_leaves{
    {"bcm_ipmc_find#1", stops},
    {"bcm_l3_intf_find bcm_multicast_l3_encap_get", goes_on},
    {"bcm_multicast_egress_delete", "bcm_multicast_egress_get", no_line, positive},  // it is there still
    uncounted,
    {"bcm_ipmc_remove", goes_on},
};

}  // namespace

Rows multicast() {
  return {
      {.name = "sai_multicast_egress_add, first, double-tagged",
       .call = [] { return add(9, 20); },
       .failures = lookups + lenient,
       .scene = vlans},
      {.name = "sai_multicast_egress_add, first, of the group's VLAN",
       .call = [] { return add(1, 10); },
       .failures = lookups + lenient,
       .scene = vlans},
      {.name = "sai_multicast_egress_add, second, of the group's VLAN",
       .call = [] { return add(2, 10); },
       .failures = known_group + lenient,
       .scene = with({[] { return add(1, 10); }})},
      {.name = "sai_multicast_egress_del",
       .call = [] { return sai_multicast_egress_del(unit, 10, group, router, 1, 20); },
       .failures = {{"bcm_l3_intf_find bcm_multicast_l3_encap_get", goes_on}, uncounted},
       .result = "bcm_ipmc_find#1 bcm_port_gport_get bcm_multicast_egress_delete bcm_multicast_egress_get",
       .scene = with({[] { return add(1, 20); }, [] { return add(2, 20); }})},
      {.name = "sai_multicast_egress_del, last",
       .call = [] { return sai_multicast_egress_del(unit, 10, group, router, 1, 20); },
       .failures = last_leaves,
       .result = "bcm_ipmc_find#1 bcm_port_gport_get bcm_multicast_egress_delete bcm_multicast_egress_get",
       .scene = with({[] { return add(1, 20); }})},
      {.name = "sai_multicast_destroy",
       .call = [] { return sai_multicast_destroy(unit, 10, group); },
       .failures = {{"bcm_ipmc_remove", goes_on}},
       .result = "bcm_ipmc_find bcm_multicast_destroy",
       .scene = with({[] { return add(1, 20); }})},

      {.name = "sai_ipmc_add, first",
       .call = [] { return add_strictly(1); },
       .failures = lookups + with_full_stop,
       .scene = vlans},
      // That the group is there is told as an error, though it is none.
      {.name = "sai_ipmc_add, second",
       .call = [] { return add_strictly(8); },
       .failures = known_group + with_full_stop +
                   std::vector<Failure>{{"bcm_ipmc_find", goes_on, "find group 0x1", BCM_E_NONE}},
       .scene = with({[] { return add_strictly(1); }})},

      {"sai_vlan_mcast_flood_set", [] { return sai_vlan_mcast_flood_set(unit, 2, 1); }},
      {"sai_esw_vlan_mcast_flood_set",
       [] { return sai_esw_vlan_mcast_flood_set(unit, 1, 1); },
       {{"bcm_esw_vlan_ip4_mcast_flood_set", stops, no_line}}},

      {.name = "sai_ipv6_ipmc_add, first", .call = [] { return add6(1); }, .failures = lookups, .scene = vlans},
      {.name = "sai_ipv6_ipmc_add, second", .call = [] { return add6(8); }, .failures = known_group, .scene = with({[] {
                                                                                                       return add6(1);
                                                                                                     }})},
      {.name = "sai_ipv6_multicast_egress_del",
       .call = [] { return sai_ipv6_multicast_egress_del(unit, 10, group6, source6, router, 1, 20); },
       .failures = strict_leave,
       .result = strict_leave_result,
       .scene = with({[] { return add6(1); }, [] { return add6(2); }})},
      {.name = "sai_ipv6_multicast_egress_del, last",
       .call = [] { return sai_ipv6_multicast_egress_del(unit, 10, group6, source6, router, 1, 20); },
       .failures = strict_leave,
       .result = strict_leave_result,
       .scene = with({[] { return add6(1); }})},
      {.name = "sai_ipv6_multicast_destroy",
       .call = [] { return sai_ipv6_multicast_destroy(unit, 10, group6, source6); },
       .scene = with({[] { return add6(1); }})},
      {"sai_ipv6_vlan_mcast_flood_set", [] { return sai_ipv6_vlan_mcast_flood_set(unit, 2, 1); }},
      {"sai_ipv6_esw_vlan_mcast_flood_set", [] { return sai_ipv6_esw_vlan_mcast_flood_set(unit, 1, 1); }},
  };
}

}  // namespace sweep
