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

}  // namespace
