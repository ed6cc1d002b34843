#include <sai.h>

#include "core/ports.h"
#include "core/result.h"
#include "core/sdk.h"
#include "core/unit.h"

using sai::failed;
using sai::fits_bitmap;
using sai::no_ports;
using sai::only_port;
using sai::result;

namespace {

int control_get(int unit, uint16_t vid, bcm_vlan_control_vlan_t& control) {
  bcm_vlan_control_vlan_t_init(&control);
  return bcm_vlan_control_vlan_get(unit, vid, &control);
}

}  // namespace

int32_t sai_vlan_init(int32_t unit) { return result(bcm_vlan_init(unit), "Failed to init vlan: %s"); }

int32_t sai_vlan_create(int32_t unit, uint16_t vid) {
  const int rv = bcm_vlan_create(unit, vid);
  // Meant: an existing VLAN gets the CPU port too, which repairs a VLAN that was created elsewhere.
  if (rv != BCM_E_EXISTS && failed(rv, "Failed to create vlan %d: %s", vid)) return sdk_to_sai(rv);
  // Meant: "to adding".
  return result(bcm_vlan_port_add(unit, vid, only_port(sai::cpu_port(unit)), no_ports()),
                "Failed to adding port to vlan [%d]: %s", vid);
}

int32_t sai_vlan_destroy(int32_t unit, uint16_t vid) {
  return result(bcm_vlan_destroy(unit, vid), "Failed to destroy vlan %d: %s", vid);
}

int32_t sai_vlan_destroy_all(int32_t unit) { return result(bcm_vlan_destroy_all(unit), "Failed to destroy vlan: %s"); }

int32_t sai_vlan_port_add(int32_t unit, uint16_t vid, uint16_t port, int32_t tagged) {
  const int rv = fits_bitmap(port)
                     ? bcm_vlan_port_add(unit, vid, only_port(port), tagged ? no_ports() : only_port(port))
                     : BCM_E_PARAM;
  return result(rv, "Failed to add port [%d] to vlan [%d]: %s", port, vid);
}

int32_t sai_vlan_port_remove(int32_t unit, uint16_t vid, uint16_t port) {
  const int rv = fits_bitmap(port) ? bcm_vlan_port_remove(unit, vid, only_port(port)) : BCM_E_PARAM;
  return result(rv, "Failed to remove port [%d] from vlan [%d]: %s", port, vid);
}

int32_t sai_vlan_l2_learn_set(int32_t unit, uint16_t vid, int32_t enable) {
  bcm_vlan_control_vlan_t control;
  const int rv = control_get(unit, vid, control);
  if (failed(rv, "Failed to get vlan [%d] control: %s", vid)) return sdk_to_sai(rv);
  if (enable)
    control.flags &= ~uint32_t{BCM_VLAN_LEARN_DISABLE};
  else
    control.flags |= BCM_VLAN_LEARN_DISABLE;
  return result(bcm_vlan_control_vlan_set(unit, vid, control), "Failed to set vlan [%d] control %d: %s", vid,
                control.flags);
}

int32_t sai_vlan_l2_lookup_set(int32_t unit, uint16_t vid, int32_t value) {
  bcm_vlan_control_vlan_t control;
  const int rv = control_get(unit, vid, control);
  if (failed(rv, "Failed to get vlan [%d] control: %s", vid)) return sdk_to_sai(rv);
  // Meant: unlike the learn switch above, a non-zero value sets the bit; and the message shows the word in hexadecimal.
  if (value)
    control.flags |= BCM_VLAN_L2_LOOKUP_DISABLE;
  else
    control.flags &= ~uint32_t{BCM_VLAN_L2_LOOKUP_DISABLE};
  return result(bcm_vlan_control_vlan_set(unit, vid, control), "Failed to set vlan [%d] control 0x%x: %s", vid,
                control.flags);
}
