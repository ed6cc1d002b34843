#include <bcm/error.h>
#include <bcm/l2.h>
#include <swsdk/chip.h>

#include <string>

#include "support/scene.h"

namespace {

constexpr uint8_t bpdu[6] = {0x01, 0x80, 0xC2, 0x00, 0x00, 0x00};

class Frames : public support::Scene {
 protected:
  static std::string shown() {
    std::string text(static_cast<size_t>(swsdk_show(unit, "l2cache", nullptr, 0)), '\0');
    swsdk_show(unit, "l2cache", text.data(), text.size() + 1);
    return text.substr(text.find('\n') + 1);
  }
};

TEST_F(Frames, ABpduEntryTakesTheFirstFreeIndexAndTellsIt) {
  int32_t index = 77;
  EXPECT_EQ(observe([&] { return sai_bpdu_set(unit, bpdu, &index); }),
            "bcm_l2_cache_set(0, -1, {flags=0x11, mac=01:80:c2:00:00:00, mac_mask=ff:ff:ff:ff:ff:ff}, &0) = 0\n"
            "returned 0\n");
  EXPECT_EQ(index, 0);
  EXPECT_EQ(observe([&] { return sai_bpdu_unset(unit, index); }), "bcm_l2_cache_delete(0, 0) = 0\nreturned 0\n");
  EXPECT_EQ(shown(), "");
}

TEST_F(Frames, ABpduEntryThatFailsLeavesTheIndexAlone) {
  int32_t index = 77;
  EXPECT_EQ(observe_failing("bcm_l2_cache_set", BCM_E_FULL, [&] { return sai_bpdu_set(unit, bpdu, &index); }),
            "bcm_l2_cache_set(0, -1, {flags=0x11, mac=01:80:c2:00:00:00, mac_mask=ff:ff:ff:ff:ff:ff}, &?) = -6\n"
            "log: errors: NONE: bcm_l2_cache_set failed: Table is full\n"
            "returned -13\n");
  EXPECT_EQ(index, 77);
}

TEST_F(Frames, DeletingAnEntryThatIsNotThereIsLogged) {
  EXPECT_EQ(observe([] { return sai_bpdu_unset(unit, 5); }),
            "bcm_l2_cache_delete(0, 5) = -7\n"
            "log: errors: NONE: bcm_l2_cache_delete failed: Entry not found\n"
            "returned -7\n");
}

TEST_F(Frames, LldpCopiesToTheCpuAndIsFoundAgainByItsIndex) {
  int32_t index = 0;
  ASSERT_EQ(sai_bpdu_set(unit, bpdu, &index), 0);
  EXPECT_EQ(observe([] { return sai_lldp_set(unit); }),
            "bcm_l2_cache_set(0, -1, {flags=0x1, mac=01:80:c2:00:00:0e, mac_mask=ff:ff:ff:ff:ff:ff}, &1) = 0\n"
            "returned 0\n");
  EXPECT_EQ(observe([] { return sai_lldp_unset(unit); }), "bcm_l2_cache_delete(0, 1) = 0\nreturned 0\n");
}

TEST_F(Frames, ASecondLldpEntryMakesTheFirstUnreachable) {
  ASSERT_EQ(sai_lldp_set(unit), 0);
  ASSERT_EQ(sai_lldp_set(unit), 0);
  EXPECT_EQ(observe([] { return sai_lldp_unset(unit); }), "bcm_l2_cache_delete(0, 1) = 0\nreturned 0\n");
  EXPECT_EQ(observe([] { return sai_lldp_unset(unit); }),
            "bcm_l2_cache_delete(0, 1) = -7\n"
            "log: errors: NONE: bcm_l2_cache_delete failed: Entry not found\n"
            "returned -7\n");
  EXPECT_EQ(shown(), "0      01:80:c2:00:00:0e  ff:ff:ff:ff:ff:ff  to-cpu\n");
}

TEST_F(Frames, LldpThatFailsIsLoggedAndKeepsTheLastIndex) {
  ASSERT_EQ(sai_lldp_set(unit), 0);
  EXPECT_EQ(observe_failing("bcm_l2_cache_set", BCM_E_MEMORY, [] { return sai_lldp_set(unit); }),
            "bcm_l2_cache_set(0, -1, {flags=0x1, mac=01:80:c2:00:00:0e, mac_mask=ff:ff:ff:ff:ff:ff}, &?) = -2\n"
            "log: errors: NONE: bcm_l2_cache_set failed: Out of memory\n"
            "returned -3\n");
  EXPECT_EQ(sai_lldp_unset(unit), 0);
}

TEST_F(Frames, SchedulingModesAreTheSdksByNumberAndAnyOtherIsPassedOn) {
  const int32_t weights[8] = {1, 2, 3, 4, 5, 6, 7, 8};
  const struct {
    int32_t given;
    const char* passed;
  } modes[] = {{0, "1"}, {1, "3"}, {2, "5"}, {3, "3"}, {7, "7"}, {-1, "-1"}};
  for (const auto& [given, passed] : modes) {
    const std::string seen = observe([&, mode = given] { return sai_cosq_sched_set(unit, mode, weights, 100); });
    EXPECT_TRUE(seen.starts_with("bcm_cosq_sched_set(0, " + std::string(passed) + ", ")) << seen;
  }
}

TEST_F(Frames, ASchedulingFailureNamesTheSdksModeAndTheDelay) {
  const int32_t weights[8] = {};
  const std::string seen = observe_failing("bcm_cosq_sched_set", BCM_E_BUSY, [&] {
    return sai_cosq_sched_set(unit, SAI_COSQ_DEFICIT_ROUND_ROBIN, weights, 9);
  });
  EXPECT_TRUE(
      seen.ends_with("log: errors: NONE: Failed to set cosq mode [5] dealy [9]: Hardware is busy\nreturned -1\n"))
      << seen;
}

}  // namespace
