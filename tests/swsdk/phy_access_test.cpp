// The calls that reach PHYs: on the management bus, by port, and their controls.
#include <bcm/error.h>
#include <bcm/port.h>
#include <gtest/gtest.h>
#include <soc/cmic.h>
#include <swsdk/chip.h>

#include "support/start.h"

namespace {

class PhyAccess : public testing::Test {
 protected:
  PhyAccess() { support::start_chip(); }
  ~PhyAccess() override { swsdk_power_off(); }

  static uint32 by_port(uint32 address, bcm_port_t port = 1) {
    uint32 data = 0;
    EXPECT_EQ(bcm_port_phy_get(0, port, 0, address, &data), BCM_E_NONE);
    return data;
  }
};

TEST_F(PhyAccess, KeepsTheClausesApart) {
  uint16 data = 0;
  EXPECT_EQ(soc_miim_write(0, 1, 4, 0x1234), BCM_E_NONE);
  EXPECT_EQ(soc_miimc45_write(0, 1, 3, 4, 0x5678), BCM_E_NONE);
  EXPECT_EQ(soc_miim_read(0, 1, 4, &data), BCM_E_NONE);
  EXPECT_EQ(data, 0x1234);
  EXPECT_EQ(soc_miimc45_read(0, 1, 3, 4, &data), BCM_E_NONE);
  EXPECT_EQ(data, 0x5678);
}

TEST_F(PhyAccess, RefusesWhatIsNotOnTheBus) {
  uint16 data = 0;
  EXPECT_EQ(soc_miim_read(0, 1, 32, &data), BCM_E_PARAM);
  EXPECT_EQ(soc_miim_write(0, 256, 0, 1), BCM_E_PARAM);
  EXPECT_EQ(soc_miimc45_read(0, 1, 32, 0, &data), BCM_E_PARAM);
  EXPECT_EQ(soc_miimc45_write(0, 1, 32, 0, 1), BCM_E_PARAM);
  EXPECT_EQ(soc_miim_read(0, 1, 0, nullptr), BCM_E_PARAM);
}

TEST_F(PhyAccess, ByPortReachesThePhyWithThePortsNumber) {
  soc_miim_write(0, 1, 4, 0x1234);
  soc_miimc45_write(0, 1, 3, 4, 0x5678);
  EXPECT_EQ(by_port(4), 0x1234U);
  EXPECT_EQ(by_port(0x30004), 0x5678U);
  EXPECT_EQ(by_port(4, 2), 0U);
  EXPECT_EQ(bcm_port_phy_set(0, 2, 0, 31, 0xFFFF), BCM_E_NONE);
  EXPECT_EQ(by_port(31, 2), 0xFFFFU);
}

TEST_F(PhyAccess, ByPortRefusesOtherPortsRegistersAndSpaces) {
  uint32 data = 0;
  for (const int port : {-1, 0, 13}) EXPECT_EQ(bcm_port_phy_get(0, port, 0, 0, &data), BCM_E_PORT) << port;
  EXPECT_EQ(bcm_port_phy_get(0, 1, 0, 32, &data), BCM_E_PARAM);
  EXPECT_EQ(bcm_port_phy_get(0, 1, 0, 0x200000, &data), BCM_E_PARAM);
  EXPECT_EQ(bcm_port_phy_set(0, 1, 0, 0, 0x10000), BCM_E_PARAM);
  EXPECT_EQ(bcm_port_phy_get(0, 1, 1, 0, &data), BCM_E_UNAVAIL);
  EXPECT_EQ(bcm_port_phy_set(0, 1, 1, 0, 0), BCM_E_UNAVAIL);
}

TEST_F(PhyAccess, HasControls) {
  uint32 value = 99;
  EXPECT_EQ(bcm_port_phy_control_get(0, 1, BCM_PORT_PHY_CONTROL_TX_FIR_MAIN, &value), BCM_E_NONE);
  EXPECT_EQ(value, 0U);
  EXPECT_EQ(bcm_port_phy_control_set(0, 1, BCM_PORT_PHY_CONTROL_TX_FIR_MAIN, 60), BCM_E_NONE);
  EXPECT_EQ(bcm_port_phy_control_get(0, 1, BCM_PORT_PHY_CONTROL_TX_FIR_MAIN, &value), BCM_E_NONE);
  EXPECT_EQ(value, 60U);
  EXPECT_EQ(bcm_port_phy_control_set(0, 1, static_cast<bcm_port_phy_control_t>(1), 60), BCM_E_UNAVAIL);
  EXPECT_EQ(bcm_port_phy_control_set(0, 0, BCM_PORT_PHY_CONTROL_TX_FIR_MAIN, 60), BCM_E_PORT);
}

}  // namespace
