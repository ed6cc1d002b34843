// What the tests of host and of subnet routes have in common.
#pragma once

#include "l3/scene.h"

namespace l3 {

/// Every call succeeds, and nothing is there yet.
inline const Answers all_well{{"bcm_stk_my_modid_get", 0},
                              {"bcm_l2_addr_get", 0},
                              {"bcm_vlan_port_find", 0},
                              {"bcm_l3_intf_find_vlan", 0},
                              {"bcm_l3_intf_find", BCM_E_NOT_FOUND},
                              {"bcm_l3_intf_create", 0},
                              {"bcm_l3_intf_delete", 0},
                              {"bcm_l3_egress_find", BCM_E_NOT_FOUND},
                              {"bcm_l3_egress_create", 0},
                              {"bcm_l3_egress_get", 0},
                              {"bcm_l3_egress_destroy", 0},
                              {"bcm_l3_host_find", BCM_E_NOT_FOUND},
                              {"bcm_l3_host_add", 0},
                              {"bcm_l3_host_delete", 0},
                              {"bcm_l3_route_get", BCM_E_NOT_FOUND},
                              {"bcm_l3_route_add", 0},
                              {"bcm_l3_route_delete", 0}};

inline const std::string modid = "bcm_stk_my_modid_get(0, &0) = 0\n";
inline const std::string learned = "bcm_l2_addr_get(0, 02:00:00:ab:00:2a, 10, &{}) = 0\n";
inline const std::string vlan_interface = "bcm_l3_intf_find_vlan(0, {l3a_vid=10}) = 0\n";
inline const std::string no_egress = "bcm_l3_egress_find(0, {mac_addr=02:00:00:ab:00:2a, vlan=10, port=3}, &?) = -7\n";
inline const std::string egress_made =
    "bcm_l3_egress_create(0, 0x0, {mac_addr=02:00:00:ab:00:2a, vlan=10, port=3}, &0) = 0\n";
inline const std::string egress_traces =
    "log: debugging: NONE: sai_l3_egress_create not find l3 egress 0 port 3 vlan 10 mac 02:00:00:ab:00:2a\n"
    "log: debugging: NONE: bcm_l3_egress_create vlan 10 l3 interface 0, l3 egress 0: Success\n";

inline const std::string virtual_port = "bcm_vlan_port_find(0, {}) = 0\n";
inline const std::string double_tagged = "{l3a_flags=0x20, l3a_mac_addr=02:00:00:00:00:01, l3a_inner_vlan=10}";

inline const std::string egress_found_trace =
    "log: debugging: NONE: sai_l3_egress_delete find l3 egress 0 port 0 vlan 0 mac 00:00:00:00:00:00\n";

}  // namespace l3
