#include "vport/virtual_ports.h"

#include <soc/drv.h>

#include <limits>

namespace {

using vport::floods;
using vport::groups;
using vport::record;
using vport::stacked_with_outer;

class VirtualPorts : public vport::Scene {
 protected:
  VirtualPorts() { vport::all_well(); }

  /// The line of the created object alone.
  std::string object(const vport::Given& given) {
    sai_vport_t vport = record(given);
    const std::string seen = create(vport);
    const size_t begin = seen.find("bcm_vlan_port_create");
    return seen.substr(begin, seen.find('\n', begin) - begin);
  }
};

TEST_F(VirtualPorts, MatchTwoTagsAndHaveTwoTagsInside) {
  sai_vport_t vport = stacked_with_outer;
  EXPECT_EQ(create(vport), vport::stacked_with_outer_calls + vport::stacked_with_outer_trace + "returned 0\n");
  vport.vport_id = 0x44000001;
  EXPECT_EQ(destroy(vport),
            "bcm_vlan_translate_egress_action_delete(0, 1140850689, 40, 30) = 0\n"
            "bcm_vlan_translate_egress_action_add(0, 1140850689, 40, 0, {}) = 0\n"
            "bcm_vlan_gport_delete(0, 40, 1140850689) = 0\n"
            "bcm_l2_addr_delete_by_port(0, 0, 1140850689, 0x0) = 0\n"
            "bcm_vlan_port_destroy(0, 1140850689) = 0\n"
            "log: debugging: NONE: vport destroy success\n"
            "returned 0\n");
}

TEST_F(VirtualPorts, MatchTwoTagsAndHaveOneInside) {
  sai_vport_t vport = record({.match_inner_vlan = 20, .vlan = 30});
  EXPECT_EQ(create(vport),
            "bcm_port_gport_get(0, 1, &134217729) = 0\n"
            "bcm_vlan_port_create(0, {criteria=4, flags=0x80080, match_vlan=10, match_inner_vlan=20, port=67108865, "
            "egress_vlan=30, ingress_network_group_id=3, egress_network_group_id=3}) = 0\n"
            "bcm_vlan_gport_add(0, 30, 0, 0x0) = 0\n"
            "bcm_vlan_translate_egress_action_add(0, 0, 30, 0, {new_outer_vlan=10, new_inner_vlan=20, ot_outer=2, "
            "ot_inner=1, ot_inner_pkt_prio=4}) = 0\n" +
                floods +
                "bcm_vlan_control_vlan_get(0, 30, &{}) = 0\n"
                "bcm_vlan_control_vlan_set(0, 30, " +
                groups +
                ") = 0\n"
                "log: debugging: NONE: vlan_port.port = 0x4000001 match 10 inner 20 egress 30\n"
                "log, next line\n"
                "returned 0\n");
  vport.vport_id = 0x44000001;
  EXPECT_EQ(destroy(vport),
            "bcm_vlan_gport_delete(0, 30, 1140850689) = 0\n"
            "bcm_l2_addr_delete_by_port(0, 0, 1140850689, 0x0) = 0\n"
            "bcm_vlan_port_destroy(0, 1140850689) = 0\n"
            "log: debugging: NONE: vport destroy success\n"
            "returned 0\n");
}

TEST_F(VirtualPorts, MatchTwoTagsAndJoinTheInnerOnesVlan) {
  sai_vport_t vport = record({.match_inner_vlan = 20});
  EXPECT_EQ(create(vport),
            "bcm_port_gport_get(0, 1, &134217729) = 0\n"
            "bcm_vlan_port_create(0, {criteria=4, flags=0x480, match_vlan=10, match_inner_vlan=20, port=67108865, "
            "ingress_network_group_id=3, egress_network_group_id=3}) = 0\n"
            "bcm_vlan_gport_add(0, 20, 0, 0x0) = 0\n"
            "bcm_vlan_translate_egress_action_add(0, 0, 20, 0, {new_outer_vlan=10, new_inner_vlan=20, ot_outer=2, "
            "ot_inner=1, ot_inner_pkt_prio=4}) = 0\n" +
                floods +
                "bcm_vlan_control_vlan_get(0, 20, &{}) = 0\n"
                "bcm_vlan_control_vlan_set(0, 20, " +
                groups +
                ") = 0\n"
                "log: debugging: NONE: vlan_port.port = 0x4000001 match 10 inner 20 egress 0\n"
                "log, next line\n"
                "returned 0\n");
  vport.vport_id = 0x44000001;
  EXPECT_TRUE(
      destroy(vport).starts_with("bcm_vlan_gport_delete(0, 20, 1140850689) = 0\n"
                                 "bcm_l2_addr_delete_by_port"));
}

TEST_F(VirtualPorts, MatchOneTagAndHaveTwoInside) {
  sai_vport_t vport = record({.vlan = 30, .outer_vlan = 40});
  EXPECT_EQ(create(vport),
            "bcm_port_untagged_vlan_get(0, 1, &0) = 0\n"
            "bcm_port_gport_get(0, 1, &134217729) = 0\n"
            "bcm_vlan_port_create(0, {criteria=3, flags=0x88, match_vlan=10, port=67108865, egress_vlan=40, "
            "egress_inner_vlan=30, ingress_network_group_id=3, egress_network_group_id=3}) = 0\n"
            "bcm_vlan_gport_add(0, 40, 0, 0x0) = 0\n"
            "bcm_vlan_translate_egress_action_delete(0, 0, 40, 0) = 0\n"
            "bcm_vlan_translate_egress_action_add(0, 0, 40, 30, {new_outer_vlan=10, dt_outer=2, dt_inner=3}) = 0\n" +
                floods +
                "bcm_vlan_control_vlan_get(0, 40, &{}) = 0\n"
                "bcm_vlan_control_vlan_set(0, 40, " +
                groups +
                ") = 0\n"
                "log: debugging: NONE: vlan_port.port = 0x4000001 match 10 inner 0 egress 40\n"
                "log, next line\n"
                "returned 0\n");
  vport.vport_id = 0x44000001;
  EXPECT_TRUE(
      destroy(vport).starts_with("bcm_vlan_translate_egress_action_delete(0, 1140850689, 40, 30) = 0\n"
                                 "bcm_vlan_translate_egress_action_add(0, 1140850689, 40, 0, {}) = 0\n"
                                 "bcm_vlan_gport_delete(0, 40, 1140850689) = 0\n"
                                 "bcm_l2_addr_delete_by_port"));
}

TEST_F(VirtualPorts, MatchOneTagAndHaveOneInside) {
  sai_vport_t vport = record({.vlan = 30});
  EXPECT_EQ(create(vport),
            "bcm_port_untagged_vlan_get(0, 1, &0) = 0\n"
            "bcm_port_gport_get(0, 1, &134217729) = 0\n"
            "bcm_vlan_port_create(0, {criteria=3, flags=0x180, match_vlan=10, port=67108865, egress_vlan=30, "
            "ingress_network_group_id=3, egress_network_group_id=3}) = 0\n"
            "bcm_vlan_gport_add(0, 30, 0, 0x0) = 0\n"
            "bcm_vlan_translate_egress_action_add(0, 0, 30, 0, {new_outer_vlan=10, ot_outer=2}) = 0\n" +
                floods +
                "bcm_vlan_control_vlan_get(0, 30, &{}) = 0\n"
                "bcm_vlan_control_vlan_set(0, 30, " +
                groups +
                ") = 0\n"
                "log: debugging: NONE: vlan_port.port = 0x4000001 match 10 inner 0 egress 30\n"
                "log, next line\n"
                "returned 0\n");
  vport.vport_id = 0x44000001;
  EXPECT_TRUE(
      destroy(vport).starts_with("bcm_vlan_gport_delete(0, 30, 1140850689) = 0\n"
                                 "bcm_l2_addr_delete_by_port"));
}

/// The untagged VLAN is 0 here.
TEST_F(VirtualPorts, MatchOneTagAndJoinTheUntaggedVlanButLeaveVlan0) {
  swsdk_fault_inject("bcm_vlan_control_vlan_get", BCM_E_NONE, SWSDK_FAULT_EVERY_CALL);
  swsdk_fault_inject("bcm_vlan_control_vlan_set", BCM_E_NONE, SWSDK_FAULT_EVERY_CALL);
  sai_vport_t vport = record({});
  EXPECT_EQ(create(vport),
            "bcm_port_untagged_vlan_get(0, 1, &0) = 0\n"
            "bcm_port_gport_get(0, 1, &134217729) = 0\n"
            "bcm_vlan_port_create(0, {criteria=3, flags=0x180, match_vlan=10, port=67108865, "
            "ingress_network_group_id=3, egress_network_group_id=3}) = 0\n"
            "bcm_vlan_gport_add(0, 0, 0, 0x0) = 0\n"
            "bcm_vlan_translate_egress_action_add(0, 0, 0, 0, {new_outer_vlan=10, ot_outer=2}) = 0\n" +
                floods +
                "bcm_vlan_control_vlan_get(0, 0, &{}) = 0\n"
                "bcm_vlan_control_vlan_set(0, 0, " +
                groups +
                ") = 0\n"
                "log: debugging: NONE: vlan_port.port = 0x4000001 match 10 inner 0 egress 0\n"
                "log, next line\n"
                "returned 0\n");
  vport.vport_id = 0x44000001;
  EXPECT_TRUE(
      destroy(vport).starts_with("bcm_vlan_gport_delete(0, 0, 1140850689) = 0\n"
                                 "bcm_l2_addr_delete_by_port"));
}

TEST_F(VirtualPorts, WithAnOuterVlanAloneKeepTheInnerTagAndAreKeyedWithoutOne) {
  sai_vport_t vport = stacked_with_outer;
  vport.vlan = 0;
  EXPECT_NE(object({.match_inner_vlan = 20, .outer_vlan = 40})
                .find("flags=0x84, match_vlan=10, match_inner_vlan=20, port=67108865, egress_vlan=40, "
                      "egress_inner_vlan=20,"),
            std::string::npos);
  EXPECT_NE(create(vport).find("bcm_vlan_translate_egress_action_delete(0, 0, 40, 0) = 0\n"
                               "bcm_vlan_translate_egress_action_add(0, 0, 40, 0, {new_outer_vlan=10, "
                               "new_inner_vlan=20, dt_outer=2, dt_inner=2, dt_inner_pkt_prio=4}) = 0\n"),
            std::string::npos);
  EXPECT_TRUE(
      destroy(vport).starts_with("bcm_vlan_translate_egress_action_delete(0, 0, 40, 0) = 0\n"
                                 "bcm_vlan_translate_egress_action_add(0, 0, 40, 0, {}) = 0\n"));
}

TEST_F(VirtualPorts, AreTransparentWhenTheInnerTagKeepsItsVlan) {
  EXPECT_NE(object({.match_inner_vlan = 30, .vlan = 30}).find("flags=0x480,"), std::string::npos);
  EXPECT_NE(object({.match_vlan = 30, .match_inner_vlan = 20, .vlan = 30}).find("flags=0x80080,"), std::string::npos);
  EXPECT_NE(object({.match_inner_vlan = 30, .vlan = 30, .outer_vlan = 40}).find("flags=0x84,"), std::string::npos);
}

TEST_F(VirtualPorts, HavePrioritiesUpTo7AndNegativeOnesAsTheyAre) {
  constexpr int32_t lowest = std::numeric_limits<int32_t>::min();
  constexpr int32_t highest = std::numeric_limits<int32_t>::max();
  const struct {
    int32_t given;
    int32_t taken;
  } rows[] = {{1, 1}, {5, 5}, {7, 7}, {8, 7}, {9, 7}, {highest, 7}, {-1, -1}, {lowest, lowest}};
  for (const auto& [given, taken] : rows) {
    const std::string number = std::to_string(taken);
    EXPECT_NE(object({.priority = given, .vlan = 30})
                  .find(", ingress_network_group_id=" + number + ", egress_network_group_id=" + number + "})"),
              std::string::npos)
        << given;
  }
  EXPECT_EQ(object({.priority = 0, .vlan = 30}).find("group_id"), std::string::npos);
}

TEST_F(VirtualPorts, LeaveAVlanAloneThatHasThreeFloodGroups) {
  sai_vport_t vport = stacked_with_outer;
  create(vport);
  EXPECT_TRUE(
      create(vport).ends_with("bcm_multicast_egress_add(0, 3, 67108866, 0) = 0\n"
                              "bcm_vlan_control_vlan_get(0, 40, &" +
                              groups + ") = 0\n" + vport::stacked_with_outer_trace + "returned 0\n"));
}

TEST_F(VirtualPorts, TakeTheFloodGroupsOfAVlanThatLacksOneAndLeaveItsOtherProperties) {
  for (const auto group :
       {&bcm_vlan_control_vlan_t::unknown_unicast_group, &bcm_vlan_control_vlan_t::unknown_multicast_group,
        &bcm_vlan_control_vlan_t::broadcast_group}) {
    bcm_vlan_control_vlan_t control{};
    control.flags = BCM_VLAN_LEARN_DISABLE;
    control.unknown_unicast_group = control.unknown_multicast_group = control.broadcast_group = 9;
    control.*group = 0;
    ASSERT_EQ(bcm_vlan_control_vlan_set(unit, 40, control), BCM_E_NONE);
    sai_vport_t vport = stacked_with_outer;
    EXPECT_NE(create(vport).find("bcm_vlan_control_vlan_set(0, 40, {flags=0x1, broadcast_group=3, "
                                 "unknown_multicast_group=2, unknown_unicast_group=1}) = 0\n"),
              std::string::npos);
  }
}

TEST_F(VirtualPorts, FloodToEveryFrontPortInAscendingOrder) {
  support::start_chip();
  vport::all_well();
  sai_vport_t vport = stacked_with_outer;
  const std::string seen = create(vport);
  std::string expected;
  for (int port = 1; port <= 12; ++port)
    for (const char* const group : {"1", "2", "3"}) {
      const std::string gport = std::to_string(0x4000000 + port);
      expected += std::string("bcm_multicast_l2_encap_get(0, ") + group + ", " + gport + ", 65535, &0) = 0\n" +
                  "bcm_multicast_egress_add(0, " + group + ", " + gport + ", 0) = 0\n";
    }
  EXPECT_NE(seen.find(expected + "bcm_vlan_control_vlan_get(0, 40, "), std::string::npos);
}

TEST_F(VirtualPorts, FloodToNoEthernetPortButTheFrontPorts) {
  SOC_PORT_MAX(unit, port) = 1;
  sai_vport_t vport = stacked_with_outer;
  const std::string seen = create(vport);
  EXPECT_NE(seen.find("bcm_multicast_egress_add(0, 3, 67108865, 0) = 0\nbcm_vlan_control_vlan_get"), std::string::npos)
      << seen;
  EXPECT_EQ(seen.find("67108866"), std::string::npos) << seen;
}

TEST_F(VirtualPorts, ReadTheUntaggedVlanFromUnit0WhateverTheirUnit) {
  support::start_chip(2, 2);
  vport::all_well();
  sai_vport_t vport = record({.vlan = 30});
  EXPECT_TRUE(observe([&] { return sai_vport_create(1, 2, &vport); })
                  .starts_with("bcm_port_untagged_vlan_get(0, 2, &0) = 0\n"
                               "bcm_port_gport_get(1, 2, &134217730) = 0\n"
                               "bcm_vlan_port_create(1, {criteria=3, flags=0x180, match_vlan=10, port=67108866, "));
}

TEST_F(VirtualPorts, AreDestroyedWhateverThePortAndKeepTheirRecord) {
  sai_vport_t vport = stacked_with_outer;
  vport.vport_id = 0x44000001;
  const std::string seen = destroy(vport);
  EXPECT_EQ(observe([&] { return sai_vport_destroy(unit, -77, &vport); }), seen);
  EXPECT_EQ(vport.vport_id, 0x44000001);
  EXPECT_EQ(vport.outer_vlan, 40);
}

}  // namespace
