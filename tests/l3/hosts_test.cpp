#include "l3/routes.h"

namespace {

using namespace l3;

constexpr uint32_t host = 0xC0A8010A;  // 192.168.1.10

class Hosts : public l3::Scene {
 protected:
  Hosts() { use_egress_objects(false); }

  static int32_t add_host() { return sai_l3_host_route_create(unit, host, router, neighbor, 3, 10, 0); }
  static int32_t add_double_tagged_host() { return sai_l3_host_route_create(unit, host, router, neighbor, 3, 10, 1); }
  static int32_t add_cpu_host() { return sai_l3_host_route_create(unit, host, router, neighbor, 0, 10, 0); }
  static int32_t remove_host() { return sai_l3_host_route_delete(unit, host, 0); }
  static int32_t remove_double_tagged_host() { return sai_l3_host_route_delete(unit, host, 1); }
};

const std::string no_host = "bcm_l3_host_find(0, {l3a_ip_addr=192.168.1.10}) = -7\n";
const std::string host_record = "{l3a_ip_addr=192.168.1.10, l3a_nexthop_mac=02:00:00:ab:00:2a, l3a_port_tgid=3}";
const std::string host_trace =
    "log: debugging: NONE: sai_l3_host_route_create:  host 192.168.1.10 hostmac 02:00:00:ab:00:2a port 3 vid 10\n";
const std::string host_interface_trace = "log: debugging: NONE: sai_l3_host_route_create vlan 10 intf_id  0\n";

TEST_F(Hosts, AHostIsReachedThroughTheInterfaceOfItsVlan) {
  EXPECT_EQ(observe_with(all_well, add_host), modid + learned + vlan_interface + no_host + "bcm_l3_host_add(0, " +
                                                  host_record + ") = 0\n" + host_trace + host_interface_trace +
                                                  "returned 0\n");
}

TEST_F(Hosts, AHostThatIsThereIsReplacedAndBothAreTraced) {
  EXPECT_EQ(observe_with(but({{"bcm_l3_host_find", 0}}, all_well), add_host),
            modid + learned + vlan_interface +
                "bcm_l3_host_find(0, {l3a_ip_addr=192.168.1.10}) = 0\n"
                "bcm_l3_host_add(0, {l3a_flags=0x100, l3a_ip_addr=192.168.1.10, "
                "l3a_nexthop_mac=02:00:00:ab:00:2a, l3a_port_tgid=3}) = 0\n" +
                host_trace + host_interface_trace +
                "log: debugging: NONE: sai_l3_host_route_create replace host 192.168.1.10 intf 0 0 modid 0 0 port 0 3 "
                "mac 00:00:00:00:00:00 02:00:00:ab:00:2a\n"
                "returned 0\n");
}

TEST_F(Hosts, AnyFailedLookupOfTheHostCountsAsNone) {
  EXPECT_EQ(observe_with(but({{"bcm_l3_host_find", BCM_E_BUSY}}, all_well), add_host),
            modid + learned + vlan_interface + "bcm_l3_host_find(0, {l3a_ip_addr=192.168.1.10}) = -10\n" +
                "bcm_l3_host_add(0, " + host_record + ") = 0\n" + host_trace + host_interface_trace + "returned 0\n");
}

TEST_F(Hosts, AHostInEgressModePointsAtAnEgressObject) {
  use_egress_objects(true);
  EXPECT_EQ(observe_with(all_well, add_host), modid + learned + vlan_interface + no_host + no_egress + egress_made +
                                                  "bcm_l3_host_add(0, " + host_record + ") = 0\n" + host_trace +
                                                  host_interface_trace + egress_traces + "returned 0\n");
}

TEST_F(Hosts, EqualNextHopsShareAnEgressObject) {
  use_egress_objects(true);
  EXPECT_EQ(observe_with(but({{"bcm_l3_egress_find", 0}}, all_well), add_host),
            modid + learned + vlan_interface + no_host +
                "bcm_l3_egress_find(0, {mac_addr=02:00:00:ab:00:2a, vlan=10, port=3}, &0) = 0\n"
                "bcm_l3_host_add(0, " +
                host_record + ") = 0\n" + host_trace + host_interface_trace +
                "log: debugging: NONE: sai_l3_egress_create l3 egress 0 port 3 vlan 10 mac 02:00:00:ab:00:2a already "
                "exist\n"
                "returned 0\n");
}

TEST_F(Hosts, AnEgressObjectThatCannotBeLookedUpIsTakenForAFindAndEndsTheCall) {
  use_egress_objects(true);
  EXPECT_EQ(observe_with(but({{"bcm_l3_egress_find", BCM_E_PARAM}}, all_well), add_host),
            modid + learned + vlan_interface + no_host +
                "bcm_l3_egress_find(0, {mac_addr=02:00:00:ab:00:2a, vlan=10, port=3}, &?) = -4\n" + host_trace +
                host_interface_trace +
                "log: debugging: NONE: sai_l3_egress_create l3 egress 0 port 3 vlan 10 mac 02:00:00:ab:00:2a already "
                "exist\n"
                "returned -5\n");
}

TEST_F(Hosts, AnEgressObjectThatCannotBeMadeEndsTheCall) {
  use_egress_objects(true);
  EXPECT_EQ(observe_with(but({{"bcm_l3_egress_create", BCM_E_FULL}}, all_well), add_host),
            modid + learned + vlan_interface + no_host + no_egress +
                "bcm_l3_egress_create(0, 0x0, {mac_addr=02:00:00:ab:00:2a, vlan=10, port=3}, &?) = -6\n" + host_trace +
                host_interface_trace +
                "log: debugging: NONE: sai_l3_egress_create not find l3 egress 0 port 3 vlan 10 mac "
                "02:00:00:ab:00:2a\n"
                "log: errors: NONE: bcm_l3_egress_create vlan 10 l3 egress failed: Table is full\n"
                "returned -13\n");
}

TEST_F(Hosts, AHostBehindTheCpuPortHasNoEgressObject) {
  for (const bool egress_objects : {false, true}) {
    use_egress_objects(egress_objects);
    EXPECT_EQ(observe_with(all_well, add_cpu_host),
              modid + learned + vlan_interface + no_host +
                  "bcm_l3_host_add(0, {l3a_flags=0x1000, l3a_ip_addr=192.168.1.10, "
                  "l3a_nexthop_mac=02:00:00:ab:00:2a}) = 0\n"
                  "log: debugging: NONE: sai_l3_host_route_create:  host 192.168.1.10 hostmac 02:00:00:ab:00:2a port 0 "
                  "vid 10\n" +
                  host_interface_trace + "returned 0\n");
  }
}

TEST_F(Hosts, AHostWithoutAModuleIdEnds) {
  EXPECT_EQ(observe_with(but({{"bcm_stk_my_modid_get", BCM_E_UNAVAIL}}, all_well), add_host),
            "bcm_stk_my_modid_get(0, &?) = -16\n" + host_trace +
                "log: errors: NONE: bcm_stk_my_modid_get module id fialed: Not available on this chip\n"
                "returned -2\n");
}

TEST_F(Hosts, AHostThatWasNotLearnedEnds) {
  EXPECT_EQ(observe_with(but({{"bcm_l2_addr_get", BCM_E_NOT_FOUND}}, all_well), add_host),
            modid + "bcm_l2_addr_get(0, 02:00:00:ab:00:2a, 10, &?) = -7\n" + host_trace +
                "log: errors: NONE: Failed to get l2 addr source port: Entry not found\n"
                "returned -7\n");
}

TEST_F(Hosts, AHostInAVlanWithoutInterfaceEndsWithoutTheSdksText) {
  EXPECT_EQ(observe_with(but({{"bcm_l3_intf_find_vlan", BCM_E_NOT_FOUND}}, all_well), add_host),
            modid + learned + "bcm_l3_intf_find_vlan(0, {l3a_vid=10}) = -7\n" + host_trace +
                "log: errors: NONE: can't find l3 interface vlan 10\n"
                "returned -7\n");
}

TEST_F(Hosts, AHostThatFindsNoRoomIsToldFromOtherFailures) {
  const std::string added = modid + learned + vlan_interface + no_host + "bcm_l3_host_add(0, " + host_record + ")";
  EXPECT_EQ(observe_with(but({{"bcm_l3_host_add", BCM_E_FULL}}, all_well), add_host),
            added + " = -6\n" + host_trace + host_interface_trace +
                "log: errors: NONE: bcm_l3_host_add host route failed: Table is full, beacuse of hash conflict\n"
                "returned -13\n");
  EXPECT_EQ(observe_with(but({{"bcm_l3_host_add", BCM_E_EXISTS}}, all_well), add_host),
            added + " = -8\n" + host_trace + host_interface_trace +
                "log: errors: NONE: bcm_l3_host_add host route failed: Entry already exists\n"
                "returned -6\n");
}

TEST_F(Hosts, ADoubleTaggedHostGetsAnInterfaceOfItsOwn) {
  EXPECT_EQ(observe_with(all_well, add_double_tagged_host),
            modid + learned + virtual_port + "bcm_l3_intf_find(0, " + double_tagged + ") = -7\n" +
                "bcm_l3_intf_create(0, " + double_tagged + ") = 0\n" + no_host + "bcm_l3_host_add(0, " + host_record +
                ") = 0\n" + host_trace + host_interface_trace + "returned 0\n");
}

TEST_F(Hosts, ADoubleTaggedHostFindsItsInterface) {
  EXPECT_EQ(observe_with(but({{"bcm_l3_intf_find", 0}}, all_well), add_double_tagged_host),
            modid + learned + virtual_port + "bcm_l3_intf_find(0, " + double_tagged + ") = 0\n" + no_host +
                "bcm_l3_host_add(0, " + host_record + ") = 0\n" + host_trace + host_interface_trace + "returned 0\n");
}

TEST_F(Hosts, ADoubleTaggedHostEndsSilentlyAtALookupThatFails) {
  EXPECT_EQ(observe_with(but({{"bcm_l2_addr_get", BCM_E_NOT_FOUND}}, all_well), add_double_tagged_host),
            modid + "bcm_l2_addr_get(0, 02:00:00:ab:00:2a, 10, &?) = -7\n" + host_trace + "returned -7\n");
  EXPECT_EQ(observe_with(but({{"bcm_vlan_port_find", BCM_E_PORT}}, all_well), add_double_tagged_host),
            modid + learned + "bcm_vlan_port_find(0, {}) = -18\n" + host_trace + "returned -9\n");
  // Only an interface that is not there is made.
  EXPECT_EQ(observe_with(but({{"bcm_l3_intf_find", BCM_E_PARAM}}, all_well), add_double_tagged_host),
            modid + learned + virtual_port + "bcm_l3_intf_find(0, " + double_tagged + ") = -4\n" + host_trace +
                "returned -5\n");
}

TEST_F(Hosts, ADoubleTaggedHostEndsAtALookupThatIsNotZero) {
  EXPECT_EQ(observe_with(but({{"bcm_l2_addr_get", 1}}, all_well), add_double_tagged_host),
            modid + "bcm_l2_addr_get(0, 02:00:00:ab:00:2a, 10, &{}) = 1\n" + host_trace + "returned -1\n");
  EXPECT_EQ(observe_with(but({{"bcm_vlan_port_find", 1}}, all_well), add_double_tagged_host),
            modid + learned + "bcm_vlan_port_find(0, {}) = 1\n" + host_trace + "returned -1\n");
}

TEST_F(Hosts, ADoubleTaggedHostWhoseInterfaceCannotBeMadeEnds) {
  EXPECT_EQ(observe_with(but({{"bcm_l3_intf_create", BCM_E_FULL}}, all_well), add_double_tagged_host),
            modid + learned + virtual_port + "bcm_l3_intf_find(0, " + double_tagged + ") = -7\n" +
                "bcm_l3_intf_create(0, " + double_tagged + ") = -6\n" + host_trace +
                "log: errors: NONE: sai_l3_intf_dtag_create l3 interface failed: Table is full\n"
                "returned -13\n");
}

const Answers host_is_there = but({{"bcm_l3_host_find", 0}}, all_well);
const std::string host_found = "bcm_l3_host_find(0, {l3a_ip_addr=192.168.1.10}) = 0\n";
const std::string host_deleted = "bcm_l3_host_delete(0, {l3a_ip_addr=192.168.1.10}) = 0\n";
const std::string host_delete_trace = "log: debugging: NONE: sai_l3_host_route_delete host 192.168.1.10\n";

TEST_F(Hosts, ADeletedHostLeavesItsInterface) {
  const std::string seen = host_found + host_deleted + host_delete_trace + "returned 0\n";
  EXPECT_EQ(observe_with(host_is_there, remove_host), seen);
  EXPECT_EQ(observe_with(host_is_there, remove_double_tagged_host), seen);
}

TEST_F(Hosts, ADeletedHostInEgressModeTakesItsEgressObjectAlong) {
  use_egress_objects(true);
  EXPECT_EQ(observe_with(host_is_there, remove_host),
            host_found + host_deleted +
                "bcm_l3_egress_get(0, 0, &{}) = 0\n"
                "bcm_l3_egress_destroy(0, 0) = 0\n" +
                host_delete_trace + egress_found_trace +
                "log: debugging: NONE: sai_l3_egress_delete l3 egress index 0\n"
                "returned 0\n");
}

TEST_F(Hosts, ADeletedDoubleTaggedHostTakesTheInterfaceOfTheSameNumberAlong) {
  use_egress_objects(true);
  EXPECT_EQ(observe_with(but({{"bcm_l3_intf_find", 0}}, host_is_there), remove_double_tagged_host),
            host_found + host_deleted +
                "bcm_l3_egress_get(0, 0, &{}) = 0\n"
                "bcm_l3_egress_destroy(0, 0) = 0\n"
                "bcm_l3_intf_find(0, {}) = 0\n"
                "bcm_l3_intf_delete(0, {}) = 0\n" +
                host_delete_trace + egress_found_trace +
                "log: debugging: NONE: sai_l3_egress_delete l3 egress index 0\n"
                "returned 0\n");
}

TEST_F(Hosts, WhatBecomesOfTheEgressObjectAndTheInterfaceDoesNotShow) {
  use_egress_objects(true);
  EXPECT_EQ(observe_with(but({{"bcm_l3_egress_get", BCM_E_NOT_FOUND}}, host_is_there), remove_double_tagged_host),
            host_found + host_deleted +
                "bcm_l3_egress_get(0, 0, &?) = -7\n"
                "bcm_l3_intf_find(0, {}) = -7\n" +
                host_delete_trace +
                "log: debugging: NONE: sai_l3_egress_delete not find l3 egress 0 \n"
                "log: debugging: NONE: sai_l3_intf_dtag_delete not find l3 interface 0 \n"
                "returned 0\n");
  EXPECT_EQ(
      observe_with(
          but({{"bcm_l3_egress_destroy", BCM_E_BUSY}, {"bcm_l3_intf_find", 0}, {"bcm_l3_intf_delete", BCM_E_FAIL}},
              host_is_there),
          remove_double_tagged_host),
      host_found + host_deleted +
          "bcm_l3_egress_get(0, 0, &{}) = 0\n"
          "bcm_l3_egress_destroy(0, 0) = -10\n"
          "bcm_l3_intf_find(0, {}) = 0\n"
          "bcm_l3_intf_delete(0, {}) = -11\n" +
          host_delete_trace + egress_found_trace +
          "log: errors: NONE: bcm_l3_egress_destroy l3 egress index 0 failed: Hardware is busy\n"
          "log: errors: NONE: sai_l3_intf_dtag_delete delete l3 interface failed: Hardware reported a failure\n"
          "returned 0\n");
}

TEST_F(Hosts, AHostThatIsNotThereIsNotDeletedAndLoggedWithoutTheSdksText) {
  use_egress_objects(true);
  EXPECT_EQ(observe_with(all_well, remove_double_tagged_host), no_host + host_delete_trace +
                                                                   "log: errors: NONE: can't find hostroute\n"
                                                                   "returned -7\n");
}

TEST_F(Hosts, AHostThatCannotBeDeletedKeepsItsEgressObject) {
  use_egress_objects(true);
  EXPECT_EQ(observe_with(but({{"bcm_l3_host_delete", BCM_E_TIMEOUT}}, host_is_there), remove_double_tagged_host),
            host_found + "bcm_l3_host_delete(0, {l3a_ip_addr=192.168.1.10}) = -9\n" + host_delete_trace +
                "log: errors: NONE: bcm_l3_host_delete host route failed: Operation took too long\n"
                "returned -1\n");
}

TEST_F(Hosts, HitBitsAreReadAndClearedOnUnitZero) {
  const auto hit = [] { return sai_l3_host_route_hit_get(host); };
  EXPECT_EQ(observe_with({{"bcm_l3_host_find", 0}}, hit),
            "bcm_l3_host_find(0, {l3a_flags=0x10, l3a_ip_addr=192.168.1.10}) = 0\nreturned 0\n");
  EXPECT_EQ(observe_with({{"bcm_l3_host_find", BCM_E_NOT_FOUND}}, hit),
            "bcm_l3_host_find(0, {l3a_flags=0x10, l3a_ip_addr=192.168.1.10}) = -7\n"
            "log: errors: NONE: bcm_l3_host_find failed: Entry not found\n"
            "returned -7\n");
}

}  // namespace
