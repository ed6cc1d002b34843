// Why a question has no answer, and that what the caller holds stays as it is then.
#include <bcm/error.h>
#include <bcm/field.h>
#include <bcm/ipmc.h>
#include <bcm/l2.h>
#include <bcm/port.h>
#include <bcm/stg.h>
#include <bcm/switch.h>
#include <bcm/vlan.h>

#include <cstring>

#include "support/chip_test.h"

namespace {

class Absent : public support::ChipTest {
 protected:
  static constexpr int no_port = 13;
};

TEST_F(Absent, AddressesAndVlansAreNotFoundOrCannotBe) {
  uint8 address[6] = {2, 0, 0, 0, 0, 1};
  bcm_l2_addr_t entry;
  std::memset(&entry, 0xA5, sizeof entry);
  const bcm_l2_addr_t before = entry;
  EXPECT_EQ(bcm_l2_addr_get(0, address, 10, &entry), BCM_E_NOT_FOUND);
  for (const bcm_vlan_t none : std::initializer_list<bcm_vlan_t>{0, 4096})
    EXPECT_EQ(bcm_l2_addr_get(0, address, none, &entry), BCM_E_PARAM) << none;
  EXPECT_EQ(std::memcmp(&entry, &before, sizeof entry), 0);

  bcm_vlan_control_vlan_t control;
  EXPECT_EQ(bcm_vlan_control_vlan_get(0, 10, &control), BCM_E_NOT_FOUND);
  for (const bcm_vlan_t none : std::initializer_list<bcm_vlan_t>{0, 4096})
    EXPECT_EQ(bcm_vlan_control_vlan_get(0, none, &control), BCM_E_PARAM) << none;
}

TEST_F(Absent, StatesAreOfGroupsAndPortsThatThereAre) {
  int state = 77;
  EXPECT_EQ(bcm_stg_stp_get(0, 2, 1, &state), BCM_E_NOT_FOUND);
  for (const int none : {-1, 0, 257}) EXPECT_EQ(bcm_stg_stp_get(0, none, 1, &state), BCM_E_PARAM) << none;
  EXPECT_EQ(bcm_stg_stp_get(0, 1, no_port, &state), BCM_E_PORT);
  EXPECT_EQ(bcm_stg_stp_get(0, 2, no_port, &state), BCM_E_NOT_FOUND) << "the group comes first";
  EXPECT_EQ(state, 77);
}

TEST_F(Absent, SettingsAreOfPortsThatThereAre) {
  uint32 flags = 77;
  EXPECT_EQ(bcm_port_learn_get(0, no_port, &flags), BCM_E_PORT);
  EXPECT_EQ(flags, 77U);
  bcm_vlan_t vid = 77;
  EXPECT_EQ(bcm_port_untagged_vlan_get(0, no_port, &vid), BCM_E_PORT);
  EXPECT_EQ(vid, 77);
  bcm_pbmp_t ports;
  EXPECT_EQ(bcm_port_egress_get(0, no_port, 0, &ports), BCM_E_PORT);
  int gap = 77;
  EXPECT_EQ(bcm_port_ifg_get(0, no_port, 1000, BCM_PORT_DUPLEX_FULL, &gap), BCM_E_PORT);
  EXPECT_EQ(gap, 77);
}

TEST_F(Absent, ControlsAreThoseThatThereAre) {
  int value = 77;
  EXPECT_EQ(bcm_switch_control_get(0, static_cast<bcm_switch_control_t>(21), &value), BCM_E_UNAVAIL);
  EXPECT_EQ(value, 77);
  uint32 of_phy = 77;
  const auto control = static_cast<bcm_port_phy_control_t>(74);
  EXPECT_EQ(bcm_port_phy_control_get(0, 1, static_cast<bcm_port_phy_control_t>(75), &of_phy), BCM_E_UNAVAIL);
  for (const int none : {0, no_port})
    EXPECT_EQ(bcm_port_phy_control_get(0, none, control, &of_phy), BCM_E_PORT) << none;
  EXPECT_EQ(of_phy, 77U);
}

TEST_F(Absent, PolicersAreAtTheLevelsOfEntriesThatThereAre) {
  bcm_field_qset_t qualifiers;
  BCM_FIELD_QSET_INIT(qualifiers);
  BCM_FIELD_QSET_ADD(qualifiers, bcmFieldQualifyStageIngress);
  int group = 0;
  int entry = 0;
  ASSERT_EQ(bcm_field_group_create(0, qualifiers, 0, &group), BCM_E_NONE);
  ASSERT_EQ(bcm_field_entry_create(0, group, &entry), BCM_E_NONE);
  int policer = 77;
  for (const int none : {-1, 2}) EXPECT_EQ(bcm_field_entry_policer_get(0, entry, none, &policer), BCM_E_PARAM) << none;
  EXPECT_EQ(bcm_field_entry_policer_get(0, entry, 0, &policer), BCM_E_NOT_FOUND);
  EXPECT_EQ(bcm_field_entry_policer_get(0, entry + 1, 2, &policer), BCM_E_NOT_FOUND) << "the entry comes first";
  EXPECT_EQ(policer, 77);
}

TEST_F(Absent, RoutesAreToGroupsOfStations) {
  bcm_ipmc_addr_t route;
  bcm_ipmc_addr_t_init(&route);
  route.vid = 10;
  route.mc_ip_addr = 0x0A000001;
  EXPECT_EQ(bcm_ipmc_find(0, &route), BCM_E_PARAM);
  route.mc_ip_addr = 0xEF010203;
  EXPECT_EQ(bcm_ipmc_find(0, &route), BCM_E_NOT_FOUND);
  route.vid = 4096;
  EXPECT_EQ(bcm_ipmc_find(0, &route), BCM_E_PARAM);
}

TEST_F(Absent, LearnLimitsAreOfPlacesThatThereAre) {
  bcm_l2_learn_limit_t limit;
  bcm_l2_learn_limit_t_init(&limit);
  limit.flags = BCM_L2_LEARN_LIMIT_PORT;
  limit.port = no_port;
  EXPECT_EQ(bcm_l2_learn_limit_get(0, &limit), BCM_E_PORT);
  limit.flags = BCM_L2_LEARN_LIMIT_TRUNK;
  limit.trunk = 1;
  EXPECT_EQ(bcm_l2_learn_limit_get(0, &limit), BCM_E_NOT_FOUND);
  limit.trunk = 128;
  EXPECT_EQ(bcm_l2_learn_limit_get(0, &limit), BCM_E_PARAM);
}

}  // namespace
