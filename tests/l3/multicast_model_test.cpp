// Groups as the chip holds them.
#include <bcm/l3.h>
#include <bcm/multicast.h>
#include <bcm/vlan.h>

#include "l3/multicast.h"

namespace {

constexpr uint32_t group = 0xEF010203;  // 239.1.2.3
constexpr uint8_t group6[16] = {0xFF, 0x02, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x0A, 0x01};
constexpr uint8_t sources[2][16] = {{0x20, 0x01, 1}, {0x20, 0x01, 2}};

constexpr bcm_vlan_t vlans[] = {10, 20};

class MulticastOnTheChip : public l3::Scene {
 protected:
  MulticastOnTheChip() {
    for (const bcm_vlan_t vlan : vlans) EXPECT_EQ(bcm_vlan_create(unit, vlan), BCM_E_NONE);
  }

  static int32_t add(int port) { return sai_multicast_egress_add(unit, 10, group, router, port, 20); }
  static int32_t remove(int port) { return sai_multicast_egress_del(unit, 10, group, router, port, 20); }
  static int32_t add6(uint8_t port, const uint8_t* source) {
    return sai_ipv6_ipmc_add(unit, 10, 20, port, group6, source, router);
  }
  static int32_t remove6(uint8_t port, const uint8_t* source) {
    return sai_ipv6_multicast_egress_del(unit, 10, group6, source, router, port, 20);
  }
};

bool contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

TEST_F(MulticastOnTheChip, AGroupLivesFromItsFirstMemberToItsLast) {
  EXPECT_EQ(add(3), 0);
  const std::string second = observe([] { return add(9); });
  EXPECT_TRUE(contains(second, "log: debugging: NONE: get ipmc group is 0x")) << second;
  EXPECT_FALSE(contains(second, "bcm_multicast_create")) << second;
  EXPECT_TRUE(second.ends_with("returned 0\n")) << second;

  const std::string left = observe([] { return remove(3); });
  EXPECT_TRUE(left.ends_with("log: debugging: NONE: rv is 0 port_count is 1\nreturned 0\n")) << left;
  const std::string last = observe([] { return remove(9); });
  EXPECT_TRUE(contains(last, "log: debugging: NONE: rv is 0 port_count is 0\n")) << last;
  EXPECT_TRUE(contains(last, "bcm_multicast_destroy(0, ")) << last;
  EXPECT_TRUE(last.ends_with("returned 0\n")) << last;
  EXPECT_TRUE(observe([] { return remove(9); })
                  .ends_with("log: errors: NONE: bcm_ipmc_find ipmc group is not exist: Entry not found\n"
                             "returned -7\n"));
}

TEST_F(MulticastOnTheChip, AMemberThatIsThereIsTheChipsToRefuse) {
  EXPECT_EQ(add(3), 0);
  const std::string again = observe([] { return add(3); });
  EXPECT_TRUE(contains(again, "bcm_multicast_egress_add(0, ")) << again;
  EXPECT_TRUE(again.ends_with("returned -6\n")) << again;
}

TEST_F(MulticastOnTheChip, TheInterfacesOfAGroupOutliveIt) {
  EXPECT_EQ(add(3), 0);
  EXPECT_EQ(sai_multicast_destroy(unit, 10, group), 0);
  for (const bcm_vlan_t vlan : vlans) {
    bcm_l3_intf_t intf;
    bcm_l3_intf_t_init(&intf);
    intf.l3a_vid = vlan;
    EXPECT_EQ(bcm_l3_intf_find_vlan(unit, &intf), BCM_E_NONE) << vlan;
  }
  EXPECT_FALSE(contains(observe([] { return add(3); }), "bcm_l3_intf_create"));
}

TEST_F(MulticastOnTheChip, AMemberWithoutItsOwnInterfaceEndsThoughTheGroupHasOne) {
  const std::string seen = observe_failing(
      "bcm_l3_intf_create", BCM_E_FULL, [] { return add(3); }, 2);
  EXPECT_TRUE(seen.ends_with("log: errors: NONE: bcm_l3_intf_create failed: Table is full\nreturned -13\n")) << seen;
  EXPECT_FALSE(contains(seen, "vlan 10 failed")) << seen;
  EXPECT_FALSE(contains(seen, "encap_get")) << seen;
}

TEST_F(MulticastOnTheChip, JoiningEndsWithoutTheMembersInterface) {
  const std::string seen = observe_failing(
      "bcm_l3_intf_create", BCM_E_FULL, [] { return sai_ipmc_add(unit, 10, 20, 3, group, router); }, 2);
  EXPECT_TRUE(
      seen.ends_with("log: errors: NONE: Error executing bcm_l3_intf_create() : Table is full.\nreturned -13\n"))
      << seen;
  // The interface of the group is there by now.
  const std::string seen6 = observe_failing("bcm_l3_intf_create", BCM_E_FULL, [] { return add6(4, sources[0]); });
  EXPECT_TRUE(
      seen6.ends_with("log: errors: NONE: Error executing bcm_l3_intf_create() : Table is full\nreturned -13\n"))
      << seen6;
}

TEST_F(MulticastOnTheChip, AGroupThatIsJoinedAgainIsFound) {
  EXPECT_EQ(sai_ipmc_add(unit, 10, 20, 3, group, router), 0);
  const std::string seen = observe([] { return sai_ipmc_add(unit, 10, 20, 4, group, router); });
  EXPECT_TRUE(contains(seen, "log: errors: NONE: find group 0x")) << seen;
  EXPECT_TRUE(seen.ends_with("returned 0\n")) << seen;
}

TEST_F(MulticastOnTheChip, AnIpv6GroupIsOfOneSource) {
  EXPECT_EQ(add6(3, sources[0]), 0);
  const std::string other = observe([] { return add6(3, sources[1]); });
  EXPECT_TRUE(contains(other, "bcm_multicast_create(0, ")) << other;
  EXPECT_TRUE(other.ends_with("returned 0\n")) << other;
  EXPECT_TRUE(contains(observe([] { return add6(4, sources[1]); }), "log: debugging: NONE: find group 0x"));

  EXPECT_EQ(sai_ipv6_multicast_destroy(unit, 10, group6, sources[0]), 0);
  EXPECT_EQ(sai_ipv6_multicast_destroy(unit, 10, group6, sources[0]), SAI_E_NOT_FOUND);
  EXPECT_EQ(sai_ipv6_multicast_destroy(unit, 10, group6, sources[1]), 0);
}

TEST_F(MulticastOnTheChip, AnIpv6GroupIsDestroyedWithItsLastMember) {
  for (const uint8_t port : {uint8_t{3}, uint8_t{9}}) ASSERT_EQ(add6(port, sources[0]), 0);
  const std::string left = observe([] { return remove6(3, sources[0]); });
  EXPECT_TRUE(contains(left, "bcm_multicast_egress_delete(0, ")) << left;
  EXPECT_FALSE(contains(left, "bcm_ipmc_remove")) << left;
  EXPECT_FALSE(contains(left, "bcm_multicast_destroy")) << left;
  EXPECT_TRUE(left.ends_with("returned 0\n")) << left;

  const std::string last = observe([] { return remove6(9, sources[0]); });
  EXPECT_TRUE(contains(last, "bcm_ipmc_remove(0, ")) << last;
  EXPECT_TRUE(contains(last, "bcm_multicast_destroy(0, ")) << last;
  EXPECT_TRUE(last.ends_with("returned 0\n")) << last;
  EXPECT_EQ(remove6(9, sources[0]), SAI_E_NOT_FOUND);
}

}  // namespace
