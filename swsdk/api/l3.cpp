#include <bcm/l3.h>

#include "api/call.h"

using api::hex;
using api::in;
using api::inout;
using api::out;
using api::unmodelled;

int bcm_l3_egress_create(int unit, uint32 flags, bcm_l3_egress_t* egr, bcm_if_t* if_id) {
  return unmodelled(__func__, unit, hex(flags), in(egr), out(if_id));
}

int bcm_l3_egress_destroy(int unit, bcm_if_t intf) { return unmodelled(__func__, unit, intf); }

int bcm_l3_egress_find(int unit, bcm_l3_egress_t* egr, bcm_if_t* intf) {
  return unmodelled(__func__, unit, in(egr), out(intf));
}

int bcm_l3_egress_get(int unit, bcm_if_t intf, bcm_l3_egress_t* egr) {
  return unmodelled(__func__, unit, intf, out(egr));
}

int bcm_l3_enable_set(int unit, int enable) { return unmodelled(__func__, unit, enable); }

int bcm_l3_host_add(int unit, bcm_l3_host_t* info) { return unmodelled(__func__, unit, in(info)); }

int bcm_l3_host_delete(int unit, bcm_l3_host_t* ip_addr) { return unmodelled(__func__, unit, in(ip_addr)); }

int bcm_l3_host_find(int unit, bcm_l3_host_t* info) { return unmodelled(__func__, unit, inout(info)); }

int bcm_l3_intf_create(int unit, bcm_l3_intf_t* intf) { return unmodelled(__func__, unit, inout(intf)); }

int bcm_l3_intf_delete(int unit, bcm_l3_intf_t* intf) { return unmodelled(__func__, unit, in(intf)); }

int bcm_l3_intf_delete_all(int unit) { return unmodelled(__func__, unit); }

int bcm_l3_intf_find(int unit, bcm_l3_intf_t* intf) { return unmodelled(__func__, unit, inout(intf)); }

int bcm_l3_intf_find_vlan(int unit, bcm_l3_intf_t* intf) { return unmodelled(__func__, unit, inout(intf)); }

int bcm_l3_route_add(int unit, bcm_l3_route_t* info) { return unmodelled(__func__, unit, in(info)); }

int bcm_l3_route_delete(int unit, bcm_l3_route_t* info) { return unmodelled(__func__, unit, in(info)); }

int bcm_l3_route_get(int unit, bcm_l3_route_t* info) { return unmodelled(__func__, unit, inout(info)); }
