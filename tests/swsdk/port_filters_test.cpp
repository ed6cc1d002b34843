// What ports keep back: frames of VLANs that they are no members of, and floods.
#include "chip/port_filters.h"

#include <bcm/error.h>
#include <bcm/port.h>

#include <sstream>

#include "support/chip_test.h"

namespace {

class PortFilters : public support::ChipTest {
 protected:
  /// A port's line of the table.
  static std::string line(int port) {
    std::istringstream lines(shown("filter"));
    std::string result;
    for (int i = 0; i <= port; ++i) std::getline(lines, result);
    return result;
  }
};

TEST_F(PortFilters, KeepNothingBackAtFirst) {
  for (const int port : {0, 1, 12}) EXPECT_TRUE(line(port).ends_with("  -                -")) << line(port);
}

TEST_F(PortFilters, CheckMembershipWhereTheyAreTold) {
  EXPECT_EQ(bcm_port_vlan_member_set(0, 0, BCM_PORT_VLAN_MEMBER_EGRESS), BCM_E_NONE);
  EXPECT_EQ(bcm_port_vlan_member_set(0, 1, BCM_PORT_VLAN_MEMBER_INGRESS), BCM_E_NONE);
  EXPECT_EQ(bcm_port_vlan_member_set(0, 12, BCM_PORT_VLAN_MEMBER_INGRESS | BCM_PORT_VLAN_MEMBER_EGRESS), BCM_E_NONE);
  EXPECT_EQ(line(0), "0     egress           -");
  EXPECT_EQ(line(1), "1     ingress          -");
  EXPECT_EQ(line(2), "2     -                -");
  EXPECT_EQ(line(12), "12    ingress,egress   -");
}

TEST_F(PortFilters, TakeTheLastWordOnWhatIsCheckedAndBlocked) {
  bcm_port_vlan_member_set(0, 1, BCM_PORT_VLAN_MEMBER_INGRESS);
  bcm_port_flood_block_set(0, 1, 0, BCM_PORT_FLOOD_BLOCK_BCAST);
  EXPECT_EQ(bcm_port_vlan_member_set(0, 1, BCM_PORT_VLAN_MEMBER_EGRESS), BCM_E_NONE);
  EXPECT_EQ(bcm_port_flood_block_set(0, 1, 0, BCM_PORT_FLOOD_BLOCK_UNKNOWN_MCAST), BCM_E_NONE);
  EXPECT_EQ(line(1), "1     egress           unknown multicast");
  EXPECT_EQ(bcm_port_vlan_member_set(0, 1, 0), BCM_E_NONE);
  EXPECT_EQ(bcm_port_flood_block_set(0, 1, 0, 0), BCM_E_NONE);
  EXPECT_TRUE(line(1).ends_with("  -                -")) << line(1);
}

TEST_F(PortFilters, BlockFloodsFromOnePortToOneOther) {
  EXPECT_EQ(bcm_port_flood_block_set(0, 1, 0, 7), BCM_E_NONE);
  EXPECT_EQ(bcm_port_flood_block_set(0, 2, 3, 7), BCM_E_NONE);
  EXPECT_EQ(line(1), "1     -                broadcast,unknown unicast,unknown multicast");
  EXPECT_EQ(line(2), "2     -                -");
}

TEST_F(PortFilters, RefusePortsThatTheChipDoesNotHave) {
  for (const int port : {-1, 13, 256}) {
    EXPECT_EQ(bcm_port_vlan_member_set(0, port, 0), BCM_E_PORT) << port;
    EXPECT_EQ(bcm_port_flood_block_set(0, port, 1, 0), BCM_E_PORT) << port;
    EXPECT_EQ(bcm_port_flood_block_set(0, 1, port, 0), BCM_E_PORT) << port;
  }
}

TEST_F(PortFilters, RefuseFlagsThatTheChipDoesNotHaveWhole) {
  bcm_port_vlan_member_set(0, 1, BCM_PORT_VLAN_MEMBER_INGRESS);
  bcm_port_flood_block_set(0, 1, 0, BCM_PORT_FLOOD_BLOCK_BCAST);
  EXPECT_EQ(bcm_port_vlan_member_set(0, 1, 0x4 | BCM_PORT_VLAN_MEMBER_EGRESS), BCM_E_PARAM);
  EXPECT_EQ(bcm_port_flood_block_set(0, 1, 0, 0x8 | BCM_PORT_FLOOD_BLOCK_UNKNOWN_UCAST), BCM_E_PARAM);
  EXPECT_EQ(line(1), "1     ingress          broadcast");
}

TEST(PortFiltersOfAChip, AreKeptByBothPortsAndForgottenByAReset) {
  const chip::Ports ports(12);
  chip::PortFilters filters(ports);
  EXPECT_EQ(filters.block_floods(2, 3, chip::PortFilters::broadcast), chip::Status::ok);
  EXPECT_EQ(filters.set_membership_checks(2, chip::PortFilters::check_egress), chip::Status::ok);
  EXPECT_EQ(filters.blocked_floods(2, 3), chip::PortFilters::broadcast);
  EXPECT_EQ(filters.blocked_floods(3, 2), 0U);
  EXPECT_EQ(filters.blocked_floods(2, 0), 0U);
  EXPECT_EQ(filters.membership_checks(2), chip::PortFilters::check_egress);
  EXPECT_EQ(filters.membership_checks(3), 0U);
  filters.reset();
  EXPECT_EQ(filters.blocked_floods(2, 3), 0U);
  EXPECT_EQ(filters.membership_checks(2), 0U);
}

}  // namespace
