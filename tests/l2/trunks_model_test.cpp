#include <bcm/stack.h>
#include <bcm/trunk.h>

#include <string>

#include "support/one_call.h"

namespace {

class TrunksOfTheChip : public support::OneCall {
 protected:
  TrunksOfTheChip() { EXPECT_EQ(sai_trunk_init(unit), 0); }
};

TEST_F(TrunksOfTheChip, CreateTellsTheIdMade) {
  int32_t tid = 4;
  EXPECT_EQ(observe([&] { return sai_trunk_create(unit, BCM_TRUNK_FLAG_WITH_ID, &tid); }),
            "bcm_trunk_create(0, 0x10, 4) = 0\nreturned 0\n");
  EXPECT_EQ(tid, 4);
  EXPECT_EQ(observe([&] { return sai_trunk_create(unit, BCM_TRUNK_FLAG_WITH_ID, &tid); }),
            "bcm_trunk_create(0, 0x10, 4) = -8\n"
            "log: errors: NONE: Failed to create trunk 4: Entry already exists\n"
            "returned -6\n");
  EXPECT_EQ(sai_trunk_create(unit, 0, &tid), 0);
  EXPECT_NE(tid, 4) << "the chip chose";
  EXPECT_EQ(sai_trunk_destroy(unit, tid), 0);
}

TEST_F(TrunksOfTheChip, MembersAreTheGportsOfTheirPorts) {
  int32_t tid = 4;
  ASSERT_EQ(sai_trunk_create(unit, BCM_TRUNK_FLAG_WITH_ID, &tid), 0);
  EXPECT_EQ(observe([] { return sai_trunk_set(unit, 4, 9, 0x5, 2); }),
            "bcm_stk_my_modid_get(0, &0) = 0\n"
            "bcm_stk_modmap_map(0, 2, 0, 1, &0, &1) = 0\n"
            "bcm_stk_modmap_map(0, 2, 0, 3, &0, &3) = 0\n"
            "bcm_trunk_set(0, 4, {psc=1}, 2, [{gport=134217729}, {gport=134217731}]) = 0\n"
            "returned 0\n");
}

TEST_F(TrunksOfTheChip, APortThatCannotBeMappedEndsTheWorkWhereverItStands) {
  int32_t tid = 4;
  ASSERT_EQ(sai_trunk_create(unit, BCM_TRUNK_FLAG_WITH_ID, &tid), 0);
  EXPECT_EQ(observe_failing(
                "bcm_stk_modmap_map", BCM_E_FAIL, [] { return sai_trunk_set(unit, 4, 9, 0x7, 3); }, 2),
            "bcm_stk_my_modid_get(0, &0) = 0\n"
            "bcm_stk_modmap_map(0, 2, 0, 1, &0, &1) = 0\n"
            "bcm_stk_modmap_map(0, 2, 0, 2, &?, &?) = -11\n"
            "log: errors: NONE: Failed to set module identifier: Hardware reported a failure\n"
            "returned -1\n");
}

}  // namespace
