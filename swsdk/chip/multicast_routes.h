// The routes of IP multicast: which group replicates what is sent to an address, in a VLAN, by one source or by any.
#pragma once

#include <algorithm>
#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <map>

#include "chip/addresses.h"
#include "chip/status.h"

namespace chip {

struct MulticastRouteKey {
  int vrf = 0;
  int vlan = 0;
  bool ip6 = false;
  Ip6 address{};  // an IPv4 one is in the first four bytes
  Ip6 source{};   // zeros: any
  auto operator<=>(const MulticastRouteKey&) const = default;
};

struct MulticastRoute {
  uint32_t flags = 0;
  int group = 0;
  int group_l2 = 0;
  int interface = 0;
  int ingress_interface = 0;
  int valid = 0;
  int port = 0;
  int module = 0;
  int source_port_check = 0;
  int queue = 0;
  int priority = 0;
  int lookup_class = 0;
  int rendezvous_point = 0;
  uint32_t address_mask = 0;
  uint32_t source_mask = 0;
  Ip6 address_mask6{};
  Ip6 source_mask6{};
};

class MulticastRoutes {
 public:
  static constexpr std::size_t capacity = 4096;
  static constexpr int highest_vlan = 4095;

  Status add(const MulticastRouteKey& key, const MulticastRoute& route) {
    if (!is_valid(key)) return Status::bad_parameter;
    if (routes_.contains(key)) return Status::exists;
    if (routes_.size() >= capacity) return Status::full;
    routes_.emplace(key, route);
    return Status::ok;
  }

  Status find(const MulticastRouteKey& key, MulticastRoute& found) const {
    if (!is_valid(key)) return Status::bad_parameter;
    const auto route = routes_.find(key);
    if (route == routes_.end()) return Status::not_found;
    found = route->second;
    return Status::ok;
  }

  Status remove(const MulticastRouteKey& key) {
    if (!is_valid(key)) return Status::bad_parameter;
    return routes_.erase(key) == 1 ? Status::ok : Status::not_found;
  }

  void clear() { routes_.clear(); }

  const std::map<MulticastRouteKey, MulticastRoute>& all() const { return routes_; }

 private:
  static bool is_valid(const MulticastRouteKey& key) {
    const bool is_multicast = key.ip6 ? key.address[0] == 0xFF : key.address[0] >> 4 == 0xE;
    return is_multicast && key.vlan >= 0 && key.vlan <= highest_vlan;
  }

  std::map<MulticastRouteKey, MulticastRoute> routes_;
};

}  // namespace chip
