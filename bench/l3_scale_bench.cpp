// Hosts and routes at 1 K and at 8 K, which fill both tables, each with a next hop of its own on an egress object.
// Goal: the cost per entry grows at most 1.5 times.
#include <bcm/error.h>
#include <bcm/l2.h>
#include <bcm/l3.h>
#include <bcm/stack.h>
#include <bcm/switch.h>
#include <bcm/vlan.h>
#include <sai.h>

#include <algorithm>
#include <cstdint>
#include <random>

#include "scale.h"

using bench::each;
using bench::unit;

namespace {

constexpr uint32_t table_size = 8192;
constexpr int vlan = 10;
constexpr int port = 3;
constexpr uint32_t mask = 0xFFFFFF00;
constexpr uint8_t router[6] = {0x02, 0, 0, 0, 0, 0x01};

/// A neighbor of the router, and a subnet behind it.
struct Neighbor {
  uint32_t ip;
  uint32_t subnet;
  bcm_mac_t mac;
};

bcm_l3_host_t host_of(const Neighbor& neighbor) {
  bcm_l3_host_t host;
  bcm_l3_host_t_init(&host);
  host.l3a_ip_addr = neighbor.ip;
  return host;
}

bcm_l3_route_t route_of(const Neighbor& neighbor) {
  bcm_l3_route_t route;
  bcm_l3_route_t_init(&route);
  route.l3a_subnet = neighbor.subnet;
  route.l3a_ip_mask = mask;
  return route;
}

/// The router's interface in its VLAN.
bcm_if_t interface_id() {
  bcm_l3_intf_t intf;
  bcm_l3_intf_t_init(&intf);
  intf.l3a_vid = vlan;
  bcm_l3_intf_find_vlan(unit, &intf);
  return intf.l3a_intf_id;
}

/// As many learned neighbors as the host table takes, in random order.
std::vector<Neighbor> fill() {
  std::vector<Neighbor> result;
  for (uint32_t number = 0; result.size() < table_size; ++number) {
    const auto count = static_cast<uint32_t>(result.size());
    Neighbor neighbor{.ip = 0xC0A80000 + number, .subnet = 0x0A000000 + (count << 8), .mac = {0x02, 0x01}};
    for (uint32_t i = 0; i < 4; ++i) neighbor.mac[5 - i] = static_cast<uint8_t>(number >> 8 * i);
    bcm_l2_addr_t address;
    bcm_l2_addr_t_init(&address, neighbor.mac, vlan);
    address.port = port;
    int rv = bcm_l2_addr_add(unit, &address);
    if (rv == BCM_E_NONE) {
      bcm_l3_host_t host = host_of(neighbor);
      host.l3a_intf = interface_id();
      host.l3a_port_tgid = port;
      rv = bcm_l3_host_add(unit, &host);
    }
    bench::need(rv == BCM_E_NONE || rv == BCM_E_FULL, "setting up neighbors");
    if (rv == BCM_E_NONE) result.push_back(neighbor);  // otherwise its bucket is full, but others are not
  }
  for (const Neighbor& neighbor : result) {
    bcm_l3_host_t host = host_of(neighbor);
    bench::need(bcm_l3_host_delete(unit, &host) == BCM_E_NONE, "bcm_l3_host_delete");
  }
  std::ranges::shuffle(result, std::mt19937());
  return result;
}

/// Does the lookups that the library does first.
bool find_module_and_interface(Neighbor& neighbor, int& module, bcm_if_t& intf_id) {
  bcm_l2_addr_t learned{};
  if (bcm_stk_my_modid_get(unit, &module) < 0 || bcm_l2_addr_get(unit, neighbor.mac, vlan, &learned) < 0) return false;
  intf_id = interface_id();
  return true;
}

/// Finds or creates the egress object over an interface.
bool make_egress(const Neighbor& neighbor, bcm_if_t intf_id, bcm_if_t& egress_id) {
  bcm_l3_egress_t egress;
  bcm_l3_egress_t_init(&egress);
  egress.intf = intf_id;
  std::ranges::copy(neighbor.mac, egress.mac_addr);
  egress.vlan = vlan;
  egress.port = port;
  return bcm_l3_egress_find(unit, &egress, &egress_id) == BCM_E_NONE ||
         bcm_l3_egress_create(unit, 0, &egress, &egress_id) == BCM_E_NONE;
}

bool delete_egress(bcm_if_t egress_id) {
  bcm_l3_egress_t egress;
  bcm_l3_egress_t_init(&egress);
  bcm_l2_addr_t learned{};
  return bcm_l3_egress_get(unit, egress_id, &egress) == BCM_E_NONE &&
         bcm_l2_addr_get(unit, egress.mac_addr, egress.vlan, &learned) == BCM_E_NONE &&
         bcm_l3_egress_destroy(unit, egress_id) == BCM_E_NONE;
}

bool add_host(Neighbor& neighbor) {
  bcm_l3_host_t host = host_of(neighbor);
  bcm_if_t intf_id = 0;
  if (!find_module_and_interface(neighbor, host.l3a_modid, intf_id)) return false;
  host.l3a_port_tgid = port;
  std::ranges::copy(neighbor.mac, host.l3a_nexthop_mac);
  bcm_l3_host_t old = host_of(neighbor);
  if (bcm_l3_host_find(unit, &old) == BCM_E_NONE) host.l3a_flags |= BCM_L3_REPLACE;
  return make_egress(neighbor, intf_id, host.l3a_intf) && bcm_l3_host_add(unit, &host) == BCM_E_NONE;
}

bool read_host_hit(const Neighbor& neighbor) {
  bcm_l3_host_t host = host_of(neighbor);
  host.l3a_flags = BCM_L3_HIT_CLEAR;
  return bcm_l3_host_find(unit, &host) == BCM_E_NONE && (host.l3a_flags & BCM_L3_HIT) == 0;
}

bool delete_host(const Neighbor& neighbor) {
  bcm_l3_host_t host = host_of(neighbor);
  return bcm_l3_host_find(unit, &host) == BCM_E_NONE && bcm_l3_host_delete(unit, &host) == BCM_E_NONE &&
         delete_egress(host.l3a_intf);
}

bool add_route(Neighbor& neighbor) {
  bcm_l3_route_t route = route_of(neighbor);
  bcm_if_t intf_id = 0;
  if (!find_module_and_interface(neighbor, route.l3a_modid, intf_id)) return false;
  bcm_l3_route_t old = route_of(neighbor);
  if (bcm_l3_route_get(unit, &old) == BCM_E_NONE && bcm_l3_route_delete(unit, &old) != BCM_E_NONE) return false;
  route.l3a_nexthop_ip = neighbor.ip;
  std::ranges::copy(neighbor.mac, route.l3a_nexthop_mac);
  route.l3a_vid = vlan;
  route.l3a_port_tgid = port;
  return make_egress(neighbor, intf_id, route.l3a_intf) && bcm_l3_route_add(unit, &route) == BCM_E_NONE;
}

bool read_route_hit(const Neighbor& neighbor) {
  bcm_l3_route_t route = route_of(neighbor);
  route.l3a_flags = BCM_L3_HIT_CLEAR;
  return bcm_l3_route_get(unit, &route) == BCM_E_NONE && (route.l3a_flags & BCM_L3_HIT) == 0;
}

bool delete_route(const Neighbor& neighbor) {
  bcm_l3_route_t route = route_of(neighbor);
  return bcm_l3_route_get(unit, &route) == BCM_E_NONE && bcm_l3_route_delete(unit, &route) == BCM_E_NONE &&
         delete_egress(route.l3a_intf);
}

}  // namespace

int main() {
  bench::start_chip();
  bench::need(bcm_switch_control_set(unit, bcmSwitchL3EgressMode, 1) == BCM_E_NONE &&
                  bcm_vlan_create(unit, vlan) == BCM_E_NONE && sai_l3_intf_create(unit, router, vlan) == 0,
              "setting up the router");
  std::vector<Neighbor> neighbors = fill();
  const auto add_host_by_library = each(neighbors, [](const Neighbor& neighbor) {
    return sai_l3_host_route_create(unit, neighbor.ip, router, neighbor.mac, port, vlan, 0) == 0;
  });
  const auto add_route_by_library = each(neighbors, [](const Neighbor& neighbor) {
    return sai_l3_subnet_route_create(unit, neighbor.subnet, mask, neighbor.ip, router, neighbor.mac, port, vlan, 0) ==
           0;
  });
  return bench::scale(
      {1024, table_size},
      {{"host, create", add_host_by_library, each(neighbors, add_host)},
       {"host, create again", add_host_by_library, each(neighbors, add_host)},
       {"host, read hit", each(neighbors, [](const Neighbor& host) { return sai_l3_host_route_hit_get(host.ip) == 0; }),
        each(neighbors, read_host_hit)},
       {"host, delete",
        each(neighbors, [](const Neighbor& host) { return sai_l3_host_route_delete(unit, host.ip, 0) == 0; }),
        each(neighbors, delete_host)},
       {"route, create", add_route_by_library, each(neighbors, add_route)},
       {"route, create again", add_route_by_library, each(neighbors, add_route)},
       {"route, read hit",
        each(neighbors, [](const Neighbor& route) { return sai_l3_subnet_route_hit_get(route.subnet, mask) == 0; }),
        each(neighbors, read_route_hit)},
       {"route, delete",
        each(neighbors,
             [](const Neighbor& route) { return sai_l3_subnet_route_delete(unit, route.subnet, mask, 0) == 0; }),
        each(neighbors, delete_route)}});
}
