#include <bcm/error.h>
#include <swsdk/fault.h>

#include <string>

#include "support/scene.h"

namespace {

/// The chip's groups answer, but tell nothing.
class SplitHorizon : public support::Scene {
 protected:
  SplitHorizon() {
    swsdk_fault_inject("bcm_switch_network_group_config_get", BCM_E_NONE, SWSDK_FAULT_EVERY_CALL);
    swsdk_fault_inject("bcm_switch_network_group_config_set", BCM_E_NONE, SWSDK_FAULT_EVERY_CALL);
  }

  /// A chip may show the record that is read as one that it also takes something from.
  static std::string without_marks(std::string seen) {
    std::erase(seen, '&');
    return seen;
  }
};

TEST_F(SplitHorizon, SetsThreeFlagsAndNamesNoDestination) {
  for (const int32_t enable : {1, -1})
    EXPECT_EQ(without_marks(observe([&] { return sai_vport_split_horizon_set(unit, 5, enable); })),
              "bcm_switch_network_group_config_get(0, 5, {}) = 0\n"
              "bcm_switch_network_group_config_set(0, 5, {config_flags=0x7}) = 0\n"
              "returned 0\n");
}

TEST_F(SplitHorizon, ClearsTheFlags) {
  EXPECT_EQ(without_marks(observe([] { return sai_vport_split_horizon_set(unit, 5, 0); })),
            "bcm_switch_network_group_config_get(0, 5, {}) = 0\n"
            "bcm_switch_network_group_config_set(0, 5, {}) = 0\n"
            "returned 0\n");
}

TEST_F(SplitHorizon, WritesNothingWhenItCannotBeRead) {
  const std::string seen = observe_failing("bcm_switch_network_group_config_get", BCM_E_PARAM,
                                           [] { return sai_vport_split_horizon_set(unit, 5, 1); });
  EXPECT_TRUE(seen.ends_with(
      ") = -4\nlog: errors: NONE: Failed to get port [5] vport isolate: Invalid parameter\nreturned -5\n"));
  EXPECT_EQ(seen.find("bcm_switch_network_group_config_set"), std::string::npos);
}

TEST_F(SplitHorizon, TellsWhenItCannotBeWritten) {
  EXPECT_EQ(without_marks(observe_failing("bcm_switch_network_group_config_set", BCM_E_FULL,
                                          [] { return sai_vport_split_horizon_set(unit, 5, 1); })),
            "bcm_switch_network_group_config_get(0, 5, {}) = 0\n"
            "bcm_switch_network_group_config_set(0, 5, {config_flags=0x7}) = -6\n"
            "log: errors: NONE: Failed to set port [5] vport isolate: Table is full\n"
            "returned -13\n");
}

TEST_F(SplitHorizon, IsReadWithTheGroupAsItsOwnDestination) {
  uint32_t enable = 9;
  EXPECT_EQ(without_marks(observe([&] { return sai_vport_split_horizon_get(unit, 5, &enable); })),
            "bcm_switch_network_group_config_get(0, 5, {dest_network_group_id=5}) = 0\n"
            "returned 0\n");
  EXPECT_EQ(enable, 0U);
}

TEST_F(SplitHorizon, LeavesTheOutputAloneWhenItCannotBeRead) {
  uint32_t enable = 9;
  const std::string seen = observe_failing("bcm_switch_network_group_config_get", BCM_E_PARAM,
                                           [&] { return sai_vport_split_horizon_get(unit, 5, &enable); });
  EXPECT_TRUE(seen.ends_with(
      ") = -4\nlog: errors: NONE: Failed to get port [5] vport isolate: Invalid parameter\nreturned -5\n"));
  EXPECT_EQ(seen.find("bcm_switch_network_group_config_set"), std::string::npos);
  EXPECT_EQ(enable, 9U);
}

}  // namespace
