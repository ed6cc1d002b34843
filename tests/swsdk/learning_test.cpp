// What the chip learns from frames, and how many addresses it may learn.
#include "chip/pipeline/learning.h"

#include <gtest/gtest.h>

#include "chip/chip.h"

namespace {

using chip::AllAddresses;
using chip::LearnLimit;
using chip::MacEntry;
using chip::MacScope;
using chip::Place;
using chip::Port;
using chip::Status;
using chip::TrunkId;
using chip::TunnelAddresses;
using chip::VirtualPortId;
using chip::VlanAddresses;

class Learning : public testing::Test {
 protected:
  Learning() {
    chip.vlans.create(10);
    chip.vlans.create(11);
    chip.learn_limits.enable(true);
  }

  bool learn(uint8_t address, Port port = 1, uint16_t vlan = 10, uint32_t tunnel = 0) {
    return is_in_place(chip::learn(chip, {mac(address), vlan, port, tunnel}));
  }
  const MacEntry* entry(uint8_t address) const { return chip.mac_table.find(10, mac(address)); }
  Status limit(const MacScope& scope, int limit) { return chip.learn_limits.set({scope}, {.limit = limit}); }
  static std::string text_of(const MacScope& scope) { return "scope " + std::to_string(scope.index()); }
  static chip::Mac mac(uint8_t address) { return {0x02, 0, 0, 0, 0, address}; }

  chip::Chip chip{12};
};

TEST_F(Learning, KeepsWhereAnAddressIs) {
  EXPECT_TRUE(learn(1, 3));
  ASSERT_NE(entry(1), nullptr);
  EXPECT_EQ(entry(1)->place, Place{Port{3}});
  EXPECT_EQ(entry(1)->flags, 0U);
  EXPECT_TRUE(entry(1)->source_hit);
}

TEST_F(Learning, MarksAKnownSourceAsHit) {
  learn(1);
  chip.mac_table.pass(300);
  EXPECT_FALSE(entry(1)->source_hit);
  EXPECT_TRUE(learn(1));
  EXPECT_TRUE(entry(1)->source_hit);
  EXPECT_EQ(chip.mac_table.size(), 1);
}

TEST_F(Learning, FollowsAnAddressThatMoves) {
  learn(1, 3);
  EXPECT_TRUE(learn(1, 4));
  EXPECT_EQ(entry(1)->place, Place{Port{4}});
  EXPECT_EQ(chip.mac_table.size(), 1);
}

TEST_F(Learning, LeavesStaticEntriesWhereTheyAre) {
  chip.mac_table.add({.mac = mac(1), .vlan = 10, .flags = MacEntry::fixed, .place = Port{3}});
  EXPECT_FALSE(learn(1, 4));
  EXPECT_EQ(entry(1)->place, Place{Port{3}});
  EXPECT_FALSE(entry(1)->source_hit);
  EXPECT_TRUE(learn(1, 3));
  EXPECT_TRUE(entry(1)->source_hit);
}

TEST_F(Learning, PutsTheAddressesOfMembersOnTheTrunk) {
  TrunkId id;
  chip.trunks.create(0, id);
  chip.trunks.set(id, 0, {5, 6});
  EXPECT_TRUE(learn(1, 5));
  EXPECT_EQ(entry(1)->place, Place{id});
  EXPECT_TRUE(learn(1, 6));
  EXPECT_EQ(chip.mac_table.learned(id), 1);
}

TEST_F(Learning, RefusesSourcesThatNoHostHas) {
  EXPECT_EQ(chip::learn(chip, {{0x01, 0, 0x5E}, 10, Port{1}}), chip::Learned::no_host);
  EXPECT_EQ(chip::learn(chip, {{}, 10, Port{1}}), chip::Learned::no_host);
}

TEST_F(Learning, NeedsAVlanThatLearns) {
  EXPECT_FALSE(learn(1, 1, 12));
  chip.vlans.set_control(10, {.flags = 0x1});
  EXPECT_FALSE(learn(1));
  EXPECT_EQ(chip.mac_table.size(), 0);
}

TEST_F(Learning, NeedsASpanningTreeStateThatLearns) {
  using chip::StpState;
  for (const auto& [state, learns] : std::map<StpState, bool>{{StpState::disable, false},
                                                              {StpState::block, false},
                                                              {StpState::listen, false},
                                                              {StpState::learn, true},
                                                              {StpState::forward, true}}) {
    chip.mac_table.reset();
    chip.spanning_trees.set_state(1, 2, static_cast<int>(state));
    EXPECT_EQ(learn(1, 2), learns) << static_cast<int>(state);
  }
}

TEST_F(Learning, TakesVirtualPortsAndTunnels) {
  EXPECT_EQ(chip::learn(chip, {mac(1), 10, VirtualPortId{7}, 9}), chip::Learned::added);
  EXPECT_EQ(entry(1)->place, Place{VirtualPortId{7}});
  EXPECT_EQ(entry(1)->tunnel, 9U);
}

TEST_F(Learning, EndsAtTheLimitOfEachScope) {
  TrunkId trunk;
  chip.trunks.create(0, trunk);
  chip.trunks.set(trunk, 0, {5});
  const struct {
    MacScope scope;
    Port port;
    uint32_t tunnel;
  } cases[] = {
      {AllAddresses{}, 1, 0}, {VlanAddresses{10}, 1, 0}, {Port{1}, 1, 0}, {trunk, 5, 0}, {TunnelAddresses{9}, 1, 9}};
  for (const auto& [scope, port, tunnel] : cases) {
    chip.mac_table.reset();
    chip.learn_limits.reset();
    chip.learn_limits.enable(true);
    ASSERT_EQ(chip.learn_limits.set({scope}, {.limit = 2}), Status::ok);
    EXPECT_TRUE(learn(1, port, 10, tunnel)) << text_of(scope);
    EXPECT_TRUE(learn(2, port, 10, tunnel)) << text_of(scope);
    EXPECT_FALSE(learn(3, port, 10, tunnel)) << text_of(scope);
    EXPECT_TRUE(learn(2, port, 10, tunnel)) << "a known address is no new one";
    chip.mac_table.remove(10, mac(1));
    EXPECT_TRUE(learn(3, port, 10, tunnel)) << text_of(scope);
  }
}

TEST_F(Learning, HasEachLimitForItsOwnScopeAlone) {
  limit(VlanAddresses{10}, 0);
  EXPECT_FALSE(learn(1));
  EXPECT_TRUE(learn(1, 1, 11));
  limit(VlanAddresses{10}, LearnLimit::unlimited);
  limit(Port{2}, 0);
  EXPECT_FALSE(learn(2, 2));
  EXPECT_TRUE(learn(2, 3));
}

TEST_F(Learning, LimitsAMoveWhereTheAddressGoes) {
  limit(AllAddresses{}, 1);
  limit(Port{2}, 0);
  EXPECT_TRUE(learn(1, 1));
  EXPECT_FALSE(learn(1, 2));
  EXPECT_EQ(entry(1)->place, Place{Port{1}});
  EXPECT_TRUE(learn(1, 3)) << "in the whole table it is no new one";
}

TEST_F(Learning, HeedsLimitsOnlyWhileTheyAreEnabled) {
  limit(AllAddresses{}, 0);
  chip.learn_limits.enable(false);
  EXPECT_TRUE(learn(1));
  chip.learn_limits.enable(true);
  EXPECT_FALSE(learn(2));
  EXPECT_NE(entry(1), nullptr);
}

TEST_F(Learning, LimitsNoEntriesThatAreAdded) {
  limit(AllAddresses{}, 0);
  EXPECT_EQ(chip.mac_table.add({.mac = mac(1), .vlan = 10, .place = Port{1}}), Status::ok);
}

TEST_F(Learning, TellsItsLimits) {
  std::optional<LearnLimit> found = chip.learn_limits.get(VlanAddresses{10});
  ASSERT_TRUE(found.has_value());
  EXPECT_EQ(found->limit, LearnLimit::unlimited);
  EXPECT_EQ(found->actions, 0U);
  EXPECT_EQ(chip.learn_limits.set({VlanAddresses{10}, Port{3}}, {32768, LearnLimit::drop}), Status::ok);
  found = chip.learn_limits.get(Port{3});
  ASSERT_TRUE(found.has_value());
  EXPECT_EQ(found->limit, 32768);
  EXPECT_EQ(found->actions, LearnLimit::drop);
}

TEST_F(Learning, RefusesLimitsOfScopesThatThereAreNotWhole) {
  EXPECT_EQ(limit(VlanAddresses{0}, 1), Status::bad_parameter);
  EXPECT_EQ(limit(VlanAddresses{4096}, 1), Status::bad_parameter);
  EXPECT_EQ(limit(Port{13}, 1), Status::bad_port);
  EXPECT_EQ(limit(TrunkId{128}, 1), Status::bad_parameter);
  EXPECT_EQ(limit(TrunkId{1}, 1), Status::not_found);
  EXPECT_EQ(limit(TunnelAddresses{0}, 1), Status::bad_parameter);
  EXPECT_EQ(limit(AllAddresses{}, -2), Status::bad_parameter);
  EXPECT_EQ(limit(AllAddresses{}, 32769), Status::bad_parameter);
  EXPECT_EQ(chip.learn_limits.set({}, {.limit = 1}), Status::bad_parameter);
  EXPECT_EQ(chip.learn_limits.set({AllAddresses{}}, {1, 0x8}), Status::bad_parameter);
  EXPECT_EQ(chip.learn_limits.set({AllAddresses{}, Port{13}}, {.limit = 1}), Status::bad_port);
  EXPECT_TRUE(chip.learn_limits.all().empty());
  EXPECT_FALSE(chip.learn_limits.get(Port{13}).has_value());
  EXPECT_EQ(chip.learn_limits.absent(Port{13}), Status::bad_port);
}

TEST_F(Learning, LooksDestinationsUpAndMarksThemOnRequest) {
  EXPECT_EQ(chip::look_up(chip, 10, mac(1)), nullptr);
  learn(1);
  EXPECT_FALSE(chip::look_up(chip, 10, mac(1))->destination_hit);
  chip.switch_controls.set(static_cast<int>(chip::SwitchControlOfChip::l2_destination_hit_enable), 1);
  EXPECT_TRUE(chip::look_up(chip, 10, mac(1))->destination_hit);
}

}  // namespace
