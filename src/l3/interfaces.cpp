#include "l3/interfaces.h"

#include <sai.h>

#include "core/convert.h"
#include "core/gports.h"
#include "core/log.h"
#include "core/result.h"
#include "l3/addresses.h"

using sai::ErrorText;
using sai::failed;
using sai::log_if_failed;
using sai::MacText;
using sai::result;
using sai::trace;
using sai::vlan_id;

namespace {

constexpr bcm_mac_t no_mac = {};

/// Which result of a lookup ends the work.
using Ends = bool (*)(int rv);
constexpr Ends unless_zero = [](int rv) { return rv != BCM_E_NONE; };
constexpr Ends if_negative = [](int rv) { return rv < 0; };

/// Describes the interface of a next hop on a virtual port, which is found through the next hop's MAC address.
int describe(int unit, const uint8_t* router_mac, const uint8_t* nexthop_mac, int vlan, Ends ends,
             bcm_l3_intf_t& intf) {
  bcm_l3_intf_t_init(&intf);
  intf.l3a_flags |= BCM_L3_ADD_TO_ARL;
  sai::copy_mac(intf.l3a_mac_addr, router_mac);

  bcm_l2_addr_t learned{};
  int rv = sai::find_learned(unit, nexthop_mac, vlan, learned);
  if (ends(rv)) return rv;

  // Meant: any kind of port is looked up here.
  bcm_vlan_port_t virtual_port;
  bcm_vlan_port_t_init(&virtual_port);
  virtual_port.vlan_port_id = learned.port;
  rv = bcm_vlan_port_find(unit, &virtual_port);
  if (ends(rv)) return rv;

  intf.l3a_vid = virtual_port.match_vlan;
  intf.l3a_inner_vlan = vlan_id(vlan);
  return rv;
}

/// Deletes the interface of a next hop that was learned on a virtual port; true unless that fails.
bool delete_virtual_port_interface(int unit, int egress_id, bcm_l3_egress_t& egress) {
  if (egress.vlan == 0 || sai::same_mac(egress.mac_addr, no_mac)) return true;
  bcm_l2_addr_t learned{};
  if (failed(sai::find_learned(unit, egress.mac_addr, egress.vlan, learned), "Failed to get l2 addr source port: %s"))
    return false;
  if (!sai::is_on_virtual_port(learned)) return true;

  // Meant: the egress object's id serves as the interface's.
  bcm_l3_intf_t intf;
  bcm_l3_intf_t_init(&intf);
  intf.l3a_intf_id = egress_id;
  if (failed(bcm_l3_intf_find(unit, &intf), "find l3 interface failed: %s") ||
      failed(bcm_l3_intf_delete(unit, &intf), "delete l3 interface failed: %s")) {
    sai_err("can't delete l3 interface out vlan %d", egress.vlan);
    return false;
  }
  return true;
}

int32_t creation_result(int rv, int vlan) {
  return result(rv, "bcm_l3_intf_create vlan %d l3 interface failed: %s", vlan);
}

}  // namespace

int sai::find_learned(int unit, const uint8_t* mac, int vlan, bcm_l2_addr_t& learned) {
  return bcm_l2_addr_get(unit, sai::sdk_address(mac), vlan_id(vlan), &learned);
}

bool sai::is_on_virtual_port(const bcm_l2_addr_t& learned) { return gport::is_vlan_port(learned.port); }

int32_t sai_l3_enable_set(int32_t unit, int32_t enable) {
  return result(bcm_l3_enable_set(unit, enable), "bcm_l3_enable_set enable %d failed: %s", enable);
}

int32_t sai_l3_intf_create(int32_t unit, const uint8_t* mac, int32_t vlan) {
  if (mac == nullptr) return creation_result(BCM_E_PARAM, vlan);
  bcm_l3_intf_t intf;
  bcm_l3_intf_t_init(&intf);
  intf.l3a_vid = vlan_id(vlan);
  if (bcm_l3_intf_find_vlan(unit, &intf) >= 0) {  // Meant: any failure leads to creation and is not logged.
    if (sai::same_mac(intf.l3a_mac_addr, mac)) return SAI_E_NONE;
    trace("delete vlan %d l3 interface %d", vlan, intf.l3a_intf_id);
    const int rv = bcm_l3_intf_delete(unit, &intf);
    if (failed(rv, "bcm_l3_intf_delete vlan %d l3 interface failed: %s", vlan)) return sdk_to_sai(rv);
  }

  bcm_l3_intf_t_init(&intf);
  intf.l3a_flags |= BCM_L3_ADD_TO_ARL;
  sai::copy_mac(intf.l3a_mac_addr, mac);
  intf.l3a_vid = vlan_id(vlan);
  intf.l3a_vrf = 0;
  intf.l3a_inner_vlan = 0;
  intf.l3a_group = 0;
  intf.l3a_ttl = 0;
  trace(" create vlan %d l3 interface", vlan);  // Meant: the leading space.
  return creation_result(bcm_l3_intf_create(unit, &intf), vlan);
}

int32_t sai_l3_intf_delete(int32_t unit, int32_t vlan) {
  bcm_l3_intf_t intf;
  bcm_l3_intf_t_init(&intf);
  intf.l3a_vid = vlan_id(vlan);
  const int rv = bcm_l3_intf_find_vlan(unit, &intf);
  if (failed(rv, "bcm_l3_intf_find_vlan vlan %d l3 interface failed: %s", vlan)) return sdk_to_sai(rv);
  return result(bcm_l3_intf_delete(unit, &intf), "bcm_l3_intf_delete vlan %d l3 interface failed: %s", vlan);
}

int32_t sai_l3_intf_delete_all(int32_t unit) {
  return result(bcm_l3_intf_delete_all(unit), "sai_l3_intf_delete_all failed: %s");
}

int32_t sai_l3_egress_create(int unit, const uint8_t* mac, int vlan, int port, int intf_id, int* egress_id) {
  bcm_l3_egress_t egress;
  bcm_l3_egress_t_init(&egress);
  egress.intf = intf_id;
  sai::copy_mac(egress.mac_addr, mac);
  egress.vlan = vlan_id(vlan);
  egress.port = port;

  bcm_if_t id = 0;
  int rv = bcm_l3_egress_find(unit, &egress, &id);
  // Meant: these two show the interface as the egress object.
  if (rv != BCM_E_NOT_FOUND) {
    trace("sai_l3_egress_create l3 egress %d port %d vlan %d mac %s already exist", intf_id, port, vlan, MacText(mac));
    *egress_id = id;
    return sdk_to_sai(rv);
  }
  trace("sai_l3_egress_create not find l3 egress %d port %d vlan %d mac %s", intf_id, port, vlan, MacText(mac));

  rv = bcm_l3_egress_create(unit, 0, &egress, &id);
  if (failed(rv, "bcm_l3_egress_create vlan %d l3 egress failed: %s", vlan)) return sdk_to_sai(rv);
  trace("bcm_l3_egress_create vlan %d l3 interface %d, l3 egress %d: %s", vlan, intf_id, id, ErrorText{rv});
  *egress_id = id;
  return SAI_E_NONE;
}

void sai_l3_egress_delete(int unit, int egress_id) {
  bcm_l3_egress_t egress;
  bcm_l3_egress_t_init(&egress);
  if (bcm_l3_egress_get(unit, egress_id, &egress) < 0) {
    trace("sai_l3_egress_delete not find l3 egress %d ", egress.intf);  // Meant: the interface, and the trailing space.
    return;
  }
  trace("sai_l3_egress_delete find l3 egress %d port %d vlan %d mac %s", egress.intf, egress.port, egress.vlan,
        MacText(egress.mac_addr));
  if (!delete_virtual_port_interface(unit, egress_id, egress)) return;
  if (!failed(bcm_l3_egress_destroy(unit, egress_id), "bcm_l3_egress_destroy l3 egress index %d failed: %s", egress_id))
    trace("sai_l3_egress_delete l3 egress index %d", egress_id);
}

int32_t sai_l3_intf_dtag_create(int unit, const uint8_t* router_mac, const uint8_t* nexthop_mac, int vlan,
                                bcm_l3_intf_t* intf) {
  int rv = describe(unit, router_mac, nexthop_mac, vlan, unless_zero, *intf);
  if (unless_zero(rv)) return sdk_to_sai(rv);
  rv = bcm_l3_intf_find(unit, intf);
  if (rv == BCM_E_NOT_FOUND) {
    rv = bcm_l3_intf_create(unit, intf);
    log_if_failed(rv, "sai_l3_intf_dtag_create l3 interface failed: %s");
  }
  return sdk_to_sai(rv);
}

void sai_l3_intf_dtag_delete(int unit, int intf_id) {
  bcm_l3_intf_t intf;
  bcm_l3_intf_t_init(&intf);
  intf.l3a_intf_id = intf_id;
  if (bcm_l3_intf_find(unit, &intf) < 0)
    trace("sai_l3_intf_dtag_delete not find l3 interface %d ", intf_id);  // Meant: the trailing space.
  else
    log_if_failed(bcm_l3_intf_delete(unit, &intf), "sai_l3_intf_dtag_delete delete l3 interface failed: %s");
}

int sai_l3_intf_vport_create(int unit, const uint8_t* router_mac, const uint8_t* nexthop_mac, int vlan,
                             bcm_l3_intf_t* intf) {
  int rv = describe(unit, router_mac, nexthop_mac, vlan, if_negative, *intf);
  if (if_negative(rv)) return rv;
  rv = bcm_l3_intf_find(unit, intf);
  if (rv < 0) {
    rv = bcm_l3_intf_create(unit, intf);
    log_if_failed(rv, "create l3 interface failed: %s");
  }
  return rv;
}
