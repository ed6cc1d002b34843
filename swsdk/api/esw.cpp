#include <bcm/types.h>

#include "api/call.h"

using api::Call;
using chip::Chip;

// Exported by the SDK without a public header.
extern "C" {

int bcm_esw_vlan_ip4_mcast_flood_set(int unit, bcm_vlan_t vlan, int mode);
int bcm_esw_vlan_ip6_mcast_flood_set(int unit, bcm_vlan_t vlan, int mode);

int bcm_esw_vlan_ip4_mcast_flood_set(int unit, bcm_vlan_t vlan, int mode) {
  return Call(calls::bcm_esw_vlan_ip4_mcast_flood_set(unit, vlan, mode)).answer([&](Chip& chip) {
    return chip.vlans.set_multicast_flood(vlan, {&chip::VlanControl::ip4_multicast_flood_mode}, mode);
  });
}

int bcm_esw_vlan_ip6_mcast_flood_set(int unit, bcm_vlan_t vlan, int mode) {
  return Call(calls::bcm_esw_vlan_ip6_mcast_flood_set(unit, vlan, mode)).answer([&](Chip& chip) {
    return chip.vlans.set_multicast_flood(vlan, {&chip::VlanControl::ip6_multicast_flood_mode}, mode);
  });
}
}
