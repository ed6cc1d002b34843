#include <bcm/multicast.h>

#include "api/call.h"

using api::Call;
using api::hex;
using api::inout;
using api::out;
using api::out_array;
using api::unmodelled;
using chip::Chip;

int bcm_multicast_create(int unit, uint32 flags, bcm_multicast_t* group) {
  return Call(__func__, unit, hex(flags), inout(group)).answer([&](Chip& chip) {
    return chip.multicast_groups.create(flags, *group);
  });
}

int bcm_multicast_destroy(int unit, bcm_multicast_t group) {
  return Call(__func__, unit, group).answer([&](Chip& chip) { return chip.multicast_groups.destroy(group); });
}

int bcm_multicast_egress_add(int unit, bcm_multicast_t group, bcm_gport_t port, bcm_if_t encap_id) {
  return unmodelled(__func__, unit, group, port, encap_id);
}

int bcm_multicast_egress_delete(int unit, bcm_multicast_t group, bcm_gport_t port, bcm_if_t encap_id) {
  return unmodelled(__func__, unit, group, port, encap_id);
}

int bcm_multicast_egress_get(int unit, bcm_multicast_t group, int port_max, bcm_gport_t* port_array,
                             bcm_if_t* encap_id_array, int* port_count) {
  return unmodelled(__func__, unit, group, port_max, out_array(port_array, port_max),
                    out_array(encap_id_array, port_max), out(port_count));
}

int bcm_multicast_init(int unit) {
  return Call(__func__, unit).answer([&](Chip& chip) {
    chip.multicast_groups.clear();
    return chip::Status::ok;
  });
}

int bcm_multicast_l2_encap_get(int unit, bcm_multicast_t group, bcm_gport_t port, bcm_vlan_t vlan, bcm_if_t* encap_id) {
  return unmodelled(__func__, unit, group, port, vlan, out(encap_id));
}

int bcm_multicast_l3_encap_get(int unit, bcm_multicast_t group, bcm_gport_t port, bcm_if_t intf, bcm_if_t* encap_id) {
  return unmodelled(__func__, unit, group, port, intf, out(encap_id));
}

int bcm_multicast_vlan_encap_get(int unit, bcm_multicast_t group, bcm_gport_t port, bcm_gport_t vlan_port_id,
                                 bcm_if_t* encap_id) {
  return unmodelled(__func__, unit, group, port, vlan_port_id, out(encap_id));
}
