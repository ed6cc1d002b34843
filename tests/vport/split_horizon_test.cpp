#include <bcm/error.h>
#include <bcm/switch.h>
#include <dlfcn.h>
#include <swsdk/fault.h>

#include <string>

#include "support/scene.h"

namespace {

/// Flags that every group has on top of those that the chip knows.
uint32 more_flags = 0;

}  // namespace

/// Takes the place of the chip's, which has no flags but those of split horizon.
extern "C" int bcm_switch_network_group_config_get(int unit, bcm_switch_network_group_t group,
                                                   bcm_switch_network_group_config_t* config) {
  static const auto real = reinterpret_cast<decltype(&bcm_switch_network_group_config_get)>(
      dlsym(RTLD_NEXT, "bcm_switch_network_group_config_get"));
  const int rv = real(unit, group, config);
  config->config_flags |= more_flags;
  return rv;
}

namespace {

/// The chip's groups answer, but tell nothing.
class SplitHorizon : public support::Scene {
 protected:
  SplitHorizon() {
    swsdk_fault_inject("bcm_switch_network_group_config_get", BCM_E_NONE, SWSDK_FAULT_EVERY_CALL);
    swsdk_fault_inject("bcm_switch_network_group_config_set", BCM_E_NONE, SWSDK_FAULT_EVERY_CALL);
  }
  ~SplitHorizon() override { more_flags = 0; }

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

TEST_F(SplitHorizon, LeavesTheGroupsOtherFlags) {
  const auto written = [this](int32_t enable) {
    const std::string seen = observe([=] { return sai_vport_split_horizon_set(unit, 5, enable); });
    return seen.substr(seen.find("bcm_switch_network_group_config_set"));
  };
  more_flags = 0xF00000F8;
  EXPECT_EQ(written(1), "bcm_switch_network_group_config_set(0, 5, {config_flags=0xf00000ff}) = 0\nreturned 0\n");
  more_flags = 0xF00000FF;
  EXPECT_EQ(written(0), "bcm_switch_network_group_config_set(0, 5, {config_flags=0xf00000f8}) = 0\nreturned 0\n");
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
