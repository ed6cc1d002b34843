#include <bcm/stg.h>
#include <bcm/vlan.h>

#include "support/one_call.h"

namespace {

class SpanningTreeOfTheChip : public support::OneCall {
 protected:
  SpanningTreeOfTheChip() {
    EXPECT_EQ(sai_stg_init(unit), 0);
    EXPECT_EQ(sai_stg_create(unit, 3), 0);
  }
};

TEST_F(SpanningTreeOfTheChip, StatesComeBackAndNothingElseOfTheRecordIsWritten) {
  ASSERT_EQ(sai_port_stg_stp_set(unit, 3, {.port = 5, .state = BCM_STG_STP_LEARN}), 0);
  sai_port_stg_t query{.stg = 3, .reserved = 66, .port = 5, .state = 77};
  EXPECT_EQ(observe([&] { return sai_port_stg_stp_get(unit, &query); }),
            "bcm_stg_stp_get(0, 3, 5, &3) = 0\nreturned 0\n");
  EXPECT_EQ(query.stg, 3);
  EXPECT_EQ(query.reserved, 66U);
  EXPECT_EQ(query.port, 5);
  EXPECT_EQ(query.state, uint32_t{BCM_STG_STP_LEARN});
}

TEST_F(SpanningTreeOfTheChip, AnUnknownStateIsTheChipsToRefuse) {
  EXPECT_EQ(observe([] { return sai_port_stg_stp_set(unit, 3, {.port = 5, .state = 5}); }),
            "bcm_stg_stp_set(0, 3, 5, 5) = -4\n"
            "log: errors: NONE: Failed to set stg [3] port [5] state (5): Invalid parameter\n"
            "returned -5\n");
}

TEST_F(SpanningTreeOfTheChip, TheDefaultGroupComesBack) {
  ASSERT_EQ(sai_stg_default_set(unit, 3), 0);
  int32_t stg = 0;
  EXPECT_EQ(sai_stg_default_get(unit, &stg), 0);
  EXPECT_EQ(stg, 3);
}

TEST_F(SpanningTreeOfTheChip, CountsItsGroups) {
  int32_t count = 0;
  EXPECT_EQ(observe([&] { return sai_stg_count_get(unit, &count); }), "bcm_stg_count_get(0, &256) = 0\nreturned 0\n");
  EXPECT_EQ(count, 256);
}

TEST_F(SpanningTreeOfTheChip, VlansJoinAndLeave) {
  ASSERT_EQ(sai_vlan_create(unit, 10), 0);
  EXPECT_EQ(sai_stg_vlan_add(unit, 3, 10), 0);
  EXPECT_EQ(sai_stg_vlan_del(unit, 3, 10), 0);
  EXPECT_EQ(sai_stg_vlan_add(unit, 3, 10), 0);
  EXPECT_EQ(sai_stg_vlan_del_all(unit, 3), 0);
  EXPECT_EQ(sai_stg_vlan_del(unit, 3, 10), SAI_E_NOT_FOUND);
}

TEST_F(SpanningTreeOfTheChip, AnIdThatIsTakenIsRefusedUntilItIsGone) {
  EXPECT_EQ(sai_stg_create(unit, 3), SAI_E_EXISTS);
  EXPECT_EQ(sai_stg_destroy(unit, 3), 0);
  EXPECT_EQ(sai_stg_create(unit, 3), 0);
  EXPECT_EQ(sai_stg_clear(unit), 0);
  EXPECT_EQ(sai_stg_create(unit, 3), 0);
}

}  // namespace
