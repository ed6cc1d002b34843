#include <bcm/multicast.h>
#include <bcm/port.h>

#include <array>

#include "vport/virtual_ports.h"

namespace {

using vport::record;
using vport::stacked_with_outer;

class VirtualPortsOfTheChip : public vport::Scene {
 protected:
  static bool contains(const std::string& seen, const std::string& text) {
    return seen.find(text) != std::string::npos;
  }

  static int members(bcm_multicast_t group) {
    std::array<bcm_gport_t, 16> ports;
    std::array<bcm_if_t, 16> encaps;
    int count = 0;
    bcm_multicast_egress_get(unit, group, 16, ports.data(), encaps.data(), &count);
    return count;
  }
};

TEST_F(VirtualPortsOfTheChip, AreMadeAndDestroyedByTheirGport) {
  sai_vport_t vport = stacked_with_outer;
  EXPECT_EQ(create(vport),
            "bcm_port_gport_get(0, 1, &134217729) = 0\n"
            "bcm_vlan_port_create(0, {criteria=4, flags=0x84, match_vlan=10, match_inner_vlan=20, port=67108865, "
            "egress_vlan=40, egress_inner_vlan=30, ingress_network_group_id=3, egress_network_group_id=3} -> "
            "&{criteria=4, flags=0x84, match_vlan=10, match_inner_vlan=20, port=67108865, egress_vlan=40, "
            "egress_inner_vlan=30, vlan_port_id=1140850689, ingress_network_group_id=3, egress_network_group_id=3}) = "
            "0\n"
            "bcm_vlan_gport_add(0, 40, 1140850689, 0x0) = 0\n"
            "bcm_vlan_translate_egress_action_delete(0, 1140850689, 40, 0) = -7\n"
            "bcm_vlan_translate_egress_action_add(0, 1140850689, 40, 30, {new_outer_vlan=10, new_inner_vlan=20, "
            "dt_outer=2, dt_inner=2, dt_inner_pkt_prio=4}) = 0\n"
            "bcm_multicast_vlan_encap_get(0, 1, 67108865, 1140850689, &1048577) = 0\n"
            "bcm_multicast_egress_add(0, 1, 67108865, 1048577) = 0\n"
            "bcm_multicast_vlan_encap_get(0, 2, 67108865, 1140850689, &1048577) = 0\n"
            "bcm_multicast_egress_add(0, 2, 67108865, 1048577) = 0\n"
            "bcm_multicast_vlan_encap_get(0, 3, 67108865, 1140850689, &1048577) = 0\n"
            "bcm_multicast_egress_add(0, 3, 67108865, 1048577) = 0\n"
            "bcm_multicast_l2_encap_get(0, 1, 67108865, 65535, &-1) = 0\n"
            "bcm_multicast_egress_add(0, 1, 67108865, -1) = 0\n"
            "bcm_multicast_l2_encap_get(0, 2, 67108865, 65535, &-1) = 0\n"
            "bcm_multicast_egress_add(0, 2, 67108865, -1) = 0\n"
            "bcm_multicast_l2_encap_get(0, 3, 67108865, 65535, &-1) = 0\n"
            "bcm_multicast_egress_add(0, 3, 67108865, -1) = 0\n"
            "bcm_multicast_l2_encap_get(0, 1, 67108866, 65535, &-1) = 0\n"
            "bcm_multicast_egress_add(0, 1, 67108866, -1) = 0\n"
            "bcm_multicast_l2_encap_get(0, 2, 67108866, 65535, &-1) = 0\n"
            "bcm_multicast_egress_add(0, 2, 67108866, -1) = 0\n"
            "bcm_multicast_l2_encap_get(0, 3, 67108866, 65535, &-1) = 0\n"
            "bcm_multicast_egress_add(0, 3, 67108866, -1) = 0\n"
            "bcm_vlan_control_vlan_get(0, 40, &{}) = 0\n"
            "bcm_vlan_control_vlan_set(0, 40, " +
                vport::groups + ") = 0\n" + vport::stacked_with_outer_trace +
                "log: errors: NONE: sai_vport_create LINE bcm_vlan_translate_egress_action_delete failed: Entry not "
                "found\n"
                "returned 0\n");
  EXPECT_EQ(vport.vport_id, 0x44000001);

  EXPECT_EQ(destroy(vport),
            "bcm_vlan_translate_egress_action_delete(0, 1140850689, 40, 30) = 0\n"
            "bcm_vlan_translate_egress_action_add(0, 1140850689, 40, 0, {}) = 0\n"
            "bcm_vlan_gport_delete(0, 40, 1140850689) = 0\n"
            "bcm_l2_addr_delete_by_port(0, 0, 1140850689, 0x0) = 0\n"
            "bcm_vlan_port_destroy(0, 1140850689) = 0\n"
            "log: debugging: NONE: vport destroy success\n"
            "returned 0\n");
  EXPECT_EQ(sai_vport_destroy(unit, 1, &vport), SAI_E_NOT_FOUND);
  EXPECT_EQ(members(1), 3);  // the two ports, and what is left of the virtual one
}

TEST_F(VirtualPortsOfTheChip, FindTheEmptyRuleOfAnEarlierOneWithTheirId) {
  sai_vport_t vport = stacked_with_outer;
  create(vport);
  destroy(vport);
  EXPECT_TRUE(contains(create(vport), "bcm_vlan_translate_egress_action_delete(0, 1140850689, 40, 0) = 0\n"));
}

TEST_F(VirtualPortsOfTheChip, JoinTheUntaggedVlanAndLeaveVlan0) {
  ASSERT_EQ(bcm_port_untagged_vlan_set(unit, 1, 30), BCM_E_NONE);
  sai_vport_t vport = record({});
  const std::string seen = create(vport);
  EXPECT_TRUE(contains(seen, "match_vlan=10, port=67108865, egress_vlan=30, ingress"));
  EXPECT_TRUE(contains(seen,
                       "bcm_vlan_gport_add(0, 30, 1140850689, 0x0) = 0\n"
                       "bcm_vlan_translate_egress_action_add(0, 1140850689, 30, 0, {new_outer_vlan=10, "
                       "ot_outer=2}) = 0\n"));
  EXPECT_TRUE(contains(seen, "bcm_vlan_control_vlan_get(0, 30, "));
  EXPECT_TRUE(contains(seen, "match 10 inner 0 egress 30\n"));
  EXPECT_TRUE(destroy(vport).starts_with("bcm_vlan_gport_delete(0, 0, 1140850689) = -"));
}

TEST_F(VirtualPortsOfTheChip, AddTheUntaggedVlanInsideWhenOnlyTheOuterOneIsGiven) {
  ASSERT_EQ(bcm_port_untagged_vlan_set(unit, 1, 30), BCM_E_NONE);
  sai_vport_t vport = record({.outer_vlan = 40});
  const std::string seen = create(vport);
  EXPECT_TRUE(contains(seen, "flags=0x88, match_vlan=10, port=67108865, egress_vlan=40, egress_inner_vlan=30,"));
  EXPECT_TRUE(contains(seen, "bcm_vlan_gport_add(0, 40, "));
  EXPECT_TRUE(contains(seen,
                       "bcm_vlan_translate_egress_action_add(0, 1140850689, 40, 0, {new_outer_vlan=10, "
                       "dt_outer=2, dt_inner=3}) = 0\n"));
}

TEST_F(VirtualPortsOfTheChip, ReadTheUntaggedVlanOfUnit0) {
  support::start_chip(2, 2);
  ASSERT_EQ(bcm_port_untagged_vlan_set(0, 1, 30), BCM_E_NONE);
  ASSERT_EQ(bcm_port_untagged_vlan_set(1, 1, 40), BCM_E_NONE);
  sai_vport_t vport = record({});
  EXPECT_TRUE(contains(observe([&] { return sai_vport_create(1, 1, &vport); }), "bcm_vlan_gport_add(1, 30, "));
}

TEST_F(VirtualPortsOfTheChip, NameThemselvesWhenTheVlanIsNotThere) {
  sai_vport_t vport = record({.match_inner_vlan = 20, .vlan = 31});
  EXPECT_TRUE(contains(create(vport),
                       "log: errors: NONE: sai_vport_create LINE bcm_vlan_gport_add vlan 31 port "
                       "0x44000001 failed: Entry not found\n"));
}

TEST_F(VirtualPortsOfTheChip, TakeNoEncapsulationOfAnotherGroup) {
  sai_vport_t vport = stacked_with_outer;
  EXPECT_TRUE(
      contains(observe_failing(
                   "bcm_multicast_vlan_encap_get", BCM_E_FULL, [&] { return sai_vport_create(unit, 1, &vport); }, 2),
               "bcm_multicast_egress_add(0, 1, 67108865, 1048577) = 0\n"
               "bcm_multicast_vlan_encap_get(0, 2, 67108865, 1140850689, &?) = -6\n"
               "bcm_multicast_egress_add(0, 2, 67108865, 0) = "));
}

TEST_F(VirtualPortsOfTheChip, FindEveryPhysicalPortAMemberAlreadyFromTheSecondOn) {
  sai_vport_t first = stacked_with_outer;
  create(first);
  sai_vport_t second = record({.match_inner_vlan = 21, .vlan = 30, .outer_vlan = 40});
  const std::string seen = create(second);
  const std::string already =
      "log: errors: NONE: Failed to bcm_multicast_egress_add sai_unicast_group 0x1: Entry already exists\n"
      "log: errors: NONE: Failed to bcm_multicast_egress_add sai_multicast_group 0x2: Entry already exists\n"
      "log: errors: NONE: Failed to bcm_multicast_egress_add sai_broadcast_group 0x3: Entry already exists\n";
  EXPECT_TRUE(seen.ends_with(already + already + "returned 0\n"));
  EXPECT_EQ(second.vport_id, 0x44000002);
  for (const bcm_multicast_t group : {1, 2, 3}) EXPECT_EQ(members(group), 4);
}

TEST_F(VirtualPortsOfTheChip, WithoutAnIdAreKeyedBy0) {
  sai_vport_t vport = stacked_with_outer;
  const std::string seen =
      observe_failing("bcm_vlan_port_create", BCM_E_FULL, [&] { return sai_vport_create(unit, 1, &vport); });
  EXPECT_TRUE(contains(seen, "bcm_vlan_gport_add(0, 40, 0, 0x0) = "));
  EXPECT_TRUE(contains(seen, "bcm_vlan_translate_egress_action_add(0, 0, 40, 30, "));
  EXPECT_EQ(vport.vport_id, 0);
}

}  // namespace
