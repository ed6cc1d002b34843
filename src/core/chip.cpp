#include <sai.h>
#include <stdio.h>

#include "core/result.h"
#include "core/sdk.h"
#include "core/unit.h"

using sai::error_text;
using sai::for_each_port;
using sai::log_if_failed;
using sai::Ports;

namespace {

// Meant: only the ports up to number 8, the board's front panel, trap control frames.
constexpr int last_trapping_port = 8;

/// A switch control that is set to 1 on a port, and the message for a failure.
struct PortControl {
  bcm_switch_control_t control;
  sai::Format<int, const char*> failure;
};

void enable(int unit, int port, const PortControl& row) {
  log_if_failed(bcm_switch_control_port_set(unit, port, row.control, 1), row.failure, port);
}

template <class... Rows>
void enable_on_front_panel(int unit, Ports set, const Rows&... rows) {
  for_each_port(unit, set, [&](int port) {
    if (port <= last_trapping_port) (enable(unit, port, rows), ...);
  });
}

void check_vlan_membership(int unit) {
  constexpr uint32_t both_ways = BCM_PORT_VLAN_MEMBER_INGRESS | BCM_PORT_VLAN_MEMBER_EGRESS;
  for_each_port(unit, Ports::ethernet, [=](int port) {
    log_if_failed(bcm_port_vlan_member_set(unit, port, both_ways), "port [%d] bcm_port_vlan_member_set failed: %s",
                  port);
  });
}

/// Returns the code of its last step, the only one whose result start-up keeps.
int prepare_multicast(int unit) {
  log_if_failed(bcm_l2_cache_delete_all(unit), "bcm_l2_cache_delete_all failed: %s");
  log_if_failed(bcm_multicast_init(unit), "bcm_multicast_init failed: %s");
  log_if_failed(bcm_mcast_init(unit), "bcm_mcast_init failed: %s");
  log_if_failed(bcm_ipmc_enable(unit, 1), "bcm_ipmc_enable failed: %s");
  log_if_failed(bcm_ipmc_init(unit), "bcm_ipmc_init failed: %s");
  const int rv = bcm_switch_control_set(unit, bcmSwitchIpmcSameVlanL3Route, 1);
  log_if_failed(rv, "bcm_switch_control_set bcmSwitchIpmcSameVlanL3Route failed: %s");
  return rv;
}

void trap_routed_and_dhcp_frames(int unit) {
  // Three passes over the ports: each ends before the next begins.
  enable_on_front_panel(
      unit, Ports::ethernet,
      PortControl{bcmSwitchNonIpL3ErrToCpu, "Failed to set port [%d] bcmSwitchNonIpL3ErrToCpu: %s"},
      PortControl{bcmSwitchV4L3DstMissToCpu, "Failed to set port [%d] bcmSwitchV4L3DstMissToCpu: %s"},
      PortControl{bcmSwitchV6L3DstMissToCpu, "Failed to set port [%d] bcmSwitchV6L3DstMissToCpu: %s"});
  enable_on_front_panel(unit, Ports::ethernet,
                        PortControl{bcmSwitchNdPktToCpu, "Failed to set port [%d] bcmSwitchNdPktToCpu: %s"});
  enable_on_front_panel(unit, Ports::ethernet,
                        PortControl{bcmSwitchDhcpPktToCpu, "Failed to set port [%d] bcmSwitchDhcpPktToCpu: %s"});
}

void capture_slow_protocols(int unit) {
  constexpr uint8_t mac[6] = {0x01, 0x80, 0xC2, 0x00, 0x00, 0x02};
  int32_t index = 0;
  sai_bpdu_set(unit, mac, &index);  // Meant: the entry is never deleted, so its index is not kept.
}

void keep_floods_from_cpu(int unit) {
  constexpr uint32_t unknown = BCM_PORT_FLOOD_BLOCK_UNKNOWN_UCAST | BCM_PORT_FLOOD_BLOCK_UNKNOWN_MCAST;
  for_each_port(unit, Ports::ethernet, [=](int port) {
    log_if_failed(bcm_port_flood_block_set(unit, port, sai::cpu_port(unit), unknown),
                  "Failed to set port [%d] flooding: %s", port);
    enable(unit, port, {bcmSwitchV4ResvdMcPktFlood, "Failed to set port [%d] bcmSwitchV4ResvdMcPktFlood: %s"});
    enable(unit, port, {bcmSwitchV6ResvdMcPktFlood, "Failed to set port [%d] bcmSwitchV6ResvdMcPktFlood: %s"});
  });
}

void set_up_cpu_port(int unit) {
  const auto set = [=](bcm_switch_control_t control, sai::Format<const char*> failure) {
    log_if_failed(bcm_switch_control_port_set(unit, sai::cpu_port(unit), control, 1), failure);
  };
  set(bcmSwitchV4ResvdMcPktFlood, "Failed to set CMIC bcmSwitchV4ResvdMcPktFlood: %s");
  set(bcmSwitchV6ResvdMcPktFlood, "Failed to set CMIC bcmSwitchV6ResvdMcPktFlood: %s");
  set(bcmSwitchV6ResvdMcPktToCpu, "Failed to set CMIC bcmSwitchV6ResvdMcPktToCpu: %s");
}

void trap_arp_frames(int unit) {
  enable_on_front_panel(unit, Ports::front,
                        PortControl{bcmSwitchArpReplyToCpu, "Failed to set port [%d] bcmSwitchArpReplyToCpu: %s"},
                        PortControl{bcmSwitchArpRequestToCpu, "Failed to set port [%d] bcmSwitchArpRequestToCpu: %s"});
}

/// The interface-local and the link-local scope, matched on the first 16 bits. Meant: both failures go to standard
/// output, not to the log.
void reserve_ip6_multicast(int unit) {
  int rv = bcm_switch_control_set(unit, bcmSwitchMldReservedMcastEnable, 1);
  if (rv < 0) printf("enable error: %s\n", error_text(rv));

  bcm_ip6_t addresses[] = {{0xFF, 0x01}, {0xFF, 0x02}};
  bcm_ip6_t masks[] = {{0xFF, 0xFF}, {0xFF, 0xFF}};
  rv = bcm_switch_ipv6_reserved_multicast_addr_multi_set(unit, 0, 2, addresses, masks);
  if (rv < 0) printf("bcm_switch_ipv6_reserved_multicast_addr_multi_set: %s\n", error_text(rv));
}

/// Runs every step, whether or not earlier steps failed. Returns the code of prepare_multicast().
int bring_up(int unit, const uint8_t* system_mac) {
  constexpr int32_t netif_id = 1;
  sai_serial_led_config(unit);
  sai_knet_netif_init(unit, netif_id, "ethv0", system_mac);
  check_vlan_membership(unit);
  const int rv = prepare_multicast(unit);
  sai_port_vlan_translate_init(unit);
  trap_routed_and_dhcp_frames(unit);
  capture_slow_protocols(unit);
  keep_floods_from_cpu(unit);
  set_up_cpu_port(unit);
  trap_arp_frames(unit);
  reserve_ip6_multicast(unit);
  sai_vlan_vport_init(unit);
  return rv;
}

}  // namespace

int32_t sai_switch_chip_init(const uint8_t* system_mac) {
  sdk_main(0, nullptr);
  int rv = 0;
  for (int unit = 0; unit < soc_ndev; ++unit) {
    rv = system_init(unit);
    if (rv == 0)
      rv = bring_up(unit, system_mac);
    else
      printf("Initialize firmware unit %d failed.\r\n", unit);
  }
  return sdk_to_sai(rv);  // Meant: the result of the last unit only.
}
