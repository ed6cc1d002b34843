// Routes over what the chip holds: interfaces, learned addresses, virtual ports, egress objects.
#include <bcm/l2.h>
#include <bcm/l3.h>
#include <bcm/stack.h>
#include <bcm/switch.h>
#include <bcm/vlan.h>
#include <swsdk/chip.h>

#include <algorithm>

#include "l3/scene.h"

namespace {

constexpr uint32_t host = 0xC0A8010A;    // 192.168.1.10
constexpr uint32_t subnet = 0x0A140000;  // 10.20.0.0
constexpr uint32_t mask = 0xFFFF0000;    // 255.255.0.0
constexpr uint32_t gateway = 0xC0A80101;
constexpr int vlan = 10;
constexpr int outer_vlan = 100;
constexpr int port = 3;

/// What the log and the result show of an observed call.
std::string told(const std::string& seen) { return seen.substr(std::min(seen.find("log: "), seen.find("returned "))); }

class RoutesOnTheChip : public l3::Scene {
 protected:
  RoutesOnTheChip() {
    EXPECT_EQ(bcm_switch_control_set(unit, bcmSwitchL3EgressMode, 0), BCM_E_NONE);
    EXPECT_EQ(bcm_vlan_create(unit, vlan), BCM_E_NONE);
    EXPECT_EQ(bcm_vlan_create(unit, outer_vlan), BCM_E_NONE);
    EXPECT_EQ(sai_l3_intf_create(unit, router, vlan), 0);
    intf_id = interface_of(vlan).l3a_intf_id;
    learn(neighbor, port);
  }

  static void learn(const uint8_t* mac, bcm_gport_t where) {
    bcm_l2_addr_t address;
    bcm_l2_addr_t_init(&address, mac, vlan);
    address.port = where;
    EXPECT_EQ(bcm_l2_addr_add(unit, &address), BCM_E_NONE);
  }

  /// Makes a virtual port for the outer VLAN, on which the neighbor is learned.
  static bcm_gport_t move_neighbor_to_a_virtual_port() {
    bcm_vlan_port_t virtual_port;
    bcm_vlan_port_t_init(&virtual_port);
    virtual_port.criteria = BCM_VLAN_PORT_MATCH_PORT_VLAN;
    virtual_port.match_vlan = outer_vlan;
    virtual_port.port = port;
    EXPECT_EQ(bcm_vlan_port_create(unit, &virtual_port), BCM_E_NONE);
    learn(neighbor, virtual_port.vlan_port_id);
    return virtual_port.vlan_port_id;
  }

  static bcm_l3_intf_t interface_of(bcm_vlan_t vid) {
    bcm_l3_intf_t intf;
    bcm_l3_intf_t_init(&intf);
    intf.l3a_vid = vid;
    EXPECT_EQ(bcm_l3_intf_find_vlan(unit, &intf), BCM_E_NONE);
    return intf;
  }

  static bcm_l3_host_t found_host() {
    bcm_l3_host_t found;
    bcm_l3_host_t_init(&found);
    found.l3a_ip_addr = host;
    EXPECT_EQ(bcm_l3_host_find(unit, &found), BCM_E_NONE);
    return found;
  }

  static bcm_l3_route_t found_route() {
    bcm_l3_route_t found;
    bcm_l3_route_t_init(&found);
    found.l3a_subnet = subnet;
    found.l3a_ip_mask = mask;
    EXPECT_EQ(bcm_l3_route_get(unit, &found), BCM_E_NONE);
    return found;
  }

  static bcm_l3_egress_t egress_object(int id) {
    bcm_l3_egress_t egress;
    bcm_l3_egress_t_init(&egress);
    EXPECT_EQ(bcm_l3_egress_get(unit, id, &egress), BCM_E_NONE);
    return egress;
  }

  static bool has_egress_object(int id) {
    bcm_l3_egress_t egress;
    bcm_l3_egress_t_init(&egress);
    return bcm_l3_egress_get(unit, id, &egress) == BCM_E_NONE;
  }

  static void use_egress_objects_of_the_chip() {
    EXPECT_EQ(bcm_switch_control_set(unit, bcmSwitchL3EgressMode, 1), BCM_E_NONE);
    EXPECT_EQ(l3_module_data[unit][0] & 1, 1U);
  }

  static int32_t add_host() { return sai_l3_host_route_create(unit, host, router, neighbor, port, vlan, 0); }
  static int32_t add_double_tagged_host() {
    return sai_l3_host_route_create(unit, host, router, neighbor, port, vlan, 1);
  }
  static int32_t remove_host() { return sai_l3_host_route_delete(unit, host, 0); }
  static int32_t add_subnet() { return add_subnet_on(port); }
  static int32_t add_subnet_on(int where) {
    return sai_l3_subnet_route_create(unit, subnet, mask, gateway, router, neighbor, where, vlan, 0);
  }

  bcm_if_t intf_id = 0;
};

// ------------------------------------------------------------------------------------------------ interfaces ----

TEST_F(RoutesOnTheChip, AnInterfaceOfTheSameMacIsKeptAndOfAnotherReplaced) {
  EXPECT_EQ(observe([] { return sai_l3_intf_create(unit, router, vlan); }).find("bcm_l3_intf_create"),
            std::string::npos);
  EXPECT_EQ(interface_of(vlan).l3a_intf_id, intf_id);
  EXPECT_EQ(told(observe([] { return sai_l3_intf_create(unit, neighbor, vlan); })),
            "log: debugging: NONE: delete vlan 10 l3 interface " + std::to_string(intf_id) +
                "\n"
                "log: debugging: NONE:  create vlan 10 l3 interface\n"
                "returned 0\n");
  EXPECT_TRUE(std::equal(neighbor, neighbor + 6, interface_of(vlan).l3a_mac_addr));
}

// ------------------------------------------------------------------------------------------------------ hosts ----

TEST_F(RoutesOnTheChip, AHostPointsAtTheInterfaceOfItsVlan) {
  EXPECT_EQ(add_host(), 0);
  EXPECT_EQ(found_host().l3a_intf, intf_id);
  EXPECT_EQ(found_host().l3a_port_tgid, port);
}

TEST_F(RoutesOnTheChip, AReplacedHostIsTracedWithItsOldAndNewValues) {
  ASSERT_EQ(add_host(), 0);
  const uint8_t successor[6] = {0x02, 0, 0, 0, 0, 0x33};
  ASSERT_EQ(bcm_vlan_create(unit, 11), BCM_E_NONE);
  ASSERT_EQ(sai_l3_intf_create(unit, router, 11), 0);
  bcm_l2_addr_t address;
  bcm_l2_addr_t_init(&address, successor, 11);
  address.port = 4;
  ASSERT_EQ(bcm_l2_addr_add(unit, &address), BCM_E_NONE);

  int modid = 0;
  ASSERT_EQ(bcm_stk_my_modid_get(unit, &modid), BCM_E_NONE);
  const std::string module = std::to_string(modid);
  const std::string next = std::to_string(interface_of(11).l3a_intf_id);
  EXPECT_EQ(told(observe([&] { return sai_l3_host_route_create(unit, host, router, successor, 4, 11, 0); })),
            "log: debugging: NONE: sai_l3_host_route_create:  host 192.168.1.10 hostmac 02:00:00:00:00:33 port 4 vid "
            "11\n"
            "log: debugging: NONE: sai_l3_host_route_create vlan 11 intf_id  " +
                next + "\nlog: debugging: NONE: sai_l3_host_route_create replace host 192.168.1.10 intf " +
                std::to_string(intf_id) + ' ' + next + " modid " + module + ' ' + module +
                " port 3 4 mac 02:00:00:ab:00:2a 02:00:00:00:00:33\n"
                "returned 0\n");
  EXPECT_EQ(found_host().l3a_port_tgid, 4);
}

TEST_F(RoutesOnTheChip, AHostOnAVirtualPortGetsADoubleTaggedInterface) {
  move_neighbor_to_a_virtual_port();
  for (const auto& add : {add_host, add_double_tagged_host}) {
    const std::string seen = observe(add);
    EXPECT_NE(seen.find("l3a_mac_addr=02:00:00:00:00:01, l3a_vid=100, l3a_inner_vlan=10"), std::string::npos) << seen;
    EXPECT_TRUE(seen.ends_with("returned 0\n")) << seen;
    const bcm_if_t used = found_host().l3a_intf;
    EXPECT_NE(used, intf_id);
    // A second time it is found.
    EXPECT_EQ(observe(add).find("bcm_l3_intf_create"), std::string::npos);
    EXPECT_EQ(found_host().l3a_intf, used);
  }
}

TEST_F(RoutesOnTheChip, AHostOnAVirtualPortWhoseInterfaceCannotBeMadeEnds) {
  move_neighbor_to_a_virtual_port();
  const std::string begin =
      "log: debugging: NONE: sai_l3_host_route_create:  host 192.168.1.10 hostmac 02:00:00:ab:00:2a port 3 vid 10\n";
  const std::string end =
      "log: errors: NONE: can't add l3 interface out vlan 10\n"
      "returned -1\n";
  EXPECT_EQ(told(observe_failing("bcm_vlan_port_find", BCM_E_BUSY, add_host)), begin + end);
  // Whatever fails in the lookup of the interface, it is made.
  EXPECT_EQ(told(observe_with({{"bcm_l3_intf_find", BCM_E_PARAM}, {"bcm_l3_intf_create", BCM_E_BUSY}}, add_host)),
            begin + "log: errors: NONE: create l3 interface failed: Hardware is busy\n" + end);
  // A positive answer fails nothing.
  const std::string seen = observe_with({{"bcm_vlan_port_find", 1}}, add_host);
  EXPECT_NE(seen.find("bcm_l3_intf_find(0, "), std::string::npos) << seen;
}

TEST_F(RoutesOnTheChip, AHostInEgressModePointsAtItsEgressObject) {
  use_egress_objects_of_the_chip();
  const std::string seen = observe(add_host);
  const int egress_id = found_host().l3a_intf;
  const bcm_l3_egress_t egress = egress_object(egress_id);
  EXPECT_EQ(egress.intf, intf_id);
  EXPECT_EQ(egress.vlan, vlan);
  EXPECT_EQ(egress.port, port);
  EXPECT_TRUE(std::equal(neighbor, neighbor + 6, egress.mac_addr));
  EXPECT_NE(seen.find("log: debugging: NONE: bcm_l3_egress_create vlan 10 l3 interface " + std::to_string(intf_id) +
                      ", l3 egress " + std::to_string(egress_id) + ": Success\n"),
            std::string::npos)
      << seen;
  // Another host behind the same next hop shares it.
  EXPECT_EQ(sai_l3_host_route_create(unit, host + 1, router, neighbor, port, vlan, 0), 0);
  bcm_l3_host_t second;
  bcm_l3_host_t_init(&second);
  second.l3a_ip_addr = host + 1;
  ASSERT_EQ(bcm_l3_host_find(unit, &second), BCM_E_NONE);
  EXPECT_EQ(second.l3a_intf, egress_id);
}

TEST_F(RoutesOnTheChip, ADeletedHostTakesItsEgressObjectAlongButNotTheInterface) {
  use_egress_objects_of_the_chip();
  ASSERT_EQ(add_host(), 0);
  const int egress_id = found_host().l3a_intf;
  const std::string seen = observe(remove_host);
  EXPECT_NE(seen.find("bcm_l2_addr_get(0, 02:00:00:ab:00:2a, 10, "), std::string::npos) << seen;
  EXPECT_EQ(seen.find("bcm_l3_intf_delete"), std::string::npos) << seen;
  EXPECT_EQ(told(seen),
            "log: debugging: NONE: sai_l3_host_route_delete host 192.168.1.10\n"
            "log: debugging: NONE: sai_l3_egress_delete find l3 egress " +
                std::to_string(intf_id) +
                " port 3 vlan 10 mac 02:00:00:ab:00:2a\n"
                "log: debugging: NONE: sai_l3_egress_delete l3 egress index " +
                std::to_string(egress_id) + "\nreturned 0\n");
  EXPECT_FALSE(has_egress_object(egress_id));
}

TEST_F(RoutesOnTheChip, AnEgressObjectWhoseNextHopIsForgottenStays) {
  use_egress_objects_of_the_chip();
  ASSERT_EQ(add_host(), 0);
  const int egress_id = found_host().l3a_intf;
  const std::string seen = observe_failing("bcm_l2_addr_get", BCM_E_NOT_FOUND, remove_host);
  EXPECT_TRUE(seen.ends_with("log: errors: NONE: Failed to get l2 addr source port: Entry not found\nreturned 0\n"))
      << seen;
  EXPECT_TRUE(has_egress_object(egress_id));
}

TEST_F(RoutesOnTheChip, AnEgressObjectThatIsSharedStaysUntilTheLastOfItsRoutesIsDeleted) {
  use_egress_objects_of_the_chip();
  ASSERT_EQ(add_host(), 0);
  ASSERT_EQ(add_subnet(), 0);
  const int egress_id = found_host().l3a_intf;
  ASSERT_EQ(found_route().l3a_intf, egress_id);
  const std::string seen = observe(remove_host);
  EXPECT_TRUE(seen.ends_with("log: errors: NONE: bcm_l3_egress_destroy l3 egress index " + std::to_string(egress_id) +
                             " failed: Hardware is busy\nreturned 0\n"))
      << seen;
  EXPECT_TRUE(has_egress_object(egress_id));
  EXPECT_EQ(sai_l3_subnet_route_delete(unit, subnet, mask, 0), 0);
  EXPECT_FALSE(has_egress_object(egress_id));
}

TEST_F(RoutesOnTheChip, ARouteThatMovesLeavesItsFormerEgressObject) {
  use_egress_objects_of_the_chip();
  const auto move_host = [] { return sai_l3_host_route_create(unit, host, router, neighbor, port + 1, vlan, 0); };
  ASSERT_EQ(add_host(), 0);
  const int of_host = found_host().l3a_intf;
  ASSERT_EQ(move_host(), 0);
  EXPECT_NE(found_host().l3a_intf, of_host);
  EXPECT_EQ(remove_host(), 0);
  EXPECT_TRUE(has_egress_object(of_host));

  ASSERT_EQ(add_subnet_on(port + 2), 0);
  const int of_subnet = found_route().l3a_intf;
  ASSERT_EQ(add_subnet_on(port + 3), 0);
  EXPECT_NE(found_route().l3a_intf, of_subnet);
  EXPECT_EQ(sai_l3_subnet_route_delete(unit, subnet, mask, 0), 0);
  EXPECT_TRUE(has_egress_object(of_subnet));

  // One that is deleted first leaves nothing, and a route to the same next hop takes along what was left.
  ASSERT_EQ(add_host(), 0);
  EXPECT_EQ(found_host().l3a_intf, of_host);
  EXPECT_EQ(remove_host(), 0);
  EXPECT_FALSE(has_egress_object(of_host));
  ASSERT_EQ(move_host(), 0);
  EXPECT_EQ(remove_host(), 0);
}

TEST_F(RoutesOnTheChip, ADeletedHostOnAVirtualPortLeavesItsInterfaceAndItsEgressObject) {
  move_neighbor_to_a_virtual_port();
  use_egress_objects_of_the_chip();
  ASSERT_EQ(add_host(), 0);
  const int egress_id = found_host().l3a_intf;
  bcm_l3_intf_t intf;
  bcm_l3_intf_t_init(&intf);
  intf.l3a_intf_id = egress_object(egress_id).intf;
  EXPECT_EQ(remove_host(), 0);
  EXPECT_TRUE(has_egress_object(egress_id));
  EXPECT_EQ(bcm_l3_intf_find(unit, &intf), BCM_E_NONE);
}

TEST_F(RoutesOnTheChip, TheEgressObjectOfAVirtualPortIsDestroyedAfterTheInterfaceOfItsNumber) {
  move_neighbor_to_a_virtual_port();
  use_egress_objects_of_the_chip();
  ASSERT_EQ(add_host(), 0);
  const int egress_id = found_host().l3a_intf;
  const std::string lookup = "bcm_l3_intf_find(0, {l3a_intf_id=" + std::to_string(egress_id) + "})";
  const std::string removal = "bcm_l3_intf_delete(0, {l3a_intf_id=" + std::to_string(egress_id) + "})";
  const std::string kept = "log: errors: NONE: can't delete l3 interface out vlan 10\nreturned 0\n";

  std::string seen = observe_with({{"bcm_l3_intf_find", BCM_E_NOT_FOUND}}, remove_host);
  EXPECT_NE(seen.find(lookup + " = -7\n"), std::string::npos) << seen;
  EXPECT_TRUE(seen.ends_with("log: errors: NONE: find l3 interface failed: Entry not found\n" + kept)) << seen;
  EXPECT_TRUE(has_egress_object(egress_id));

  ASSERT_EQ(add_host(), 0);
  seen = observe_with({{"bcm_l3_intf_find", 0}, {"bcm_l3_intf_delete", BCM_E_BUSY}}, remove_host);
  EXPECT_NE(seen.find(lookup + " = 0\n" + removal + " = -10\n"), std::string::npos) << seen;
  EXPECT_TRUE(seen.ends_with("log: errors: NONE: delete l3 interface failed: Hardware is busy\n" + kept)) << seen;
  EXPECT_TRUE(has_egress_object(egress_id));

  ASSERT_EQ(add_host(), 0);
  seen = observe_with({{"bcm_l3_intf_find", 0}, {"bcm_l3_intf_delete", 0}}, remove_host);
  EXPECT_NE(seen.find(lookup + " = 0\n" + removal + " = 0\nbcm_l3_egress_destroy(0, " + std::to_string(egress_id) +
                      ") = 0\n"),
            std::string::npos)
      << seen;
  EXPECT_FALSE(has_egress_object(egress_id));
}

TEST_F(RoutesOnTheChip, AnEgressObjectOfNoVlanOrNoMacHasNoNextHopToLookUp) {
  use_egress_objects_of_the_chip();
  const struct {
    int vlan;
    const uint8_t* mac;
  } rows[] = {{vlan, no_mac}, {0, neighbor}};
  for (const auto& row : rows) {
    bcm_l3_egress_t egress;
    bcm_l3_egress_t_init(&egress);
    egress.intf = intf_id;
    egress.port = port;
    egress.vlan = static_cast<bcm_vlan_t>(row.vlan);
    std::copy_n(row.mac, 6, egress.mac_addr);
    bcm_l3_host_t user;
    bcm_l3_host_t_init(&user);
    user.l3a_ip_addr = host;
    ASSERT_EQ(bcm_l3_egress_create(unit, 0, &egress, &user.l3a_intf), BCM_E_NONE);
    ASSERT_EQ(bcm_l3_host_add(unit, &user), BCM_E_NONE);
    const std::string seen = observe(remove_host);
    EXPECT_EQ(seen.find("bcm_l2_addr_get"), std::string::npos) << seen;
    EXPECT_NE(seen.find("bcm_l3_egress_destroy(0, " + std::to_string(user.l3a_intf) + ") = 0\n"), std::string::npos)
        << seen;
    EXPECT_TRUE(seen.ends_with("returned 0\n")) << seen;
    EXPECT_FALSE(has_egress_object(user.l3a_intf));
  }
}

// ---------------------------------------------------------------------------------------------------- subnets ----

TEST_F(RoutesOnTheChip, TheVerySubnetIsLeftAloneAndAnotherReplaced) {
  ASSERT_EQ(add_subnet(), 0);
  EXPECT_EQ(found_route().l3a_intf, intf_id);
  EXPECT_EQ(found_route().l3a_nexthop_ip, gateway);
  std::string seen = observe(add_subnet);
  EXPECT_TRUE(seen.ends_with("log: debugging: NONE: subnet route already exist\nreturned 0\n")) << seen;
  EXPECT_EQ(seen.find("bcm_l3_route_delete"), std::string::npos) << seen;
  EXPECT_EQ(seen.find("bcm_l3_route_add"), std::string::npos) << seen;

  seen = observe([] { return add_subnet_on(4); });
  EXPECT_NE(seen.find("bcm_l3_route_delete(0, "), std::string::npos) << seen;
  EXPECT_EQ(found_route().l3a_port_tgid, 4);
}

TEST_F(RoutesOnTheChip, ASubnetOfALocalRouteOrAnotherInterfaceIsReplaced) {
  for (const bool local : {false, true}) {
    bcm_l3_route_t route;
    bcm_l3_route_t_init(&route);
    route.l3a_flags = local ? 0x4000 : 0;
    route.l3a_subnet = subnet;
    route.l3a_ip_mask = mask;
    std::copy_n(neighbor, 6, route.l3a_nexthop_mac);
    route.l3a_port_tgid = port;
    ASSERT_EQ(bcm_vlan_create(unit, 11) == BCM_E_NONE || local, true);
    ASSERT_EQ(sai_l3_intf_create(unit, router, 11), 0);
    route.l3a_intf = local ? intf_id : interface_of(11).l3a_intf_id;
    ASSERT_EQ(bcm_l3_route_add(unit, &route), BCM_E_NONE);
    const std::string seen = observe(add_subnet);
    EXPECT_NE(seen.find("log: debugging: NONE: sai_l3_subnet_route_create delete the subnet route 10.20.0.0\n"),
              std::string::npos)
        << seen;
    EXPECT_EQ(found_route().l3a_intf, intf_id);
    ASSERT_EQ(sai_l3_subnet_route_delete(unit, subnet, mask, 0), 0);
  }
}

TEST_F(RoutesOnTheChip, ASubnetThatPointsAtAnEgressObjectIsMadeAnew) {
  use_egress_objects_of_the_chip();
  ASSERT_EQ(add_subnet(), 0);
  const int egress_id = found_route().l3a_intf;
  ASSERT_NE(egress_id, intf_id);
  const std::string seen = observe(add_subnet);
  EXPECT_NE(seen.find("bcm_l3_route_delete(0, "), std::string::npos) << seen;
  EXPECT_EQ(found_route().l3a_intf, egress_id);
  EXPECT_EQ(sai_l3_subnet_route_delete(unit, subnet, mask, 0), 0);
  EXPECT_FALSE(has_egress_object(egress_id));
}

TEST_F(RoutesOnTheChip, ASubnetOnAVirtualPortGetsADoubleTaggedInterface) {
  move_neighbor_to_a_virtual_port();
  const std::string seen = observe(add_subnet);
  EXPECT_NE(seen.find("l3a_vid=100, l3a_inner_vlan=10"), std::string::npos) << seen;
  EXPECT_NE(found_route().l3a_intf, intf_id);
  EXPECT_EQ(sai_l3_subnet_route_delete(unit, subnet, mask, 0), 0);
  EXPECT_TRUE(observe_failing("bcm_vlan_port_find", BCM_E_BUSY, add_subnet)
                  .ends_with("log: errors: NONE: can't add l3 interface out vlan 10\nreturned -1\n"));
}

// ------------------------------------------------------------------------------------------------------- hits ----

TEST_F(RoutesOnTheChip, ATakenRouteIsToldOnceWhicheverWay) {
  constexpr uint32_t as_source = 0x4;
  constexpr uint32_t as_destination = 0x8;
  ASSERT_EQ(add_host(), 0);
  ASSERT_EQ(add_subnet(), 0);
  EXPECT_EQ(sai_l3_host_route_hit_get(host), 0);
  EXPECT_EQ(sai_l3_subnet_route_hit_get(subnet, mask), 0);
  for (const uint32_t way : {as_source, as_destination, as_source | as_destination}) {
    ASSERT_EQ(swsdk_l3_host_hit(unit, host, way), 0);
    EXPECT_EQ(sai_l3_host_route_hit_get(host), 1) << way;
    EXPECT_EQ(sai_l3_host_route_hit_get(host), 0) << way;
    ASSERT_EQ(swsdk_l3_route_hit(unit, subnet, mask, way), 0);
    EXPECT_EQ(sai_l3_subnet_route_hit_get(subnet, mask), 1) << way;
    EXPECT_EQ(sai_l3_subnet_route_hit_get(subnet, mask), 0) << way;
  }
}

}  // namespace
