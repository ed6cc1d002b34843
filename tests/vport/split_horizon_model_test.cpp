#include <bcm/error.h>
#include <bcm/switch.h>

#include <array>

#include "support/scene.h"

namespace {

class SplitHorizonOfTheChip : public support::Scene {};

TEST_F(SplitHorizonOfTheChip, IsReadAsItWasSet) {
  uint32_t enable = 9;
  for (const uint32_t wanted : {1U, 0U, 1U}) {
    ASSERT_EQ(sai_vport_split_horizon_set(unit, 5, static_cast<int32_t>(wanted)), 0);
    ASSERT_EQ(sai_vport_split_horizon_get(unit, 5, &enable), 0);
    EXPECT_EQ(enable, wanted);
  }
  ASSERT_EQ(sai_vport_split_horizon_get(unit, 6, &enable), 0);
  EXPECT_EQ(enable, 0U);
}

TEST_F(SplitHorizonOfTheChip, IsReadOfTheFlagThatPrunesAtEgressAlone) {
  const struct {
    uint32 flags;
    uint32_t enable;
  } rows[] = {{0x1, 0}, {0x2, 0}, {0x3, 0}, {0x4, 1}, {0x7, 1}};
  for (const auto& row : rows) {
    bcm_switch_network_group_config_t config;
    bcm_switch_network_group_config_t_init(&config);
    config.config_flags = row.flags;
    ASSERT_EQ(bcm_switch_network_group_config_set(unit, 5, &config), BCM_E_NONE);
    uint32_t enable = 9;
    EXPECT_EQ(sai_vport_split_horizon_get(unit, 5, &enable), 0);
    EXPECT_EQ(enable, row.enable) << row.flags;
  }
}

TEST_F(SplitHorizonOfTheChip, IsSetAndClearedWhateverFlagsThereAre) {
  bcm_switch_network_group_config_t config;
  bcm_switch_network_group_config_t_init(&config);
  for (const auto& [before, enable, after] : {std::array<uint32, 3>{0x2, 1, 0x7}, {0x5, 0, 0x0}}) {
    config.config_flags = before;
    ASSERT_EQ(bcm_switch_network_group_config_set(unit, 5, &config), BCM_E_NONE);
    ASSERT_EQ(sai_vport_split_horizon_set(unit, 5, static_cast<int32_t>(enable)), 0);
    ASSERT_EQ(bcm_switch_network_group_config_get(unit, 5, &config), BCM_E_NONE);
    EXPECT_EQ(config.config_flags, after);
  }
}

}  // namespace
