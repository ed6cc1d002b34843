#include <sai.h>
#include <string.h>

#include "core/log.h"
#include "core/result.h"
#include "core/sdk.h"
#include "l3/addresses.h"
#include "l3/multicast.h"

using sai::Ip6Text;
using sai::PairedMacText;
using sai::result;
using sai::trace;
using namespace sai::multicast;

namespace {

constexpr JoinTexts join_texts{
    .intf_create = "Error executing bcm_l3_intf_create() : %s",
    .group_create = "Error executing bcm_multicast_create() : %s",
    .ipmc_add = "Error executing bcm_ipmc_add() : %s",
    .gport_get = "Error executing bcm_port_gport_get() : %s",
    .encap_get = "Error executing bcm_multicast_l3_encap_get() : %s",
    .egress_add = "Error executing bcm_multicast_egress_add() : %s",
    .found = [](bcm_multicast_t group) { trace("find group 0x%x", group); },
};

constexpr LeaveTexts leave_texts{
    .ipmc_find = "bcm_ipmc_find ipmc group is not exist: %s",
    .gport_get = "bcm_port_gport_get failed: %s",
    .intf_find = "vlan %d inner vlan %d bcm_l3_intf_find failed: %s",
    .encap_get = "bcm_multicast_l2_encap_get failed: %s",  // Meant: "l2".
    .egress_delete = "bcm_multicast_egress_delete failed: %s",
    .without_interface = false,
};

constexpr DestroyTexts destroy_texts{
    .ipmc_find = "bcm_ipmc_find failed: %s",
    .ipmc_remove = "bcm_ipmc_remove failed: %s",
    .group_destroy = "bcm_multicast_destroy failed: %s",
    .without_remove = false,
};

bcm_ipmc_addr_t key_of(uint16_t vlan, const uint8_t* group, const uint8_t* source) {
  bcm_ipmc_addr_t key;
  bcm_ipmc_addr_t_init(&key);
  memcpy(key.mc_ip6_addr, group, sizeof key.mc_ip6_addr);
  memcpy(key.s_ip6_addr, source, sizeof key.s_ip6_addr);
  memset(key.mc_ip6_mask, 0xFF, sizeof key.mc_ip6_mask);
  memset(key.s_ip6_mask, 0xFF, sizeof key.s_ip6_mask);
  key.vid = vlan;
  key.v = 1;
  key.flags |= BCM_IPMC_SOURCE_PORT_NOCHECK | BCM_IPMC_IP6;
  return key;
}

}  // namespace

int32_t sai_ipv6_ipmc_add(int32_t unit, uint16_t vlan, uint16_t user_vlan, uint8_t port, const uint8_t* group,
                          const uint8_t* source, const uint8_t* mac) {
  if (group == nullptr || source == nullptr || mac == nullptr) return result(BCM_E_PARAM, join_texts.intf_create);
  trace("add multicast group: group vlan %d group address %s source address %s group-member %d user vlan %d mac %s",
        vlan, Ip6Text(group), Ip6Text(source), port, user_vlan, PairedMacText(mac));
  bcm_ipmc_addr_t key = key_of(vlan, group, source);
  return join(unit, vlan, key, {.mac = mac, .port = port, .user_vlan = user_vlan}, join_texts);
}

int32_t sai_ipv6_multicast_egress_del(int32_t unit, uint16_t vlan, const uint8_t* group, const uint8_t* source,
                                      const uint8_t* mac, uint8_t port, int32_t user_vlan) {
  if (group == nullptr || source == nullptr || mac == nullptr) return result(BCM_E_PARAM, leave_texts.ipmc_find);
  bcm_ipmc_addr_t key = key_of(vlan, group, source);
  int rv = leave(unit, key, {.mac = mac, .port = port, .user_vlan = user_vlan}, leave_texts);
  if (rv < 0) return sdk_to_sai(rv);
  int count = -1;  // a query that gives no count destroys no group
  rv = count_members(unit, key.group, count);
  if (count == 0) sai_ipv6_multicast_destroy(unit, vlan, group, source);  // Meant: whatever the query returned.
  return sdk_to_sai(rv);
}

int32_t sai_ipv6_multicast_destroy(int32_t unit, uint16_t vlan, const uint8_t* group, const uint8_t* source) {
  if (group == nullptr || source == nullptr) return result(BCM_E_PARAM, destroy_texts.ipmc_find);
  bcm_ipmc_addr_t key = key_of(vlan, group, source);
  return destroy(unit, key, destroy_texts);
}

int32_t sai_ipv6_vlan_mcast_flood_set(int32_t unit, int32_t mode, int32_t vlan) {
  return sai_vlan_mcast_flood_set(unit, mode, vlan);
}

int32_t sai_ipv6_esw_vlan_mcast_flood_set(int32_t unit, uint16_t vlan, uint8_t disable) {
  // Meant: VLAN first, unlike sai_esw_vlan_mcast_flood_set(), and a failure is logged.
  return result(
      bcm_esw_vlan_ip6_mcast_flood_set(unit, vlan, disable ? BCM_VLAN_MCAST_FLOOD_NONE : BCM_VLAN_MCAST_FLOOD_ALL),
      "bcm_esw_vlan_ip6_mcast_flood_set vlan %d failed: %s", vlan);
}
