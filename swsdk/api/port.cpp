#include <bcm/port.h>

#include "api/call.h"
#include "chip/gports.h"

using api::Call;
using api::hex;
using api::in;
using api::out;
using api::unmodelled;
using chip::Chip;
using chip::Status;
using chip::gport::port_of;

int bcm_port_autoneg_get(int unit, bcm_port_t port, int* autoneg) {
  return unmodelled(__func__, unit, port, out(autoneg));
}

int bcm_port_autoneg_set(int unit, bcm_port_t port, int autoneg) { return unmodelled(__func__, unit, port, autoneg); }

int bcm_port_config_get(int unit, bcm_port_config_t* config) { return unmodelled(__func__, unit, out(config)); }

int bcm_port_duplex_get(int unit, bcm_port_t port, int* duplex) {
  return unmodelled(__func__, unit, port, out(duplex));
}

int bcm_port_duplex_set(int unit, bcm_port_t port, int duplex) { return unmodelled(__func__, unit, port, duplex); }

int bcm_port_egress_get(int unit, bcm_port_t port, int modid, bcm_pbmp_t* pbmp) {
  return unmodelled(__func__, unit, port, modid, out(pbmp));
}

int bcm_port_egress_set(int unit, bcm_port_t port, int modid, bcm_pbmp_t pbmp) {
  return unmodelled(__func__, unit, port, modid, pbmp);
}

int bcm_port_enable_get(int unit, bcm_port_t port, int* enable) {
  return unmodelled(__func__, unit, port, out(enable));
}

int bcm_port_enable_set(int unit, bcm_port_t port, int enable) { return unmodelled(__func__, unit, port, enable); }

int bcm_port_flood_block_set(int unit, bcm_port_t ingress_port, bcm_port_t egress_port, uint32 flags) {
  return Call(__func__, unit, ingress_port, egress_port, hex(flags)).answer([&](Chip& chip) {
    return chip.port_filters.block_floods(port_of(ingress_port), port_of(egress_port), flags);
  });
}

int bcm_port_frame_max_set(int unit, bcm_port_t port, int size) { return unmodelled(__func__, unit, port, size); }

int bcm_port_gport_get(int unit, bcm_port_t port, bcm_gport_t* gport) {
  return Call(__func__, unit, port, out(gport)).answer([&](Chip& chip) {
    if (!chip.ports.has(port)) return Status::bad_port;
    *gport = chip::gport::of_port(port);
    return Status::ok;
  });
}

int bcm_port_ifg_get(int unit, bcm_port_t port, int speed, bcm_port_duplex_t duplex, int* bit_times) {
  return unmodelled(__func__, unit, port, speed, duplex, out(bit_times));
}

int bcm_port_ifg_set(int unit, bcm_port_t port, int speed, bcm_port_duplex_t duplex, int bit_times) {
  return unmodelled(__func__, unit, port, speed, duplex, bit_times);
}

int bcm_port_interface_get(int unit, bcm_port_t port, bcm_port_if_t* intf) {
  return unmodelled(__func__, unit, port, out(intf));
}

int bcm_port_learn_get(int unit, bcm_port_t port, uint32* flags) {
  return unmodelled(__func__, unit, port, out(flags));
}

int bcm_port_learn_set(int unit, bcm_port_t port, uint32 flags) { return unmodelled(__func__, unit, port, hex(flags)); }

int bcm_port_link_status_get(int unit, bcm_port_t port, int* status) {
  return unmodelled(__func__, unit, port, out(status));
}

int bcm_port_local_get(int unit, bcm_gport_t gport, bcm_port_t* local_port) {
  return unmodelled(__func__, unit, gport, out(local_port));
}

int bcm_port_loopback_set(int unit, bcm_port_t port, int loopback) {
  return unmodelled(__func__, unit, port, loopback);
}

int bcm_port_pause_set(int unit, bcm_port_t port, int pause_tx, int pause_rx) {
  return unmodelled(__func__, unit, port, pause_tx, pause_rx);
}

int bcm_port_phy_control_get(int unit, bcm_port_t port, bcm_port_phy_control_t type, uint32* value) {
  return unmodelled(__func__, unit, port, type, out(value));
}

int bcm_port_phy_control_set(int unit, bcm_port_t port, bcm_port_phy_control_t type, uint32 value) {
  return unmodelled(__func__, unit, port, type, value);
}

int bcm_port_phy_get(int unit, bcm_port_t port, uint32 flags, uint32 phy_reg_addr, uint32* phy_data) {
  return unmodelled(__func__, unit, port, hex(flags), hex(phy_reg_addr), out(phy_data));
}

int bcm_port_phy_set(int unit, bcm_port_t port, uint32 flags, uint32 phy_reg_addr, uint32 phy_data) {
  return unmodelled(__func__, unit, port, hex(flags), hex(phy_reg_addr), hex(phy_data));
}

int bcm_port_protocol_vlan_add(int unit, bcm_port_t port, bcm_port_frametype_t frame, bcm_port_ethertype_t ether,
                               bcm_vlan_t vid) {
  return unmodelled(__func__, unit, port, frame, hex(ether), vid);
}

int bcm_port_protocol_vlan_delete(int unit, bcm_port_t port, bcm_port_frametype_t frame, bcm_port_ethertype_t ether) {
  return unmodelled(__func__, unit, port, frame, hex(ether));
}

int bcm_port_protocol_vlan_delete_all(int unit, bcm_port_t port) { return unmodelled(__func__, unit, port); }

int bcm_port_rate_egress_get(int unit, bcm_port_t port, uint32* kbits_sec, uint32* kbits_burst) {
  return unmodelled(__func__, unit, port, out(kbits_sec), out(kbits_burst));
}

int bcm_port_rate_egress_pps_get(int unit, bcm_port_t port, uint32* pps, uint32* burst) {
  return unmodelled(__func__, unit, port, out(pps), out(burst));
}

int bcm_port_rate_egress_pps_set(int unit, bcm_port_t port, uint32 pps, uint32 burst) {
  return unmodelled(__func__, unit, port, pps, burst);
}

int bcm_port_rate_egress_set(int unit, bcm_port_t port, uint32 kbits_sec, uint32 kbits_burst) {
  return unmodelled(__func__, unit, port, kbits_sec, kbits_burst);
}

int bcm_port_rate_ingress_get(int unit, bcm_port_t port, uint32* kbits_sec, uint32* kbits_burst) {
  return unmodelled(__func__, unit, port, out(kbits_sec), out(kbits_burst));
}

int bcm_port_rate_ingress_set(int unit, bcm_port_t port, uint32 kbits_sec, uint32 kbits_burst) {
  return unmodelled(__func__, unit, port, kbits_sec, kbits_burst);
}

int bcm_port_selective_set(int unit, bcm_port_t port, bcm_port_info_t* info) {
  return unmodelled(__func__, unit, port, in(info));
}

int bcm_port_speed_get(int unit, bcm_port_t port, int* speed) { return unmodelled(__func__, unit, port, out(speed)); }

int bcm_port_speed_set(int unit, bcm_port_t port, int speed) { return unmodelled(__func__, unit, port, speed); }

int bcm_port_untagged_vlan_get(int unit, bcm_port_t port, bcm_vlan_t* vid_ptr) {
  return unmodelled(__func__, unit, port, out(vid_ptr));
}

int bcm_port_untagged_vlan_set(int unit, bcm_port_t port, bcm_vlan_t vid) {
  return unmodelled(__func__, unit, port, vid);
}

int bcm_port_vlan_member_set(int unit, bcm_port_t port, uint32 flags) {
  return Call(__func__, unit, port, hex(flags)).answer([&](Chip& chip) {
    return chip.port_filters.set_membership_checks(port_of(port), flags);
  });
}
