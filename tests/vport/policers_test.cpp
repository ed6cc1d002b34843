#include <bcm/error.h>
#include <swsdk/fault.h>

#include <string>

#include "support/scene.h"

namespace {

/// The chip's policers answer, but tell nothing: a new one keeps the id -1.
class Policers : public support::Scene {
 protected:
  Policers() { all_well(); }

  static void all_well() {
    for (const char* const function :
         {"bcm_policer_create", "bcm_policer_get", "bcm_policer_set", "bcm_policer_destroy",
          "bcm_field_entry_policer_attach", "bcm_field_entry_policer_get"})
      swsdk_fault_inject(function, BCM_E_NONE, SWSDK_FAULT_EVERY_CALL);
  }

  int32_t set() { return sai_vport_fp_policer_set(unit, 17, &id, 1000, 2000, 1500, 999); }
  int32_t get() { return sai_vport_fp_policer_get(unit, 17, &id, &cir, &pir, &cbs, &pbs); }

  int32_t id = 77;
  uint32_t cir = 77;
  uint32_t pir = 77;
  uint32_t cbs = 77;
  uint32_t pbs = 77;
};

const std::string create_call = "bcm_policer_create(0, {}, &-1) = 0\n";
const std::string read_call = "bcm_policer_get(0, -1, &{}) = 0\n";
const std::string set_arguments =
    "(0, -1, {flags=0x74, mode=3, ckbits_sec=1000, ckbits_burst=8, cbits_burst_lower=4000, pkbits_sec=2000, "
    "pbits_burst_lower=7992}) = ";
const std::string create_trace = "log: debugging: NONE: bcm_policer_create policer_id -1\n";
const std::string set_trace =
    "log: debugging: NONE: bcm_policer_set ckbits_sec 1000 cbits_burst 12000 pkbits_sec 2000 pbits_burst 7992\n";

TEST_F(Policers, AreMadeReadSetUpAndAttached) {
  EXPECT_EQ(observe([&] { return set(); }), create_call + read_call + "bcm_policer_set" + set_arguments +
                                                "0\n"
                                                "bcm_field_entry_policer_attach(0, 17, 0, -1) = 0\n" +
                                                create_trace + set_trace +
                                                "log: debugging: NONE: policer -1\n"
                                                "returned 0\n");
  EXPECT_EQ(id, -1);
}

TEST_F(Policers, EndAtTheStepThatFailsAndTellNoId) {
  EXPECT_EQ(observe_failing("bcm_policer_create", BCM_E_FULL, [&] { return set(); }),
            "bcm_policer_create(0, {}, &?) = -6\n"
            "log: errors: NONE: bcm_policer_create failed: Table is full\n"
            "returned -13\n");
  all_well();
  EXPECT_EQ(observe_failing("bcm_policer_get", BCM_E_NOT_FOUND, [&] { return set(); }),
            create_call + "bcm_policer_get(0, -1, &?) = -7\n" + create_trace +
                "log: errors: NONE: bcm_policer_get policer_id -1 failed: Entry not found\n"
                "returned -7\n");
  all_well();
  EXPECT_EQ(observe_failing("bcm_policer_set", BCM_E_PARAM, [&] { return set(); }),
            create_call + read_call + "bcm_policer_set" + set_arguments + "-4\n" + create_trace + set_trace +
                "log: errors: NONE: bcm_policer_set policer_id -1 failed: Invalid parameter\n"
                "returned -5\n");
  all_well();
  EXPECT_EQ(observe_failing("bcm_field_entry_policer_attach", BCM_E_NOT_FOUND, [&] { return set(); }),
            create_call + read_call + "bcm_policer_set" + set_arguments +
                "0\n"
                "bcm_field_entry_policer_attach(0, 17, 0, -1) = -7\n" +
                create_trace + set_trace +
                "log: errors: NONE: bcm_field_entry_policer_attach policer_id -1 entry_id 17 failed: Entry not found\n"
                "returned -7\n");
  EXPECT_EQ(id, 77);
}

TEST_F(Policers, CountBurstsInKilobitsAndTheBitsBeyond) {
  const struct {
    uint32_t bytes;
    const char* fields;
    const char* total;
  } rows[] = {
      {0, "", "0"},
      {1, ", cbits_burst_lower=8", "8"},
      {999, ", cbits_burst_lower=7992", "7992"},
      {1000, ", ckbits_burst=8", "8000"},
      {1500, ", ckbits_burst=8, cbits_burst_lower=4000", "12000"},
      {0x1FFFFFFF, ", ckbits_burst=4294960, cbits_burst_lower=7288", "4294967288"},
      {0x20000000, ", ckbits_burst=4294960, cbits_burst_lower=7296", "0"},
      {0xFFFFFFFF, ", ckbits_burst=34359736, cbits_burst_lower=2360", "4294967288"},
  };
  for (const auto& row : rows) {
    const std::string seen = observe([&] { return sai_vport_fp_policer_set(unit, 17, &id, 4, 5, row.bytes, 2); });
    EXPECT_NE(seen.find(std::string("ckbits_sec=4") + row.fields + ", pkbits_sec=5, pbits_burst_lower=16})"),
              std::string::npos)
        << row.bytes;
    EXPECT_NE(seen.find(std::string("ckbits_sec 4 cbits_burst ") + row.total + " pkbits_sec 5 pbits_burst 16\n"),
              std::string::npos)
        << row.bytes;
    EXPECT_NE(observe([&] {
                return sai_vport_fp_policer_set(unit, 17, &id, 4, 5, 2, row.bytes);
              }).find(std::string("pkbits_sec 5 pbits_burst ") + row.total + '\n'),
              std::string::npos)
        << row.bytes;
  }
}

TEST_F(Policers, AreReadThroughTheirEntry) {
  EXPECT_EQ(observe([&] { return get(); }),
            "bcm_field_entry_policer_get(0, 17, 0, &-1) = 0\n" + read_call + "returned 0\n");
  EXPECT_EQ(id, -1);
  for (const uint32_t written : {cir, pir, cbs, pbs}) EXPECT_EQ(written, 0U);
}

TEST_F(Policers, WriteNoOutputWhenTheyCannotBeRead) {
  EXPECT_EQ(observe_failing("bcm_field_entry_policer_get", BCM_E_NOT_FOUND, [&] { return get(); }),
            "bcm_field_entry_policer_get(0, 17, 0, &?) = -7\n"
            "log: errors: NONE: bcm_field_entry_policer_get entry_id 17 policer_id -1 failed: Entry not found\n"
            "returned -7\n");
  all_well();
  EXPECT_EQ(observe_failing("bcm_policer_get", BCM_E_UNAVAIL, [&] { return get(); }),
            "bcm_field_entry_policer_get(0, 17, 0, &-1) = 0\n"
            "bcm_policer_get(0, -1, &?) = -16\n"
            "log: errors: NONE: bcm_policer_get policer_id -1 failed: Not available on this chip\n"
            "returned -2\n");
  EXPECT_EQ(id, 77);
  for (const uint32_t untouched : {cir, pir, cbs, pbs}) EXPECT_EQ(untouched, 77U);
}

TEST_F(Policers, AreDestroyed) {
  EXPECT_EQ(observe([] { return sai_vport_fp_policer_destroy(unit, 3); }),
            "bcm_policer_destroy(0, 3) = 0\nreturned 0\n");
  EXPECT_EQ(
      observe_failing("bcm_policer_destroy", BCM_E_NOT_FOUND, [] { return sai_vport_fp_policer_destroy(unit, 3); }),
      "bcm_policer_destroy(0, 3) = -7\n"
      "log: errors: NONE: bcm_policer_destroy policer_id 3 failed: Entry not found\n"
      "returned -7\n");
}

}  // namespace
