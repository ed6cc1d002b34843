#include "l3/multicast.h"

#include <utility>

#include "support/start.h"

namespace {

using namespace l3;

constexpr uint32_t group = 0xEF010203;  // 239.1.2.3

class Multicast : public LastMember {
 protected:
  static int32_t add_member(int port = 3, int report_vid = 10) {
    return sai_multicast_egress_add(unit, 10, group, router, port, report_vid);
  }
  static int32_t remove_member(int port = 3) { return sai_multicast_egress_del(unit, 10, group, router, port, 20); }
  static int32_t destroy_group() { return sai_multicast_destroy(unit, 10, group); }
};

const std::string key = "{mc_ip_addr=239.1.2.3, vid=10, v=1, flags=0x80000000}";
const std::string no_interface = "bcm_l3_intf_find(0, " + interface("l3a_vid=10") + ") = -7\n";
const std::string interface_made = "bcm_l3_intf_create(0, " + interface("l3a_vid=10") + ") = 0\n";
const std::string no_group = "bcm_ipmc_find(0, " + key + ") = -7\n";
const std::string group_made = "bcm_multicast_create(0, 0x20000, 0) = 0\n";
const std::string group_bound = "bcm_ipmc_add(0, " + key + ") = 0\n";

// ------------------------------------------------------------------------------- sai_multicast_egress_add ----

std::string gport_got(int port) { return "bcm_port_gport_get(0, " + std::to_string(port) + ", &0) = 0\n"; }

std::string encap_got(int port) {
  return "bcm_multicast_l3_encap_get(0, 0, " + std::to_string(port) + ", 0, &0) = 0\n";
}

std::string add_trace(int port, int report_vid) {
  return "log: debugging: NONE: add multicast group: group vlan 10 group address 239.1.2.3 group-member " +
         std::to_string(port) + " report vid " + std::to_string(report_vid) + '\n';
}

const std::string member_added = "bcm_multicast_egress_add(0, 0, 0, 0) = 0\n";

TEST_F(Multicast, TheFirstMemberMakesTheGroup) {
  EXPECT_EQ(observe_with(new_group, [] { return add_member(); }),
            no_interface + interface_made + no_group + group_made + group_bound + gport_got(3) + encap_got(3) +
                member_added + add_trace(3, 10) + "returned 0\n");
}

TEST_F(Multicast, AFurtherMemberFindsInterfacesAndGroup) {
  EXPECT_EQ(observe_with(known_group, [] { return add_member(); }),
            "bcm_l3_intf_find(0, " + interface("l3a_vid=10") + ") = 0\nbcm_ipmc_find(0, " + key + ") = 0\n" +
                gport_got(3) + encap_got(3) + member_added + add_trace(3, 10) +
                "log: debugging: NONE: get ipmc group is 0x0\r\n"
                "log, next line\n"
                "returned 0\n");
}

TEST_F(Multicast, AMemberOfAnotherVlanHasAnInterfaceOfItsOwn) {
  EXPECT_EQ(observe_with(new_group, [] { return add_member(3, 20); }),
            no_interface + interface_made + no_group + group_made + group_bound + gport_got(3) +
                "bcm_l3_intf_find(0, " + interface("l3a_vid=20") + ") = -7\nbcm_l3_intf_create(0, " +
                interface("l3a_vid=20") + ") = 0\n" + encap_got(3) + member_added + add_trace(3, 20) + "returned 0\n");
}

TEST_F(Multicast, MembersAboveEightAreDoubleTaggedWhateverTheirVlan) {
  for (const int vlan : {10, 20}) {
    const std::string double_tagged = interface("l3a_vid=4095, l3a_inner_vlan=" + std::to_string(vlan));
    EXPECT_EQ(observe_with(new_group, [=] { return add_member(9, vlan); }),
              no_interface + interface_made + no_group + group_made + group_bound + gport_got(9) +
                  "bcm_l3_intf_find(0, " + double_tagged + ") = -7\nbcm_l3_intf_create(0, " + double_tagged +
                  ") = 0\n" + encap_got(9) + member_added + add_trace(9, vlan) + "returned 0\n");
  }
  EXPECT_EQ(observe_with(new_group, [] { return add_member(8); }).find("l3a_inner_vlan"), std::string::npos);
}

TEST_F(Multicast, TheMemberIsItsGportButTheEncapsulationIsAskedForWithThePort) {
  const std::string added = observe_with(with_real_gports(new_group), [] { return add_member(); });
  EXPECT_NE(added.find(encap_got(3) + "bcm_multicast_egress_add(0, 0, " + gport_of(3) + ", 0) = 0\n"),
            std::string::npos)
      << added;
  const std::string removed = observe_with(with_real_gports(known_group), [] { return remove_member(); });
  EXPECT_NE(removed.find(encap_got(3) + "bcm_multicast_egress_delete(0, 0, " + gport_of(3) + ", 0) = 0\n"),
            std::string::npos)
      << removed;
}

TEST_F(Multicast, TheGroupIsMadeOnUnitZeroAndAllElseOnTheUnitOfTheCall) {
  support::start_chip(2);
  EXPECT_EQ(observe_with(new_group, [] { return sai_multicast_egress_add(1, 10, group, router, 3, 10); }),
            "bcm_l3_intf_find(1, " + interface("l3a_vid=10") + ") = -7\nbcm_l3_intf_create(1, " +
                interface("l3a_vid=10") + ") = 0\nbcm_ipmc_find(1, " + key + ") = -7\n" + group_made +
                "bcm_ipmc_add(1, " + key +
                ") = 0\n"
                "bcm_port_gport_get(1, 3, &0) = 0\n"
                "bcm_multicast_l3_encap_get(1, 0, 3, 0, &0) = 0\n"
                "bcm_multicast_egress_add(1, 0, 0, 0) = 0\n" +
                add_trace(3, 10) + "returned 0\n");
}

TEST_F(Multicast, UpToTheMembersInterfaceFailuresAreLoggedAndPassedOver) {
  EXPECT_EQ(observe_with(but({{"bcm_l3_intf_create", BCM_E_FULL},
                              {"bcm_multicast_create", BCM_E_RESOURCE},
                              {"bcm_ipmc_add", BCM_E_MEMORY},
                              {"bcm_port_gport_get", BCM_E_PORT}},
                             new_group),
                         [] { return add_member(); }),
            no_interface + "bcm_l3_intf_create(0, " + interface("l3a_vid=10") + ") = -6\n" + no_group +
                "bcm_multicast_create(0, 0x20000, 0) = -14\n"
                "bcm_ipmc_add(0, " +
                key +
                ") = -2\n"
                "bcm_port_gport_get(0, 3, &?) = -18\n" +
                encap_got(3) + member_added + add_trace(3, 10) +
                "log: errors: NONE: bcm_l3_intf_create vlan 10 failed: Table is full\n"
                "log: errors: NONE: bcm_multicast_create failed: Out of resources\n"
                "log: errors: NONE: bcm_ipmc_add failed: Out of memory\n"
                "log: errors: NONE: bcm_port_gport_get port 3 failed: Invalid port\n"
                "returned 0\n");
}

TEST_F(Multicast, AMemberWithoutItsOwnInterfaceEnds) {
  // Both interfaces are refused; only the member's is fatal.
  EXPECT_EQ(observe_with(but({{"bcm_l3_intf_create", BCM_E_FULL}}, new_group), [] { return add_member(3, 20); }),
            no_interface + "bcm_l3_intf_create(0, " + interface("l3a_vid=10") + ") = -6\n" + no_group + group_made +
                group_bound + gport_got(3) + "bcm_l3_intf_find(0, " + interface("l3a_vid=20") +
                ") = -7\nbcm_l3_intf_create(0, " + interface("l3a_vid=20") + ") = -6\n" + add_trace(3, 20) +
                "log: errors: NONE: bcm_l3_intf_create vlan 10 failed: Table is full\n"
                "log: errors: NONE: bcm_l3_intf_create failed: Table is full\n"
                "returned -13\n");
}

TEST_F(Multicast, AMemberWithoutEncapsulationEnds) {
  EXPECT_EQ(observe_with(but({{"bcm_multicast_l3_encap_get", BCM_E_PARAM}}, new_group), [] { return add_member(); }),
            no_interface + interface_made + no_group + group_made + group_bound + gport_got(3) +
                "bcm_multicast_l3_encap_get(0, 0, 3, 0, &?) = -4\n" + add_trace(3, 10) +
                "log: errors: NONE: bcm_multicast_l2_encap_get failed: Invalid parameter\n"
                "returned -5\n");
}

TEST_F(Multicast, TheAnswerToAMemberThatIsThereIsReturned) {
  EXPECT_EQ(observe_with(but({{"bcm_multicast_egress_add", BCM_E_EXISTS}}, new_group), [] { return add_member(); }),
            no_interface + interface_made + no_group + group_made + group_bound + gport_got(3) + encap_got(3) +
                "bcm_multicast_egress_add(0, 0, 0, 0) = -8\n" + add_trace(3, 10) +
                "log: errors: NONE: bcm_multicast_egress_add failed: Entry already exists\n"
                "returned -6\n");
}

// ------------------------------------------------------------------------------- sai_multicast_egress_del ----

const std::string group_found = "bcm_ipmc_find(0, " + key + ") = 0\n";
const std::string member_interface = "bcm_l3_intf_find(0, " + interface("l3a_vid=20") + ") = 0\n";
const std::string member_removed = "bcm_multicast_egress_delete(0, 0, 0, 0) = 0\n";
const std::string counted = "bcm_multicast_egress_get(0, 0, 0, NULL, NULL, &0) = 0\n";
const std::string group_destroyed =
    group_found + "bcm_ipmc_remove(0, " + key + ") = 0\nbcm_multicast_destroy(0, 0) = 0\n";
const std::string destroy_trace = "log: debugging: NONE: getipmc group is 0x0\n";

TEST_F(Multicast, TheLastMemberTakesTheGroupAlong) {
  EXPECT_EQ(observe_with(known_group, [] { return remove_member(); }),
            group_found + gport_got(3) + member_interface + encap_got(3) + member_removed + counted + group_destroyed +
                "log: debugging: NONE: rv is 0 port_count is 0\n" + destroy_trace + "returned 0\n");
}

TEST_F(Multicast, AMemberAboveEightWasDoubleTagged) {
  EXPECT_EQ(observe_with(known_group, [] { return remove_member(9); }),
            group_found + gport_got(9) + "bcm_l3_intf_find(0, " + interface("l3a_vid=4095, l3a_inner_vlan=20") +
                ") = 0\n" + encap_got(9) + member_removed + counted + group_destroyed +
                "log: debugging: NONE: rv is 0 port_count is 0\n" + destroy_trace + "returned 0\n");
  EXPECT_EQ(observe_with(known_group, [] { return remove_member(8); }).find("l3a_inner_vlan"), std::string::npos);
}

TEST_F(Multicast, AMemberOfAnUnknownGroupIsNotRemoved) {
  EXPECT_EQ(observe_with(new_group, [] { return remove_member(); }),
            no_group +
                "log: errors: NONE: bcm_ipmc_find ipmc group is not exist: Entry not found\n"
                "returned -7\n");
}

TEST_F(Multicast, AMemberWithoutGportIsNotRemoved) {
  EXPECT_EQ(observe_with(but({{"bcm_port_gport_get", BCM_E_PORT}}, known_group), [] { return remove_member(); }),
            group_found +
                "bcm_port_gport_get(0, 3, &?) = -18\n"
                "log: errors: NONE: sai_multicast_egress_del bcm_port_gport_get failed: Invalid port\n"
                "returned -9\n");
}

TEST_F(Multicast, AMemberIsRemovedWithoutItsInterfaceAndItsEncapsulation) {
  EXPECT_EQ(observe_with(
                but({{"bcm_l3_intf_find", BCM_E_NOT_FOUND}, {"bcm_multicast_l3_encap_get", BCM_E_PARAM}}, known_group),
                [] { return remove_member(9); }),
            group_found + gport_got(9) + "bcm_l3_intf_find(0, " + interface("l3a_vid=4095, l3a_inner_vlan=20") +
                ") = -7\n"
                "bcm_multicast_l3_encap_get(0, 0, 9, 0, &?) = -4\n" +
                member_removed + counted + group_destroyed +
                "log: errors: NONE: sai_multicast_egress_del vlan 4095 inner vlan 20 bcm_l3_intf_find failed: Entry "
                "not found\n"
                "log: errors: NONE: sai_multicast_egress_del bcm_multicast_l2_encap_get failed: Invalid parameter\n"
                "log: debugging: NONE: rv is 0 port_count is 0\n" +
                destroy_trace + "returned 0\n");
}

TEST_F(Multicast, AMemberThatCannotBeRemovedLeavesTheGroup) {
  EXPECT_EQ(observe_with(but({{"bcm_multicast_egress_delete", BCM_E_NOT_FOUND}}, known_group),
                         [] { return remove_member(); }),
            group_found + gport_got(3) + member_interface + encap_got(3) +
                "bcm_multicast_egress_delete(0, 0, 0, 0) = -7\n"
                "log: errors: NONE: sai_multicast_egress_del bcm_multicast_egress_delete failed: Entry not found\n"
                "returned -7\n");
}

TEST_F(Multicast, AQueryThatTellsNoCountEndsNoGroup) {
  told_members.reset();
  EXPECT_EQ(observe_with(but({{"bcm_multicast_egress_get", BCM_E_BUSY}}, known_group), [] { return remove_member(); }),
            group_found + gport_got(3) + member_interface + encap_got(3) + member_removed +
                "bcm_multicast_egress_get(0, 0, 0, NULL, NULL, &?) = -10\n"
                "log: debugging: NONE: rv is -10 port_count is -1\n"
                "returned -1\n");
}

TEST_F(Multicast, ACountOfNoneEndsTheGroupEvenOfAQueryThatFails) {
  EXPECT_EQ(observe_with(but({{"bcm_multicast_egress_get", BCM_E_BUSY}}, known_group), [] { return remove_member(); }),
            group_found + gport_got(3) + member_interface + encap_got(3) + member_removed +
                "bcm_multicast_egress_get(0, 0, 0, NULL, NULL, &?) = -10\n" + group_destroyed +
                "log: debugging: NONE: rv is -10 port_count is 0\n" + destroy_trace + "returned -1\n");
}

TEST_F(Multicast, AGroupThatCannotBeDestroyedDoesNotShowInTheResult) {
  EXPECT_EQ(observe_with(but({{"bcm_multicast_destroy", BCM_E_BUSY}}, known_group), [] { return remove_member(); }),
            group_found + gport_got(3) + member_interface + encap_got(3) + member_removed + counted + group_found +
                "bcm_ipmc_remove(0, " + key +
                ") = 0\n"
                "bcm_multicast_destroy(0, 0) = -10\n"
                "log: debugging: NONE: rv is 0 port_count is 0\n" +
                destroy_trace +
                "log: errors: NONE: sai_multicast_destroy bcm_multicast_destroy failed: Hardware is busy\n"
                "returned 0\n");
}

// ---------------------------------------------------------------------------------- sai_multicast_destroy ----

TEST_F(Multicast, AGroupIsDestroyedWithItsEntry) {
  EXPECT_EQ(observe_with(known_group, destroy_group), group_destroyed + destroy_trace + "returned 0\n");
}

TEST_F(Multicast, AnUnknownGroupIsNotDestroyed) {
  EXPECT_EQ(observe_with(new_group, destroy_group),
            no_group +
                "log: errors: NONE: sai_multicast_destroy bcm_ipmc_find failed: Entry not found\n"
                "returned -7\n");
}

TEST_F(Multicast, AnEntryThatCannotBeRemovedDoesNotKeepTheGroup) {
  EXPECT_EQ(observe_with(but({{"bcm_ipmc_remove", BCM_E_BUSY}}, known_group), destroy_group),
            group_found + "bcm_ipmc_remove(0, " + key + ") = -10\nbcm_multicast_destroy(0, 0) = 0\n" + destroy_trace +
                "log: errors: NONE: sai_multicast_destroy bcm_ipmc_remove failed: Hardware is busy\n"
                "returned 0\n");
}

TEST_F(Multicast, AGroupThatCannotBeDestroyed) {
  EXPECT_EQ(observe_with(but({{"bcm_multicast_destroy", BCM_E_BUSY}}, known_group), destroy_group),
            group_found + "bcm_ipmc_remove(0, " + key + ") = 0\nbcm_multicast_destroy(0, 0) = -10\n" + destroy_trace +
                "log: errors: NONE: sai_multicast_destroy bcm_multicast_destroy failed: Hardware is busy\n"
                "returned -1\n");
}

// --------------------------------------------------------------------------------------------- flood controls ----

TEST_F(Multicast, AVlanFloodsAllOrUnknownGroupsOrNone) {
  for (const auto& [mode, flood] : {std::pair(1, 0), {2, 1}, {0, 2}, {3, 2}, {-1, 2}})
    EXPECT_EQ(observe_with({{"bcm_vlan_mcast_flood_set", 0}},
                           [mode = mode] { return sai_vlan_mcast_flood_set(unit, mode, 0x1000A); }),
              "bcm_vlan_mcast_flood_set(0, 10, " + std::to_string(flood) + ") = 0\nreturned 0\n");
  EXPECT_EQ(observe_with({{"bcm_vlan_mcast_flood_set", BCM_E_NOT_FOUND}},
                         [] { return sai_vlan_mcast_flood_set(unit, 1, 10); }),
            "bcm_vlan_mcast_flood_set(0, 10, 0) = -7\n"
            "log: errors: NONE: bcm_vlan_mcast_flood_set vlan 10 failed: Entry not found\n"
            "returned -7\n");
}

TEST_F(Multicast, TheOtherFloodControlIsReversedAndSilent) {
  for (const auto& [mode, flood] : {std::pair(1, 2), {0, 0}, {2, 0}, {-1, 0}})
    EXPECT_EQ(observe_with({{"bcm_esw_vlan_ip4_mcast_flood_set", 0}},
                           [mode = mode] { return sai_esw_vlan_mcast_flood_set(unit, mode, 10); }),
              "bcm_esw_vlan_ip4_mcast_flood_set(0, 10, " + std::to_string(flood) + ") = 0\nreturned 0\n");
  EXPECT_EQ(observe_with({{"bcm_esw_vlan_ip4_mcast_flood_set", BCM_E_PARAM}},
                         [] { return sai_esw_vlan_mcast_flood_set(unit, 1, 10); }),
            "bcm_esw_vlan_ip4_mcast_flood_set(0, 10, 2) = -4\nreturned -5\n");
}

}  // namespace
