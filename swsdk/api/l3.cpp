#include <bcm/l3.h>

#include <algorithm>
#include <optional>
#include <tuple>

#include "api/call.h"
#include "api/convert.h"
#include "api/gports.h"

using api::Call;
using api::found_by;
using api::hex;
using api::in;
using api::inout;
using api::key;
using api::out;
using chip::Chip;
using chip::Hosts;
using chip::Routes;
using chip::Status;

namespace {

constexpr auto interface_fields() {
  using Sdk = bcm_l3_intf_t;
  using Own = chip::L3Interface;
  return std::tuple{
      std::pair{&Sdk::l3a_flags, &Own::flags},           std::pair{&Sdk::l3a_vrf, &Own::vrf},
      std::pair{&Sdk::l3a_mac_addr, &Own::mac},          std::pair{&Sdk::l3a_vid, &Own::vlan},
      std::pair{&Sdk::l3a_inner_vlan, &Own::inner_vlan}, std::pair{&Sdk::l3a_ttl, &Own::ttl},
  };
}

constexpr auto egress_fields() {
  using Sdk = bcm_l3_egress_t;
  using Own = chip::EgressObject;
  return std::tuple{
      std::pair{&Sdk::intf, &Own::interface},
      std::pair{&Sdk::mac_addr, &Own::mac},
      std::pair{&Sdk::vlan, &Own::vlan},
      std::pair{&Sdk::port, &Own::place},
  };
}

/// The fields that hosts and routes have in common.
template <class Sdk>
constexpr auto entry_fields() {
  using Own = chip::L3Entry;
  return std::tuple{
      std::pair{&Sdk::l3a_flags, &Own::flags},
      std::pair{&Sdk::l3a_intf, &Own::interface},
      std::pair{&Sdk::l3a_nexthop_mac, &Own::next_hop},
      std::pair{&Sdk::l3a_port_tgid, &Own::place},
  };
}

constexpr auto fields_of(const bcm_l3_host_t*) { return entry_fields<bcm_l3_host_t>(); }

constexpr auto fields_of(const bcm_l3_route_t*) {
  using Sdk = bcm_l3_route_t;
  using Own = chip::L3Entry;
  return std::tuple_cat(entry_fields<Sdk>(), std::tuple{
                                                 std::pair{&Sdk::l3a_nexthop_ip, &Own::next_hop_ip},
                                                 std::pair{&Sdk::l3a_vid, &Own::vlan},
                                             });
}

bool is_replacing(uint32 flags) { return (flags & BCM_L3_REPLACE) != 0; }

/// The chip's entry of a host or route. Flags that only control the call itself are not kept.
template <class Sdk>
chip::L3Entry to_entry(const Sdk& sdk) {
  auto entry = api::to_own<chip::L3Entry>(sdk, fields_of(&sdk));
  entry.flags &= ~static_cast<uint32>(BCM_L3_REPLACE | BCM_L3_HIT_CLEAR | BCM_L3_HIT);
  return entry;
}

/// Looks `key` up and returns the entry to the caller, whose flags say whether to clear the hits.
template <class Table, class Key, class Sdk>
Status find(Table& table, const Key& key, Sdk& sdk) {
  chip::L3Entry* const found = table.find(key);
  if (found == nullptr) return Status::not_found;
  const bool clears = (sdk.l3a_flags & BCM_L3_HIT_CLEAR) != 0;
  api::write(*found, fields_of(&sdk), sdk);
  sdk.l3a_flags |= found->hit;
  if (clears) found->hit = 0;
  return Status::ok;
}

bool is_ip6(const bcm_ip6_t& address) {
  return std::any_of(std::begin(address), std::end(address), [](uint8 byte) { return byte != 0; });
}

/// Whether frames can be sent there: to an existing port or virtual port, or to any trunk.
bool is_destination(const Chip& chip, const chip::Place& place) {
  return std::visit(chip::ByKind{
                        [&](chip::Port port) { return chip.ports.has(port); },
                        [](chip::TrunkId) { return true; },
                        [&](chip::VirtualPortId id) { return chip.virtual_ports.find(id) != nullptr; },
                    },
                    place);
}

/// Why an entry leads nowhere, or ok: it leads to an interface or an egress object, and from there to a port.
template <class Sdk>
Status check_target(const Chip& chip, const Sdk& sdk) {
  if (chip.l3_interfaces.find(sdk.l3a_intf) == nullptr && chip.egress_objects.find(sdk.l3a_intf) == nullptr)
    return Status::not_found;
  return is_destination(chip, api::place_of(sdk.l3a_port_tgid)) ? Status::ok : Status::bad_port;
}

chip::HostKey key_of(const bcm_l3_host_t& host) { return {host.l3a_vrf, host.l3a_ip_addr}; }

/// The result of `body` on the chip's hosts, which are IPv4 hosts.
template <class Body>
Status on_hosts(Chip& chip, const bcm_l3_host_t& host, Body body) {
  return is_ip6(host.l3a_ip6_addr) ? Status::unavailable : body(chip.hosts, key_of(host));
}

/// The result of `body` on the chip's routes, which are IPv4 routes.
template <class Body>
Status on_routes(Chip& chip, const bcm_l3_route_t& route, Body body) {
  if (is_ip6(route.l3a_ip6_net) || is_ip6(route.l3a_ip6_mask)) return Status::unavailable;
  const std::optional<chip::RouteKey> key = Routes::key_of(route.l3a_vrf, route.l3a_subnet, route.l3a_ip_mask);
  return key ? body(chip.routes, *key) : Status::bad_parameter;
}

/// The result of `body` on the chip's egress objects, which exist only in egress mode.
template <class Body>
Status on_egress_objects(Chip& chip, Body body) {
  const bool is_on = chip.switch_controls.is_on(chip::SwitchControlOfChip::l3_egress_mode);
  return is_on ? body(chip.egress_objects) : Status::disabled;
}

/// Returns the interface of that id to the caller.
Status tell_interface(const Chip& chip, int id, bcm_l3_intf_t& interface) {
  const chip::L3Interface* const found = chip.l3_interfaces.find(id);
  if (found == nullptr) return chip.l3_interfaces.absent(id);
  api::write(*found, interface_fields(), interface);
  interface.l3a_intf_id = id;
  return Status::ok;
}

}  // namespace

int bcm_l3_egress_create(int unit, uint32 flags, bcm_l3_egress_t* egr, bcm_if_t* if_id) {
  return Call(calls::bcm_l3_egress_create(unit, flags, egr, if_id)).answer([&](Chip& chip) {
    return on_egress_objects(chip, [&](chip::EgressObjects& objects) {
      if (flags != 0) return Status::unavailable;
      const auto object = api::to_own<chip::EgressObject>(*egr, egress_fields());
      if (chip.l3_interfaces.find(object.interface) == nullptr) return chip.l3_interfaces.absent(object.interface);
      return is_destination(chip, object.place) ? objects.create(object, *if_id) : Status::bad_port;
    });
  });
}

int bcm_l3_egress_destroy(int unit, bcm_if_t intf) {
  return Call(calls::bcm_l3_egress_destroy(unit, intf)).answer([&](Chip& chip) {
    return on_egress_objects(chip, [&](chip::EgressObjects& objects) {
      return chip.hosts.uses(intf) + chip.routes.uses(intf) > 0 ? Status::busy : objects.remove(intf);
    });
  });
}

int bcm_l3_egress_find(int unit, bcm_l3_egress_t* egr, bcm_if_t* intf) {
  return Call(calls::bcm_l3_egress_find(unit, egr, intf)).answer([&](Chip& chip) {
    return on_egress_objects(chip, [&](const chip::EgressObjects& objects) {
      const auto wanted = api::to_own<chip::EgressObject>(*egr, egress_fields());
      return api::tell(objects.find_same(wanted), Status::not_found, *intf);
    });
  });
}

int bcm_l3_egress_get(int unit, bcm_if_t intf, bcm_l3_egress_t* egr) {
  return Call(calls::bcm_l3_egress_get(unit, intf, egr)).answer([&](Chip& chip) {
    return on_egress_objects(chip, [&](const chip::EgressObjects& objects) {
      const chip::EgressObject* const found = objects.find(intf);
      if (found == nullptr) return objects.absent(intf);
      api::write(*found, egress_fields(), *egr);
      return Status::ok;
    });
  });
}

int bcm_l3_enable_set(int unit, int enable) {
  return Call(calls::bcm_l3_enable_set(unit, enable)).answer([&](Chip& chip) {
    chip.unicast_routing = enable != 0;
    return Status::ok;
  });
}

int bcm_l3_host_add(int unit, bcm_l3_host_t* info) {
  return Call(calls::bcm_l3_host_add(unit, info)).answer([&](Chip& chip) {
    return on_hosts(chip, *info, [&](Hosts& hosts, const chip::HostKey& key) {
      const Status status = check_target(chip, *info);
      return status == Status::ok ? hosts.add(key, to_entry(*info), is_replacing(info->l3a_flags)) : status;
    });
  });
}

int bcm_l3_host_delete(int unit, bcm_l3_host_t* ip_addr) {
  return Call(calls::bcm_l3_host_delete(unit, ip_addr)).answer([&](Chip& chip) {
    return on_hosts(chip, *ip_addr, [](Hosts& hosts, const chip::HostKey& key) { return hosts.remove(key); });
  });
}

int bcm_l3_host_find(int unit, bcm_l3_host_t* info) {
  return Call(calls::bcm_l3_host_find(unit, info)).answer([&](Chip& chip) {
    return on_hosts(chip, *info, [&](Hosts& hosts, const chip::HostKey& key) { return find(hosts, key, *info); });
  });
}

int bcm_l3_intf_create(int unit, bcm_l3_intf_t* intf) {
  return Call(calls::bcm_l3_intf_create(unit, intf)).answer([&](Chip& chip) {
    return chip.l3_interfaces.create(api::to_own<chip::L3Interface>(*intf, interface_fields()), intf->l3a_intf_id);
  });
}

int bcm_l3_intf_delete(int unit, bcm_l3_intf_t* intf) {
  return Call(calls::bcm_l3_intf_delete(unit, intf)).answer([&](Chip& chip) {
    return chip.l3_interfaces.remove(intf->l3a_intf_id);
  });
}

int bcm_l3_intf_delete_all(int unit) {
  return Call(calls::bcm_l3_intf_delete_all(unit)).answer([](Chip& chip) {
    chip.l3_interfaces.clear();
    return Status::ok;
  });
}

int bcm_l3_intf_find(int unit, bcm_l3_intf_t* intf) {
  return Call(calls::bcm_l3_intf_find(unit, intf)).answer([&](Chip& chip) {
    if (intf->l3a_intf_id != 0) return tell_interface(chip, intf->l3a_intf_id, *intf);
    const auto wanted = api::to_own<chip::L3Interface>(*intf, interface_fields());
    const std::optional<int> id = chip.l3_interfaces.find_same(wanted);
    return id ? tell_interface(chip, *id, *intf) : Status::not_found;
  });
}

int bcm_l3_intf_find_vlan(int unit, bcm_l3_intf_t* intf) {
  return Call(calls::bcm_l3_intf_find_vlan(unit, intf)).answer([&](Chip& chip) {
    if (!chip::is_vlan(intf->l3a_vid)) return Status::bad_parameter;
    const std::optional<int> id = chip.l3_interfaces.find_by_vlan(intf->l3a_vid);
    return id ? tell_interface(chip, *id, *intf) : Status::not_found;
  });
}

int bcm_l3_route_add(int unit, bcm_l3_route_t* info) {
  return Call(calls::bcm_l3_route_add(unit, info)).answer([&](Chip& chip) {
    return on_routes(chip, *info, [&](Routes& routes, const chip::RouteKey& key) {
      const Status status = check_target(chip, *info);
      return status == Status::ok ? routes.add(key, to_entry(*info), is_replacing(info->l3a_flags)) : status;
    });
  });
}

int bcm_l3_route_delete(int unit, bcm_l3_route_t* info) {
  return Call(calls::bcm_l3_route_delete(unit, info)).answer([&](Chip& chip) {
    return on_routes(chip, *info, [](Routes& routes, const chip::RouteKey& key) { return routes.remove(key); });
  });
}

int bcm_l3_route_get(int unit, bcm_l3_route_t* info) {
  return Call(calls::bcm_l3_route_get(unit, info)).answer([&](Chip& chip) {
    return on_routes(chip, *info, [&](Routes& routes, const chip::RouteKey& key) { return find(routes, key, *info); });
  });
}
