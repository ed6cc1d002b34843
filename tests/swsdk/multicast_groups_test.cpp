// Multicast groups, and whether the chip routes to them.
#include "chip/multicast_groups.h"

#include <bcm/error.h>
#include <bcm/ipmc.h>
#include <bcm/mcast.h>
#include <bcm/multicast.h>

#include "support/chip_test.h"

namespace {

class MulticastGroups : public support::ChipTest {
 protected:
  /// The id of the new group, or the code.
  static int create(uint32 flags, int id = 77) {
    int group = id;
    const int rv = bcm_multicast_create(0, flags, &group);
    if (rv == BCM_E_NONE) return group;
    EXPECT_EQ(group, id);
    return rv;
  }
};

TEST_F(MulticastGroups, HaveATypeAndTheLowestFreeId) {
  EXPECT_EQ(create(BCM_MULTICAST_TYPE_L2), 1);
  EXPECT_EQ(create(BCM_MULTICAST_TYPE_L3), 2);
  EXPECT_EQ(create(BCM_MULTICAST_TYPE_VLAN), 3);
  EXPECT_EQ(bcm_multicast_destroy(0, 1), BCM_E_NONE);
  EXPECT_EQ(create(BCM_MULTICAST_TYPE_VLAN), 1);
  EXPECT_EQ(shown("multicast"),
            "1      VLAN  -      -\n"
            "2      L3    -      -\n"
            "3      VLAN  -      -\n");
}

TEST_F(MulticastGroups, HaveTheIdThatIsAskedFor) {
  for (const int id : {4096, 1}) EXPECT_EQ(create(BCM_MULTICAST_TYPE_L2 | BCM_MULTICAST_WITH_ID, id), id);
  EXPECT_EQ(create(BCM_MULTICAST_TYPE_L3), 2);
  EXPECT_EQ(shown("multicast"),
            "1      L2    -      -\n"
            "2      L3    -      -\n"
            "4096   L2    -      -\n");
}

TEST_F(MulticastGroups, HaveAnIdOfTheirOwn) {
  create(BCM_MULTICAST_TYPE_L2 | BCM_MULTICAST_WITH_ID, 5);
  EXPECT_EQ(create(BCM_MULTICAST_TYPE_L3 | BCM_MULTICAST_WITH_ID, 5), BCM_E_EXISTS);
  EXPECT_EQ(shown("multicast"), "5      L2    -      -\n");
}

TEST_F(MulticastGroups, RefuseIdsOutsideTheirRange) {
  for (const int id : {-1, 0, 4097, INT32_MAX}) {
    EXPECT_EQ(create(BCM_MULTICAST_TYPE_L2 | BCM_MULTICAST_WITH_ID, id), BCM_E_PARAM) << id;
    EXPECT_EQ(bcm_multicast_destroy(0, id), BCM_E_PARAM) << id;
  }
}

TEST_F(MulticastGroups, RefuseAllButOneType) {
  for (const uint32 flags : {0U, 0x1U, 0x2U, 0x30000U, 0x410000U, 0x40000U, 0x10002U})
    EXPECT_EQ(create(flags), BCM_E_PARAM) << flags;
  EXPECT_EQ(bcm_multicast_create(0, BCM_MULTICAST_TYPE_L2, nullptr), BCM_E_PARAM);
  EXPECT_EQ(shown("multicast"), "");
}

TEST_F(MulticastGroups, AnswerFullAfter4096) {
  for (int id = 1; id <= 4096; ++id) ASSERT_EQ(create(BCM_MULTICAST_TYPE_L2), id);
  EXPECT_EQ(create(BCM_MULTICAST_TYPE_L2), BCM_E_FULL);
  EXPECT_EQ(bcm_multicast_destroy(0, 9), BCM_E_NONE);
  EXPECT_EQ(create(BCM_MULTICAST_TYPE_L2), 9);
}

TEST_F(MulticastGroups, AreDestroyedOnceOrAllTogether) {
  create(BCM_MULTICAST_TYPE_L2);
  create(BCM_MULTICAST_TYPE_L2);
  EXPECT_EQ(bcm_multicast_destroy(0, 1), BCM_E_NONE);
  EXPECT_EQ(bcm_multicast_destroy(0, 1), BCM_E_NOT_FOUND);
  EXPECT_EQ(shown("multicast"), "2      L2    -      -\n");
  EXPECT_EQ(bcm_multicast_init(0), BCM_E_NONE);
  EXPECT_EQ(shown("multicast"), "");
}

TEST_F(MulticastGroups, OutliveTheStartOfTheOtherMulticastModules) {
  create(BCM_MULTICAST_TYPE_L2);
  EXPECT_EQ(bcm_mcast_init(0), BCM_E_NONE);
  EXPECT_EQ(bcm_ipmc_init(0), BCM_E_NONE);
  EXPECT_EQ(bcm_ipmc_enable(0, 1), BCM_E_NONE);
  EXPECT_EQ(shown("multicast"), "1      L2    -      -\n");
}

TEST(MulticastGroupsOfAChip, KeepTheirType) {
  const chip::Ports ports(12);
  chip::MulticastGroups groups(ports);
  chip::GroupId id;
  EXPECT_EQ(groups.create(chip::MulticastGroups::l3, id), chip::Status::ok);
  EXPECT_EQ(groups.all().at(id).type, chip::MulticastGroups::l3);
}

}  // namespace
