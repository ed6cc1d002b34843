#include <sai.h>

#include "core/convert.h"
#include "core/log.h"
#include "core/result.h"
#include "core/sdk.h"
#include "l3/addresses.h"
#include "l3/multicast.h"

using sai::failed;
using sai::Ip4Text;
using sai::log_if_failed;
using sai::PairedMacText;
using sai::result;
using sai::trace;
using namespace sai::multicast;

namespace {

// Meant: with a full stop, unlike those of sai_multicast_egress_add() and of IPv6.
constexpr JoinTexts join_texts{
    .intf_create = "Error executing bcm_l3_intf_create() : %s.",
    .group_create = "Error executing bcm_multicast_create() : %s.",
    .ipmc_add = "Error executing bcm_ipmc_add() : %s.",
    .gport_get = "Error executing bcm_port_gport_get() : %s.",
    .encap_get = "Error executing bcm_multicast_l3_encap_get() : %s.",
    .egress_add = "Error executing bcm_multicast_egress_add() : %s.",
    .found = [](bcm_multicast_t group) { sai_err("find group 0x%x", group); },  // Meant: as an error.
};

constexpr sai::Format<const char*> member_intf_create = "bcm_l3_intf_create failed: %s";

constexpr LeaveTexts leave_texts{
    .ipmc_find = "bcm_ipmc_find ipmc group is not exist: %s",
    .gport_get = "sai_multicast_egress_del bcm_port_gport_get failed: %s",
    .intf_find = "sai_multicast_egress_del vlan %d inner vlan %d bcm_l3_intf_find failed: %s",
    .encap_get = "sai_multicast_egress_del bcm_multicast_l2_encap_get failed: %s",  // Meant: "l2".
    .egress_delete = "sai_multicast_egress_del bcm_multicast_egress_delete failed: %s",
    .without_interface = true,
};

constexpr DestroyTexts destroy_texts{
    .ipmc_find = "sai_multicast_destroy bcm_ipmc_find failed: %s",
    .ipmc_remove = "sai_multicast_destroy bcm_ipmc_remove failed: %s",
    .group_destroy = "sai_multicast_destroy bcm_multicast_destroy failed: %s",
    .without_remove = true,
};

bcm_ipmc_addr_t key_of(int vlan, uint32_t group) {
  bcm_ipmc_addr_t key;
  bcm_ipmc_addr_t_init(&key);
  key.mc_ip_addr = group;
  key.vid = sai::vlan_id(vlan);
  key.v = 1;
  key.flags |= BCM_IPMC_SOURCE_PORT_NOCHECK;
  return key;
}

/// Finds the group of `key` or makes it; failures are logged and ignored.
void find_or_create_group(int unit, bcm_ipmc_addr_t& key) {
  if (bcm_ipmc_find(unit, &key) == BCM_E_NONE) {
    trace("get ipmc group is 0x%x\r\n", key.group);
    return;
  }
  // Meant: on unit 0, whatever the caller's unit.
  log_if_failed(bcm_multicast_create(0, BCM_MULTICAST_TYPE_L3, &key.group), "bcm_multicast_create failed: %s");
  log_if_failed(bcm_ipmc_add(unit, &key), "bcm_ipmc_add failed: %s");
}

}  // namespace

int32_t sai_multicast_egress_add(int32_t unit, int32_t vlan, uint32_t group, const uint8_t* mac, int32_t port,
                                 int32_t report_vid) {
  if (mac == nullptr) return result(BCM_E_PARAM, member_intf_create);
  trace("add multicast group: group vlan %d group address %s group-member %d report vid %d", vlan, Ip4Text(group), port,
        report_vid);
  // Meant: up to the member's own interface, a failure is logged and does not end the function.
  bcm_l3_intf_t intf = interface(mac, vlan);
  intf.l3a_flags |= interface_flags;
  log_if_failed(find_or_create(unit, intf), "bcm_l3_intf_create vlan %d failed: %s", vlan);
  bcm_ipmc_addr_t key = key_of(vlan, group);
  key.l3a_intf = intf.l3a_intf_id;
  find_or_create_group(unit, key);
  bcm_gport_t gport = 0;
  log_if_failed(bcm_port_gport_get(unit, port, &gport), "bcm_port_gport_get port %d failed: %s", port);

  if (port > 8 || vlan != report_vid) {
    intf = port > 8 ? interface(mac, double_tag_vlan, report_vid) : interface(mac, report_vid);
    intf.l3a_flags |= interface_flags;
    const int rv = find_or_create(unit, intf);
    if (failed(rv, member_intf_create)) return sdk_to_sai(rv);
  }

  // Meant: the encapsulation is that of the port, the member is the port's gport; and "l2".
  bcm_if_t encap = 0;
  const int rv = bcm_multicast_l3_encap_get(unit, key.group, port, intf.l3a_intf_id, &encap);
  if (failed(rv, "bcm_multicast_l2_encap_get failed: %s")) return sdk_to_sai(rv);
  return result(bcm_multicast_egress_add(unit, key.group, gport, encap), "bcm_multicast_egress_add failed: %s");
}

int32_t sai_multicast_egress_del(int32_t unit, int32_t vlan, uint32_t group, const uint8_t* mac, int32_t port,
                                 int32_t user_vid) {
  if (mac == nullptr) return result(BCM_E_PARAM, leave_texts.ipmc_find);
  bcm_ipmc_addr_t key = key_of(vlan, group);
  int rv = leave(unit, key, {.mac = mac, .port = port, .user_vlan = user_vid}, leave_texts);
  if (rv < 0) return sdk_to_sai(rv);
  int count = -1;  // a query that gives no count destroys no group
  rv = count_members(unit, key.group, count);
  trace("rv is %d port_count is %d", rv, count);
  if (count == 0) sai_multicast_destroy(unit, vlan, group);  // Meant: whatever the query returned.
  return sdk_to_sai(rv);
}

int32_t sai_multicast_destroy(int32_t unit, int32_t vlan, uint32_t group) {
  bcm_ipmc_addr_t key = key_of(vlan, group);
  return destroy(unit, key, destroy_texts);
}

int32_t sai_ipmc_add(int32_t unit, int32_t vlan, int32_t user_vlan, int32_t port, uint32_t group, const uint8_t* mac) {
  if (mac == nullptr) return result(BCM_E_PARAM, join_texts.intf_create);
  trace("add multicast group: group vlan %d group address %s group-member %d user vlan %d mac %s", vlan, Ip4Text(group),
        port, user_vlan, PairedMacText(mac));
  bcm_ipmc_addr_t key = key_of(vlan, group);
  return join(unit, vlan, key, {.mac = mac, .port = port, .user_vlan = user_vlan}, join_texts);
}

int32_t sai_vlan_mcast_flood_set(int32_t unit, int32_t mode, int32_t vlan) {
  const bcm_vlan_mcast_flood_t flood = mode == 1   ? BCM_VLAN_MCAST_FLOOD_ALL
                                       : mode == 2 ? BCM_VLAN_MCAST_FLOOD_UNKNOWN
                                                   : BCM_VLAN_MCAST_FLOOD_NONE;
  return result(bcm_vlan_mcast_flood_set(unit, sai::vlan_id(vlan), flood),
                "bcm_vlan_mcast_flood_set vlan %d failed: %s", vlan);
}

int32_t sai_esw_vlan_mcast_flood_set(int32_t unit, int32_t mode, uint16_t vlan) {
  // Meant: mode 1 floods nothing, while in sai_vlan_mcast_flood_set() it floods all; and no failure is logged.
  return sdk_to_sai(
      bcm_esw_vlan_ip4_mcast_flood_set(unit, vlan, mode == 1 ? BCM_VLAN_MCAST_FLOOD_NONE : BCM_VLAN_MCAST_FLOOD_ALL));
}
