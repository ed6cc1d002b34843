#include "l3/routes.h"

namespace {

using namespace l3;

constexpr uint32_t subnet = 0x0A140000;   // 10.20.0.0
constexpr uint32_t mask = 0xFFFF0000;     // 255.255.0.0
constexpr uint32_t gateway = 0xFE0100FF;  // 254.1.0.255

class Subnets : public l3::Scene {
 protected:
  Subnets() { use_egress_objects(false); }

  static int32_t add_subnet() {
    return sai_l3_subnet_route_create(unit, subnet, mask, gateway, router, neighbor, 3, 10, 0);
  }
  static int32_t add_cpu_subnet() {
    return sai_l3_subnet_route_create(unit, subnet, mask, gateway, router, neighbor, 0, 10, 0);
  }
  static int32_t remove_subnet() { return sai_l3_subnet_route_delete(unit, subnet, mask, 0); }
  static int32_t remove_double_tagged_subnet() { return sai_l3_subnet_route_delete(unit, subnet, mask, 1); }
};

const std::string no_route = "bcm_l3_route_get(0, {l3a_subnet=10.20.0.0, l3a_ip_mask=255.255.0.0}) = -7\n";
const std::string route_found = "bcm_l3_route_get(0, {l3a_subnet=10.20.0.0, l3a_ip_mask=255.255.0.0}) = 0\n";
const std::string route_record =
    "{l3a_subnet=10.20.0.0, l3a_ip_mask=255.255.0.0, l3a_nexthop_ip=254.1.0.255, "
    "l3a_nexthop_mac=02:00:00:ab:00:2a, l3a_port_tgid=3, l3a_vid=10}";
const std::string subnet_trace =
    "log: debugging: NONE: sai_l3_subnet_route_create subnet 10.20.0.0 nexthop_ip 254.1.0.255 nexthop_mac "
    "02:00:00:ab:00:2a port 3 vlan 10\n";
const std::string subnet_interface_trace = "log: debugging: NONE: sai_l3_subnet_route_create vlan 10 intf_id 0\n";
const std::string subnet_added_trace = "log: debugging: NONE: sai_l3_subnet_route_create subnet route 10.20.0.0\n";

TEST_F(Subnets, ASubnetIsReachedThroughTheInterfaceOfItsVlan) {
  EXPECT_EQ(observe_with(all_well, add_subnet), modid + learned + vlan_interface + no_route + "bcm_l3_route_add(0, " +
                                                    route_record + ") = 0\n" + subnet_trace + subnet_interface_trace +
                                                    subnet_added_trace + "returned 0\n");
}

TEST_F(Subnets, ASubnetInEgressModePointsAtAnEgressObject) {
  use_egress_objects(true);
  EXPECT_EQ(observe_with(all_well, add_subnet), modid + learned + vlan_interface + no_route + no_egress + egress_made +
                                                    "bcm_l3_route_add(0, " + route_record + ") = 0\n" + subnet_trace +
                                                    subnet_interface_trace + egress_traces + subnet_added_trace +
                                                    "returned 0\n");
}

TEST_F(Subnets, ASubnetWhoseEgressObjectCannotBeHadEnds) {
  use_egress_objects(true);
  const std::string result = observe_with(but({{"bcm_l3_egress_create", BCM_E_FULL}}, all_well), add_subnet);
  EXPECT_EQ(result.find("bcm_l3_route_add"), std::string::npos);
  EXPECT_TRUE(
      result.ends_with("log: errors: NONE: bcm_l3_egress_create vlan 10 l3 egress failed: Table is full\n"
                       "returned -13\n"))
      << result;
}

TEST_F(Subnets, ASubnetBehindTheCpuPortHasNoEgressObject) {
  use_egress_objects(true);
  EXPECT_EQ(observe_with(all_well, add_cpu_subnet),
            modid + learned + vlan_interface + no_route +
                "bcm_l3_route_add(0, {l3a_flags=0x2000, l3a_subnet=10.20.0.0, l3a_ip_mask=255.255.0.0, "
                "l3a_nexthop_ip=254.1.0.255, l3a_nexthop_mac=02:00:00:ab:00:2a, l3a_vid=10}) = 0\n"
                "log: debugging: NONE: sai_l3_subnet_route_create subnet 10.20.0.0 nexthop_ip 254.1.0.255 nexthop_mac "
                "02:00:00:ab:00:2a port 0 vlan 10\n" +
                subnet_interface_trace + subnet_added_trace + "returned 0\n");
}

TEST_F(Subnets, ASubnetThatIsThereOtherwiseIsDeletedFirst) {
  EXPECT_EQ(observe_with(but({{"bcm_l3_route_get", 0}}, all_well), add_subnet),
            modid + learned + vlan_interface + route_found +
                "bcm_l3_route_delete(0, {l3a_subnet=10.20.0.0, l3a_ip_mask=255.255.0.0}) = 0\n"
                "bcm_l3_route_add(0, " +
                route_record + ") = 0\n" + subnet_trace + subnet_interface_trace +
                "log: debugging: NONE: sai_l3_subnet_route_create find the subnet route 10.20.0.0\n"
                "log: debugging: NONE: sai_l3_subnet_route_create delete the subnet route 10.20.0.0\n" +
                subnet_added_trace + "returned 0\n");
}

TEST_F(Subnets, ASubnetThatCannotBeDeletedIsAddedAllTheSame) {
  EXPECT_EQ(observe_with(but({{"bcm_l3_route_get", 0}, {"bcm_l3_route_delete", BCM_E_FAIL}}, all_well), add_subnet),
            modid + learned + vlan_interface + route_found +
                "bcm_l3_route_delete(0, {l3a_subnet=10.20.0.0, l3a_ip_mask=255.255.0.0}) = -11\n"
                "bcm_l3_route_add(0, " +
                route_record + ") = 0\n" + subnet_trace + subnet_interface_trace +
                "log: debugging: NONE: sai_l3_subnet_route_create find the subnet route 10.20.0.0\n"
                "log: debugging: NONE: sai_l3_subnet_route_create delete the subnet route 10.20.0.0\n"
                "log: errors: NONE: sai_l3_subnet_route_create delete subnet route failed\n" +
                subnet_added_trace + "returned 0\n");
}

TEST_F(Subnets, TheVerySubnetIsLeftAlone) {
  // The route that is found has port 0, interface 0 and a MAC address of zeros: the answer wrote none.
  const auto add = [](const uint8_t* mac, int port) {
    return sai_l3_subnet_route_create(unit, subnet, mask, gateway, router, mac, port, 10, 0);
  };
  const Answers answers = but({{"bcm_l3_route_get", 0}}, all_well);
  EXPECT_EQ(observe_with(answers, [&] { return add(no_mac, 0); }),
            modid + "bcm_l2_addr_get(0, 00:00:00:00:00:00, 10, &{}) = 0\n" + vlan_interface + route_found +
                "log: debugging: NONE: sai_l3_subnet_route_create subnet 10.20.0.0 nexthop_ip 254.1.0.255 nexthop_mac "
                "00:00:00:00:00:00 port 0 vlan 10\n" +
                subnet_interface_trace +
                "log: debugging: NONE: sai_l3_subnet_route_create find the subnet route 10.20.0.0\n"
                "log: debugging: NONE: subnet route already exist\n"
                "returned 0\n");
  for (const std::string& seen :
       {observe_with(answers, [&] { return add(no_mac, 1); }), observe_with(answers, [&] { return add(neighbor, 0); })})
    EXPECT_NE(seen.find("bcm_l3_route_delete(0, {l3a_subnet=10.20.0.0, l3a_ip_mask=255.255.0.0}) = 0\n"),
              std::string::npos)
        << seen;
}

TEST_F(Subnets, ASubnetWithoutAModuleIdEndsAndIsOnlyTraced) {
  EXPECT_EQ(observe_with(but({{"bcm_stk_my_modid_get", BCM_E_UNAVAIL}}, all_well), add_subnet),
            "bcm_stk_my_modid_get(0, &?) = -16\n" + subnet_trace +
                "log: debugging: NONE: bcm_stk_my_modid_get fialed: Not available on this chip\n"
                "returned -2\n");
}

TEST_F(Subnets, ASubnetWhoseNextHopWasNotLearnedEnds) {
  EXPECT_EQ(observe_with(but({{"bcm_l2_addr_get", BCM_E_NOT_FOUND}}, all_well), add_subnet),
            modid + "bcm_l2_addr_get(0, 02:00:00:ab:00:2a, 10, &?) = -7\n" + subnet_trace +
                "log: errors: NONE: Failed to get l2 addr source port: Entry not found\n"
                "returned -7\n");
}

TEST_F(Subnets, ASubnetInAVlanWithoutInterfaceEndsWithAMessageOfItsOwn) {
  EXPECT_EQ(observe_with(but({{"bcm_l3_intf_find_vlan", BCM_E_NOT_FOUND}}, all_well), add_subnet),
            modid + learned + "bcm_l3_intf_find_vlan(0, {l3a_vid=10}) = -7\n" + subnet_trace +
                "log: errors: NONE: can't find vlan 10 l3 interface\n"
                "returned -7\n");
}

TEST_F(Subnets, ADoubleTaggedSubnetGetsAnInterfaceOfItsOwn) {
  EXPECT_EQ(
      observe_with(all_well,
                   [] { return sai_l3_subnet_route_create(unit, subnet, mask, gateway, router, neighbor, 3, 10, 9); }),
      modid + learned + virtual_port + "bcm_l3_intf_find(0, " + double_tagged + ") = -7\n" + "bcm_l3_intf_create(0, " +
          double_tagged + ") = 0\n" + no_route + "bcm_l3_route_add(0, " + route_record + ") = 0\n" + subnet_trace +
          subnet_interface_trace + subnet_added_trace + "returned 0\n");
}

TEST_F(Subnets, ASubnetThatFindsNoRoomIsToldFromOtherFailures) {
  const std::string added = modid + learned + vlan_interface + no_route + "bcm_l3_route_add(0, " + route_record + ")";
  const std::string traces = subnet_trace + subnet_interface_trace + subnet_added_trace;
  EXPECT_EQ(observe_with(but({{"bcm_l3_route_add", BCM_E_FULL}}, all_well), add_subnet),
            added + " = -6\n" + traces +
                "log: errors: NONE: bcm_l3_route_add subnet route failed: Table is full, because of hash conflict\n"
                "returned -13\n");
  EXPECT_EQ(observe_with(but({{"bcm_l3_route_add", BCM_E_MEMORY}}, all_well), add_subnet),
            added + " = -2\n" + traces +
                "log: errors: NONE: bcm_l3_route_add subnet route failed: Out of memory\n"
                "returned -3\n");
}

const Answers route_is_there = but({{"bcm_l3_route_get", 0}}, all_well);
const std::string route_deleted = "bcm_l3_route_delete(0, {l3a_subnet=10.20.0.0, l3a_ip_mask=255.255.0.0}) = 0\n";
const std::string subnet_delete_trace = "log: debugging: NONE: sai_l3_subnet_route_delete subnet 10.20.0.0\n";

TEST_F(Subnets, ADeletedSubnetLeavesItsInterface) {
  EXPECT_EQ(observe_with(route_is_there, remove_double_tagged_subnet),
            route_found + route_deleted + subnet_delete_trace + "returned 0\n");
}

TEST_F(Subnets, ADeletedSubnetInEgressModeTakesAlongWhatItPointedAt) {
  use_egress_objects(true);
  const std::string egress_gone =
      "bcm_l3_egress_get(0, 0, &{}) = 0\n"
      "bcm_l3_egress_destroy(0, 0) = 0\n";
  const std::string traces =
      subnet_delete_trace + egress_found_trace + "log: debugging: NONE: sai_l3_egress_delete l3 egress index 0\n";
  EXPECT_EQ(observe_with(route_is_there, remove_subnet),
            route_found + route_deleted + egress_gone + traces + "returned 0\n");
  EXPECT_EQ(observe_with(route_is_there, remove_double_tagged_subnet),
            route_found + route_deleted + egress_gone + "bcm_l3_intf_find(0, {}) = -7\n" + traces +
                "log: debugging: NONE: sai_l3_intf_dtag_delete not find l3 interface 0 \n"
                "returned 0\n");
}

TEST_F(Subnets, ASubnetThatIsNotThereIsNotDeletedAndLoggedWithoutTheSdksText) {
  use_egress_objects(true);
  EXPECT_EQ(observe_with(all_well, remove_subnet),
            no_route + subnet_delete_trace +
                "log: errors: NONE: sai_l3_subnet_route_delete can't not find subnet route\n"
                "returned -7\n");
}

TEST_F(Subnets, ASubnetThatCannotBeDeletedKeepsItsEgressObject) {
  use_egress_objects(true);
  EXPECT_EQ(observe_with(but({{"bcm_l3_route_delete", BCM_E_PARAM}}, route_is_there), remove_subnet),
            route_found + "bcm_l3_route_delete(0, {l3a_subnet=10.20.0.0, l3a_ip_mask=255.255.0.0}) = -4\n" +
                subnet_delete_trace +
                "log: errors: NONE: bcm_l3_route_delete subnet route failed: Invalid parameter\n"
                "returned -5\n");
}

TEST_F(Subnets, HitBitsAreReadAndClearedOnUnitZero) {
  const auto hit = [] { return sai_l3_subnet_route_hit_get(subnet, mask); };
  EXPECT_EQ(observe_with({{"bcm_l3_route_get", 0}}, hit),
            "bcm_l3_route_get(0, {l3a_flags=0x10, l3a_subnet=10.20.0.0, l3a_ip_mask=255.255.0.0}) = 0\nreturned 0\n");
  EXPECT_EQ(observe_with({{"bcm_l3_route_get", BCM_E_INIT}}, hit),
            "bcm_l3_route_get(0, {l3a_flags=0x10, l3a_subnet=10.20.0.0, l3a_ip_mask=255.255.0.0}) = -17\n"
            "log: errors: NONE: bcm_l3_route_get failed: Module is not initialized\n"
            "returned -1\n");
}

}  // namespace
