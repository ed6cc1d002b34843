#include "chip/network_groups.h"

#include <gtest/gtest.h>

namespace {

using chip::Status;

TEST(NetworkGroups, KeepTheSettingsOfEach) {
  chip::NetworkGroups groups;
  ASSERT_NE(groups.find(3), nullptr);
  EXPECT_EQ(*groups.find(3), 0U);
  EXPECT_EQ(groups.set(3, 0x7), Status::ok);
  EXPECT_EQ(*groups.find(3), 0x7U);
  EXPECT_EQ(*groups.find(4), 0U);
  groups.reset();
  EXPECT_EQ(*groups.find(3), 0U);
}

TEST(NetworkGroups, RefuseGroupsAndSettingsThatThereAreNone) {
  chip::NetworkGroups groups;
  for (const int group : {-1, chip::NetworkGroups::count}) {
    EXPECT_EQ(groups.set(group, 0x7), Status::bad_parameter) << group;
    EXPECT_EQ(groups.find(group), nullptr) << group;
  }
  EXPECT_EQ(groups.set(3, 0x8), Status::bad_parameter);
  EXPECT_EQ(*groups.find(3), 0U);
}

}  // namespace
