#include <bcm/error.h>
#include <bcm/vlan.h>

#include <string>

#include "support/scene.h"

namespace {

class VlanTranslation : public support::Scene {};

TEST_F(VlanTranslation, InitTurnsTranslationOn) {
  EXPECT_EQ(observe([] { return sai_port_vlan_translate_init(unit); }),
            "bcm_vlan_control_set(0, 5, 1) = 0\nreturned 0\n");
  EXPECT_EQ(observe_failing("bcm_vlan_control_set", BCM_E_INTERNAL, [] { return sai_port_vlan_translate_init(unit); }),
            "bcm_vlan_control_set(0, 5, 1) = -1\n"
            "log: errors: NONE: Failed to set unit 0 vlan translate mode failed: Internal error\n"
            "returned -1\n");
}

TEST_F(VlanTranslation, AddMakesARuleInEachDirection) {
  EXPECT_EQ(observe([] { return sai_vlan_translate_add(unit, 3, 10, 5, 20, 6); }),
            "bcm_vlan_translate_add(0, 3, 10, 20, 6) = 0\n"
            "bcm_vlan_translate_egress_add(0, 3, 20, 10, 5) = 0\n"
            "returned 0\n");
}

TEST_F(VlanTranslation, AddCutsItsIdsToSixteenBits) {
  EXPECT_TRUE(observe([] { return sai_vlan_translate_add(unit, 3, 0x1000A, 5, 0x70014, 6); })
                  .starts_with("bcm_vlan_translate_add(0, 3, 10, 20, 6) = 0\n"
                               "bcm_vlan_translate_egress_add(0, 3, 20, 10, 5) = 0\n"));
}

TEST_F(VlanTranslation, AddThatFailsOnIngressTriesNoEgress) {
  EXPECT_EQ(observe_failing("bcm_vlan_translate_add", BCM_E_FULL,
                            [] { return sai_vlan_translate_add(unit, 3, 10, 5, 20, 6); }),
            "bcm_vlan_translate_add(0, 3, 10, 20, 6) = -6\n"
            "log: errors: NONE: Failed to set port [3] translate[10 -> 20]: Table is full\n"
            "returned -13\n");
}

TEST_F(VlanTranslation, AddThatFailsOnEgressLeavesTheIngressRuleAndNamesThePairReversed) {
  EXPECT_EQ(observe_failing("bcm_vlan_translate_egress_add", BCM_E_FULL,
                            [] { return sai_vlan_translate_add(unit, 3, 10, 5, 20, 6); }),
            "bcm_vlan_translate_add(0, 3, 10, 20, 6) = 0\n"
            "bcm_vlan_translate_egress_add(0, 3, 20, 10, 5) = -6\n"
            "log: errors: NONE: Failed to set port [3] translate[20 -> 10]: Table is full\n"
            "returned -13\n");
  bcm_vlan_t to = 0;
  int priority = 0;
  EXPECT_EQ(bcm_vlan_translate_get(unit, 3, 10, &to, &priority), BCM_E_NONE);
  EXPECT_EQ(to, 20);
}

TEST_F(VlanTranslation, DeleteRemovesBothRulesOfThePair) {
  ASSERT_EQ(sai_vlan_translate_add(unit, 3, 10, 5, 20, 6), 0);
  EXPECT_EQ(observe([] { return sai_vlan_translate_delete(unit, 3, 10, 20); }),
            "bcm_vlan_translate_get(0, 3, 10, &20, &6) = 0\n"
            "bcm_vlan_translate_delete(0, 3, 10) = 0\n"
            "bcm_vlan_translate_egress_get(0, 3, 20, &10, &5) = 0\n"
            "bcm_vlan_translate_egress_delete(0, 3, 20) = 0\n"
            "returned 0\n");
}

TEST_F(VlanTranslation, DeleteOfAnotherPairLeavesTheIngressRuleAndLooksAtEgress) {
  ASSERT_EQ(sai_vlan_translate_add(unit, 3, 10, 5, 20, 6), 0);
  ASSERT_EQ(sai_vlan_translate_add(unit, 3, 11, 5, 21, 6), 0);
  EXPECT_EQ(observe([] { return sai_vlan_translate_delete(unit, 3, 10, 21); }),
            "bcm_vlan_translate_get(0, 3, 10, &20, &6) = 0\n"
            "bcm_vlan_translate_egress_get(0, 3, 21, &11, &5) = 0\n"
            "returned 0\n");
  EXPECT_EQ(observe([] { return sai_vlan_translate_delete(unit, 3, 10, 22); }),
            "bcm_vlan_translate_get(0, 3, 10, &20, &6) = 0\n"
            "bcm_vlan_translate_egress_get(0, 3, 22, &?, &?) = -7\n"
            "log: errors: NONE: Failed to get port [3] translate vlan 22: Entry not found\n"
            "returned -7\n");
}

TEST_F(VlanTranslation, DeleteOfAnAbsentIngressRuleLeavesEgressAlone) {
  ASSERT_EQ(bcm_vlan_translate_egress_add(unit, 3, 20, 10, 5), 0);
  EXPECT_EQ(observe([] { return sai_vlan_translate_delete(unit, 3, 10, 20); }),
            "bcm_vlan_translate_get(0, 3, 10, &?, &?) = -7\n"
            "log: errors: NONE: Failed to get port [3] translate vlan 10: Entry not found\n"
            "returned -7\n");
  EXPECT_EQ(bcm_vlan_translate_egress_delete(unit, 3, 20), BCM_E_NONE);
}

TEST_F(VlanTranslation, DeleteThatFailsStopsThereAndNamesItsVlan) {
  ASSERT_EQ(sai_vlan_translate_add(unit, 3, 10, 5, 20, 6), 0);
  EXPECT_EQ(observe_failing("bcm_vlan_translate_delete", BCM_E_BUSY,
                            [] { return sai_vlan_translate_delete(unit, 3, 10, 20); }),
            "bcm_vlan_translate_get(0, 3, 10, &20, &6) = 0\n"
            "bcm_vlan_translate_delete(0, 3, 10) = -10\n"
            "log: errors: NONE: Failed to delete port [3] translate vlan 10: Hardware is busy\n"
            "returned -1\n");
  EXPECT_EQ(observe_failing("bcm_vlan_translate_egress_delete", BCM_E_FULL,
                            [] { return sai_vlan_translate_delete(unit, 3, 10, 20); }),
            "bcm_vlan_translate_get(0, 3, 10, &20, &6) = 0\n"
            "bcm_vlan_translate_delete(0, 3, 10) = 0\n"
            "bcm_vlan_translate_egress_get(0, 3, 20, &10, &5) = 0\n"
            "bcm_vlan_translate_egress_delete(0, 3, 20) = -6\n"
            "log: errors: NONE: Failed to delete port [3] translate vlan 20: Table is full\n"
            "returned -13\n");
}

const std::string add_action =
    "{new_outer_vlan=30, priority=5, dt_outer=2, dt_outer_prio=2, dt_outer_pkt_prio=2, dt_outer_cfi=2, dt_inner=3, "
    "ot_outer=2}";

TEST_F(VlanTranslation, DtagAddPutsAnOuterTagOnAndTakesItOffAgain) {
  EXPECT_EQ(observe([] { return sai_vlan_dtag_add(unit, 3, 0x1001E, 5, 0x10028, 6); }),
            "bcm_vlan_dtag_add(0, 3, 30, 40, 6) = 0\n"
            "bcm_vlan_translate_egress_action_add(0, 3, 40, 30, " +
                add_action +
                ") = 0\n"
                "returned 0\n");
}

TEST_F(VlanTranslation, DtagAddThatFails) {
  EXPECT_EQ(observe_failing("bcm_vlan_dtag_add", BCM_E_FULL, [] { return sai_vlan_dtag_add(unit, 3, 30, 5, 40, 6); }),
            "bcm_vlan_dtag_add(0, 3, 30, 40, 6) = -6\n"
            "log: errors: NONE: Failed to add port [3] vlan dtag[30:40] : Table is full\n"
            "returned -13\n");
  EXPECT_EQ(observe_failing("bcm_vlan_translate_egress_action_add", BCM_E_PARAM,
                            [] { return sai_vlan_dtag_add(unit, 3, 30, 5, 40, 6); }),
            "bcm_vlan_dtag_add(0, 3, 30, 40, 6) = 0\n"
            "bcm_vlan_translate_egress_action_add(0, 3, 40, 30, " +
                add_action +
                ") = -4\n"
                "log: errors: NONE: Failed to add port [3] translate[40:30]: Invalid parameter\n"
                "returned -5\n");
  EXPECT_EQ(bcm_vlan_dtag_delete(unit, 3, 30), BCM_E_NONE);
}

TEST_F(VlanTranslation, DtagDeleteRemovesTheRuleAndThenTheAction) {
  ASSERT_EQ(sai_vlan_dtag_add(unit, 3, 30, 5, 40, 6), 0);
  EXPECT_EQ(observe([] { return sai_vlan_dtag_delete(unit, 3, 30, 40); }),
            "bcm_vlan_dtag_delete(0, 3, 30) = 0\n"
            "bcm_vlan_translate_egress_action_delete(0, 3, 40, 30) = 0\n"
            "returned 0\n");
}

TEST_F(VlanTranslation, DtagDeleteThatFails) {
  EXPECT_EQ(observe([] { return sai_vlan_dtag_delete(unit, 3, 30, 40); }),
            "bcm_vlan_dtag_delete(0, 3, 30) = -7\n"
            "log: errors: NONE: Failed to delete port [3] dtag[30:40]: Entry not found\n"
            "returned -7\n");
  ASSERT_EQ(bcm_vlan_dtag_add(unit, 3, 30, 40, 6), 0);
  EXPECT_EQ(observe([] { return sai_vlan_dtag_delete(unit, 3, 30, 40); }),
            "bcm_vlan_dtag_delete(0, 3, 30) = 0\n"
            "bcm_vlan_translate_egress_action_delete(0, 3, 40, 30) = -7\n"
            "log: errors: NONE: Failed to delete port [3] translate[40:30]: Entry not found\n"
            "returned -7\n");
}

TEST_F(VlanTranslation, DtagRangeAddIsTheSameWhateverItsFifthArgument) {
  for (const int32_t ignored : {0, 7, -1, INT32_MAX}) {
    EXPECT_EQ(observe([=] { return sai_vlan_dtag_range_add(unit, 3, 100, 199, ignored, 40, 6); }),
              "bcm_vlan_dtag_range_add(0, 3, 100, 199, 40, 6) = 0\n"
              "bcm_vlan_translate_egress_action_add(0, 3, 40, 0, {dt_outer=3}) = 0\n"
              "returned 0\n");
    ASSERT_EQ(sai_vlan_dtag_range_delete(unit, 3, 100, 199, 40), 0);
  }
}

TEST_F(VlanTranslation, DtagRangeAddThatFails) {
  const auto add = [] { return sai_vlan_dtag_range_add(unit, 3, 100, 199, 0, 40, 6); };
  EXPECT_EQ(observe_failing("bcm_vlan_dtag_range_add", BCM_E_FULL, add),
            "bcm_vlan_dtag_range_add(0, 3, 100, 199, 40, 6) = -6\n"
            "log: errors: NONE: Failed to add port [3] dtag tage[100-199:40]: Table is full\n"
            "returned -13\n");
  EXPECT_EQ(observe_failing("bcm_vlan_translate_egress_action_add", BCM_E_FULL, add),
            "bcm_vlan_dtag_range_add(0, 3, 100, 199, 40, 6) = 0\n"
            "bcm_vlan_translate_egress_action_add(0, 3, 40, 0, {dt_outer=3}) = -6\n"
            "log: errors: NONE: Failed to add port [3] translate[100-199:40]: Table is full\n"
            "returned -13\n");
}

TEST_F(VlanTranslation, DtagRangeDelete) {
  ASSERT_EQ(sai_vlan_dtag_range_add(unit, 3, 100, 199, 0, 40, 6), 0);
  EXPECT_EQ(observe([] { return sai_vlan_dtag_range_delete(unit, 3, 100, 198, 40); }),
            "bcm_vlan_dtag_range_delete(0, 3, 100, 198) = -7\n"
            "log: errors: NONE: Failed to delete port [3] dtag range[100-198:40]: Entry not found\n"
            "returned -7\n");
  EXPECT_EQ(observe_failing("bcm_vlan_translate_egress_action_delete", BCM_E_TIMEOUT,
                            [] { return sai_vlan_dtag_range_delete(unit, 3, 100, 199, 40); }),
            "bcm_vlan_dtag_range_delete(0, 3, 100, 199) = 0\n"
            "bcm_vlan_translate_egress_action_delete(0, 3, 40, 0) = -9\n"
            "log: errors: NONE: Failed to delete port [3] translate range[100-199:40]: Operation took too long\n"
            "returned -1\n");
}

}  // namespace
