#include "chip/spanning_trees.h"

#include <gtest/gtest.h>

namespace {

using chip::Port;
using chip::Status;
using chip::StpState;

class SpanningTrees : public testing::Test {
 protected:
  int group_of(int vlan) {
    const chip::Vlan* const found = vlans.find(vlan);
    return found == nullptr ? -1 : found->spanning_tree;
  }
  StpState state(int group, Port port) {
    const StpState* const result = groups.state(group, port);
    EXPECT_NE(result, nullptr);
    return result == nullptr ? StpState{} : *result;
  }

  chip::Ports ports{12};
  chip::Vlans vlans{ports};
  chip::SpanningTrees groups{ports, vlans};
};

TEST_F(SpanningTrees, StartWithOneGroupThatForwards) {
  EXPECT_EQ(groups.all().size(), 1U);
  EXPECT_EQ(groups.default_id(), 1);
  EXPECT_EQ(group_of(1), 1);
  for (const Port port : ports.all()) EXPECT_EQ(state(1, port), StpState::forward) << port.number();
}

TEST_F(SpanningTrees, AreCreatedOnceWithIdsFrom1To256) {
  for (const int bad : {-1, 0, 257}) {
    EXPECT_EQ(groups.create(bad), Status::bad_parameter) << bad;
    EXPECT_EQ(groups.destroy(bad), Status::bad_parameter) << bad;
    EXPECT_EQ(groups.set_default(bad), Status::bad_parameter) << bad;
    EXPECT_EQ(groups.add_vlan(bad, 1), Status::bad_parameter) << bad;
    EXPECT_EQ(groups.remove_vlan(bad, 1), Status::bad_parameter) << bad;
    EXPECT_EQ(groups.remove_vlans(bad), Status::bad_parameter) << bad;
    EXPECT_EQ(groups.set_state(bad, 1, 0), Status::bad_parameter) << bad;
    EXPECT_EQ(groups.state(bad, 1), nullptr) << bad;
    EXPECT_EQ(groups.absent_state(bad, 1), Status::bad_parameter) << bad;
  }
  EXPECT_EQ(groups.create(1), Status::exists);
  for (int id = 2; id <= 256; ++id) EXPECT_EQ(groups.create(id), Status::ok) << id;
}

TEST_F(SpanningTrees, ThatAreAbsentAnswerNotFound) {
  EXPECT_EQ(groups.destroy(2), Status::not_found);
  EXPECT_EQ(groups.set_default(2), Status::not_found);
  EXPECT_EQ(groups.add_vlan(2, 1), Status::not_found);
  EXPECT_EQ(groups.remove_vlan(2, 1), Status::not_found);
  EXPECT_EQ(groups.remove_vlans(2), Status::not_found);
  EXPECT_EQ(groups.set_state(2, 1, 0), Status::not_found);
  EXPECT_EQ(groups.state(2, 1), nullptr);
  EXPECT_EQ(groups.absent_state(2, 1), Status::not_found);
}

TEST_F(SpanningTrees, BeginDisabledButForTheCpu) {
  groups.create(2);
  EXPECT_EQ(state(2, 0), StpState::forward);
  EXPECT_EQ(state(2, 1), StpState::disable);
  EXPECT_EQ(state(2, 12), StpState::disable);
}

TEST_F(SpanningTrees, KeepTheStateOfEachPortApart) {
  groups.create(2);
  EXPECT_EQ(groups.set_state(2, 3, 1), Status::ok);
  EXPECT_EQ(groups.set_state(2, 4, 4), Status::ok);
  EXPECT_EQ(state(2, 3), StpState::block);
  EXPECT_EQ(state(2, 4), StpState::forward);
  EXPECT_EQ(state(1, 3), StpState::forward);
}

TEST_F(SpanningTrees, RefuseStatesAndPortsThatThereAreNot) {
  EXPECT_EQ(groups.set_state(1, 1, -1), Status::bad_parameter);
  EXPECT_EQ(groups.set_state(1, 1, 5), Status::bad_parameter);
  EXPECT_EQ(groups.set_state(1, 13, 1), Status::bad_port);
  EXPECT_EQ(groups.state(1, 13), nullptr);
  EXPECT_EQ(groups.absent_state(1, 13), Status::bad_port);
  EXPECT_EQ(state(1, 1), StpState::forward);
}

TEST_F(SpanningTrees, HaveEachVlanInOneGroup) {
  vlans.create(10);
  EXPECT_EQ(group_of(10), 1);
  groups.create(2);
  groups.create(3);
  EXPECT_EQ(groups.add_vlan(2, 10), Status::ok);
  EXPECT_EQ(groups.add_vlan(3, 10), Status::ok);
  EXPECT_EQ(group_of(10), 3);
  EXPECT_EQ(groups.remove_vlan(2, 10), Status::not_found);
  EXPECT_EQ(groups.remove_vlan(3, 10), Status::ok);
  EXPECT_EQ(group_of(10), 1);
  EXPECT_EQ(groups.add_vlan(2, 11), Status::not_found);
  EXPECT_EQ(groups.remove_vlan(2, 11), Status::not_found);
  EXPECT_EQ(groups.add_vlan(2, 4096), Status::bad_parameter);
}

TEST_F(SpanningTrees, GiveTheirVlansBackToTheDefaultGroup) {
  for (const int vlan : {10, 11, 12}) vlans.create(vlan);
  for (const int group : {2, 3}) groups.create(group);
  groups.add_vlan(2, 10);
  groups.add_vlan(2, 11);
  groups.add_vlan(3, 12);
  EXPECT_EQ(groups.remove_vlans(2), Status::ok);
  EXPECT_EQ(group_of(10), 1);
  EXPECT_EQ(group_of(11), 1);
  EXPECT_EQ(group_of(12), 3);
  EXPECT_EQ(groups.destroy(3), Status::ok);
  EXPECT_EQ(group_of(12), 1);
}

TEST_F(SpanningTrees, LeaveADestroyedVlanBehind) {
  vlans.create(10);
  groups.create(2);
  groups.add_vlan(2, 10);
  vlans.destroy(10);
  vlans.create(10);
  EXPECT_EQ(group_of(10), 1);
}

TEST_F(SpanningTrees, PutNewVlansIntoTheDefaultGroup) {
  groups.create(2);
  EXPECT_EQ(groups.set_default(2), Status::ok);
  EXPECT_EQ(groups.default_id(), 2);
  vlans.create(10);
  EXPECT_EQ(group_of(10), 2);
  EXPECT_EQ(group_of(1), 1);
  EXPECT_EQ(groups.destroy(2), Status::bad_id);
  EXPECT_EQ(groups.destroy(1), Status::ok);
  EXPECT_EQ(group_of(1), 2);
}

TEST_F(SpanningTrees, DestroyAllButTheDefaultGroup) {
  vlans.create(10);
  for (const int group : {2, 3}) groups.create(group);
  groups.add_vlan(3, 10);
  groups.set_default(2);
  groups.destroy_all();
  EXPECT_EQ(groups.all().size(), 1U);
  EXPECT_EQ(group_of(10), 2);
}

TEST_F(SpanningTrees, ResetGoesBackToTheFirstGroup) {
  vlans.create(10);
  groups.create(2);
  groups.add_vlan(2, 10);
  groups.set_default(2);
  groups.set_state(1, 3, 0);
  groups.reset();
  EXPECT_EQ(groups.all().size(), 1U);
  EXPECT_EQ(groups.default_id(), 1);
  EXPECT_EQ(group_of(10), 1);
  EXPECT_EQ(state(1, 3), StpState::forward);
}

}  // namespace
