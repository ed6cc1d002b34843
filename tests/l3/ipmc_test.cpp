// Joining a group with every failure fatal, which IPv4 and IPv6 do alike; and what IPv6 does by itself.
#include <ostream>

#include "l3/multicast.h"
#include "support/start.h"

namespace {

using namespace l3;

constexpr uint32_t group = 0xEF010203;  // 239.1.2.3
constexpr uint8_t group6[16] = {0xFF, 0x02, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x0A, 0x01};
constexpr uint8_t source6[16] = {0x20, 0x01, 0x0D, 0xB8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFE};
constexpr uint8_t router_mac[6] = {0x02, 0x00, 0x00, 0x00, 0x00, 0x01};

/// One IP version's way of joining, and where it differs.
struct Version {
  const char* name;
  int32_t (*join)(int unit, int user_vlan, int port);
  std::string key;
  std::string addresses;
  std::string stop;
  std::string found;
};

void PrintTo(const Version& version, std::ostream* stream) { *stream << version.name; }

const std::string key6 =
    "{s_ip6_addr=2001:db8::fe, mc_ip6_addr=ff02::a01, vid=10, v=1, flags=0x80000020, "
    "mc_ip6_mask=ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff, s_ip6_mask=ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff}";

const Version versions[] = {
    {.name = "IPv4",
     .join = [](int unit, int user_vlan,
                int port) { return sai_ipmc_add(unit, 10, user_vlan, port, group, router_mac); },
     .key = "{mc_ip_addr=239.1.2.3, vid=10, v=1, flags=0x80000000}",
     .addresses = "group address 239.1.2.3",
     .stop = ".",
     .found = "log: errors: NONE: find group 0x0\n"},
    {.name = "IPv6",
     .join =
         [](int unit, int user_vlan, int port) {
           return sai_ipv6_ipmc_add(unit, 10, static_cast<uint16_t>(user_vlan), static_cast<uint8_t>(port), group6,
                                    source6, router_mac);
         },
     .key = key6,
     .addresses = "group address ff:2:0:0:0:0:0:0:0:0:0:0:0:0:a:1 source address "
                  "20:1:d:b8:0:0:0:0:0:0:0:0:0:0:0:fe",
     .stop = "",
     .found = "log: debugging: NONE: find group 0x0\n"},
};

class Joining : public l3::Scene, public testing::WithParamInterface<Version> {
 protected:
  static int32_t join() { return GetParam().join(unit, 20, 3); }

  static std::string trace(int port) {
    return "log: debugging: NONE: add multicast group: group vlan 10 " + GetParam().addresses + " group-member " +
           std::to_string(port) + " user vlan 20 mac 0200:0000:0001\n";
  }

  static std::string failure(const std::string& function, const std::string& text) {
    return "log: errors: NONE: Error executing " + function + "() : " + text + GetParam().stop + '\n';
  }

  static std::string group_looked_up(int rv) { return line("bcm_ipmc_find(0, " + GetParam().key + ")", rv); }
  static std::string group_bound(int rv) { return line("bcm_ipmc_add(0, " + GetParam().key + ")", rv); }
};

const std::string group_interface = "bcm_l3_intf_find(0, " + interface("l3a_vid=10") +
                                    ") = -7\nbcm_l3_intf_create(0, " + interface("l3a_vid=10") + ") = 0\n";
const std::string group_made = "bcm_multicast_create(0, 0x20000, 0) = 0\n";
const std::string member_interface = "bcm_l3_intf_find(0, " + interface("l3a_vid=20, l3a_ttl=2") +
                                     ") = -7\nbcm_l3_intf_create(0, " + interface("l3a_vid=20, l3a_ttl=2") + ") = 0\n";
const std::string gport_got = "bcm_port_gport_get(0, 3, &0) = 0\n";
const std::string encap_got = "bcm_multicast_l3_encap_get(0, 0, 0, 0, &0) = 0\n";
const std::string member_added = "bcm_multicast_egress_add(0, 0, 0, 0) = 0\n";

TEST_P(Joining, TheFirstMemberMakesTheGroup) {
  EXPECT_EQ(observe_with(new_group, join), group_interface + group_looked_up(-7) + group_made + group_bound(0) +
                                               gport_got + member_interface + encap_got + member_added + trace(3) +
                                               "returned 0\n");
}

TEST_P(Joining, AFurtherMemberFindsInterfacesAndGroup) {
  EXPECT_EQ(observe_with(known_group, join), "bcm_l3_intf_find(0, " + interface("l3a_vid=10") + ") = 0\n" +
                                                 group_looked_up(0) + gport_got + "bcm_l3_intf_find(0, " +
                                                 interface("l3a_vid=20, l3a_ttl=2") + ") = 0\n" + encap_got +
                                                 member_added + trace(3) + GetParam().found + "returned 0\n");
}

TEST_P(Joining, AGroupWhoseLookupIsNotZeroIsMade) {
  const std::string seen = observe_with(but({{"bcm_ipmc_find", 1}}, known_group), join);
  EXPECT_NE(seen.find(group_looked_up(1) + group_made + group_bound(0)), std::string::npos) << seen;
}

TEST_P(Joining, TheEncapsulationIsAskedForWithTheGport) {
  const std::string gport = gport_of(3);
  EXPECT_EQ(observe_with(with_real_gports(new_group), join),
            group_interface + group_looked_up(-7) + group_made + group_bound(0) + "bcm_port_gport_get(0, 3, &" + gport +
                ") = 0\n" + member_interface + "bcm_multicast_l3_encap_get(0, 0, " + gport +
                ", 0, &0) = 0\n"
                "bcm_multicast_egress_add(0, 0, " +
                gport + ", 0) = 0\n" + trace(3) + "returned 0\n");
}

TEST_P(Joining, MembersFromEightOnAreDoubleTagged) {
  for (const int port : {8, 9}) {
    const std::string double_tagged = interface("l3a_vid=4095, l3a_inner_vlan=20, l3a_ttl=2");
    EXPECT_EQ(observe_with(new_group, [=] { return GetParam().join(unit, 20, port); }),
              group_interface + group_looked_up(-7) + group_made + group_bound(0) + "bcm_port_gport_get(0, " +
                  std::to_string(port) + ", &0) = 0\nbcm_l3_intf_find(0, " + double_tagged +
                  ") = -7\nbcm_l3_intf_create(0, " + double_tagged + ") = 0\n" + encap_got + member_added +
                  trace(port) + "returned 0\n");
  }
  EXPECT_EQ(observe_with(new_group, [] { return GetParam().join(unit, 20, 7); }).find("inner"), std::string::npos);
}

TEST_P(Joining, AMemberOfTheGroupsVlanHasItsOwnInterfaceToo) {
  const std::string seen = observe_with(new_group, [] { return GetParam().join(unit, 10, 3); });
  EXPECT_NE(seen.find(gport_got + "bcm_l3_intf_find(0, " + interface("l3a_vid=10, l3a_ttl=2") + ") = -7\n"),
            std::string::npos)
      << seen;
}

TEST_P(Joining, TheGroupIsMadeOnTheUnitOfTheCall) {
  support::start_chip(2);
  const std::string seen = observe_with(new_group, [] { return GetParam().join(1, 20, 3); });
  EXPECT_NE(seen.find("bcm_multicast_create(1, 0x20000, 0) = 0\n"), std::string::npos) << seen;
  EXPECT_EQ(seen.find("(0, "), std::string::npos) << seen;
}

TEST_P(Joining, EndsWithoutTheInterfaceOfTheGroup) {
  EXPECT_EQ(observe_with(but({{"bcm_l3_intf_create", BCM_E_FULL}}, new_group), join),
            "bcm_l3_intf_find(0, " + interface("l3a_vid=10") + ") = -7\nbcm_l3_intf_create(0, " +
                interface("l3a_vid=10") + ") = -6\n" + trace(3) + failure("bcm_l3_intf_create", "Table is full") +
                "returned -13\n");
}

TEST_P(Joining, EndsWithoutTheGroup) {
  EXPECT_EQ(observe_with(but({{"bcm_multicast_create", BCM_E_RESOURCE}}, new_group), join),
            group_interface + group_looked_up(-7) + "bcm_multicast_create(0, 0x20000, 0) = -14\n" + trace(3) +
                failure("bcm_multicast_create", "Out of resources") + "returned -1\n");
  EXPECT_EQ(observe_with(but({{"bcm_ipmc_add", BCM_E_FULL}}, new_group), join),
            group_interface + group_looked_up(-7) + group_made + group_bound(-6) + trace(3) +
                failure("bcm_ipmc_add", "Table is full") + "returned -13\n");
}

TEST_P(Joining, EndsWithoutTheGport) {
  EXPECT_EQ(observe_with(but({{"bcm_port_gport_get", BCM_E_PORT}}, new_group), join),
            group_interface + group_looked_up(-7) + group_made + group_bound(0) +
                "bcm_port_gport_get(0, 3, &?) = -18\n" + trace(3) + failure("bcm_port_gport_get", "Invalid port") +
                "returned -9\n");
}

TEST_P(Joining, EndsWithoutTheEncapsulation) {
  EXPECT_EQ(observe_with(but({{"bcm_multicast_l3_encap_get", BCM_E_PARAM}}, new_group), join),
            group_interface + group_looked_up(-7) + group_made + group_bound(0) + gport_got + member_interface +
                "bcm_multicast_l3_encap_get(0, 0, 0, 0, &?) = -4\n" + trace(3) +
                failure("bcm_multicast_l3_encap_get", "Invalid parameter") + "returned -5\n");
}

TEST_P(Joining, TheAnswerToAMemberThatIsThereIsReturned) {
  EXPECT_EQ(observe_with(but({{"bcm_multicast_egress_add", BCM_E_EXISTS}}, new_group), join),
            group_interface + group_looked_up(-7) + group_made + group_bound(0) + gport_got + member_interface +
                encap_got + "bcm_multicast_egress_add(0, 0, 0, 0) = -8\n" + trace(3) +
                failure("bcm_multicast_egress_add", "Entry already exists") + "returned -6\n");
}

INSTANTIATE_TEST_SUITE_P(Multicast, Joining, testing::ValuesIn(versions),
                         [](const auto& version) { return std::string(version.param.name); });

// --------------------------------------------------------------------------------------------- IPv6 alone ----

class Ipv6Multicast : public LastMember {
 protected:
  static int32_t remove_member() { return remove_from(3); }
  static int32_t remove_from(uint8_t port) {
    return sai_ipv6_multicast_egress_del(unit, 10, group6, source6, router, port, 20);
  }
  static int32_t destroy_group() { return sai_ipv6_multicast_destroy(unit, 10, group6, source6); }
};

const std::string group_found = "bcm_ipmc_find(0, " + key6 + ") = 0\n";
const std::string no_group = "bcm_ipmc_find(0, " + key6 + ") = -7\n";
const std::string leaving_interface = "bcm_l3_intf_find(0, " + interface("l3a_vid=20") + ")";
const std::string port_encap_got = "bcm_multicast_l3_encap_get(0, 0, 3, 0, &0) = 0\n";
const std::string member_removed = "bcm_multicast_egress_delete(0, 0, 0, 0) = 0\n";
const std::string counted = "bcm_multicast_egress_get(0, 0, 0, NULL, NULL, &0) = 0\n";
const std::string group_destroyed =
    group_found + "bcm_ipmc_remove(0, " + key6 + ") = 0\nbcm_multicast_destroy(0, 0) = 0\n";
const std::string destroy_trace = "log: debugging: NONE: getipmc group is 0x0\n";

TEST_F(Ipv6Multicast, TheLastMemberTakesTheGroupAlong) {
  EXPECT_EQ(observe_with(known_group, remove_member), group_found + gport_got + leaving_interface + " = 0\n" +
                                                          port_encap_got + member_removed + counted + group_destroyed +
                                                          destroy_trace + "returned 0\n");
}

TEST_F(Ipv6Multicast, AMemberAboveEightWasDoubleTagged) {
  const std::string seen = observe_with(known_group, [] { return remove_from(9); });
  EXPECT_NE(seen.find("bcm_l3_intf_find(0, " + interface("l3a_vid=4095, l3a_inner_vlan=20") +
                      ") = 0\nbcm_multicast_l3_encap_get(0, 0, 9, 0, &0) = 0\n"),
            std::string::npos)
      << seen;
  EXPECT_EQ(observe_with(known_group, [] { return remove_from(8); }).find("inner"), std::string::npos);
}

TEST_F(Ipv6Multicast, TheEncapsulationOfARemovalIsAskedForWithThePort) {
  const std::string seen = observe_with(with_real_gports(known_group), remove_member);
  EXPECT_NE(seen.find(port_encap_got + "bcm_multicast_egress_delete(0, 0, " + gport_of(3) + ", 0) = 0\n"),
            std::string::npos)
      << seen;
}

TEST_F(Ipv6Multicast, EveryFailureOfARemovalEndsIt) {
  EXPECT_EQ(observe_with(new_group, remove_member),
            no_group +
                "log: errors: NONE: bcm_ipmc_find ipmc group is not exist: Entry not found\n"
                "returned -7\n");
  EXPECT_EQ(observe_with(but({{"bcm_port_gport_get", BCM_E_PORT}}, known_group), remove_member),
            group_found +
                "bcm_port_gport_get(0, 3, &?) = -18\n"
                "log: errors: NONE: bcm_port_gport_get failed: Invalid port\n"
                "returned -9\n");
  EXPECT_EQ(observe_with(but({{"bcm_l3_intf_find", BCM_E_NOT_FOUND}}, known_group), remove_member),
            group_found + gport_got + leaving_interface +
                " = -7\n"
                "log: errors: NONE: vlan 20 inner vlan 0 bcm_l3_intf_find failed: Entry not found\n"
                "returned -7\n");
  EXPECT_EQ(observe_with(but({{"bcm_multicast_l3_encap_get", BCM_E_PARAM}}, known_group), remove_member),
            group_found + gport_got + leaving_interface +
                " = 0\n"
                "bcm_multicast_l3_encap_get(0, 0, 3, 0, &?) = -4\n"
                "log: errors: NONE: bcm_multicast_l2_encap_get failed: Invalid parameter\n"
                "returned -5\n");
  EXPECT_EQ(observe_with(but({{"bcm_multicast_egress_delete", BCM_E_NOT_FOUND}}, known_group), remove_member),
            group_found + gport_got + leaving_interface + " = 0\n" + port_encap_got +
                "bcm_multicast_egress_delete(0, 0, 0, 0) = -7\n"
                "log: errors: NONE: bcm_multicast_egress_delete failed: Entry not found\n"
                "returned -7\n");
}

TEST_F(Ipv6Multicast, AQueryThatTellsNoCountEndsNoGroupAndIsSilent) {
  told_members.reset();
  EXPECT_EQ(observe_with(but({{"bcm_multicast_egress_get", BCM_E_BUSY}}, known_group), remove_member),
            group_found + gport_got + leaving_interface + " = 0\n" + port_encap_got + member_removed +
                "bcm_multicast_egress_get(0, 0, 0, NULL, NULL, &?) = -10\n"
                "returned -1\n");
}

TEST_F(Ipv6Multicast, ACountOfNoneEndsTheGroupEvenOfAQueryThatFails) {
  EXPECT_EQ(observe_with(but({{"bcm_multicast_egress_get", BCM_E_BUSY}}, known_group), remove_member),
            group_found + gport_got + leaving_interface + " = 0\n" + port_encap_got + member_removed +
                "bcm_multicast_egress_get(0, 0, 0, NULL, NULL, &?) = -10\n" + group_destroyed + destroy_trace +
                "returned -1\n");
}

TEST_F(Ipv6Multicast, AGroupIsDestroyedWithItsEntry) {
  EXPECT_EQ(observe_with(known_group, destroy_group), group_destroyed + destroy_trace + "returned 0\n");
}

TEST_F(Ipv6Multicast, EveryFailureOfADestructionEndsIt) {
  EXPECT_EQ(observe_with(new_group, destroy_group), no_group +
                                                        "log: errors: NONE: bcm_ipmc_find failed: Entry not found\n"
                                                        "returned -7\n");
  EXPECT_EQ(observe_with(but({{"bcm_ipmc_remove", BCM_E_BUSY}}, known_group), destroy_group),
            group_found + "bcm_ipmc_remove(0, " + key6 + ") = -10\n" + destroy_trace +
                "log: errors: NONE: bcm_ipmc_remove failed: Hardware is busy\n"
                "returned -1\n");
  EXPECT_EQ(observe_with(but({{"bcm_multicast_destroy", BCM_E_BUSY}}, known_group), destroy_group),
            group_found + "bcm_ipmc_remove(0, " + key6 + ") = 0\nbcm_multicast_destroy(0, 0) = -10\n" + destroy_trace +
                "log: errors: NONE: bcm_multicast_destroy failed: Hardware is busy\n"
                "returned -1\n");
}

TEST_F(Ipv6Multicast, TheFirstFloodControlIsTheSameAsOfIpv4) {
  EXPECT_EQ(observe_with({{"bcm_vlan_mcast_flood_set", BCM_E_NOT_FOUND}},
                         [] { return sai_ipv6_vlan_mcast_flood_set(unit, 2, 10); }),
            "bcm_vlan_mcast_flood_set(0, 10, 1) = -7\n"
            "log: errors: NONE: bcm_vlan_mcast_flood_set vlan 10 failed: Entry not found\n"
            "returned -7\n");
}

TEST_F(Ipv6Multicast, TheOtherFloodControlTakesTheVlanFirst) {
  const Answers well{{"bcm_esw_vlan_ip6_mcast_flood_set", 0}};
  EXPECT_EQ(observe_with(well, [] { return sai_ipv6_esw_vlan_mcast_flood_set(unit, 10, 0); }),
            "bcm_esw_vlan_ip6_mcast_flood_set(0, 10, 0) = 0\nreturned 0\n");
  EXPECT_EQ(observe_with(well, [] { return sai_ipv6_esw_vlan_mcast_flood_set(unit, 10, 5); }),
            "bcm_esw_vlan_ip6_mcast_flood_set(0, 10, 2) = 0\nreturned 0\n");
  EXPECT_EQ(observe_with({{"bcm_esw_vlan_ip6_mcast_flood_set", BCM_E_PARAM}},
                         [] { return sai_ipv6_esw_vlan_mcast_flood_set(unit, 10, 1); }),
            "bcm_esw_vlan_ip6_mcast_flood_set(0, 10, 2) = -4\n"
            "log: errors: NONE: bcm_esw_vlan_ip6_mcast_flood_set vlan 10 failed: Invalid parameter\n"
            "returned -5\n");
}

}  // namespace
