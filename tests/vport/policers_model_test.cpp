#include <bcm/error.h>
#include <bcm/field.h>
#include <bcm/policer.h>
#include <swsdk/fault.h>

#include <string>

#include "support/scene.h"

namespace {

class PolicersOfTheChip : public support::Scene {
 protected:
  PolicersOfTheChip() {
    bcm_policer_init(unit);
    bcm_field_qset_t qset;
    BCM_FIELD_QSET_INIT(qset);
    BCM_FIELD_QSET_ADD(qset, bcmFieldQualifyStageIngress);
    BCM_FIELD_QSET_ADD(qset, bcmFieldQualifyOuterVlan);
    bcm_field_group_t group = 0;
    bcm_field_group_create(unit, qset, 1, &group);
    bcm_field_entry_create(unit, group, &entry);
  }

  int32_t set(uint32_t committed_burst, uint32_t peak_burst) {
    return sai_vport_fp_policer_set(unit, entry, &id, 1000, 2000, committed_burst, peak_burst);
  }

  int32_t get() { return sai_vport_fp_policer_get(unit, entry, &id, &cir, &pir, &cbs, &pbs); }

  bcm_field_entry_t entry = 0;
  int32_t id = -77;
  uint32_t cir = 77;
  uint32_t pir = 77;
  uint32_t cbs = 77;
  uint32_t pbs = 77;
};

TEST_F(PolicersOfTheChip, AreReadBackAsTheyWereSet) {
  ASSERT_EQ(set(1500, 999), 0);
  const int32_t made = id;
  EXPECT_GT(made, 0);
  bcm_policer_config_t config{};
  ASSERT_EQ(bcm_policer_get(unit, made, &config), BCM_E_NONE);
  EXPECT_EQ(config.flags, 0x74U);
  EXPECT_EQ(config.mode, 3);
  EXPECT_EQ(config.ckbits_burst, 8U);
  EXPECT_EQ(config.cbits_burst_lower, 4000U);
  EXPECT_EQ(config.pkbits_burst, 0U);
  EXPECT_EQ(config.pbits_burst_lower, 7992U);

  id = -77;
  ASSERT_EQ(get(), 0);
  EXPECT_EQ(id, made);
  EXPECT_EQ(cir, 1000U);
  EXPECT_EQ(pir, 2000U);
  EXPECT_EQ(cbs, 1500U);
  EXPECT_EQ(pbs, 999U);
}

TEST_F(PolicersOfTheChip, ReadTheLargestBurstsBackAsTheyWereSet) {
  ASSERT_EQ(set(0x20000005, 0xFFFFFFFF), 0);
  ASSERT_EQ(get(), 0);
  EXPECT_EQ(cbs, 0x20000005U);
  EXPECT_EQ(pbs, 0xFFFFFFFFU);
}

TEST_F(PolicersOfTheChip, AreAllTracedByTheirId) {
  const std::string seen = observe([&] { return set(1500, 999); });
  const std::string made = std::to_string(id);
  EXPECT_TRUE(seen.ends_with("log: debugging: NONE: bcm_policer_create policer_id " + made +
                             "\n"
                             "log: debugging: NONE: bcm_policer_set ckbits_sec 1000 cbits_burst 12000 pkbits_sec 2000 "
                             "pbits_burst 7992\n"
                             "log: debugging: NONE: policer " +
                             made + "\nreturned 0\n"));
}

TEST_F(PolicersOfTheChip, StayWhenTheyCannotBeAttached) {
  EXPECT_NE(observe_failing("bcm_field_entry_policer_attach", BCM_E_NOT_FOUND, [&] { return set(1500, 999); })
                .find("log: errors: NONE: bcm_field_entry_policer_attach policer_id 1 entry_id " +
                      std::to_string(entry) + " failed: Entry not found\nreturned -7\n"),
            std::string::npos);
  EXPECT_EQ(id, -77);
  EXPECT_EQ(sai_vport_fp_policer_destroy(unit, 1), 0);
  EXPECT_EQ(sai_vport_fp_policer_destroy(unit, 1), SAI_E_NOT_FOUND);
}

}  // namespace
