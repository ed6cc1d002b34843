// The SDK's calls on interfaces, egress objects, hosts and routes.
#include <bcm/error.h>
#include <bcm/l3.h>
#include <bcm/stack.h>
#include <bcm/switch.h>
#include <swsdk/chip.h>
#include <swsdk/journal.h>

#include <appl/diag/system.h>

#include <cstring>

#include "support/chip_test.h"
#include "support/scene.h"

extern "C" {
extern uint32* l3_module_data[];
}

namespace {

constexpr bcm_mac_t router = {0x00, 0x11, 0x22, 0x33, 0x44, 0x55};
constexpr bcm_mac_t next_hop = {0x00, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE};
constexpr bcm_ip_t host_address = 0x0A000001;

bcm_l3_intf_t interface_of(bcm_vlan_t vlan) {
  bcm_l3_intf_t result;
  bcm_l3_intf_t_init(&result);
  std::memcpy(result.l3a_mac_addr, router, sizeof router);
  result.l3a_vid = vlan;
  return result;
}

bcm_l3_host_t host_of(bcm_ip_t ip, int interface = 0) {
  bcm_l3_host_t result;
  bcm_l3_host_t_init(&result);
  result.l3a_ip_addr = ip;
  result.l3a_intf = interface;
  result.l3a_port_tgid = 3;
  std::memcpy(result.l3a_nexthop_mac, next_hop, sizeof next_hop);
  return result;
}

bcm_l3_route_t route_of(bcm_ip_t subnet, bcm_ip_t mask, int interface = 0) {
  bcm_l3_route_t result;
  bcm_l3_route_t_init(&result);
  result.l3a_subnet = subnet;
  result.l3a_ip_mask = mask;
  result.l3a_intf = interface;
  result.l3a_port_tgid = 3;
  return result;
}

bcm_l3_egress_t egress_of(int interface) {
  bcm_l3_egress_t result;
  bcm_l3_egress_t_init(&result);
  result.intf = interface;
  result.vlan = 10;
  result.port = 3;
  std::memcpy(result.mac_addr, next_hop, sizeof next_hop);
  return result;
}

class L3Calls : public support::ChipTest {
 protected:
  static int make_interface(bcm_vlan_t vlan) {
    bcm_l3_intf_t interface = interface_of(vlan);
    EXPECT_EQ(bcm_l3_intf_create(0, &interface), BCM_E_NONE);
    return interface.l3a_intf_id;
  }

  static int make_egress(int interface) {
    bcm_l3_egress_t egress = egress_of(interface);
    int id = 0;
    EXPECT_EQ(bcm_l3_egress_create(0, 0, &egress, &id), BCM_E_NONE);
    return id;
  }

  static void set_egress_mode(int on) { ASSERT_EQ(bcm_switch_control_set(0, bcmSwitchL3EgressMode, on), BCM_E_NONE); }

  /// The flags of a host that was found so.
  static uint32 host_flags(uint32 wanted) {
    bcm_l3_host_t host = host_of(host_address);
    host.l3a_flags = wanted;
    EXPECT_EQ(bcm_l3_host_find(0, &host), BCM_E_NONE);
    return host.l3a_flags;
  }
};

TEST_F(L3Calls, FindAnInterfaceByItsIdItsVlanAndItsAddress) {
  bcm_l3_intf_t made = interface_of(10);
  made.l3a_flags = BCM_L3_ADD_TO_ARL;
  made.l3a_ttl = 2;
  ASSERT_EQ(bcm_l3_intf_create(0, &made), BCM_E_NONE);
  EXPECT_EQ(made.l3a_intf_id, 1);

  bcm_l3_intf_t by_id;
  bcm_l3_intf_t_init(&by_id);
  by_id.l3a_intf_id = 1;
  EXPECT_EQ(bcm_l3_intf_find(0, &by_id), BCM_E_NONE);
  EXPECT_EQ(std::memcmp(&by_id, &made, sizeof made), 0);

  bcm_l3_intf_t by_vlan;
  bcm_l3_intf_t_init(&by_vlan);
  by_vlan.l3a_vid = 10;
  EXPECT_EQ(bcm_l3_intf_find_vlan(0, &by_vlan), BCM_E_NONE);
  EXPECT_EQ(std::memcmp(&by_vlan, &made, sizeof made), 0);

  bcm_l3_intf_t by_address = interface_of(10);
  by_address.l3a_flags = BCM_L3_ADD_TO_ARL | BCM_L3_IPMC;
  EXPECT_EQ(bcm_l3_intf_find(0, &by_address), BCM_E_NONE);
  EXPECT_EQ(std::memcmp(&by_address, &made, sizeof made), 0);
}

TEST_F(L3Calls, LeaveARecordAloneWhenNoInterfaceIsFound) {
  bcm_l3_intf_t interface = interface_of(10);
  const bcm_l3_intf_t before = interface;
  EXPECT_EQ(bcm_l3_intf_find(0, &interface), BCM_E_NOT_FOUND);
  EXPECT_EQ(bcm_l3_intf_find_vlan(0, &interface), BCM_E_NOT_FOUND);
  EXPECT_EQ(std::memcmp(&interface, &before, sizeof before), 0);
  interface.l3a_intf_id = 100000;
  EXPECT_EQ(bcm_l3_intf_find(0, &interface), BCM_E_PARAM);
  for (const bcm_vlan_t none : std::initializer_list<bcm_vlan_t>{0, 4096}) {
    interface.l3a_vid = none;
    EXPECT_EQ(bcm_l3_intf_find_vlan(0, &interface), BCM_E_PARAM) << none;
  }
}

TEST_F(L3Calls, DeleteOneInterfaceOrAll) {
  const int first = make_interface(10);
  make_interface(11);
  bcm_l3_intf_t interface;
  bcm_l3_intf_t_init(&interface);
  interface.l3a_intf_id = first;
  EXPECT_EQ(bcm_l3_intf_delete(0, &interface), BCM_E_NONE);
  EXPECT_EQ(bcm_l3_intf_delete(0, &interface), BCM_E_NOT_FOUND);
  EXPECT_EQ(bcm_l3_intf_delete_all(0), BCM_E_NONE);
  interface.l3a_vid = 11;
  EXPECT_EQ(bcm_l3_intf_find_vlan(0, &interface), BCM_E_NOT_FOUND);
}

TEST_F(L3Calls, ShowTheEgressModeInTheL3Module) {
  EXPECT_EQ(l3_module_data[0][0] & 1, 0U);
  set_egress_mode(1);
  EXPECT_EQ(l3_module_data[0][0] & 1, 1U);
  set_egress_mode(0);
  EXPECT_EQ(l3_module_data[0][0] & 1, 0U);
  set_egress_mode(2);
  EXPECT_EQ(l3_module_data[0][0] & 1, 1U);
  EXPECT_EQ(system_init(0), BCM_E_NONE);
  EXPECT_EQ(l3_module_data[0][0] & 1, 0U);
}

TEST_F(L3Calls, HaveEgressObjectsOnlyInEgressMode) {
  bcm_l3_egress_t egress = egress_of(make_interface(10));
  int id = 0;
  EXPECT_EQ(bcm_l3_egress_create(0, 0, &egress, &id), BCM_E_DISABLED);
  EXPECT_EQ(bcm_l3_egress_find(0, &egress, &id), BCM_E_DISABLED);
  EXPECT_EQ(bcm_l3_egress_get(0, 100000, &egress), BCM_E_DISABLED);
  EXPECT_EQ(bcm_l3_egress_destroy(0, 100000), BCM_E_DISABLED);
  set_egress_mode(1);
  EXPECT_EQ(bcm_l3_egress_find(0, &egress, &id), BCM_E_NOT_FOUND);
  EXPECT_EQ(bcm_l3_egress_create(0, 0, &egress, &id), BCM_E_NONE);
  EXPECT_EQ(bcm_l3_egress_create(0, 0, &egress, &id), BCM_E_EXISTS);
  EXPECT_EQ(bcm_l3_egress_create(0, BCM_L3_REPLACE, &egress, &id), BCM_E_UNAVAIL);
  int found = 0;
  EXPECT_EQ(bcm_l3_egress_find(0, &egress, &found), BCM_E_NONE);
  EXPECT_EQ(found, id);
  bcm_l3_egress_t got;
  bcm_l3_egress_t_init(&got);
  EXPECT_EQ(bcm_l3_egress_get(0, id, &got), BCM_E_NONE);
  EXPECT_EQ(std::memcmp(&got, &egress, sizeof got), 0);
  EXPECT_EQ(bcm_l3_egress_destroy(0, id), BCM_E_NONE);
  EXPECT_EQ(bcm_l3_egress_destroy(0, id), BCM_E_NOT_FOUND);
}

TEST_F(L3Calls, RefuseAnEgressObjectThatLeadsNowhere) {
  set_egress_mode(1);
  bcm_l3_egress_t egress = egress_of(1);
  int id = 0;
  EXPECT_EQ(bcm_l3_egress_create(0, 0, &egress, &id), BCM_E_NOT_FOUND);
  egress.intf = make_interface(10);
  egress.port = 13;
  EXPECT_EQ(bcm_l3_egress_create(0, 0, &egress, &id), BCM_E_PORT);
}

TEST_F(L3Calls, KeepAnEgressObjectThatIsInUse) {
  set_egress_mode(1);
  const int id = make_egress(make_interface(10));
  bcm_l3_host_t host = host_of(host_address, id);
  bcm_l3_route_t route = route_of(0x0A000000, 0xFF000000, id);
  EXPECT_EQ(bcm_l3_host_add(0, &host), BCM_E_NONE);
  EXPECT_EQ(bcm_l3_route_add(0, &route), BCM_E_NONE);
  EXPECT_EQ(bcm_l3_egress_destroy(0, id), BCM_E_BUSY);
  EXPECT_EQ(bcm_l3_host_delete(0, &host), BCM_E_NONE);
  EXPECT_EQ(bcm_l3_egress_destroy(0, id), BCM_E_BUSY);
  EXPECT_EQ(bcm_l3_route_delete(0, &route), BCM_E_NONE);
  EXPECT_EQ(bcm_l3_egress_destroy(0, id), BCM_E_NONE);
}

TEST_F(L3Calls, FindAHostAsItWasAdded) {
  const int interface = make_interface(10);
  bcm_l3_host_t host = host_of(host_address, interface);
  host.l3a_flags = BCM_L3_L2TOCPU | BCM_L3_REPLACE;
  EXPECT_EQ(bcm_l3_host_add(0, &host), BCM_E_NONE);
  bcm_l3_host_t found;
  bcm_l3_host_t_init(&found);
  found.l3a_ip_addr = host_address;
  EXPECT_EQ(bcm_l3_host_find(0, &found), BCM_E_NONE);
  EXPECT_EQ(found.l3a_flags, static_cast<uint32>(BCM_L3_L2TOCPU));
  EXPECT_EQ(found.l3a_intf, interface);
  EXPECT_EQ(found.l3a_port_tgid, 3);
  EXPECT_EQ(std::memcmp(found.l3a_nexthop_mac, next_hop, sizeof next_hop), 0);
}

TEST_F(L3Calls, ReplaceAHostOrRouteOnDemand) {
  const int first = make_interface(10);
  const int second = make_interface(11);
  bcm_l3_host_t host = host_of(host_address, first);
  bcm_l3_route_t route = route_of(0x0A000000, 0xFF000000, first);
  ASSERT_EQ(bcm_l3_host_add(0, &host), BCM_E_NONE);
  ASSERT_EQ(bcm_l3_route_add(0, &route), BCM_E_NONE);
  host.l3a_intf = route.l3a_intf = second;
  EXPECT_EQ(bcm_l3_host_add(0, &host), BCM_E_EXISTS);
  EXPECT_EQ(bcm_l3_route_add(0, &route), BCM_E_EXISTS);
  host.l3a_flags = route.l3a_flags = BCM_L3_REPLACE;
  EXPECT_EQ(bcm_l3_host_add(0, &host), BCM_E_NONE);
  EXPECT_EQ(bcm_l3_route_add(0, &route), BCM_E_NONE);
  host.l3a_intf = route.l3a_intf = 0;
  EXPECT_EQ(bcm_l3_host_find(0, &host), BCM_E_NONE);
  EXPECT_EQ(bcm_l3_route_get(0, &route), BCM_E_NONE);
  EXPECT_EQ(host.l3a_intf, second);
  EXPECT_EQ(route.l3a_intf, second);
}

TEST_F(L3Calls, RefuseHostsAndRoutesThatLeadNowhere) {
  bcm_l3_host_t host = host_of(host_address, 1);
  bcm_l3_route_t route = route_of(0x0A000000, 0xFF000000, 1);
  EXPECT_EQ(bcm_l3_host_add(0, &host), BCM_E_NOT_FOUND);
  EXPECT_EQ(bcm_l3_route_add(0, &route), BCM_E_NOT_FOUND);
  make_interface(10);
  host.l3a_port_tgid = route.l3a_port_tgid = 13;
  EXPECT_EQ(bcm_l3_host_add(0, &host), BCM_E_PORT);
  EXPECT_EQ(bcm_l3_route_add(0, &route), BCM_E_PORT);
  host.l3a_port_tgid = route.l3a_port_tgid = 0;
  EXPECT_EQ(bcm_l3_host_add(0, &host), BCM_E_NONE);
  EXPECT_EQ(bcm_l3_route_add(0, &route), BCM_E_NONE);
}

TEST_F(L3Calls, FindARouteAsItWasAdded) {
  constexpr uint32 local = 0x4000;
  bcm_l3_route_t route = route_of(0x0A000000, 0xFFFFFF00, make_interface(10));
  route.l3a_flags = local;
  route.l3a_nexthop_ip = 0x0B000001;
  route.l3a_vid = 10;
  EXPECT_EQ(bcm_l3_route_add(0, &route), BCM_E_NONE);
  bcm_l3_route_t found = route_of(0x0A000000, 0xFFFFFF00);
  found.l3a_port_tgid = 0;
  EXPECT_EQ(bcm_l3_route_get(0, &found), BCM_E_NONE);
  EXPECT_EQ(std::memcmp(&found, &route, sizeof route), 0);
  EXPECT_EQ(bcm_l3_route_delete(0, &found), BCM_E_NONE);
  EXPECT_EQ(bcm_l3_route_get(0, &found), BCM_E_NOT_FOUND);
  EXPECT_EQ(bcm_l3_route_delete(0, &found), BCM_E_NOT_FOUND);
  bcm_l3_route_t holed = route_of(0x0A000000, 0xFF00FF00);
  EXPECT_EQ(bcm_l3_route_add(0, &holed), BCM_E_PARAM);
}

TEST_F(L3Calls, DoNotModelIp6) {
  bcm_l3_host_t host = host_of(host_address, make_interface(10));
  host.l3a_ip6_addr[0] = 0xFE;
  EXPECT_EQ(bcm_l3_host_add(0, &host), BCM_E_UNAVAIL);
  bcm_l3_route_t route = route_of(0, 0, 1);
  route.l3a_ip6_mask[0] = 0xFF;
  EXPECT_EQ(bcm_l3_route_add(0, &route), BCM_E_UNAVAIL);
}

TEST_F(L3Calls, ReadAndClearTheHitsOfAHost) {
  bcm_l3_host_t host = host_of(host_address, make_interface(10));
  EXPECT_EQ(swsdk_l3_host_hit(0, host_address, BCM_L3_HIT), -1);
  ASSERT_EQ(bcm_l3_host_add(0, &host), BCM_E_NONE);
  EXPECT_EQ(host_flags(0), 0U);
  EXPECT_EQ(swsdk_l3_host_hit(0, host_address, 0x8), 0);
  EXPECT_EQ(host_flags(0), 0x8U);
  EXPECT_EQ(swsdk_l3_host_hit(0, host_address, 0x4), 0);
  EXPECT_EQ(host_flags(BCM_L3_HIT_CLEAR), static_cast<uint32>(BCM_L3_HIT));
  EXPECT_EQ(host_flags(0), 0U);
  EXPECT_EQ(swsdk_l3_host_hit(1, host_address, BCM_L3_HIT), -1);
}

TEST_F(L3Calls, ReadAndClearTheHitsOfARoute) {
  bcm_l3_route_t route = route_of(0x0A000000, 0xFF000000, make_interface(10));
  ASSERT_EQ(bcm_l3_route_add(0, &route), BCM_E_NONE);
  EXPECT_EQ(swsdk_l3_route_hit(0, 0x0A000000, 0xFF000000, 0x4), 0);
  EXPECT_EQ(swsdk_l3_route_hit(0, 0x0A000000, 0xFFFF0000, 0x4), -1);
  EXPECT_EQ(swsdk_l3_route_hit(0, 0x0A000000, 0x00FF0000, 0x4), -1);
  route.l3a_flags = BCM_L3_HIT_CLEAR;
  EXPECT_EQ(bcm_l3_route_get(0, &route), BCM_E_NONE);
  EXPECT_EQ(route.l3a_flags, 0x4U);
  route.l3a_flags = 0;
  EXPECT_EQ(bcm_l3_route_get(0, &route), BCM_E_NONE);
  EXPECT_EQ(route.l3a_flags, 0U);
}

TEST_F(L3Calls, TellTheModuleIdAndSwitchRoutingOn) {
  int module = -1;
  EXPECT_EQ(bcm_stk_my_modid_get(0, &module), BCM_E_NONE);
  EXPECT_EQ(module, 0);
  EXPECT_EQ(bcm_l3_enable_set(0, 1), BCM_E_NONE);
}

TEST_F(L3Calls, FillTheirTablesForPeople) {
  set_egress_mode(1);
  const int interface = make_interface(10);
  const int id = make_egress(interface);
  bcm_l3_host_t host = host_of(host_address, id);
  bcm_l3_host_add(0, &host);
  swsdk_l3_host_hit(0, host_address, 0x8);
  bcm_l3_route_t route = route_of(0, 0, interface);
  route.l3a_flags = BCM_L3_DEFIP_CPU;
  route.l3a_nexthop_ip = 0x0A000002;
  bcm_l3_route_add(0, &route);
  EXPECT_EQ(support::table("interface"),
            "interface  VRF  MAC                VLAN  TTL  flags\n"
            "1          0    00:11:22:33:44:55  10    0    -\n");
  EXPECT_EQ(support::table("egress"),
            "egress  interface  MAC                VLAN  port  used by\n"
            "100000  1          00:aa:bb:cc:dd:ee  10    3     1\n");
  EXPECT_EQ(support::table("host"),
            "host      VRF  by             MAC                port  flags  hit\n"
            "10.0.0.1  0    egress 100000  00:aa:bb:cc:dd:ee  3     -      destination\n");
  EXPECT_EQ(support::table("route"),
            "subnet     VRF  by           next hop  MAC                port  flags   hit\n"
            "0.0.0.0/0  0    interface 1  10.0.0.2  00:00:00:00:00:00  3     to-cpu  -\n");
}

}  // namespace
