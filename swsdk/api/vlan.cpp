#include <bcm/vlan.h>

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
using api::out;
using api::place_of;
using api::port_of;
using api::ports;
using api::virtual_port_of;
using chip::Chip;
using chip::Status;
using chip::VirtualPortId;

namespace {

/// Each field of the SDK's VLAN control record with the chip's corresponding field.
constexpr auto control_fields() {
  using Sdk = bcm_vlan_control_vlan_t;
  using Own = chip::VlanControl;
  return std::tuple{
      std::pair{&Sdk::flags, &Own::flags},
      std::pair{&Sdk::ip6_mcast_flood_mode, &Own::ip6_multicast_flood_mode},
      std::pair{&Sdk::ip4_mcast_flood_mode, &Own::ip4_multicast_flood_mode},
      std::pair{&Sdk::l2_mcast_flood_mode, &Own::l2_multicast_flood_mode},
      std::pair{&Sdk::broadcast_group, &Own::broadcast_group},
      std::pair{&Sdk::unknown_multicast_group, &Own::unknown_multicast_group},
      std::pair{&Sdk::unknown_unicast_group, &Own::unknown_unicast_group},
  };
}

constexpr auto virtual_port_fields() {
  using Sdk = bcm_vlan_port_t;
  using Own = chip::VirtualPort;
  return std::tuple{
      std::pair{&Sdk::criteria, &Own::criteria},
      std::pair{&Sdk::flags, &Own::flags},
      std::pair{&Sdk::match_vlan, &Own::match_vlan},
      std::pair{&Sdk::match_inner_vlan, &Own::match_inner_vlan},
      std::pair{&Sdk::port, &Own::port},
      std::pair{&Sdk::egress_vlan, &Own::egress_vlan},
      std::pair{&Sdk::egress_inner_vlan, &Own::egress_inner_vlan},
      std::pair{&Sdk::ingress_network_group_id, &Own::ingress_network_group},
      std::pair{&Sdk::egress_network_group_id, &Own::egress_network_group},
  };
}

chip::EgressAction to_chip(const bcm_vlan_action_set_t& sdk) {
  const auto change = [](bcm_vlan_action_t vlan, bcm_vlan_action_t priority, bcm_vlan_action_t packet_priority,
                         bcm_vlan_action_t cfi) {
    using chip::TagAction;
    return chip::TagChange{TagAction(vlan), TagAction(priority), TagAction(packet_priority), TagAction(cfi)};
  };
  constexpr bcm_vlan_action_t no_such_field = bcmVlanActionNone;
  return {
      .double_tagged = {change(sdk.dt_outer, sdk.dt_outer_prio, sdk.dt_outer_pkt_prio, sdk.dt_outer_cfi),
                        change(sdk.dt_inner, sdk.dt_inner_prio, sdk.dt_inner_pkt_prio, sdk.dt_inner_cfi)},
      .outer_tagged = {change(sdk.ot_outer, sdk.ot_outer_prio, sdk.ot_outer_pkt_prio, sdk.ot_outer_cfi),
                       change(sdk.ot_inner, no_such_field, sdk.ot_inner_pkt_prio, sdk.ot_inner_cfi)},
      .inner_tagged = {change(sdk.it_outer, no_such_field, sdk.it_outer_pkt_prio, sdk.it_outer_cfi),
                       change(sdk.it_inner, sdk.it_inner_prio, sdk.it_inner_pkt_prio, sdk.it_inner_cfi)},
      .untagged = {change(sdk.ut_outer, no_such_field, sdk.ut_outer_pkt_prio, sdk.ut_outer_cfi),
                   change(sdk.ut_inner, no_such_field, sdk.ut_inner_pkt_prio, sdk.ut_inner_cfi)},
      .outer_vlan = sdk.new_outer_vlan,
      .inner_vlan = sdk.new_inner_vlan,
      .priority = sdk.priority,
      .inner_packet_priority = sdk.new_inner_pkt_prio,
      .outer_cfi = sdk.new_outer_cfi,
      .inner_cfi = sdk.new_inner_cfi,
  };
}

/// Returns a translation that was found to the caller. `absent`: the status when none was found.
Status tell(const chip::Translation* found, Status absent, bcm_vlan_t* vlan, int* priority) {
  if (found == nullptr) return absent;
  *vlan = found->vlan;
  *priority = found->priority;
  return Status::ok;
}

/// The subnet of an entry, or nothing when it is not a valid subnet.
std::optional<chip::Subnet> subnet_of(const bcm_vlan_ip_t& entry) {
  if ((entry.flags & ~static_cast<uint32>(BCM_VLAN_SUBNET_IP6)) != 0) return std::nullopt;
  return entry.flags & BCM_VLAN_SUBNET_IP6 ? chip::subnet_of_ip6(api::address(entry.ip6), entry.prefix)
                                           : chip::subnet_of_ip4(entry.ip4, entry.mask);
}

}  // namespace

int bcm_vlan_control_port_get(int unit, int port, bcm_vlan_control_port_t type, int* arg) {
  return Call(calls::bcm_vlan_control_port_get(unit, port, type, arg)).answer([&](Chip& chip) {
    const chip::Port of = port_of(port);
    return api::tell(chip.vlan_controls.find(of, type), chip.vlan_controls.absent(of, type), *arg);
  });
}

int bcm_vlan_control_port_set(int unit, int port, bcm_vlan_control_port_t type, int arg) {
  return Call(calls::bcm_vlan_control_port_set(unit, port, type, arg)).answer([&](Chip& chip) {
    return chip.vlan_controls.set_port(port_of(port), type, arg);
  });
}

int bcm_vlan_control_set(int unit, bcm_vlan_control_t type, int arg) {
  return Call(calls::bcm_vlan_control_set(unit, type, arg)).answer([&](Chip& chip) {
    return chip.vlan_controls.set(type, arg);
  });
}

int bcm_vlan_control_vlan_get(int unit, bcm_vlan_t vlan, bcm_vlan_control_vlan_t* control) {
  return Call(calls::bcm_vlan_control_vlan_get(unit, vlan, control)).answer([&](Chip& chip) {
    const chip::Vlan* const found = chip.vlans.find(vlan);
    if (found == nullptr) return chip.vlans.absent(vlan);
    api::write(found->control, control_fields(), *control);
    return Status::ok;
  });
}

int bcm_vlan_control_vlan_set(int unit, bcm_vlan_t vlan, bcm_vlan_control_vlan_t control) {
  return Call(calls::bcm_vlan_control_vlan_set(unit, vlan, control)).answer([&](Chip& chip) {
    return chip.vlans.set_control(vlan, api::to_own<chip::VlanControl>(control, control_fields()));
  });
}

int bcm_vlan_create(int unit, bcm_vlan_t vid) {
  return Call(calls::bcm_vlan_create(unit, vid)).answer([&](Chip& chip) { return chip.vlans.create(vid); });
}

int bcm_vlan_destroy(int unit, bcm_vlan_t vid) {
  return Call(calls::bcm_vlan_destroy(unit, vid)).answer([&](Chip& chip) { return chip.vlans.destroy(vid); });
}

int bcm_vlan_destroy_all(int unit) {
  return Call(calls::bcm_vlan_destroy_all(unit)).answer([&](Chip& chip) { return chip.vlans.destroy_all(); });
}

int bcm_vlan_dtag_add(int unit, int port, bcm_vlan_t old_vid, bcm_vlan_t new_vid, int prio) {
  return Call(calls::bcm_vlan_dtag_add(unit, port, old_vid, new_vid, prio)).answer([&](Chip& chip) {
    return chip.vlan_translations.add_outer(port_of(port), old_vid, old_vid, {new_vid, prio});
  });
}

int bcm_vlan_dtag_delete(int unit, int port, bcm_vlan_t old_vid) {
  return Call(calls::bcm_vlan_dtag_delete(unit, port, old_vid)).answer([&](Chip& chip) {
    return chip.vlan_translations.remove_outer(port_of(port), old_vid, old_vid);
  });
}

int bcm_vlan_dtag_range_add(int unit, int port, bcm_vlan_t old_vid_low, bcm_vlan_t old_vid_high, bcm_vlan_t new_vid,
                            int int_prio) {
  return Call(calls::bcm_vlan_dtag_range_add(unit, port, old_vid_low, old_vid_high, new_vid, int_prio))
      .answer([&](Chip& chip) {
        return chip.vlan_translations.add_outer(port_of(port), old_vid_low, old_vid_high, {new_vid, int_prio});
      });
}

int bcm_vlan_dtag_range_delete(int unit, int port, bcm_vlan_t old_vid_low, bcm_vlan_t old_vid_high) {
  return Call(calls::bcm_vlan_dtag_range_delete(unit, port, old_vid_low, old_vid_high)).answer([&](Chip& chip) {
    return chip.vlan_translations.remove_outer(port_of(port), old_vid_low, old_vid_high);
  });
}

int bcm_vlan_gport_add(int unit, bcm_vlan_t vlan, bcm_gport_t port, int flags) {
  return Call(calls::bcm_vlan_gport_add(unit, vlan, port, flags)).answer([&](Chip& chip) {
    if (flags != 0) return Status::unavailable;
    const std::optional<VirtualPortId> id = virtual_port_of(port);
    if (!id) return chip.ports.has(port_of(port)) ? chip.vlans.add_ports(vlan, {port_of(port)}, {}) : Status::bad_port;
    const bool known = chip.virtual_ports.find(*id) != nullptr;
    return known ? chip.vlans.add_virtual_port(vlan, *id) : chip.virtual_ports.absent(*id);
  });
}

/// A destroyed virtual port can still be a member, and be removed.
int bcm_vlan_gport_delete(int unit, bcm_vlan_t vlan, bcm_gport_t port) {
  return Call(calls::bcm_vlan_gport_delete(unit, vlan, port)).answer([&](Chip& chip) {
    if (const std::optional<VirtualPortId> id = virtual_port_of(port)) return chip.vlans.remove_virtual_port(vlan, *id);
    return chip.ports.has(port_of(port)) ? chip.vlans.remove_ports(vlan, {port_of(port)}) : Status::bad_port;
  });
}

int bcm_vlan_init(int unit) {
  return Call(calls::bcm_vlan_init(unit)).answer([&](Chip& chip) {
    chip.vlans.reset();
    return Status::ok;
  });
}

int bcm_vlan_ip_add(int unit, bcm_vlan_ip_t* vlan_ip) {
  return Call(calls::bcm_vlan_ip_add(unit, vlan_ip)).answer([&](Chip& chip) {
    const std::optional<chip::Subnet> subnet = subnet_of(*vlan_ip);
    return subnet ? chip.subnet_vlans.add(*subnet, {vlan_ip->vid, vlan_ip->prio}) : Status::bad_parameter;
  });
}

int bcm_vlan_ip_delete(int unit, bcm_vlan_ip_t* vlan_ip) {
  return Call(calls::bcm_vlan_ip_delete(unit, vlan_ip)).answer([&](Chip& chip) {
    const std::optional<chip::Subnet> subnet = subnet_of(*vlan_ip);
    return subnet ? chip.subnet_vlans.remove(*subnet) : Status::bad_parameter;
  });
}

int bcm_vlan_ip_delete_all(int unit) {
  return Call(calls::bcm_vlan_ip_delete_all(unit)).answer([](Chip& chip) {
    chip.subnet_vlans.clear();
    return Status::ok;
  });
}

int bcm_vlan_mac_add(int unit, uint8* mac, bcm_vlan_t vid, int prio) {
  return Call(calls::bcm_vlan_mac_add(unit, mac, vid, prio)).answer([&](Chip& chip) {
    return chip.mac_vlans.add(api::mac_at(mac), {vid, prio});
  });
}

int bcm_vlan_mac_delete(int unit, uint8* mac) {
  return Call(calls::bcm_vlan_mac_delete(unit, mac)).answer([&](Chip& chip) {
    return chip.mac_vlans.remove(api::mac_at(mac));
  });
}

int bcm_vlan_mac_delete_all(int unit) {
  return Call(calls::bcm_vlan_mac_delete_all(unit)).answer([](Chip& chip) {
    chip.mac_vlans.clear();
    return Status::ok;
  });
}

int bcm_vlan_mcast_flood_set(int unit, bcm_vlan_t vlan, bcm_vlan_mcast_flood_t mode) {
  return Call(calls::bcm_vlan_mcast_flood_set(unit, vlan, mode)).answer([&](Chip& chip) {
    using Control = chip::VlanControl;
    return chip.vlans.set_multicast_flood(
        vlan,
        {&Control::l2_multicast_flood_mode, &Control::ip4_multicast_flood_mode, &Control::ip6_multicast_flood_mode},
        mode);
  });
}

int bcm_vlan_port_add(int unit, bcm_vlan_t vid, bcm_pbmp_t pbmp, bcm_pbmp_t ubmp) {
  return Call(calls::bcm_vlan_port_add(unit, vid, pbmp, ubmp)).answer([&](Chip& chip) {
    return chip.vlans.add_ports(vid, ports(pbmp), ports(ubmp));
  });
}

int bcm_vlan_port_create(int unit, bcm_vlan_port_t* vlan_port) {
  return Call(calls::bcm_vlan_port_create(unit, vlan_port)).answer([&](Chip& chip) {
    VirtualPortId id;
    const Status status =
        chip.virtual_ports.create(api::to_own<chip::VirtualPort>(*vlan_port, virtual_port_fields()), id);
    if (status == Status::ok) vlan_port->vlan_port_id = api::gport_of(id);
    return status;
  });
}

int bcm_vlan_port_destroy(int unit, bcm_gport_t gport) {
  return Call(calls::bcm_vlan_port_destroy(unit, gport)).answer([&](Chip& chip) {
    const std::optional<VirtualPortId> id = virtual_port_of(gport);
    return id ? chip.virtual_ports.destroy(*id) : Status::bad_port;
  });
}

int bcm_vlan_port_find(int unit, bcm_vlan_port_t* vlan_port) {
  return Call(calls::bcm_vlan_port_find(unit, vlan_port)).answer([&](const Chip& chip) {
    std::optional<VirtualPortId> id;
    if (vlan_port->vlan_port_id != 0) {
      id = virtual_port_of(vlan_port->vlan_port_id);
      if (!id) return Status::bad_port;
    } else {
      const auto wanted = api::to_own<chip::VirtualPort>(*vlan_port, virtual_port_fields());
      id = chip.virtual_ports.find_match(wanted);
      if (!id) return chip.virtual_ports.absent_match(wanted);
    }
    const chip::VirtualPort* const found = chip.virtual_ports.find(*id);
    if (found == nullptr) return chip.virtual_ports.absent(*id);
    api::write(*found, virtual_port_fields(), *vlan_port);
    vlan_port->vlan_port_id = api::gport_of(*id);
    return Status::ok;
  });
}

int bcm_vlan_port_remove(int unit, bcm_vlan_t vid, bcm_pbmp_t pbmp) {
  return Call(calls::bcm_vlan_port_remove(unit, vid, pbmp)).answer([&](Chip& chip) {
    return chip.vlans.remove_ports(vid, ports(pbmp));
  });
}

int bcm_vlan_translate_add(int unit, int port, bcm_vlan_t old_vid, bcm_vlan_t new_vid, int prio) {
  return Call(calls::bcm_vlan_translate_add(unit, port, old_vid, new_vid, prio)).answer([&](Chip& chip) {
    return chip.vlan_translations.add(port_of(port), old_vid, {new_vid, prio});
  });
}

int bcm_vlan_translate_delete(int unit, int port, bcm_vlan_t old_vid) {
  return Call(calls::bcm_vlan_translate_delete(unit, port, old_vid)).answer([&](Chip& chip) {
    return chip.vlan_translations.remove(port_of(port), old_vid);
  });
}

int bcm_vlan_translate_egress_action_add(int unit, int port_class, bcm_vlan_t outer_vlan, bcm_vlan_t inner_vlan,
                                         bcm_vlan_action_set_t* action) {
  return Call(calls::bcm_vlan_translate_egress_action_add(unit, port_class, outer_vlan, inner_vlan, action))
      .answer([&](Chip& chip) {
        return chip.egress_actions.set({place_of(port_class), outer_vlan, inner_vlan}, to_chip(*action));
      });
}

int bcm_vlan_translate_egress_action_delete(int unit, int port_class, bcm_vlan_t outer_vlan, bcm_vlan_t inner_vlan) {
  return Call(calls::bcm_vlan_translate_egress_action_delete(unit, port_class, outer_vlan, inner_vlan))
      .answer([&](Chip& chip) {
        return chip.egress_actions.remove({place_of(port_class), outer_vlan, inner_vlan});
      });
}

int bcm_vlan_translate_egress_add(int unit, int port, bcm_vlan_t old_vid, bcm_vlan_t new_vid, int prio) {
  return Call(calls::bcm_vlan_translate_egress_add(unit, port, old_vid, new_vid, prio)).answer([&](Chip& chip) {
    return chip.vlan_translations.add_egress(port_of(port), old_vid, {new_vid, prio});
  });
}

int bcm_vlan_translate_egress_delete(int unit, int port, bcm_vlan_t old_vid) {
  return Call(calls::bcm_vlan_translate_egress_delete(unit, port, old_vid)).answer([&](Chip& chip) {
    return chip.vlan_translations.remove_egress(port_of(port), old_vid);
  });
}

int bcm_vlan_translate_egress_get(int unit, int port, bcm_vlan_t old_vid, bcm_vlan_t* new_vid, int* prio) {
  return Call(calls::bcm_vlan_translate_egress_get(unit, port, old_vid, new_vid, prio)).answer([&](Chip& chip) {
    const chip::VlanTranslations& tables = chip.vlan_translations;
    const chip::Port of = port_of(port);
    return tell(tables.find_egress(of, old_vid), tables.absent(of, old_vid), new_vid, prio);
  });
}

int bcm_vlan_translate_get(int unit, int port, bcm_vlan_t old_vid, bcm_vlan_t* new_vid, int* prio) {
  return Call(calls::bcm_vlan_translate_get(unit, port, old_vid, new_vid, prio)).answer([&](Chip& chip) {
    const chip::VlanTranslations& tables = chip.vlan_translations;
    const chip::Port of = port_of(port);
    return tell(tables.find(of, old_vid), tables.absent(of, old_vid), new_vid, prio);
  });
}
