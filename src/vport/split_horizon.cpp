#include <sai.h>

#include "core/result.h"
#include "core/sdk.h"

using sai::failed;
using sai::result;

namespace {

constexpr uint32 isolated = BCM_SWITCH_NETWORK_GROUP_MCAST_REMAP_ENABLE |
                            BCM_SWITCH_NETWORK_GROUP_INGRESS_PRUNE_ENABLE |
                            BCM_SWITCH_NETWORK_GROUP_EGRESS_PRUNE_ENABLE;

constexpr sai::Format<int, const char*> get_failed = "Failed to get port [%d] vport isolate: %s";

}  // namespace

int32_t sai_vport_split_horizon_set(int32_t unit, int32_t port, int32_t enable) {
  bcm_switch_network_group_config_t config;
  bcm_switch_network_group_config_t_init(&config);  // Meant: no destination, unlike the getter below.
  const int rv = bcm_switch_network_group_config_get(unit, port, &config);
  if (failed(rv, get_failed, port)) return sdk_to_sai(rv);
  if (enable)
    config.config_flags |= isolated;
  else
    config.config_flags &= ~isolated;
  return result(bcm_switch_network_group_config_set(unit, port, &config), "Failed to set port [%d] vport isolate: %s",
                port);
}

int32_t sai_vport_split_horizon_get(int32_t unit, int32_t port, uint32_t* enable) {
  bcm_switch_network_group_config_t config;
  bcm_switch_network_group_config_t_init(&config);
  config.dest_network_group_id = port;
  const int rv = enable == nullptr ? BCM_E_PARAM : bcm_switch_network_group_config_get(unit, port, &config);
  if (rv == BCM_E_NONE) *enable = (config.config_flags & BCM_SWITCH_NETWORK_GROUP_EGRESS_PRUNE_ENABLE) != 0 ? 1 : 0;
  return result(rv, get_failed, port);
}
