#include <bcm/types.h>

#include "api/call.h"

using api::unmodelled;

// Exported by the SDK without a public header.
extern "C" {

int bcm_esw_vlan_ip4_mcast_flood_set(int unit, bcm_vlan_t vlan, int mode);
int bcm_esw_vlan_ip6_mcast_flood_set(int unit, bcm_vlan_t vlan, int mode);

int bcm_esw_vlan_ip4_mcast_flood_set(int unit, bcm_vlan_t vlan, int mode) {
  return unmodelled(__func__, unit, vlan, mode);
}

int bcm_esw_vlan_ip6_mcast_flood_set(int unit, bcm_vlan_t vlan, int mode) {
  return unmodelled(__func__, unit, vlan, mode);
}
}
