#include "vport/flood_groups.h"

#include "core/result.h"

bcm_multicast_t sai_unicast_group = 0;
bcm_multicast_t sai_multicast_group = 0;
bcm_multicast_t sai_broadcast_group = 0;

void sai::create_flood_groups(int unit) {
  // Meant: one text for all three.
  bcm_multicast_t* const groups[] = {&sai_unicast_group, &sai_multicast_group, &sai_broadcast_group};
  for (bcm_multicast_t* const group : groups)
    log_if_failed(bcm_multicast_create(unit, BCM_MULTICAST_TYPE_VLAN, group), "bcm multicast create failed: %s.");
}
