#include <bcm/ipmc.h>

#include <algorithm>
#include <cstddef>
#include <span>
#include <tuple>

#include "api/call.h"
#include "api/convert.h"

using api::Call;
using api::found_by;
using api::in;
using api::key;
using chip::Chip;
using chip::Status;

namespace {

constexpr auto route_fields() {
  using Sdk = bcm_ipmc_addr_t;
  using Own = chip::MulticastRoute;
  return std::tuple{
      std::pair{&Sdk::port_tgid, &Own::from},     std::pair{&Sdk::v, &Own::valid},
      std::pair{&Sdk::group, &Own::group},        std::pair{&Sdk::flags, &Own::flags},
      std::pair{&Sdk::l3a_intf, &Own::interface},
  };
}

/// Routes are found by whole addresses. Their masks can be all ones, or be left at 0.
template <class Mask>
bool is_whole(const Mask& mask) {
  const auto bytes = std::as_bytes(std::span(&mask, 1));
  return (bytes.front() == std::byte{0} || bytes.front() == std::byte{0xFF}) &&
         std::all_of(bytes.begin(), bytes.end(), [&](std::byte byte) { return byte == bytes.front(); });
}

chip::Ip6 widened(bcm_ip_t address) {
  return {static_cast<uint8>(address >> 24), static_cast<uint8>(address >> 16), static_cast<uint8>(address >> 8),
          static_cast<uint8>(address)};
}

chip::MulticastRouteKey key_of(const bcm_ipmc_addr_t& data) {
  const bool ip6 = (data.flags & BCM_IPMC_IP6) != 0;
  return {.vrf = data.vrf,
          .vlan = data.vid,
          .ip6 = ip6,
          .address = ip6 ? api::address(data.mc_ip6_addr) : widened(data.mc_ip_addr),
          .source = ip6 ? api::address(data.s_ip6_addr) : widened(data.s_ip_addr)};
}

}  // namespace

int bcm_ipmc_add(int unit, bcm_ipmc_addr_t* data) {
  return Call(calls::bcm_ipmc_add(unit, data)).answer([&](Chip& chip) {
    if (!is_whole(data->s_ip_mask) || !is_whole(data->mc_ip_mask) || !is_whole(data->s_ip6_mask) ||
        !is_whole(data->mc_ip6_mask))
      return Status::unavailable;
    const chip::GroupId id = chip::GroupId::of(data->group);
    const chip::MulticastGroup* const group = chip.multicast_groups.find(id);
    if (group == nullptr) return chip.multicast_groups.absent(id);
    if (group->type != chip::MulticastGroups::l3) return Status::bad_parameter;
    return chip.multicast_routes.add(key_of(*data), api::to_own<chip::MulticastRoute>(*data, route_fields()));
  });
}

int bcm_ipmc_enable(int unit, int enable) {
  return Call(calls::bcm_ipmc_enable(unit, enable)).answer([&](Chip& chip) {
    chip.multicast_routing = enable != 0;
    return Status::ok;
  });
}

int bcm_ipmc_find(int unit, bcm_ipmc_addr_t* data) {
  return Call(calls::bcm_ipmc_find(unit, data)).answer([&](const Chip& chip) {
    const chip::MulticastRouteKey key = key_of(*data);
    const chip::MulticastRoute* const found = chip.multicast_routes.find(key);
    if (found == nullptr) return chip.multicast_routes.absent(key);
    api::write(*found, route_fields(), *data);
    return Status::ok;
  });
}

int bcm_ipmc_init(int unit) {
  return Call(calls::bcm_ipmc_init(unit)).answer([](Chip& chip) {
    chip.multicast_routes.clear();
    return Status::ok;
  });
}

int bcm_ipmc_remove(int unit, bcm_ipmc_addr_t* data) {
  return Call(calls::bcm_ipmc_remove(unit, data)).answer([&](Chip& chip) {
    return chip.multicast_routes.remove(key_of(*data));
  });
}
