// The layer 3 interfaces: the router's own address in a VLAN.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <utility>

#include "chip/addresses.h"
#include "chip/hash_index.h"
#include "chip/keyed_slots.h"
#include "chip/origin.h"
#include "chip/vlan_id.h"

namespace chip {

struct L3Interface {
  static constexpr uint32_t in_mac_table = 0x20;  // of `flags`: frames to its address are routed

  uint32_t flags = 0;
  int vrf = 0;
  Mac mac{};
  uint16_t vlan = 0;
  uint16_t inner_vlan = 0;  // 0: frames leave with one tag
  int ttl = 0;              // frames with less are not sent; 0: all are
  Origin origin{};
};

class L3Interfaces {
 public:
  static constexpr int first_id = 1;
  static constexpr int capacity = 8192;

  Status create(const L3Interface& interface, int& id) {
    if (!is_vlan(interface.vlan) || interface.inner_vlan > max_vlan) return Status::bad_parameter;
    const Status status = interfaces_.add(interface, id);
    if (status == Status::ok) index(id, interface);
    return status;
  }

  Status remove(int id) {
    const L3Interface* const interface = find(id);
    if (interface != nullptr) {
      by_vlan_.erase({interface->vlan, id});
      const uint64_t station = station_of(interface->vlan, interface->mac);
      std::set<int>* const ids = by_station_.find(station);
      if (ids != nullptr && ids->erase(id) == 1 && ids->empty()) by_station_.erase(station);
    }
    return interfaces_.remove(id);
  }

  void clear() {
    interfaces_.clear();
    by_vlan_.clear();
    by_station_.clear();
  }

  const L3Interface* find(int id) const { return interfaces_.find(id); }
  /// Why there is no interface of that id.
  Status absent(int id) const { return interfaces_.absent(id); }

  /// The id of the interface with the VRF, address and VLANs of `wanted`, which identify an interface.
  std::optional<int> find_same(const L3Interface& wanted) const { return interfaces_.find_id(identity_of(wanted)); }

  /// The lowest id of an interface of the (outer) VLAN.
  std::optional<int> find_by_vlan(int vlan) const {
    const auto found = by_vlan_.lower_bound({vlan, first_id});
    return found == by_vlan_.end() || found->first != vlan ? std::nullopt : std::optional(found->second);
  }

  /// The interface with that MAC address in the (outer) VLAN, the one with the lowest id if there are several, or null.
  const L3Interface* find_station(int vlan, const Mac& mac) const {
    const std::set<int>* const ids = by_station_.find(station_of(vlan, mac));
    return ids == nullptr ? nullptr : find(*ids->begin());
  }

  const std::map<int, L3Interface>& all() const { return interfaces_.all(); }

  template <class Archive>
  void save(Archive& archive) const {
    archive(interfaces_);
  }
  template <class Archive>
  void load(Archive& archive) {
    archive(interfaces_);
    by_vlan_.clear();
    by_station_.clear();
    for (const auto& [id, interface] : all()) index(id, interface);
  }

 private:
  struct Identity {
    int vrf;
    Mac mac;
    int vlan;
    int inner_vlan;
    bool operator==(const Identity&) const = default;
    std::size_t hash() const { return hash_of(vrf, number_of(mac), vlan, inner_vlan); }
  };
  static Identity identity_of(const L3Interface& interface) {
    return {interface.vrf, interface.mac, interface.vlan, interface.inner_vlan};
  }

  void index(int id, const L3Interface& interface) {
    by_vlan_.emplace(interface.vlan, id);
    if ((interface.flags & L3Interface::in_mac_table) != 0)
      by_station_[station_of(interface.vlan, interface.mac)].insert(id);
  }

  static uint64_t station_of(int vlan, const Mac& mac) { return number_of(mac) << 12 | static_cast<uint64_t>(vlan); }

  KeyedSlots<L3Interface, identity_of> interfaces_{first_id, capacity};
  std::set<std::pair<int, int>> by_vlan_;          // (VLAN, id)
  HashIndex<uint64_t, std::set<int>> by_station_;  // the ids of those in the MAC table
};

}  // namespace chip
