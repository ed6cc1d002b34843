// Interfaces and egress objects of next hops, which routes look up, create and delete.
#pragma once

#include <stdint.h>

#include "core/sdk.h"

namespace sai {

/// Looks up where a MAC address was learned.
int find_learned(int unit, const uint8_t* mac, int vlan, bcm_l2_addr_t& learned);

/// Whether a MAC address was learned on a virtual port.
bool is_on_virtual_port(const bcm_l2_addr_t& learned);

}  // namespace sai

/// Finds or creates the egress object of a next hop. Equal next hops share one; its users are not counted.
///
/// Meant: a lookup that fails with any code but BCM_E_NOT_FOUND is treated as a match, and its code is returned.
///
/// @return a library code
int32_t sai_l3_egress_create(int unit, const uint8_t* mac, int vlan, int port, int intf_id, int* egress_id);

/// Destroys an egress object, and before it the interface of a next hop on a virtual port.
void sai_l3_egress_delete(int unit, int egress_id);

/// Finds or creates the double-tagged interface of a next hop on a virtual port. Only a failed creation is logged.
///
/// @return a library code
int32_t sai_l3_intf_dtag_create(int unit, const uint8_t* router_mac, const uint8_t* nexthop_mac, int vlan,
                                bcm_l3_intf_t* intf);

void sai_l3_intf_dtag_delete(int unit, int intf_id);

/// Like sai_l3_intf_dtag_create(), for a next hop that turns out to be on a virtual port. Meant: a failed lookup of the
/// interface, whatever the reason, leads to its creation.
///
/// @return the SDK's code. Meant: unlike that of sai_l3_intf_dtag_create()
int sai_l3_intf_vport_create(int unit, const uint8_t* router_mac, const uint8_t* nexthop_mac, int vlan,
                             bcm_l3_intf_t* intf);
