#include <bcm/port.h>
#include <bcm/rate.h>

#include <functional>

#include "api/call.h"
#include "api/convert.h"
#include "api/events.h"
#include "api/gports.h"

using api::Call;
using api::hex;
using api::in;
using api::out;
using api::port_of;
using api::tell;
using chip::Chip;
using chip::PortForwarding;
using chip::PortMac;
using chip::RateUnit;
using chip::Status;

namespace {

/// The register space of a port's PHY that the chip models.
constexpr uint32 default_registers = 0;

/// The register at an address of that space: by clause 45 with a device above the low 16 bits, otherwise by clause 22.
chip::PhyRegisters::Key phy_register(chip::Port port, uint32 address) {
  const auto device = static_cast<int>(address >> 16);
  return {static_cast<uint32>(port.number()), device == 0 ? chip::PhyRegisters::clause22 : device, address & 0xFFFF};
}

/// A part of a port record: what its bits in the action mask do.
struct Setting {
  uint32 mask;
  Status (*apply)(Chip& chip, chip::Port port, const bcm_port_info_t& info);
};

Status apply_storm_rate(Chip& chip, chip::Port port, uint32_t kind, int enable, int limit) {
  return chip.storm_rates.set({port, kind}, enable != 0 ? kind : 0, limit);
}

// Negotiation comes after what it overrides.
constexpr Setting settings[] = {
    {BCM_PORT_ATTR_ENABLE_MASK,
     [](Chip& chip, chip::Port port, const bcm_port_info_t& info) {
       return chip.port_macs.enable(port, info.enable != 0);
     }},
    {BCM_PORT_ATTR_INTERFACE_MASK,
     [](Chip& chip, chip::Port port, const bcm_port_info_t& info) {
       return chip.port_macs.set_interface(port, info.interface);
     }},
    {BCM_PORT_ATTR_SPEED_MASK, [](Chip& chip, chip::Port port,
                                  const bcm_port_info_t& info) { return chip.port_macs.set_speed(port, info.speed); }},
    {BCM_PORT_ATTR_DUPLEX_MASK,
     [](Chip& chip, chip::Port port, const bcm_port_info_t& info) {
       return chip.port_macs.set_duplex(port, info.duplex);
     }},
    {BCM_PORT_ATTR_LOCAL_ADVERT_MASK,
     [](Chip& chip, chip::Port port, const bcm_port_info_t& info) {
       return chip.port_macs.advertise(port, info.local_advert);
     }},
    {BCM_PORT_ATTR_AUTONEG_MASK,
     [](Chip& chip, chip::Port port, const bcm_port_info_t& info) {
       return chip.port_macs.negotiate(port, info.autoneg != 0);
     }},
    {BCM_PORT_ATTR_RATE_MCAST_MASK,
     [](Chip& chip, chip::Port port, const bcm_port_info_t& info) {
       return apply_storm_rate(chip, port, BCM_RATE_MCAST, info.mcast_limit_enable, info.mcast_limit);
     }},
    {BCM_PORT_ATTR_RATE_BCAST_MASK,
     [](Chip& chip, chip::Port port, const bcm_port_info_t& info) {
       return apply_storm_rate(chip, port, BCM_RATE_BCAST, info.bcast_limit_enable, info.bcast_limit);
     }},
    {BCM_PORT_ATTR_RATE_DLFBC_MASK,
     [](Chip& chip, chip::Port port, const bcm_port_info_t& info) {
       return apply_storm_rate(chip, port, BCM_RATE_DLF, info.dlfbc_limit_enable, info.dlfbc_limit);
     }},
    // The caller cannot set what the port reports of its link and its partner.
    {BCM_PORT_ATTR_LINKSTAT_MASK | BCM_PORT_ATTR_REMOTE_ADVERT_MASK,
     [](Chip&, chip::Port, const bcm_port_info_t&) { return Status::ok; }},
};

/// Applies the settings that the action masks select, up to the first that is refused.
Status apply(Chip& chip, chip::Port port, const bcm_port_info_t& info) {
  if (!chip.ports.ethernet().contains(port)) return Status::bad_port;
  uint32 unknown = info.action_mask;
  for (const Setting& setting : settings) unknown &= ~setting.mask;
  if (unknown != 0 || info.action_mask2 != 0) return Status::unavailable;
  for (const Setting& setting : settings)
    if ((info.action_mask & setting.mask) != 0)
      if (const Status status = setting.apply(chip, port, info); status != Status::ok) return status;
  return Status::ok;
}

/// Returns a member of a port's record to the caller, for example &PortMac::speed.
template <class Found, class Member, class Value>
Status tell_member(const Found* found, Member member, Value& value) {
  if (found == nullptr) return Status::bad_port;
  value = static_cast<Value>(std::invoke(member, *found));
  return Status::ok;
}

/// Returns the limit of a port to the caller. A limit in one unit of measure cannot be read in the other.
Status tell_rate(const chip::PortRate* found, RateUnit unit, uint32& rate, uint32& burst) {
  if (found == nullptr) return Status::bad_port;
  if (found->is_limit() && found->unit != unit) return Status::bad_configuration;
  rate = found->rate;
  burst = found->burst;
  return Status::ok;
}

}  // namespace

int bcm_port_autoneg_get(int unit, bcm_port_t port, int* autoneg) {
  return Call(calls::bcm_port_autoneg_get(unit, port, autoneg)).answer([&](Chip& chip) {
    return tell_member(chip.port_macs.find(port_of(port)), &PortMac::negotiates, *autoneg);
  });
}

int bcm_port_autoneg_set(int unit, bcm_port_t port, int autoneg) {
  return Call(calls::bcm_port_autoneg_set(unit, port, autoneg)).answer([&](Chip& chip) {
    return chip.port_macs.negotiate(port_of(port), autoneg != 0);
  });
}

int bcm_port_config_get(int unit, bcm_port_config_t* config) {
  return Call(calls::bcm_port_config_get(unit, config)).answer([&](const Chip& chip) {
    chip::PortSet gigabit;
    chip::PortSet uplinks;
    for (const chip::Port port : chip.ports.ethernet()) (chip::Ports::is_uplink(port) ? uplinks : gigabit).add(port);
    bcm_port_config_t_init(config);
    config->ge = api::bitmap(gigabit);
    config->xe = api::bitmap(uplinks);
    config->e = api::bitmap(chip.ports.ethernet());
    config->cpu = api::bitmap(chip.ports.all() - chip.ports.ethernet());
    config->all = api::bitmap(chip.ports.all());
    return Status::ok;
  });
}

int bcm_port_duplex_get(int unit, bcm_port_t port, int* duplex) {
  return Call(calls::bcm_port_duplex_get(unit, port, duplex)).answer([&](Chip& chip) {
    return tell_member(chip.port_macs.find(port_of(port)), &PortMac::duplex, *duplex);
  });
}

int bcm_port_duplex_set(int unit, bcm_port_t port, int duplex) {
  return Call(calls::bcm_port_duplex_set(unit, port, duplex)).answer([&](Chip& chip) {
    return chip.port_macs.set_duplex(port_of(port), duplex);
  });
}

int bcm_port_egress_get(int unit, bcm_port_t port, int modid, bcm_pbmp_t* pbmp) {
  return Call(calls::bcm_port_egress_get(unit, port, modid, pbmp)).answer([&](Chip& chip) {
    if (modid != api::my_module) return Status::bad_parameter;
    const PortForwarding* const found = chip.port_forwarding.find(port_of(port));
    if (found == nullptr) return Status::bad_port;
    *pbmp = api::bitmap(found->destinations);
    return Status::ok;
  });
}

int bcm_port_egress_set(int unit, bcm_port_t port, int modid, bcm_pbmp_t pbmp) {
  return Call(calls::bcm_port_egress_set(unit, port, modid, pbmp)).answer([&](Chip& chip) {
    if (modid != api::my_module) return Status::bad_parameter;
    return chip.port_forwarding.set_destinations(port_of(port), api::ports(pbmp));
  });
}

int bcm_port_enable_get(int unit, bcm_port_t port, int* enable) {
  return Call(calls::bcm_port_enable_get(unit, port, enable)).answer([&](Chip& chip) {
    return tell_member(chip.port_macs.find(port_of(port)), &PortMac::enabled, *enable);
  });
}

int bcm_port_enable_set(int unit, bcm_port_t port, int enable) {
  return Call(calls::bcm_port_enable_set(unit, port, enable)).answer([&](Chip& chip) {
    const Status status = chip.port_macs.enable(port_of(port), enable != 0);
    api::tell_links(unit, chip);
    return status;
  });
}

int bcm_port_flood_block_set(int unit, bcm_port_t ingress_port, bcm_port_t egress_port, uint32 flags) {
  return Call(calls::bcm_port_flood_block_set(unit, ingress_port, egress_port, flags)).answer([&](Chip& chip) {
    return chip.port_filters.block_floods(port_of(ingress_port), port_of(egress_port), flags);
  });
}

int bcm_port_frame_max_set(int unit, bcm_port_t port, int size) {
  return Call(calls::bcm_port_frame_max_set(unit, port, size)).answer([&](Chip& chip) {
    return chip.port_macs.set_frame_max(port_of(port), size);
  });
}

int bcm_port_gport_get(int unit, bcm_port_t port, bcm_gport_t* gport) {
  return Call(calls::bcm_port_gport_get(unit, port, gport)).answer([&](Chip& chip) {
    if (!chip.ports.has(chip::Port::of(port))) return Status::bad_port;
    *gport = api::gport_of(chip::Port::of(port));
    return Status::ok;
  });
}

int bcm_port_ifg_get(int unit, bcm_port_t port, int speed, bcm_port_duplex_t duplex, int* bit_times) {
  return Call(calls::bcm_port_ifg_get(unit, port, speed, duplex, bit_times)).answer([&](Chip& chip) {
    const chip::Port of = port_of(port);
    return tell(chip.port_macs.gap(of, speed, duplex), chip.port_macs.absent_gap(of), *bit_times);
  });
}

int bcm_port_ifg_set(int unit, bcm_port_t port, int speed, bcm_port_duplex_t duplex, int bit_times) {
  return Call(calls::bcm_port_ifg_set(unit, port, speed, duplex, bit_times)).answer([&](Chip& chip) {
    return chip.port_macs.set_gap(port_of(port), speed, duplex, bit_times);
  });
}

int bcm_port_interface_get(int unit, bcm_port_t port, bcm_port_if_t* intf) {
  return Call(calls::bcm_port_interface_get(unit, port, intf)).answer([&](Chip& chip) {
    return tell_member(chip.port_macs.find(port_of(port)), &PortMac::interface, *intf);
  });
}

int bcm_port_learn_get(int unit, bcm_port_t port, uint32* flags) {
  return Call(calls::bcm_port_learn_get(unit, port, flags)).answer([&](Chip& chip) {
    return tell_member(chip.port_forwarding.find(port_of(port)), &PortForwarding::learning, *flags);
  });
}

int bcm_port_learn_set(int unit, bcm_port_t port, uint32 flags) {
  return Call(calls::bcm_port_learn_set(unit, port, flags)).answer([&](Chip& chip) {
    return chip.port_forwarding.set_learning(port_of(port), flags);
  });
}

int bcm_port_link_status_get(int unit, bcm_port_t port, int* status) {
  return Call(calls::bcm_port_link_status_get(unit, port, status)).answer([&](Chip& chip) {
    return tell_member(chip.port_macs.find(port_of(port)), &PortMac::link, *status);
  });
}

int bcm_port_local_get(int unit, bcm_gport_t gport, bcm_port_t* local_port) {
  return Call(calls::bcm_port_local_get(unit, gport, local_port)).answer([&](const Chip& chip) {
    if (!chip.ports.has(port_of(gport))) return Status::bad_port;
    *local_port = port_of(gport).number();
    return Status::ok;
  });
}

int bcm_port_loopback_set(int unit, bcm_port_t port, int loopback) {
  return Call(calls::bcm_port_loopback_set(unit, port, loopback)).answer([&](Chip& chip) {
    const Status status = chip.port_macs.set_loopback(port_of(port), loopback);
    api::tell_links(unit, chip);
    return status;
  });
}

int bcm_port_pause_set(int unit, bcm_port_t port, int pause_tx, int pause_rx) {
  return Call(calls::bcm_port_pause_set(unit, port, pause_tx, pause_rx)).answer([&](Chip& chip) {
    return chip.port_macs.set_pause(port_of(port), pause_tx != 0, pause_rx != 0);
  });
}

int bcm_port_phy_control_get(int unit, bcm_port_t port, bcm_port_phy_control_t type, uint32* value) {
  return Call(calls::bcm_port_phy_control_get(unit, port, type, value)).answer([&](Chip& chip) {
    const chip::Port of = port_of(port);
    return tell(chip.phy_controls.get(of, type), chip.phy_controls.absent(of, type), *value);
  });
}

int bcm_port_phy_control_set(int unit, bcm_port_t port, bcm_port_phy_control_t type, uint32 value) {
  return Call(calls::bcm_port_phy_control_set(unit, port, type, value)).answer([&](Chip& chip) {
    return chip.phy_controls.set(port_of(port), type, value);
  });
}

int bcm_port_phy_get(int unit, bcm_port_t port, uint32 flags, uint32 phy_reg_addr, uint32* phy_data) {
  return Call(calls::bcm_port_phy_get(unit, port, flags, phy_reg_addr, phy_data)).answer([&](Chip& chip) {
    if (!chip.ports.ethernet().contains(port_of(port))) return Status::bad_port;
    if (flags != default_registers) return Status::unavailable;
    return tell(chip.phy_registers.read(phy_register(port_of(port), phy_reg_addr)), Status::bad_parameter, *phy_data);
  });
}

int bcm_port_phy_set(int unit, bcm_port_t port, uint32 flags, uint32 phy_reg_addr, uint32 phy_data) {
  return Call(calls::bcm_port_phy_set(unit, port, flags, phy_reg_addr, phy_data)).answer([&](Chip& chip) {
    if (!chip.ports.ethernet().contains(port_of(port))) return Status::bad_port;
    if (flags != default_registers) return Status::unavailable;
    return chip.phy_registers.write(phy_register(port_of(port), phy_reg_addr), phy_data);
  });
}

int bcm_port_protocol_vlan_add(int unit, bcm_port_t port, bcm_port_frametype_t frame, bcm_port_ethertype_t ether,
                               bcm_vlan_t vid) {
  return Call(calls::bcm_port_protocol_vlan_add(unit, port, frame, ether, vid)).answer([&](Chip& chip) {
    return chip.protocol_vlans.add({port_of(port), frame, ether}, vid);
  });
}

int bcm_port_protocol_vlan_delete(int unit, bcm_port_t port, bcm_port_frametype_t frame, bcm_port_ethertype_t ether) {
  return Call(calls::bcm_port_protocol_vlan_delete(unit, port, frame, ether)).answer([&](Chip& chip) {
    return chip.protocol_vlans.remove({port_of(port), frame, ether});
  });
}

int bcm_port_protocol_vlan_delete_all(int unit, bcm_port_t port) {
  return Call(calls::bcm_port_protocol_vlan_delete_all(unit, port)).answer([&](Chip& chip) {
    return chip.protocol_vlans.remove_all(port_of(port));
  });
}

int bcm_port_rate_egress_get(int unit, bcm_port_t port, uint32* kbits_sec, uint32* kbits_burst) {
  return Call(calls::bcm_port_rate_egress_get(unit, port, kbits_sec, kbits_burst)).answer([&](Chip& chip) {
    return tell_rate(chip.port_rates.egress().find(port_of(port)), RateUnit::kilobits, *kbits_sec, *kbits_burst);
  });
}

int bcm_port_rate_egress_pps_get(int unit, bcm_port_t port, uint32* pps, uint32* burst) {
  return Call(calls::bcm_port_rate_egress_pps_get(unit, port, pps, burst)).answer([&](Chip& chip) {
    return tell_rate(chip.port_rates.egress().find(port_of(port)), RateUnit::packets, *pps, *burst);
  });
}

int bcm_port_rate_egress_pps_set(int unit, bcm_port_t port, uint32 pps, uint32 burst) {
  return Call(calls::bcm_port_rate_egress_pps_set(unit, port, pps, burst)).answer([&](Chip& chip) {
    return chip.port_rates.shape(port_of(port), {RateUnit::packets, pps, burst});
  });
}

int bcm_port_rate_egress_set(int unit, bcm_port_t port, uint32 kbits_sec, uint32 kbits_burst) {
  return Call(calls::bcm_port_rate_egress_set(unit, port, kbits_sec, kbits_burst)).answer([&](Chip& chip) {
    return chip.port_rates.shape(port_of(port), {RateUnit::kilobits, kbits_sec, kbits_burst});
  });
}

int bcm_port_rate_ingress_get(int unit, bcm_port_t port, uint32* kbits_sec, uint32* kbits_burst) {
  return Call(calls::bcm_port_rate_ingress_get(unit, port, kbits_sec, kbits_burst)).answer([&](Chip& chip) {
    return tell_rate(chip.port_rates.ingress().find(port_of(port)), RateUnit::kilobits, *kbits_sec, *kbits_burst);
  });
}

int bcm_port_rate_ingress_set(int unit, bcm_port_t port, uint32 kbits_sec, uint32 kbits_burst) {
  return Call(calls::bcm_port_rate_ingress_set(unit, port, kbits_sec, kbits_burst)).answer([&](Chip& chip) {
    return chip.port_rates.police(port_of(port), {RateUnit::kilobits, kbits_sec, kbits_burst});
  });
}

int bcm_port_selective_set(int unit, bcm_port_t port, bcm_port_info_t* info) {
  return Call(calls::bcm_port_selective_set(unit, port, info)).answer([&](Chip& chip) {
    const Status status = apply(chip, port_of(port), *info);
    api::tell_links(unit, chip);
    return status;
  });
}

int bcm_port_speed_get(int unit, bcm_port_t port, int* speed) {
  return Call(calls::bcm_port_speed_get(unit, port, speed)).answer([&](Chip& chip) {
    return tell_member(chip.port_macs.find(port_of(port)), &PortMac::speed, *speed);
  });
}

int bcm_port_speed_set(int unit, bcm_port_t port, int speed) {
  return Call(calls::bcm_port_speed_set(unit, port, speed)).answer([&](Chip& chip) {
    return chip.port_macs.set_speed(port_of(port), speed);
  });
}

int bcm_port_untagged_vlan_get(int unit, bcm_port_t port, bcm_vlan_t* vid_ptr) {
  return Call(calls::bcm_port_untagged_vlan_get(unit, port, vid_ptr)).answer([&](Chip& chip) {
    return tell_member(chip.port_forwarding.find(port_of(port)), &PortForwarding::untagged_vlan, *vid_ptr);
  });
}

int bcm_port_untagged_vlan_set(int unit, bcm_port_t port, bcm_vlan_t vid) {
  return Call(calls::bcm_port_untagged_vlan_set(unit, port, vid)).answer([&](Chip& chip) {
    return chip.port_forwarding.set_untagged_vlan(port_of(port), vid);
  });
}

int bcm_port_vlan_member_set(int unit, bcm_port_t port, uint32 flags) {
  return Call(calls::bcm_port_vlan_member_set(unit, port, flags)).answer([&](Chip& chip) {
    return chip.port_filters.set_membership_checks(port_of(port), flags);
  });
}
