// The routes of IP multicast: which group replicates what is sent to an address, in a VLAN, by one source or by any.
#pragma once

#include <algorithm>
#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <map>
#include <unordered_map>

#include "chip/addresses.h"
#include "chip/hash.h"
#include "chip/status.h"

namespace chip {

struct MulticastRouteKey {
  int vrf = 0;
  int vlan = 0;
  bool ip6 = false;
  Ip6 address{};  // an IPv4 one is in the first four bytes
  Ip6 source{};   // zeros: any
  auto operator<=>(const MulticastRouteKey&) const = default;
  std::size_t hash() const {
    std::array<uint64_t, 4> words;
    std::memcpy(words.data(), address.data(), address.size());
    std::memcpy(&words[2], source.data(), source.size());
    return hash_of(vrf, vlan, words[0], words[1], words[2], words[3]);
  }
};

struct MulticastRoute {
  static constexpr uint32_t from_any_port = 0x80000000;  // of `flags`

  uint32_t flags = 0;
  int group = 0;
  int interface = 0;
  int valid = 0;
  int port = 0;
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
    const MulticastRoute* const route = find(key);
    if (route == nullptr) return Status::not_found;
    found = *route;
    return Status::ok;
  }
  const MulticastRoute* find(const MulticastRouteKey& key) const {
    const auto route = routes_.find(key);
    return route == routes_.end() ? nullptr : &route->second;
  }

  Status remove(const MulticastRouteKey& key) {
    if (!is_valid(key)) return Status::bad_parameter;
    return routes_.erase(key) == 1 ? Status::ok : Status::not_found;
  }

  void clear() { routes_.clear(); }

  bool empty() const { return routes_.empty(); }
  /// A copy of the routes in the order of their keys.
  std::map<MulticastRouteKey, MulticastRoute> all() const { return {routes_.begin(), routes_.end()}; }

 private:
  static bool is_valid(const MulticastRouteKey& key) {
    const bool is_multicast = key.ip6 ? key.address[0] == 0xFF : key.address[0] >> 4 == 0xE;
    return is_multicast && key.vlan >= 0 && key.vlan <= highest_vlan;
  }

  struct Hash {
    std::size_t operator()(const MulticastRouteKey& key) const { return key.hash(); }
  };

  std::unordered_map<MulticastRouteKey, MulticastRoute, Hash> routes_;
};

}  // namespace chip
