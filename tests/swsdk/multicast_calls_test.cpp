// The SDK's calls on multicast groups, on routes of IP multicast and on where VLANs flood.
#include <bcm/error.h>
#include <bcm/ipmc.h>
#include <bcm/l3.h>
#include <bcm/multicast.h>
#include <bcm/port.h>
#include <bcm/vlan.h>
#include <swsdk/chip.h>
#include <swsdk/journal.h>

#include <algorithm>
#include <cstring>

#include "support/chip_test.h"
#include "support/gports.h"
#include "support/scene.h"

extern "C" {
int bcm_esw_vlan_ip4_mcast_flood_set(int unit, bcm_vlan_t vlan, int mode);
int bcm_esw_vlan_ip6_mcast_flood_set(int unit, bcm_vlan_t vlan, int mode);
}

namespace {

class MulticastCalls : public support::ChipTest {
 protected:
  static int make_group(uint32 type) {
    int group = 0;
    EXPECT_EQ(bcm_multicast_create(0, type, &group), BCM_E_NONE);
    return group;
  }

  static int make_interface(bcm_vlan_t vlan) {
    bcm_l3_intf_t interface;
    bcm_l3_intf_t_init(&interface);
    interface.l3a_vid = vlan;
    EXPECT_EQ(bcm_l3_intf_create(0, &interface), BCM_E_NONE);
    return interface.l3a_intf_id;
  }

  static int l3_encapsulation(int group, int port, int interface) {
    int encapsulation = 0;
    EXPECT_EQ(bcm_multicast_l3_encap_get(0, group, port, interface, &encapsulation), BCM_E_NONE);
    return encapsulation;
  }

  static int count(int group) {
    int members = -1;
    EXPECT_EQ(bcm_multicast_egress_get(0, group, 0, nullptr, nullptr, &members), BCM_E_NONE);
    return members;
  }

  static bcm_gport_t gport_of(int port) {
    bcm_gport_t gport = 0;
    EXPECT_EQ(bcm_port_gport_get(0, port, &gport), BCM_E_NONE);
    return gport;
  }

  static bcm_vlan_control_vlan_t control(bcm_vlan_t vlan) {
    bcm_vlan_control_vlan_t result;
    EXPECT_EQ(bcm_vlan_control_vlan_get(0, vlan, &result), BCM_E_NONE);
    return result;
  }
};

TEST_F(MulticastCalls, CountAndListTheMembersOfAGroup) {
  const int group = make_group(BCM_MULTICAST_TYPE_L3);
  EXPECT_EQ(count(group), 0);
  const int of_10 = l3_encapsulation(group, 3, make_interface(10));
  const int of_11 = l3_encapsulation(group, gport_of(3), make_interface(11));
  EXPECT_NE(of_10, of_11);
  EXPECT_EQ(bcm_multicast_egress_add(0, group, gport_of(3), of_10), BCM_E_NONE);
  EXPECT_EQ(bcm_multicast_egress_add(0, group, gport_of(3), of_11), BCM_E_NONE);
  EXPECT_EQ(bcm_multicast_egress_add(0, group, gport_of(4), of_10), BCM_E_NONE);
  EXPECT_EQ(count(group), 3);

  int ports[5] = {};
  int encapsulations[5] = {};
  int members = 0;
  EXPECT_EQ(bcm_multicast_egress_get(0, group, 5, ports, encapsulations, &members), BCM_E_NONE);
  EXPECT_EQ(members, 3);
  EXPECT_EQ(ports[0], gport_of(3));
  EXPECT_EQ(encapsulations[0], of_10);
  EXPECT_EQ(encapsulations[1], of_11);
  EXPECT_EQ(ports[2], gport_of(4));
  EXPECT_EQ(ports[3], 0);
  EXPECT_EQ(bcm_multicast_egress_get(0, group, 2, ports, encapsulations, &members), BCM_E_NONE);
  EXPECT_EQ(members, 2);
  EXPECT_EQ(bcm_multicast_egress_get(0, group, -1, ports, encapsulations, &members), BCM_E_PARAM);
  EXPECT_EQ(bcm_multicast_egress_get(0, group, 2, nullptr, encapsulations, &members), BCM_E_PARAM);
}

TEST_F(MulticastCalls, WriteDownOnlyTheMembersThatWereListed) {
  const int group = make_group(BCM_MULTICAST_TYPE_L2);
  bcm_multicast_egress_add(0, group, 3, -1);
  int ports[5];
  int encapsulations[5];
  int members = 0;
  swsdk_journal_record(1);
  bcm_multicast_egress_get(0, group, 5, ports, encapsulations, &members);
  bcm_multicast_egress_get(0, group, 0, nullptr, nullptr, &members);
  EXPECT_EQ(support::journal(),
            "bcm_multicast_egress_get(0, 1, 5, &[134217731], &[-1], &1) = 0\n"
            "bcm_multicast_egress_get(0, 1, 0, NULL, NULL, &1) = 0\n");
}

TEST_F(MulticastCalls, KnowAMemberByEveryNameOfItsPort) {
  const int group = make_group(BCM_MULTICAST_TYPE_L2);
  constexpr int local_gport = support::gport(BCM_GPORT_TYPE_LOCAL, 3);
  EXPECT_EQ(bcm_multicast_egress_add(0, group, local_gport, -1), BCM_E_NONE);
  EXPECT_EQ(bcm_multicast_egress_add(0, group, gport_of(3), -1), BCM_E_EXISTS);
  EXPECT_EQ(bcm_multicast_egress_delete(0, group, 3, -1), BCM_E_NONE);
  EXPECT_EQ(bcm_multicast_egress_delete(0, group, 3, -1), BCM_E_NOT_FOUND);
  EXPECT_EQ(bcm_multicast_egress_add(0, group, 13, -1), BCM_E_PORT);
  EXPECT_EQ(bcm_multicast_egress_add(0, group + 1, 3, -1), BCM_E_NOT_FOUND);
}

TEST_F(MulticastCalls, GiveLayer2MembersAnEncapsulationWhateverTheVlan) {
  constexpr bcm_vlan_t no_vlan = 0xFFFF;
  const int group = make_group(BCM_MULTICAST_TYPE_VLAN);
  int encapsulation = 0;
  EXPECT_EQ(bcm_multicast_l2_encap_get(0, group, 3, no_vlan, &encapsulation), BCM_E_NONE);
  EXPECT_EQ(bcm_multicast_egress_add(0, group, 3, encapsulation), BCM_E_NONE);
  EXPECT_EQ(bcm_multicast_l2_encap_get(0, group, 3, 10, &encapsulation), BCM_E_NONE);
  EXPECT_EQ(bcm_multicast_egress_add(0, group, 3, encapsulation), BCM_E_EXISTS);
  EXPECT_EQ(bcm_multicast_l2_encap_get(0, group, 3, 4096, &encapsulation), BCM_E_PARAM);
  EXPECT_EQ(bcm_multicast_l2_encap_get(0, make_group(BCM_MULTICAST_TYPE_L3), 3, 10, &encapsulation), BCM_E_PARAM);
}

TEST_F(MulticastCalls, GiveLayer3MembersAnEncapsulationOfTheirInterface) {
  const int group = make_group(BCM_MULTICAST_TYPE_L3);
  int encapsulation = 77;
  EXPECT_EQ(bcm_multicast_l3_encap_get(0, group, 3, 1, &encapsulation), BCM_E_NOT_FOUND);
  EXPECT_EQ(bcm_multicast_l3_encap_get(0, group, 3, 0, &encapsulation), BCM_E_PARAM);
  const int interface = make_interface(10);
  EXPECT_EQ(bcm_multicast_l3_encap_get(0, group, 13, interface, &encapsulation), BCM_E_PORT);
  EXPECT_EQ(bcm_multicast_l3_encap_get(0, group + 1, 3, interface, &encapsulation), BCM_E_NOT_FOUND);
  EXPECT_EQ(bcm_multicast_l3_encap_get(0, make_group(BCM_MULTICAST_TYPE_VLAN), 3, interface, &encapsulation),
            BCM_E_PARAM);
  EXPECT_EQ(encapsulation, 77);
}

bcm_ipmc_addr_t ip4_route(int group) {
  bcm_ipmc_addr_t result;
  bcm_ipmc_addr_t_init(&result);
  result.mc_ip_addr = 0xEF010203;
  result.vid = 10;
  result.v = 1;
  result.flags = BCM_IPMC_SOURCE_PORT_NOCHECK;
  result.l3a_intf = 1;
  result.group = group;
  return result;
}

bcm_ipmc_addr_t ip6_route(int group, uint8 source) {
  bcm_ipmc_addr_t result;
  bcm_ipmc_addr_t_init(&result);
  result.mc_ip6_addr[0] = 0xFF;
  result.mc_ip6_addr[15] = 1;
  result.s_ip6_addr[0] = 0xFE;
  result.s_ip6_addr[15] = source;
  std::fill_n(result.mc_ip6_mask, sizeof(bcm_ip6_t), uint8{0xFF});
  std::fill_n(result.s_ip6_mask, sizeof(bcm_ip6_t), uint8{0xFF});
  result.vid = 10;
  result.flags = BCM_IPMC_SOURCE_PORT_NOCHECK | BCM_IPMC_IP6;
  result.group = group;
  return result;
}

/// The record with all that it is found by, and no more.
bcm_ipmc_addr_t key_of(const bcm_ipmc_addr_t& route) {
  bcm_ipmc_addr_t result = route;
  result.v = 0;
  result.group = 0;
  result.l3a_intf = 0;
  return result;
}

TEST_F(MulticastCalls, FindARouteAsItWasAdded) {
  const int group = make_group(BCM_MULTICAST_TYPE_L3);
  for (bcm_ipmc_addr_t route : {ip4_route(group), ip6_route(group, 1)}) {
    bcm_ipmc_addr_t found = key_of(route);
    EXPECT_EQ(bcm_ipmc_find(0, &found), BCM_E_NOT_FOUND);
    EXPECT_EQ(found.group, 0);
    EXPECT_EQ(bcm_ipmc_add(0, &route), BCM_E_NONE);
    EXPECT_EQ(bcm_ipmc_add(0, &route), BCM_E_EXISTS);
    EXPECT_EQ(bcm_ipmc_find(0, &found), BCM_E_NONE);
    EXPECT_EQ(std::memcmp(&found, &route, sizeof route), 0);
    EXPECT_EQ(bcm_ipmc_remove(0, &found), BCM_E_NONE);
    EXPECT_EQ(bcm_ipmc_remove(0, &found), BCM_E_NOT_FOUND);
  }
}

TEST_F(MulticastCalls, TellTheSourcesOfAnIp6GroupApart) {
  const int first = make_group(BCM_MULTICAST_TYPE_L3);
  const int second = make_group(BCM_MULTICAST_TYPE_L3);
  bcm_ipmc_addr_t one = ip6_route(first, 1);
  bcm_ipmc_addr_t two = ip6_route(second, 2);
  EXPECT_EQ(bcm_ipmc_add(0, &one), BCM_E_NONE);
  EXPECT_EQ(bcm_ipmc_add(0, &two), BCM_E_NONE);
  bcm_ipmc_addr_t found = key_of(two);
  EXPECT_EQ(bcm_ipmc_find(0, &found), BCM_E_NONE);
  EXPECT_EQ(found.group, second);
}

TEST_F(MulticastCalls, RefuseARouteToAGroupThatCannotServeIt) {
  bcm_ipmc_addr_t route = ip4_route(5);
  EXPECT_EQ(bcm_ipmc_add(0, &route), BCM_E_NOT_FOUND);
  route.group = 0;
  EXPECT_EQ(bcm_ipmc_add(0, &route), BCM_E_PARAM);
  route.group = make_group(BCM_MULTICAST_TYPE_L2);
  EXPECT_EQ(bcm_ipmc_add(0, &route), BCM_E_PARAM);
}

TEST_F(MulticastCalls, ForgetTheRoutesWhenTheyAreInitialized) {
  bcm_ipmc_addr_t route = ip4_route(make_group(BCM_MULTICAST_TYPE_L3));
  bcm_ipmc_add(0, &route);
  EXPECT_EQ(bcm_ipmc_init(0), BCM_E_NONE);
  EXPECT_EQ(bcm_ipmc_find(0, &route), BCM_E_NOT_FOUND);
}

TEST_F(MulticastCalls, SetWhereAVlanFloods) {
  ASSERT_EQ(bcm_vlan_create(0, 10), BCM_E_NONE);
  EXPECT_EQ(bcm_vlan_mcast_flood_set(0, 10, BCM_VLAN_MCAST_FLOOD_UNKNOWN), BCM_E_NONE);
  EXPECT_EQ(control(10).l2_mcast_flood_mode, BCM_VLAN_MCAST_FLOOD_UNKNOWN);
  EXPECT_EQ(control(10).ip4_mcast_flood_mode, BCM_VLAN_MCAST_FLOOD_UNKNOWN);
  EXPECT_EQ(control(10).ip6_mcast_flood_mode, BCM_VLAN_MCAST_FLOOD_UNKNOWN);
  EXPECT_EQ(bcm_esw_vlan_ip4_mcast_flood_set(0, 10, 2), BCM_E_NONE);
  EXPECT_EQ(control(10).ip4_mcast_flood_mode, BCM_VLAN_MCAST_FLOOD_NONE);
  EXPECT_EQ(control(10).ip6_mcast_flood_mode, BCM_VLAN_MCAST_FLOOD_UNKNOWN);
  EXPECT_EQ(bcm_esw_vlan_ip6_mcast_flood_set(0, 10, 0), BCM_E_NONE);
  EXPECT_EQ(control(10).ip6_mcast_flood_mode, BCM_VLAN_MCAST_FLOOD_ALL);
  EXPECT_EQ(control(10).l2_mcast_flood_mode, BCM_VLAN_MCAST_FLOOD_UNKNOWN);
  EXPECT_EQ(bcm_esw_vlan_ip4_mcast_flood_set(0, 10, 3), BCM_E_PARAM);
  EXPECT_EQ(bcm_esw_vlan_ip6_mcast_flood_set(0, 11, 0), BCM_E_NOT_FOUND);
  EXPECT_EQ(bcm_vlan_mcast_flood_set(0, 0, BCM_VLAN_MCAST_FLOOD_ALL), BCM_E_PARAM);
}

TEST_F(MulticastCalls, FillTheirTablesForPeople) {
  make_group(BCM_MULTICAST_TYPE_L2);
  const int group = make_group(BCM_MULTICAST_TYPE_L3);
  bcm_multicast_egress_add(0, group, 3, l3_encapsulation(group, 3, make_interface(10)));
  bcm_ipmc_addr_t ip4 = ip4_route(group);
  bcm_ipmc_addr_t ip6 = ip6_route(group, 2);
  bcm_ipmc_add(0, &ip4);
  bcm_ipmc_add(0, &ip6);
  EXPECT_EQ(support::table("multicast"),
            "group  type  ports  encapsulation\n"
            "1      L2    -      -\n"
            "2      L3    {3}    interface 1\n");
  const int encapsulation = l3_encapsulation(group, 3, 1);
  for (const int port : {4, 5, 7}) bcm_multicast_egress_add(0, group, port, encapsulation);
  bcm_multicast_egress_add(0, group, 5, l3_encapsulation(group, 5, make_interface(20)));
  EXPECT_EQ(support::table("multicast"),
            "group  type  ports    encapsulation\n"
            "1      L2    -        -\n"
            "2      L3    {3-5,7}  interface 1\n"
            "2      L3    {5}      interface 2\n");
  EXPECT_EQ(support::table("ipmc"),
            "address    source   VLAN  VRF  group  interface  flags\n"
            "239.1.2.3  *        10    0    2      1          from-any-port\n"
            "ff00::1    fe00::2  10    0    2      0          from-any-port\n");
}

}  // namespace
