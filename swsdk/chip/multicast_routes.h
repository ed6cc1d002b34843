// The IP multicast routes: the group that replicates packets to an address in a VLAN, from one source or from any.
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
#include "chip/origin.h"
#include "chip/place.h"
#include "chip/status.h"
#include "chip/vlan_id.h"

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
  GroupId group{};
  int interface = 0;
  int valid = 0;
  Place from{};  // where its packets come in, unless any port will do
  Origin origin{};
};

class MulticastRoutes {
 public:
  static constexpr std::size_t capacity = 4096;

  Status add(const MulticastRouteKey& key, const MulticastRoute& route) {
    if (!is_valid(key)) return Status::bad_parameter;
    if (routes_.contains(key)) return Status::exists;
    if (routes_.size() >= capacity) return Status::full;
    routes_.emplace(key, route);
    return Status::ok;
  }

  const MulticastRoute* find(const MulticastRouteKey& key) const {
    const auto route = routes_.find(key);
    return route == routes_.end() ? nullptr : &route->second;
  }
  /// Why there is no route of that key.
  Status absent(const MulticastRouteKey& key) const {
    return is_valid(key) ? Status::not_found : Status::bad_parameter;
  }

  Status remove(const MulticastRouteKey& key) { return routes_.erase(key) == 1 ? Status::ok : absent(key); }

  void clear() { routes_.clear(); }

  bool empty() const { return routes_.empty(); }
  /// A copy of the routes in the order of their keys.
  std::map<MulticastRouteKey, MulticastRoute> all() const { return {routes_.begin(), routes_.end()}; }

  template <class Archive>
  void save(Archive& archive) const {
    archive(all());
  }
  template <class Archive>
  void load(Archive& archive) {
    std::map<MulticastRouteKey, MulticastRoute> routes;
    archive(routes);
    routes_ = {routes.begin(), routes.end()};
  }

 private:
  static bool is_valid(const MulticastRouteKey& key) {
    const bool is_multicast = key.ip6 ? key.address[0] == 0xFF : key.address[0] >> 4 == 0xE;
    return is_multicast && key.vlan >= 0 && key.vlan <= max_vlan;
  }

  struct Hash {
    std::size_t operator()(const MulticastRouteKey& key) const { return key.hash(); }
  };

  std::unordered_map<MulticastRouteKey, MulticastRoute, Hash> routes_;
};

}  // namespace chip
