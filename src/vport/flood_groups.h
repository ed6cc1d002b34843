// The flood groups that every virtual port joins.
#pragma once

#include "core/sdk.h"

/// Groups that flood unknown unicast, unknown and registered multicast, and broadcast to all virtual ports; 0 until
/// sai_vlan_vport_init() has made them.
extern bcm_multicast_t sai_unicast_group;
extern bcm_multicast_t sai_multicast_group;
extern bcm_multicast_t sai_broadcast_group;

namespace sai {

/// Makes all three; those that cannot be made keep their ids.
void create_flood_groups(int unit);

}  // namespace sai
