// A scene for tests of virtual ports: a chip of two ports that is ready for them.
#pragma once

#include <bcm/error.h>
#include <bcm/vlan.h>
#include <swsdk/fault.h>

#include <regex>
#include <string>

#include "support/scene.h"
#include "support/start.h"

namespace vport {

class Scene : public support::Scene {
 protected:
  /// The flood groups are 1, 2 and 3. There are VLANs 20, 30 and 40.
  Scene() {
    support::start_chip(1, 2);
    sai_vlan_vport_init(unit);
    for (const bcm_vlan_t vlan : std::initializer_list<bcm_vlan_t>{20, 30, 40}) bcm_vlan_create(unit, vlan);
  }

  /// Log messages with LINE in place of the source line in which they arose.
  static std::string without_lines(const std::string& seen) {
    return std::regex_replace(seen, std::regex("NONE: (sai_\\w+) \\d+ "), "NONE: $1 LINE ");
  }

  std::string create(sai_vport_t& vport, int32_t port = 1) {
    return without_lines(observe([&] { return sai_vport_create(unit, port, &vport); }));
  }

  std::string destroy(sai_vport_t& vport) {
    return without_lines(observe([&] { return sai_vport_destroy(unit, 1, &vport); }));
  }
};

/// Has every call of virtual ports' own succeed, whether the chip could do it or not; what it would write stays 0.
inline void all_well() {
  for (const char* const function :
       {"bcm_l2_addr_delete_by_port", "bcm_multicast_egress_add", "bcm_multicast_l2_encap_get",
        "bcm_multicast_vlan_encap_get", "bcm_port_untagged_vlan_get", "bcm_vlan_gport_add", "bcm_vlan_gport_delete",
        "bcm_vlan_port_create", "bcm_vlan_port_destroy", "bcm_vlan_translate_egress_action_delete"})
    swsdk_fault_inject(function, BCM_E_NONE, SWSDK_FAULT_EVERY_CALL);
}

/// What tests say of a virtual port.
struct Given {
  int32_t priority = 3;
  uint16_t match_vlan = 10;
  uint16_t match_inner_vlan = 0;
  uint16_t vlan = 0;
  uint16_t outer_vlan = 0;
};

constexpr sai_vport_t record(const Given& given) {
  return {given.priority, given.match_vlan, given.match_inner_vlan, given.vlan, given.outer_vlan, -1};
}

constexpr sai_vport_t stacked_with_outer = record({.match_inner_vlan = 20, .vlan = 30, .outer_vlan = 40});

/// What that one's creation does, from the third call on to the last but two.
inline const std::string floods =
    "bcm_multicast_vlan_encap_get(0, 1, 67108865, 0, &0) = 0\n"
    "bcm_multicast_egress_add(0, 1, 67108865, 0) = 0\n"
    "bcm_multicast_vlan_encap_get(0, 2, 67108865, 0, &0) = 0\n"
    "bcm_multicast_egress_add(0, 2, 67108865, 0) = 0\n"
    "bcm_multicast_vlan_encap_get(0, 3, 67108865, 0, &0) = 0\n"
    "bcm_multicast_egress_add(0, 3, 67108865, 0) = 0\n"
    "bcm_multicast_l2_encap_get(0, 1, 67108865, 65535, &0) = 0\n"
    "bcm_multicast_egress_add(0, 1, 67108865, 0) = 0\n"
    "bcm_multicast_l2_encap_get(0, 2, 67108865, 65535, &0) = 0\n"
    "bcm_multicast_egress_add(0, 2, 67108865, 0) = 0\n"
    "bcm_multicast_l2_encap_get(0, 3, 67108865, 65535, &0) = 0\n"
    "bcm_multicast_egress_add(0, 3, 67108865, 0) = 0\n"
    "bcm_multicast_l2_encap_get(0, 1, 67108866, 65535, &0) = 0\n"
    "bcm_multicast_egress_add(0, 1, 67108866, 0) = 0\n"
    "bcm_multicast_l2_encap_get(0, 2, 67108866, 65535, &0) = 0\n"
    "bcm_multicast_egress_add(0, 2, 67108866, 0) = 0\n"
    "bcm_multicast_l2_encap_get(0, 3, 67108866, 65535, &0) = 0\n"
    "bcm_multicast_egress_add(0, 3, 67108866, 0) = 0\n";

inline const std::string groups = "{broadcast_group=3, unknown_multicast_group=2, unknown_unicast_group=1}";

inline const std::string stacked_with_outer_calls =
    "bcm_port_gport_get(0, 1, &134217729) = 0\n"
    "bcm_vlan_port_create(0, {criteria=4, flags=0x84, match_vlan=10, match_inner_vlan=20, port=67108865, "
    "egress_vlan=40, egress_inner_vlan=30, ingress_network_group_id=3, egress_network_group_id=3}) = 0\n"
    "bcm_vlan_gport_add(0, 40, 0, 0x0) = 0\n"
    "bcm_vlan_translate_egress_action_delete(0, 0, 40, 0) = 0\n"
    "bcm_vlan_translate_egress_action_add(0, 0, 40, 30, {new_outer_vlan=10, new_inner_vlan=20, dt_outer=2, "
    "dt_inner=2, dt_inner_pkt_prio=4}) = 0\n" +
    floods +
    "bcm_vlan_control_vlan_get(0, 40, &{}) = 0\n"
    "bcm_vlan_control_vlan_set(0, 40, " +
    groups + ") = 0\n";

inline const std::string stacked_with_outer_trace =
    "log: debugging: NONE: vlan_port.port = 0x4000001 match 10 inner 20 egress 40\n"
    "log, next line\n";

}  // namespace vport
