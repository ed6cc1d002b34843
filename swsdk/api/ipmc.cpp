#include <bcm/ipmc.h>

#include <tuple>

#include "api/call.h"
#include "api/convert.h"

using api::Call;
using api::in;
using api::inout;
using chip::Chip;
using chip::Status;

namespace {

constexpr auto route_fields() {
  using Sdk = bcm_ipmc_addr_t;
  using Own = chip::MulticastRoute;
  return std::tuple{
      std::pair{&Sdk::cos, &Own::queue},
      std::pair{&Sdk::ts, &Own::source_port_check},
      std::pair{&Sdk::port_tgid, &Own::port},
      std::pair{&Sdk::v, &Own::valid},
      std::pair{&Sdk::mod_id, &Own::module},
      std::pair{&Sdk::group, &Own::group},
      std::pair{&Sdk::flags, &Own::flags},
      std::pair{&Sdk::lookup_class, &Own::lookup_class},
      std::pair{&Sdk::l3a_intf, &Own::interface},
      std::pair{&Sdk::rp_id, &Own::rendezvous_point},
      std::pair{&Sdk::s_ip_mask, &Own::source_mask},
      std::pair{&Sdk::ing_intf, &Own::ingress_interface},
      std::pair{&Sdk::mc_ip_mask, &Own::address_mask},
      std::pair{&Sdk::mc_ip6_mask, &Own::address_mask6},
      std::pair{&Sdk::group_l2, &Own::group_l2},
      std::pair{&Sdk::s_ip6_mask, &Own::source_mask6},
      std::pair{&Sdk::priority, &Own::priority},
  };
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
  return Call(__func__, unit, in(data)).answer([&](Chip& chip) {
    const chip::MulticastGroup* const group = chip.multicast_groups.find(data->group);
    if (group == nullptr) return chip.multicast_groups.absent(data->group);
    if (group->type != chip::MulticastGroups::l3) return Status::bad_parameter;
    return chip.multicast_routes.add(key_of(*data), api::to_own<chip::MulticastRoute>(*data, route_fields()));
  });
}

int bcm_ipmc_enable(int unit, int enable) {
  return Call(__func__, unit, enable).answer([&](Chip& chip) {
    chip.multicast_routing = enable != 0;
    return Status::ok;
  });
}

int bcm_ipmc_find(int unit, bcm_ipmc_addr_t* data) {
  return Call(__func__, unit, inout(data)).answer([&](const Chip& chip) {
    chip::MulticastRoute found;
    const Status status = chip.multicast_routes.find(key_of(*data), found);
    if (status == Status::ok) api::write(found, route_fields(), *data);
    return status;
  });
}

int bcm_ipmc_init(int unit) {
  return Call(__func__, unit).answer([](Chip& chip) {
    chip.multicast_routes.clear();
    return Status::ok;
  });
}

int bcm_ipmc_remove(int unit, bcm_ipmc_addr_t* data) {
  return Call(__func__, unit, in(data)).answer([&](Chip& chip) { return chip.multicast_routes.remove(key_of(*data)); });
}
