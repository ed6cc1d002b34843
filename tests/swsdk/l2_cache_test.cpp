// The L2 cache, which matches control frames.
#include <bcm/error.h>
#include <bcm/l2.h>

#include <algorithm>

#include "support/chip_test.h"

namespace {

constexpr int any_index = -1;

class L2Cache : public support::ChipTest {
 protected:
  static bcm_l2_cache_addr_t entry(uint8 last_byte, uint32 flags = BCM_L2_CACHE_CPU) {
    bcm_l2_cache_addr_t result;
    bcm_l2_cache_addr_t_init(&result);
    result.flags = flags;
    const uint8 group[6] = {0x01, 0x80, 0xC2, 0, 0, last_byte};
    std::copy_n(group, 6, result.mac);
    std::fill_n(result.mac_mask, 5, uint8{0xFF});
    return result;
  }

  /// The index that was used, or the code.
  static int set(int index, bcm_l2_cache_addr_t addr) {
    int used = 77;
    const int rv = bcm_l2_cache_set(0, index, &addr, &used);
    if (rv == BCM_E_NONE) return used;
    EXPECT_EQ(used, 77);
    return rv;
  }
};

TEST_F(L2Cache, KeepsItsEntriesByIndex) {
  EXPECT_EQ(set(127, entry(0x00)), 127);
  EXPECT_EQ(set(3, entry(0x0E, BCM_L2_CACHE_CPU | BCM_L2_CACHE_BPDU)), 3);
  EXPECT_EQ(shown("l2cache"),
            "3      01:80:c2:00:00:0e  ff:ff:ff:ff:ff:00  to-cpu,bpdu\n"
            "127    01:80:c2:00:00:00  ff:ff:ff:ff:ff:00  to-cpu\n");
}

TEST_F(L2Cache, FindsTheLowestFreeIndexItself) {
  EXPECT_EQ(set(any_index, entry(0)), 0);
  EXPECT_EQ(set(1, entry(1)), 1);
  EXPECT_EQ(set(any_index, entry(2)), 2);
  EXPECT_EQ(bcm_l2_cache_delete(0, 0), BCM_E_NONE);
  EXPECT_EQ(set(any_index, entry(3)), 0);
}

TEST_F(L2Cache, TakesAnEntryInPlaceOfTheOneOfItsIndex) {
  set(3, entry(1));
  EXPECT_EQ(set(3, entry(2, 0)), 3);
  EXPECT_EQ(shown("l2cache"), "3      01:80:c2:00:00:02  ff:ff:ff:ff:ff:00  -\n");
}

TEST_F(L2Cache, TakesTheSameAddressAtTwoIndexes) {
  EXPECT_EQ(set(any_index, entry(1)), 0);
  EXPECT_EQ(set(any_index, entry(1)), 1);
}

TEST_F(L2Cache, AnswersFullAfter128) {
  for (int index = 0; index < 128; ++index) ASSERT_EQ(set(any_index, entry(0)), index);
  EXPECT_EQ(set(any_index, entry(0)), BCM_E_FULL);
  EXPECT_EQ(set(127, entry(1)), 127);
}

TEST_F(L2Cache, RefusesIndexesThatItDoesNotHave) {
  for (const int index : {-2, 128, INT32_MAX}) {
    EXPECT_EQ(set(index, entry(0)), BCM_E_PARAM) << index;
    EXPECT_EQ(bcm_l2_cache_delete(0, index), BCM_E_PARAM) << index;
  }
  EXPECT_EQ(bcm_l2_cache_delete(0, any_index), BCM_E_PARAM);
  EXPECT_EQ(shown("l2cache"), "");
}

TEST_F(L2Cache, NeedsAnEntryAndRoomForTheIndex) {
  int used = 77;
  bcm_l2_cache_addr_t addr = entry(0);
  EXPECT_EQ(bcm_l2_cache_set(0, 3, nullptr, &used), BCM_E_PARAM);
  EXPECT_EQ(bcm_l2_cache_set(0, 3, &addr, nullptr), BCM_E_PARAM);
  EXPECT_EQ(used, 77);
  EXPECT_EQ(shown("l2cache"), "");
}

TEST_F(L2Cache, LosesWhatIsDeleted) {
  for (int i = 0; i < 3; ++i) set(any_index, entry(0));
  EXPECT_EQ(bcm_l2_cache_delete(0, 1), BCM_E_NONE);
  EXPECT_EQ(bcm_l2_cache_delete(0, 1), BCM_E_NOT_FOUND);
  EXPECT_EQ(shown("l2cache"),
            "0      01:80:c2:00:00:00  ff:ff:ff:ff:ff:00  to-cpu\n"
            "2      01:80:c2:00:00:00  ff:ff:ff:ff:ff:00  to-cpu\n");
  EXPECT_EQ(bcm_l2_cache_delete_all(0), BCM_E_NONE);
  EXPECT_EQ(shown("l2cache"), "");
  EXPECT_EQ(bcm_l2_cache_delete_all(0), BCM_E_NONE);
}

}  // namespace
