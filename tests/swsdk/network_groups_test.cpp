#include "chip/network_groups.h"

#include <gtest/gtest.h>

namespace {

using chip::Status;

TEST(NetworkGroups, KeepTheSettingsOfEach) {
  chip::NetworkGroups groups;
  uint32_t settings = 1;
  EXPECT_EQ(groups.get(3, settings), Status::ok);
  EXPECT_EQ(settings, 0U);
  EXPECT_EQ(groups.set(3, 0x7), Status::ok);
  EXPECT_EQ(groups.get(3, settings), Status::ok);
  EXPECT_EQ(settings, 0x7U);
  EXPECT_EQ(groups.get(4, settings), Status::ok);
  EXPECT_EQ(settings, 0U);
  groups.reset();
  EXPECT_EQ(groups.get(3, settings), Status::ok);
  EXPECT_EQ(settings, 0U);
}

TEST(NetworkGroups, RefuseGroupsAndSettingsThatThereAreNone) {
  chip::NetworkGroups groups;
  uint32_t settings = 0;
  for (const int group : {-1, chip::NetworkGroups::count}) {
    EXPECT_EQ(groups.set(group, 0x7), Status::bad_parameter) << group;
    EXPECT_EQ(groups.get(group, settings), Status::bad_parameter) << group;
  }
  EXPECT_EQ(groups.set(3, 0x8), Status::bad_parameter);
  EXPECT_EQ(groups.get(3, settings), Status::ok);
  EXPECT_EQ(settings, 0U);
}

}  // namespace
