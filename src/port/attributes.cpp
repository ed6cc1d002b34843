#include <sai.h>
#include <stdio.h>

#include "core/convert.h"
#include "core/ports.h"
#include "core/result.h"
#include "core/sdk.h"
#include "core/unit.h"

using sai::error_index;
using sai::error_text;
using sai::failed;
using sai::fits_bitmap;
using sai::Format;
using sai::log_if_failed;
using sai::low_word;
using sai::Ports;
using sai::result;

namespace {

constexpr int own_module = 0;

[[gnu::cold, gnu::noinline]] void log_showing_output(const char* format, int port, const int32_t* output) {
  char bytes[sizeof *output + 1] = {};
  if (output != nullptr) __builtin_memcpy(bytes, output, sizeof *output);
  sai_err(format, port, output != nullptr ? bytes : "(null)");
}

/// The result of a getter whose failure shows the output's own bytes, up to the first zero, where the SDK's text
/// belongs. Meant: the SDK's text has no conversion in the format.
int32_t result_showing_output(int rv, Format<int, const char*> format, int port, const int32_t* output) {
  if (rv == BCM_E_NONE) [[likely]]
    return SAI_E_NONE;
  if (rv < 0) log_showing_output(format.text(), port, output);
  return sdk_to_sai(rv);
}

/// Reads a port's current speed and duplex, to which its inter-frame gap applies.
int mode_get(int unit, int port, int& speed, int& duplex) {
  int rv = bcm_port_speed_get(unit, port, &speed);
  if (failed(rv, "Failed to get port [%d] speed: %s", port)) return rv;
  rv = bcm_port_duplex_get(unit, port, &duplex);
  log_if_failed(rv, "Failed to get port [%d] duplex: %s", port);
  return rv;
}

/// Meant: `enabled` is written on failure too.
int lookup_get(int unit, int port, bcm_vlan_control_port_t control, uint8_t* enabled) {
  int value = 0;
  if (enabled == nullptr) return BCM_E_PARAM;
  const int rv = bcm_vlan_control_port_get(unit, port, control, &value);
  *enabled = value != 0;
  return rv;
}

}  // namespace

int32_t sai_port_enable_set(int32_t unit, int32_t port, int32_t enable) {
  soc_linkscan_pause(unit);
  const int rv = bcm_port_enable_set(unit, port, enable);
  soc_linkscan_continue(unit);
  return result(rv, "Failed to set port [%d] enable %d: %s", port, enable);
}

int32_t sai_port_enable_get(int32_t unit, int32_t port, int32_t* enable) {
  soc_linkscan_pause(unit);
  const int rv = bcm_port_enable_get(unit, port, enable);
  soc_linkscan_continue(unit);
  // Meant, here and in the getters of learning and interface: the setter's text, with the pointer in place of a value.
  return result(rv, "Failed to set port [%d] enable %d: %s", port, low_word(enable));
}

int32_t sai_port_autoneg_set(int32_t unit, int32_t port, int32_t autoneg) {
  return result(bcm_port_autoneg_set(unit, port, autoneg), "Failed to set port [%d] autoneg %d: %s", port, autoneg);
}

int32_t sai_port_autoneg_get(int32_t unit, int32_t port, int32_t* autoneg) {
  return result_showing_output(bcm_port_autoneg_get(unit, port, autoneg), "Failed to get port [%d] autoneg: %s", port,
                               autoneg);
}

int32_t sai_port_duplex_set(int32_t unit, int32_t port, int32_t duplex) {
  return result(bcm_port_duplex_set(unit, port, duplex), "Failed to set port [%d] duplex %d: %s", port, duplex);
}

int32_t sai_port_duplex_get(int32_t unit, int32_t port, int32_t* duplex) {
  return result_showing_output(bcm_port_duplex_get(unit, port, duplex), "Failed to get port [%d] duplex: %s", port,
                               duplex);
}

int32_t sai_port_speed_set(int32_t unit, int32_t port, int32_t speed) {
  return result(bcm_port_speed_set(unit, port, speed), "Failed to set port [%d] speed %d: %s", port, speed);
}

int32_t sai_port_speed_get(int32_t unit, int32_t port, int32_t* speed) {
  return result_showing_output(bcm_port_speed_get(unit, port, speed), "Failed to get port [%d] speed: %s", port, speed);
}

int32_t sai_port_pause_set(int32_t unit, int32_t port, int32_t pause_tx, int32_t pause_rx) {
  return result(bcm_port_pause_set(unit, port, pause_tx, pause_rx),
                "Failed to set port [%d] pause tx %d pause rx %d: %s", port, pause_tx, pause_rx);
}

int32_t sai_port_frame_max_set(int32_t unit, int32_t port, int32_t size) {
  return result(bcm_port_frame_max_set(unit, port, size), "Failed to set port [%d] frame max %d: %s", port, size);
}

int32_t sai_port_learn_set(int32_t unit, int32_t port, int32_t flags) {
  return result(bcm_port_learn_set(unit, port, static_cast<uint32_t>(flags)),
                "Failed to set port [%d] mac learn %d: %s", port, flags);
}

int32_t sai_port_learn_get(int32_t unit, int32_t port, int32_t* flags) {
  return result(bcm_port_learn_get(unit, port, reinterpret_cast<uint32_t*>(flags)),
                "Failed to set port [%d] mac learn %d: %s", port, low_word(flags));
}

int32_t sai_port_interface_set(int32_t unit, int32_t port, int32_t mode) {
  bcm_port_info_t info;
  bcm_port_info_t_init(&info);
  // Meant: the mask's other attributes are written to the port with the record's initial values.
  info.action_mask |= BCM_PORT_ATTR_LINKSTAT_MASK | BCM_PORT_ATTR_AUTONEG_MASK | BCM_PORT_ATTR_SPEED_MASK |
                      BCM_PORT_ATTR_LOCAL_ADVERT_MASK | BCM_PORT_ATTR_REMOTE_ADVERT_MASK | BCM_PORT_ATTR_INTERFACE_MASK;
  info.interface = static_cast<bcm_port_if_t>(mode);
  return result(bcm_port_selective_set(unit, port, &info), "Failed to set port [%d] interface mode %d: %s", port, mode);
}

int32_t sai_port_interface_get(int32_t unit, int32_t port, int32_t* mode) {
  const auto get = [&](bcm_port_if_t* found) { return bcm_port_interface_get(unit, port, found); };
  const int rv = sai::read_into<bcm_port_if_t>(mode, get);
  return result(rv, "Failed to get port [%d] interface mode %d: %s", port, low_word(mode));
}

int32_t sai_port_untagged_vlan_set(int32_t unit, int32_t port, uint16_t vlan) {
  return result(bcm_port_untagged_vlan_set(unit, port, vlan), "Failed to set port [%d] untagged vlan [%d]: %s", port,
                vlan);
}

int32_t sai_port_link_status_get(int32_t unit, int32_t port, int32_t* up) {
  const int rv = sai::read_into(up, [&](int* status) { return bcm_port_link_status_get(unit, port, status); });
  return result(rv, "Failed to get link status: %s");
}

int32_t sai_port_loopback_set(int32_t unit, int32_t port, int32_t mode) {
  switch (mode) {
    case BCM_PORT_LOOPBACK_NONE:
    case BCM_PORT_LOOPBACK_MAC:
    case BCM_PORT_LOOPBACK_PHY:
      return result(bcm_port_loopback_set(unit, port, mode), "Failed to set port %d loopback %d: %s", port, mode);
    default:
      sai_err("Invalid loopback mode %d", mode);
      return SAI_E_FAIL;
  }
}

int32_t sai_port_isolate_set(int32_t unit, int32_t port, int32_t target) {
  bcm_pbmp_t allowed = sai::no_ports();
  int rv = bcm_port_egress_get(unit, port, own_module, &allowed);
  if (failed(rv, "Failed to get port [%d] egress: %s", port)) return sdk_to_sai(rv);
  rv = BCM_E_PARAM;
  if (fits_bitmap(target)) {
    BCM_PBMP_PORT_REMOVE(allowed, target);
    rv = bcm_port_egress_set(unit, port, own_module, allowed);
  }
  return result(rv, "Failed to set port [%d] egress: %s", port);
}

int32_t sai_port_isolate_reset(int32_t unit, int32_t port) {
  // Meant: unit 0's front ports, whatever the unit.
  return result(bcm_port_egress_set(unit, port, own_module, sai::ports(0, Ports::front)),
                "Failed to unset port [%d] egress: %s", port);
}

int32_t sai_port_protocol_vlan_add(int32_t unit, int32_t port, int32_t frame_type, uint16_t ether_type, uint16_t vlan) {
  return result(bcm_port_protocol_vlan_add(unit, port, frame_type, ether_type, vlan),
                "Failed to add port %d protocol base vlan: %s", port);
}

int32_t sai_port_protocol_vlan_del(int32_t unit, int32_t port, int32_t frame_type, uint16_t ether_type) {
  return result(bcm_port_protocol_vlan_delete(unit, port, frame_type, ether_type),
                "Failed to delete port %d protocol base vlan: %s", port);
}

int32_t sai_port_protocol_vlan_clear(int32_t unit, int32_t port) {
  const int rv = bcm_port_protocol_vlan_delete_all(unit, port);
  if (rv < 0) {
    // Meant: the message shows the text's address as the port, and the text's index as the text.
    char index[sizeof "23"];
    snprintf(index, sizeof index, "%d", error_index(rv));
    sai_err("Failed to clear port %d protocol base vlan: %s", low_word(error_text(rv)), index);
  }
  return sdk_to_sai(rv);
}

int32_t sai_port_mac_vlan_set(int32_t unit, int32_t port, uint8_t enable) {
  return result(bcm_vlan_control_port_set(unit, port, bcmVlanLookupMACEnable, enable),
                "Failed to set port [%d] bcmVlanLookupMACEnable: %s", port);
}

int32_t sai_port_mac_vlan_get(int32_t unit, int32_t port, uint8_t* enabled) {
  // Meant, here and for subnets: the setter's text.
  return result(lookup_get(unit, port, bcmVlanLookupMACEnable, enabled),
                "Failed to set port [%d] bcmVlanLookupMACEnable: %s", port);
}

int32_t sai_port_subnet_vlan_set(int32_t unit, int32_t port, uint8_t enable) {
  return result(bcm_vlan_control_port_set(unit, port, bcmVlanLookupIPEnable, enable),
                "Failed to set port [%d] bcmVlanLookupIPEnable: %s", port);
}

int32_t sai_port_subnet_vlan_get(int32_t unit, int32_t port, uint8_t* enabled) {
  return result(lookup_get(unit, port, bcmVlanLookupIPEnable, enabled),
                "Failed to set port [%d] bcmVlanLookupIPEnable: %s", port);
}

int32_t sai_vlan_precedence_set(int32_t unit, int32_t port, int32_t mode) {
  if (mode != SAI_VLAN_PRECEDENCE_MAC && mode != SAI_VLAN_PRECEDENCE_SUBNET) return SAI_E_FAIL;  // Meant: unlogged.
  // Meant: the text names another control.
  return result(bcm_vlan_control_port_set(
                    unit, port, mode == SAI_VLAN_PRECEDENCE_MAC ? bcmVlanPortPreferMAC : bcmVlanPortPreferIP4, 1),
                "Failed to set port [%d] bcmSwitchDhcpPktToCpu: %s", port);
}

int32_t sai_port_ifg_set(int32_t unit, int32_t port, int32_t ifg) {
  int speed = 0;
  int duplex = 0;
  const int rv = mode_get(unit, port, speed, duplex);
  if (rv < 0) return sdk_to_sai(rv);
  return result(bcm_port_ifg_set(unit, port, speed, static_cast<bcm_port_duplex_t>(duplex), ifg),
                "Failed to set port [%d] ifg [%d]: %s", port, ifg);
}

int32_t sai_port_ifg_get(int32_t unit, int32_t port, int32_t* ifg) {
  int speed = 0;
  int duplex = 0;
  const int rv = mode_get(unit, port, speed, duplex);
  if (rv < 0) return sdk_to_sai(rv);
  return result(bcm_port_ifg_get(unit, port, speed, static_cast<bcm_port_duplex_t>(duplex), ifg),
                "Failed to get port [%d] ifg: %s", port);
}
