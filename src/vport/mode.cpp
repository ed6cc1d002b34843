// Sets up what virtual ports require.
#include <sai.h>

#include "core/ports.h"
#include "core/result.h"
#include "core/sdk.h"
#include "core/unit.h"
#include "vport/flood_groups.h"

using sai::log_if_failed;

namespace {

constexpr bcm_vlan_t system_vlan = 4095;

/// Enables translation on a port, with a first key of both tags and a second key of the outer tag. `gport` keeps its
/// value when the port's gport cannot be read.
void enable_translation(int unit, int port, bcm_gport_t& gport) {
  log_if_failed(bcm_port_gport_get(unit, port, &gport), "get unit %d port %d failed: %s.", unit, port);

  // Meant: the enables take the port, the keys its gport, whatever it holds; and both keys share one text.
  log_if_failed(bcm_vlan_control_port_set(unit, port, bcmVlanTranslateIngressEnable, 1),
                "system set unit %d port %d packet control bcmVlanTranslateIngressEnable failed: %s.", unit, port);
  log_if_failed(bcm_vlan_control_port_set(unit, port, bcmVlanTranslateEgressEnable, 1),
                "system set unit %d port %d packet control bcmVlanTranslateEgressEnable failed: %s.", unit, port);
  constexpr struct {
    bcm_vlan_control_port_t control;
    int key;
  } keys[] = {
      {bcmVlanPortTranslateKeyFirst, bcmVlanTranslateKeyPortDouble},
      {bcmVlanPortTranslateKeySecond, bcmVlanTranslateKeyPortOuter},
  };
  for (const auto& [control, key] : keys)
    log_if_failed(bcm_vlan_control_port_set(unit, gport, control, key),
                  "system set unit %d port %d packet control bcmVlanPortTranslateKeySecond failed: %s.", unit, port);
}

}  // namespace

int32_t sai_vlan_vport_init(int32_t unit) {
  log_if_failed(bcm_switch_control_set(unit, bcmSwitchL3EgressMode, 1),
                "system set switch control bcmSwitchL3EgressMode failed: %s.");
  sai::create_flood_groups(unit);

  // Meant: an existing VLAN is logged too, and does not end the function.
  int rv = bcm_vlan_create(unit, system_vlan);
  log_if_failed(rv, "system create vlan %d failed: %s.", system_vlan);
  bcm_gport_t gport = 0;
  sai::for_each_port(unit, sai::Ports::front, [&](int port) {
    enable_translation(unit, port, gport);
    rv = bcm_vlan_port_add(unit, system_vlan, sai::only_port(port), sai::no_ports());
    log_if_failed(rv, "system add port %d to vlan %d failed: %s.", port, system_vlan);
  });
  bcm_policer_init(unit);  // Meant: its result is neither logged nor returned.
  return sdk_to_sai(rv);   // Meant: the result of the last port only.
}
