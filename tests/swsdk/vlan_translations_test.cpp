// VLAN translation in both directions, and outer tags for ranges of VLANs.
#include <bcm/error.h>
#include <bcm/vlan.h>

#include "support/chip_test.h"

namespace {

using Add = int (*)(int unit, int port, bcm_vlan_t old_vid, bcm_vlan_t new_vid, int prio);
using Get = int (*)(int unit, int port, bcm_vlan_t old_vid, bcm_vlan_t* new_vid, int* prio);
using Delete = int (*)(int unit, int port, bcm_vlan_t old_vid);

/// The functions of one direction.
struct Direction {
  const char* name;
  Add add;
  Get get;
  Delete remove;
};

constexpr Direction in{"in", bcm_vlan_translate_add, bcm_vlan_translate_get, bcm_vlan_translate_delete};
constexpr Direction out{"out", bcm_vlan_translate_egress_add, bcm_vlan_translate_egress_get,
                        bcm_vlan_translate_egress_delete};

/// "VLAN:priority", or the code when there is no translation.
std::string translation(const Direction& direction, int port, bcm_vlan_t vid) {
  bcm_vlan_t new_vid = 77;
  int priority = 78;
  const int rv = direction.get(0, port, vid, &new_vid, &priority);
  if (rv == BCM_E_NONE) return std::to_string(new_vid) + ":" + std::to_string(priority);
  EXPECT_EQ(new_vid, 77);
  EXPECT_EQ(priority, 78);
  return std::to_string(rv);
}

class VlanTranslations : public support::ChipTest, public testing::WithParamInterface<Direction> {
 protected:
  static std::string found(int port, bcm_vlan_t vid) { return translation(GetParam(), port, vid); }
};

INSTANTIATE_TEST_SUITE_P(OnTheWay, VlanTranslations, testing::Values(in, out),
                         [](const auto& direction) { return direction.param.name; });

TEST_P(VlanTranslations, AreKeptByPortAndVlan) {
  EXPECT_EQ(GetParam().add(0, 1, 10, 20, 3), BCM_E_NONE);
  EXPECT_EQ(GetParam().add(0, 1, 4095, 1, -1), BCM_E_NONE);
  EXPECT_EQ(GetParam().add(0, 0, 10, 4095, 0), BCM_E_NONE);
  EXPECT_EQ(found(1, 10), "20:3");
  EXPECT_EQ(found(1, 4095), "1:-1");
  EXPECT_EQ(found(0, 10), "4095:0");
  EXPECT_EQ(found(2, 10), std::to_string(BCM_E_NOT_FOUND));
  EXPECT_EQ(found(1, 20), std::to_string(BCM_E_NOT_FOUND));
}

TEST_P(VlanTranslations, AreKeptOnTheirWayAlone) {
  const Direction& other = std::string(GetParam().name) == in.name ? out : in;
  EXPECT_EQ(GetParam().add(0, 1, 10, 20, 3), BCM_E_NONE);
  EXPECT_EQ(translation(other, 1, 10), std::to_string(BCM_E_NOT_FOUND));
  EXPECT_EQ(other.remove(0, 1, 10), BCM_E_NOT_FOUND);
  EXPECT_EQ(other.add(0, 1, 10, 30, 4), BCM_E_NONE);
  EXPECT_EQ(GetParam().remove(0, 1, 10), BCM_E_NONE);
  EXPECT_EQ(translation(other, 1, 10), "30:4");
}

TEST_P(VlanTranslations, AreAddedOnceAndStayAsTheyWere) {
  EXPECT_EQ(GetParam().add(0, 1, 10, 20, 3), BCM_E_NONE);
  EXPECT_EQ(GetParam().add(0, 1, 10, 30, 4), BCM_E_EXISTS);
  EXPECT_EQ(found(1, 10), "20:3");
}

TEST_P(VlanTranslations, LoseWhatIsDeletedAlone) {
  GetParam().add(0, 1, 10, 20, 3);
  GetParam().add(0, 1, 11, 21, 3);
  GetParam().add(0, 2, 10, 22, 3);
  EXPECT_EQ(GetParam().remove(0, 1, 10), BCM_E_NONE);
  EXPECT_EQ(GetParam().remove(0, 1, 10), BCM_E_NOT_FOUND);
  EXPECT_EQ(found(1, 10), std::to_string(BCM_E_NOT_FOUND));
  EXPECT_EQ(found(1, 11), "21:3");
  EXPECT_EQ(found(2, 10), "22:3");
}

TEST_P(VlanTranslations, RefuseVlansOutsideTheirRange) {
  for (const bcm_vlan_t vid : std::initializer_list<bcm_vlan_t>{0, 4096, 65535}) {
    EXPECT_EQ(GetParam().add(0, 1, vid, 20, 0), BCM_E_PARAM) << vid;
    EXPECT_EQ(GetParam().add(0, 1, 10, vid, 0), BCM_E_PARAM) << vid;
    EXPECT_EQ(GetParam().remove(0, 1, vid), BCM_E_PARAM) << vid;
    EXPECT_EQ(found(1, vid), std::to_string(BCM_E_PARAM)) << vid;
  }
  EXPECT_EQ(shown("translation"), "");
}

TEST_P(VlanTranslations, RefusePortsThatTheChipDoesNotHave) {
  for (const int port : {-1, 13, 256}) {
    EXPECT_EQ(GetParam().add(0, port, 10, 20, 0), BCM_E_PORT) << port;
    EXPECT_EQ(GetParam().remove(0, port, 10), BCM_E_PORT) << port;
    EXPECT_EQ(found(port, 10), std::to_string(BCM_E_PORT)) << port;
  }
}

TEST_P(VlanTranslations, AreNotReadIntoNothing) {
  GetParam().add(0, 1, 10, 20, 3);
  bcm_vlan_t vid = 77;
  int priority = 78;
  EXPECT_EQ(GetParam().get(0, 1, 10, nullptr, &priority), BCM_E_PARAM);
  EXPECT_EQ(GetParam().get(0, 1, 10, &vid, nullptr), BCM_E_PARAM);
  EXPECT_EQ(vid, 77);
  EXPECT_EQ(priority, 78);
}

TEST_P(VlanTranslations, AnswerFullAfter8192) {
  int added = 0;
  for (const int port : {1, 2})
    for (bcm_vlan_t vid = 1; vid <= 4095; ++vid) added += GetParam().add(0, port, vid, 1, 0) == BCM_E_NONE;
  for (const bcm_vlan_t vid : std::initializer_list<bcm_vlan_t>{1, 2})
    added += GetParam().add(0, 3, vid, 1, 0) == BCM_E_NONE;
  EXPECT_EQ(added, 8192);
  EXPECT_EQ(GetParam().add(0, 3, 3, 1, 0), BCM_E_FULL);
  EXPECT_EQ(GetParam().add(0, 3, 2, 1, 0), BCM_E_EXISTS);
  EXPECT_EQ(GetParam().remove(0, 1, 1), BCM_E_NONE);
  EXPECT_EQ(GetParam().add(0, 3, 3, 1, 0), BCM_E_NONE);
}

class OuterTags : public support::ChipTest {};

TEST_F(OuterTags, AreGivenToAVlanOrARange) {
  EXPECT_EQ(bcm_vlan_dtag_add(0, 1, 10, 20, 3), BCM_E_NONE);
  EXPECT_EQ(bcm_vlan_dtag_range_add(0, 1, 11, 4095, 21, 4), BCM_E_NONE);
  EXPECT_EQ(bcm_vlan_dtag_range_add(0, 2, 10, 10, 22, 5), BCM_E_NONE);
  EXPECT_EQ(shown("translation"),
            "in         1     10       inner of 20  3\n"
            "in         1     11-4095  inner of 21  4\n"
            "in         2     10       inner of 22  5\n");
}

TEST_F(OuterTags, OfAPortDoNotOverlap) {
  EXPECT_EQ(bcm_vlan_dtag_range_add(0, 1, 10, 20, 100, 0), BCM_E_NONE);
  const std::pair<bcm_vlan_t, bcm_vlan_t> overlapping[] = {{10, 20}, {1, 10}, {20, 30}, {12, 15}, {1, 4095}, {15, 15}};
  for (const auto& [low, high] : overlapping)
    EXPECT_EQ(bcm_vlan_dtag_range_add(0, 1, low, high, 100, 0), BCM_E_EXISTS) << low << "-" << high;
  EXPECT_EQ(bcm_vlan_dtag_add(0, 1, 20, 100, 0), BCM_E_EXISTS);
  EXPECT_EQ(bcm_vlan_dtag_range_add(0, 1, 1, 9, 100, 0), BCM_E_NONE);
  EXPECT_EQ(bcm_vlan_dtag_range_add(0, 1, 21, 30, 100, 0), BCM_E_NONE);
  EXPECT_EQ(bcm_vlan_dtag_range_add(0, 2, 10, 20, 100, 0), BCM_E_NONE);
}

TEST_F(OuterTags, AreDeletedOnlyByTheirWholeRange) {
  bcm_vlan_dtag_range_add(0, 1, 10, 20, 100, 0);
  const std::string before = shown("translation");
  const std::pair<bcm_vlan_t, bcm_vlan_t> others[] = {{10, 19}, {10, 21}, {11, 20}, {9, 20}, {10, 10}, {20, 20}};
  for (const auto& [low, high] : others)
    EXPECT_EQ(bcm_vlan_dtag_range_delete(0, 1, low, high), BCM_E_NOT_FOUND) << low << "-" << high;
  EXPECT_EQ(bcm_vlan_dtag_range_delete(0, 2, 10, 20), BCM_E_NOT_FOUND);
  EXPECT_EQ(bcm_vlan_dtag_delete(0, 1, 10), BCM_E_NOT_FOUND);
  EXPECT_EQ(shown("translation"), before);
  EXPECT_EQ(bcm_vlan_dtag_range_delete(0, 1, 10, 20), BCM_E_NONE);
  EXPECT_EQ(shown("translation"), "");
}

TEST_F(OuterTags, AndTranslationsOfAVlanAreKeptApart) {
  EXPECT_EQ(bcm_vlan_dtag_add(0, 1, 10, 20, 3), BCM_E_NONE);
  EXPECT_EQ(bcm_vlan_translate_delete(0, 1, 10), BCM_E_NOT_FOUND);
  EXPECT_EQ(bcm_vlan_translate_add(0, 1, 10, 30, 4), BCM_E_NONE);
  EXPECT_EQ(bcm_vlan_dtag_delete(0, 1, 10), BCM_E_NONE);
  EXPECT_EQ(bcm_vlan_dtag_delete(0, 1, 10), BCM_E_NOT_FOUND);
  EXPECT_EQ(translation(in, 1, 10), "30:4");
}

TEST_F(OuterTags, RefuseVlansOutsideTheirRangeAndRangesUpsideDown) {
  for (const bcm_vlan_t vid : std::initializer_list<bcm_vlan_t>{0, 4096, 65535}) {
    EXPECT_EQ(bcm_vlan_dtag_add(0, 1, vid, 20, 0), BCM_E_PARAM) << vid;
    EXPECT_EQ(bcm_vlan_dtag_add(0, 1, 10, vid, 0), BCM_E_PARAM) << vid;
    EXPECT_EQ(bcm_vlan_dtag_delete(0, 1, vid), BCM_E_PARAM) << vid;
    EXPECT_EQ(bcm_vlan_dtag_range_add(0, 1, 10, vid, 20, 0), BCM_E_PARAM) << vid;
    EXPECT_EQ(bcm_vlan_dtag_range_delete(0, 1, 10, vid), BCM_E_PARAM) << vid;
  }
  EXPECT_EQ(bcm_vlan_dtag_range_add(0, 1, 20, 19, 100, 0), BCM_E_PARAM);
  EXPECT_EQ(bcm_vlan_dtag_range_delete(0, 1, 20, 19), BCM_E_PARAM);
  EXPECT_EQ(shown("translation"), "");
}

TEST_F(OuterTags, RefusePortsThatTheChipDoesNotHave) {
  for (const int port : {-1, 13, 256}) {
    EXPECT_EQ(bcm_vlan_dtag_add(0, port, 10, 20, 0), BCM_E_PORT) << port;
    EXPECT_EQ(bcm_vlan_dtag_delete(0, port, 10), BCM_E_PORT) << port;
    EXPECT_EQ(bcm_vlan_dtag_range_add(0, port, 10, 11, 20, 0), BCM_E_PORT) << port;
    EXPECT_EQ(bcm_vlan_dtag_range_delete(0, port, 10, 11), BCM_E_PORT) << port;
  }
}

TEST_F(OuterTags, ShareTheirRoomWithTranslationsOnTheWayIn) {
  for (const int port : {1, 2})
    for (bcm_vlan_t vid = 1; vid <= 4095; ++vid) ASSERT_EQ(bcm_vlan_dtag_add(0, port, vid, 1, 0), BCM_E_NONE);
  EXPECT_EQ(bcm_vlan_translate_add(0, 1, 1, 2, 0), BCM_E_NONE);
  EXPECT_EQ(bcm_vlan_dtag_range_add(0, 3, 1, 4095, 1, 0), BCM_E_NONE);
  EXPECT_EQ(bcm_vlan_translate_add(0, 1, 2, 2, 0), BCM_E_FULL);
  EXPECT_EQ(bcm_vlan_dtag_add(0, 4, 1, 1, 0), BCM_E_FULL);
  EXPECT_EQ(bcm_vlan_translate_egress_add(0, 1, 1, 2, 0), BCM_E_NONE);
}

}  // namespace
