#include <bcm/error.h>
#include <bcm/vlan.h>
#include <soc/drv.h>
#include <swsdk/chip.h>
#include <swsdk/fault.h>

#include <string>

#include "support/scene.h"

namespace {

class VportMode : public support::Scene {};

TEST_F(VportMode, TakesAVlanThatExistsAndLogsIt) {
  ASSERT_EQ(bcm_vlan_create(unit, 4095), 0);
  const std::string seen = observe([] { return sai_vlan_vport_init(unit); });
  EXPECT_TRUE(seen.ends_with("log: errors: NONE: system create vlan 4095 failed: Entry already exists.\nreturned 0\n"));
  EXPECT_NE(seen.find("bcm_vlan_port_add(0, 4095, {12}, {}) = 0\nbcm_policer_init(0) = 0\n"), std::string::npos);
}

TEST_F(VportMode, KeysThePortsGportAndEnablesThePort) {
  const std::string seen = observe([] { return sai_vlan_vport_init(unit); });
  EXPECT_NE(seen.find("bcm_port_gport_get(0, 3, &134217731) = 0\n"
                      "bcm_vlan_control_port_set(0, 3, 2, 1) = 0\n"
                      "bcm_vlan_control_port_set(0, 3, 5, 1) = 0\n"
                      "bcm_vlan_control_port_set(0, 134217731, 14, 7) = 0\n"
                      "bcm_vlan_control_port_set(0, 134217731, 15, 8) = 0\n"
                      "bcm_vlan_port_add(0, 4095, {3}, {}) = 0\n"),
            std::string::npos);
}

TEST_F(VportMode, IsOfTheFrontPorts) {
  SOC_PORT_MAX(unit, port) = 3;
  const std::string seen = observe([] { return sai_vlan_vport_init(unit); });
  EXPECT_NE(seen.find("bcm_vlan_port_add(0, 4095, {3}, {}) = 0\nbcm_policer_init(0) = 0\n"), std::string::npos) << seen;
}

TEST_F(VportMode, APortWhoseGportIsUnknownTakesAllOtherStepsWithTheGportThatWasThere) {
  const std::string seen = observe_failing(
      "bcm_port_gport_get", BCM_E_UNAVAIL, [] { return sai_vlan_vport_init(unit); }, 3);
  EXPECT_NE(seen.find("bcm_port_gport_get(0, 3, &?) = -16\n"
                      "bcm_vlan_control_port_set(0, 3, 2, 1) = 0\n"
                      "bcm_vlan_control_port_set(0, 3, 5, 1) = 0\n"
                      "bcm_vlan_control_port_set(0, 134217730, 14, 7) = 0\n"
                      "bcm_vlan_control_port_set(0, 134217730, 15, 8) = 0\n"
                      "bcm_vlan_port_add(0, 4095, {3}, {}) = 0\n"),
            std::string::npos);
  EXPECT_TRUE(seen.ends_with("log: errors: NONE: get unit 0 port 3 failed: Not available on this chip.\nreturned 0\n"));
}

TEST_F(VportMode, ALaterPortHidesTheFailureOfAnEarlierOne) {
  const auto init = [] { return sai_vlan_vport_init(unit); };
  EXPECT_TRUE(
      observe_failing("bcm_vlan_port_add", BCM_E_FULL, init, 11)
          .ends_with("log: errors: NONE: system add port 11 to vlan 4095 failed: Table is full.\nreturned 0\n"));
  ASSERT_EQ(bcm_vlan_destroy(unit, 4095), 0);
  EXPECT_TRUE(
      observe_failing("bcm_vlan_port_add", BCM_E_FULL, init, 12)
          .ends_with("log: errors: NONE: system add port 12 to vlan 4095 failed: Table is full.\nreturned -13\n"));
}

TEST_F(VportMode, EveryRunMakesThreeNewGroupsAndAFailedCreateLeavesItsGroupAsItWas) {
  ASSERT_EQ(sai_vlan_vport_init(unit), 0);
  EXPECT_NE(observe_failing(
                "bcm_multicast_create", BCM_E_FULL, [] { return sai_vlan_vport_init(unit); }, 2)
                .find("bcm_multicast_create(0, 0x400000, 1 -> &4) = 0\n"
                      "bcm_multicast_create(0, 0x400000, 2) = -6\n"
                      "bcm_multicast_create(0, 0x400000, 3 -> &5) = 0\n"),
            std::string::npos);
  EXPECT_NE(observe([] { return sai_vlan_vport_init(unit); })
                .find("bcm_multicast_create(0, 0x400000, 4 -> &6) = 0\n"
                      "bcm_multicast_create(0, 0x400000, 2 -> &7) = 0\n"
                      "bcm_multicast_create(0, 0x400000, 5 -> &8) = 0\n"),
            std::string::npos);
}

TEST_F(VportMode, BeforeStartUpLogsEveryFailureAndReturnsThatOfTheVlan) {
  ASSERT_EQ(sai_vlan_vport_init(unit), 0);  // so that the groups are known
  swsdk_power_off();
  EXPECT_EQ(observe([] { return sai_vlan_vport_init(unit); }),
            "bcm_switch_control_set(0, 230, 1) = -3\n"
            "bcm_multicast_create(0, 0x400000, 1) = -3\n"
            "bcm_multicast_create(0, 0x400000, 2) = -3\n"
            "bcm_multicast_create(0, 0x400000, 3) = -3\n"
            "bcm_vlan_create(0, 4095) = -3\n"
            "bcm_policer_init(0) = -3\n"
            "log: errors: NONE: system set switch control bcmSwitchL3EgressMode failed: No such unit.\n"
            "log: errors: NONE: bcm multicast create failed: No such unit.\n"
            "log: errors: NONE: bcm multicast create failed: No such unit.\n"
            "log: errors: NONE: bcm multicast create failed: No such unit.\n"
            "log: errors: NONE: system create vlan 4095 failed: No such unit.\n"
            "returned -1\n");
}

}  // namespace
