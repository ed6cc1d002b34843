#include "chip/field_processor.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using chip::FieldAction;
using chip::FieldGroup;
using chip::FieldMatch;
using chip::FieldQualifier;
using chip::FieldStage;
using chip::FieldVerdict;
using chip::FrameFields;
using chip::Status;

constexpr int in = chip::FieldProcessor::ingress_stage;
constexpr int out = chip::FieldProcessor::egress_stage;
constexpr int in_port = static_cast<int>(FieldQualifier::in_port);
constexpr int out_port = static_cast<int>(FieldQualifier::out_port);
constexpr int vlan = static_cast<int>(FieldQualifier::outer_vlan);

constexpr FieldMatch port_1{1, ~0ULL};
constexpr FieldMatch vlan_10{10, 0xFFF};

class FieldProcessor : public testing::Test {
 protected:
  /// An enabled group of ports and VLANs.
  int group(int priority = FieldGroup::any_priority, int stage = in) {
    int id = 0;
    EXPECT_EQ(processor.create_group({stage, stage == in ? in_port : out_port, vlan}, priority, id), Status::ok);
    EXPECT_EQ(processor.enable_group(id, true), Status::ok);
    return id;
  }
  int entry(int group) {
    int id = 0;
    EXPECT_EQ(processor.create_entry(group, id), Status::ok);
    return id;
  }
  /// An installed entry that every frame meets.
  int entry(int group, FieldAction action, uint32_t parameter0 = 0, uint32_t parameter1 = 0) {
    const int id = entry(group);
    EXPECT_EQ(add_action(id, action, parameter0, parameter1), Status::ok);
    EXPECT_EQ(processor.install(id), Status::ok);
    return id;
  }
  Status add_action(int entry, FieldAction action, uint32_t parameter0 = 0, uint32_t parameter1 = 0) {
    return processor.add_action(entry, static_cast<int>(action), parameter0, parameter1);
  }
  FieldVerdict classify(const FrameFields& frame = {}, FieldStage stage = FieldStage::ingress) {
    return processor.classify(stage, frame);
  }
  /// The entries that a frame meets: "3 1 ".
  std::string met(const FrameFields& frame = {}, FieldStage stage = FieldStage::ingress) {
    std::string entries;
    for (const FieldVerdict::Hit& hit : classify(frame, stage).hits) entries += std::to_string(hit.entry) + ' ';
    return entries;
  }

  chip::Ports ports{12};
  chip::Policers policers;
  chip::FieldProcessor processor{ports, policers};
};

// ---------------------------------------------------------------------------------------------------- groups ----

TEST_F(FieldProcessor, NumbersItsGroupsFrom1) {
  int id = 0;
  EXPECT_EQ(processor.create_group({in}, FieldGroup::any_priority, id), Status::ok);
  EXPECT_EQ(id, 1);
  EXPECT_EQ(processor.create_group({out}, 7, id), Status::ok);
  EXPECT_EQ(id, 2);
  EXPECT_EQ(processor.groups().at(1).stage, FieldStage::ingress);
  EXPECT_EQ(processor.groups().at(2).stage, FieldStage::egress);
  EXPECT_EQ(processor.groups().at(2).priority, 7);
}

TEST_F(FieldProcessor, RefusesAGroupWithoutOneStageOrWithAPriorityBelow0) {
  int id = -5;
  EXPECT_EQ(processor.create_group({in_port}, FieldGroup::any_priority, id), Status::bad_parameter);
  EXPECT_EQ(processor.create_group({in, out, vlan}, FieldGroup::any_priority, id), Status::bad_parameter);
  EXPECT_EQ(processor.create_group({in, vlan}, -1, id), Status::bad_parameter);
  EXPECT_EQ(id, -5);
  EXPECT_TRUE(processor.groups().empty());
}

TEST_F(FieldProcessor, HasNoSliceForAQualifierThatTheStageOrTheChipLacks) {
  int id = 0;
  EXPECT_EQ(processor.create_group({in, out_port}, FieldGroup::any_priority, id), Status::no_resource);
  EXPECT_EQ(processor.create_group({out, in_port}, FieldGroup::any_priority, id), Status::no_resource);
  EXPECT_EQ(processor.create_group({in, 1000}, FieldGroup::any_priority, id), Status::no_resource);
}

TEST_F(FieldProcessor, Has16SlicesOnTheWayInAnd4OnTheWayOut) {
  int id = 0;
  for (int i = 0; i < 16; ++i) ASSERT_EQ(processor.create_group({in}, FieldGroup::any_priority, id), Status::ok);
  EXPECT_EQ(processor.create_group({in}, FieldGroup::any_priority, id), Status::no_resource);
  for (int i = 0; i < 4; ++i) ASSERT_EQ(processor.create_group({out}, FieldGroup::any_priority, id), Status::ok);
  EXPECT_EQ(processor.create_group({out}, FieldGroup::any_priority, id), Status::no_resource);
  EXPECT_EQ(processor.groups().size(), 20U);
}

TEST_F(FieldProcessor, ChangesOnlyGroupsThatThereAre) {
  const int id = group();
  for (const int absent : {-1, 0, id + 1}) {
    int created = -5;
    EXPECT_EQ(processor.set_group_priority(absent, 1), Status::not_found);
    EXPECT_EQ(processor.enable_group(absent, true), Status::not_found);
    EXPECT_EQ(processor.create_entry(absent, created), Status::not_found);
    EXPECT_EQ(processor.create_entry_with_id(absent, 1), Status::not_found);
    EXPECT_EQ(created, -5);
  }
  EXPECT_EQ(processor.set_group_priority(id, -1), Status::bad_parameter);
  EXPECT_EQ(processor.set_group_priority(id, 0), Status::ok);
  EXPECT_EQ(processor.set_group_priority(id, FieldGroup::any_priority), Status::ok);
}

TEST_F(FieldProcessor, LooksAtEnabledGroupsOfTheStageAlone) {
  int id = 0;
  processor.create_group({in}, FieldGroup::any_priority, id);
  entry(id, FieldAction::drop);
  EXPECT_FALSE(classify().dropped);
  processor.enable_group(id, true);
  EXPECT_TRUE(classify().dropped);
  EXPECT_FALSE(classify({}, FieldStage::egress).dropped);
  processor.enable_group(id, false);
  EXPECT_FALSE(classify().dropped);
}

// --------------------------------------------------------------------------------------------------- entries ----

TEST_F(FieldProcessor, NumbersItsEntriesFrom1AcrossGroups) {
  const int first = group();
  const int second = group();
  EXPECT_EQ(entry(first), 1);
  EXPECT_EQ(entry(second), 2);
  EXPECT_EQ(processor.create_entry_with_id(first, 4), Status::ok);
  EXPECT_EQ(processor.create_entry_with_id(second, 4), Status::exists);
  EXPECT_EQ(processor.create_entry_with_id(second, 0), Status::bad_parameter);
  EXPECT_EQ(entry(second), 3);
  EXPECT_EQ(entry(second), 5);
}

TEST_F(FieldProcessor, ChangesOnlyEntriesThatThereAre) {
  entry(group());
  for (const int absent : {-1, 0, 2}) {
    int policer = -5;
    EXPECT_EQ(processor.destroy_entry(absent), Status::not_found);
    EXPECT_EQ(processor.qualify(absent, FieldQualifier::in_port, port_1), Status::not_found);
    EXPECT_EQ(processor.qualify_ip_type(absent, 5), Status::not_found);
    EXPECT_EQ(processor.clear_qualifiers(absent), Status::not_found);
    EXPECT_EQ(add_action(absent, FieldAction::drop), Status::not_found);
    EXPECT_EQ(processor.set_priority(absent, 1), Status::not_found);
    EXPECT_EQ(processor.install(absent), Status::not_found);
    EXPECT_EQ(processor.reinstall(absent), Status::not_found);
    EXPECT_EQ(processor.remove(absent), Status::not_found);
    EXPECT_EQ(processor.attach_policer(absent, 0, 1), Status::not_found);
    EXPECT_EQ(processor.detach_policer(absent, 0), Status::not_found);
    EXPECT_EQ(processor.policer(absent, 0, policer), Status::not_found);
    EXPECT_EQ(policer, -5);
  }
}

TEST_F(FieldProcessor, GivesAGroupFurtherSlicesUntilTheStageHasNone) {
  const int growing = group();
  std::vector<int> others;
  for (int i = 0; i < 14; ++i) others.push_back(group());
  for (int i = 0; i < 256; ++i) entry(growing);
  EXPECT_EQ(processor.groups().at(growing).slices(), 1);
  for (int i = 0; i < 256; ++i) entry(growing);
  EXPECT_EQ(processor.groups().at(growing).slices(), 2);
  int id = -5;
  EXPECT_EQ(processor.create_entry(growing, id), Status::full);
  EXPECT_EQ(processor.create_entry_with_id(growing, 10000), Status::full);
  EXPECT_EQ(id, -5);
  EXPECT_EQ(processor.create_entry(others.front(), id), Status::ok);  // its slice has room
  EXPECT_EQ(processor.create_group({in}, FieldGroup::any_priority, id), Status::no_resource);

  for (int i = 1; i <= 256; ++i) processor.destroy_entry(i);
  EXPECT_EQ(processor.groups().at(growing).slices(), 1);
  EXPECT_EQ(processor.create_group({in}, FieldGroup::any_priority, id), Status::ok);
}

TEST_F(FieldProcessor, HoldsAsManyEntriesAsItsSlices) {
  const int ingress = group();
  const int egress = group(FieldGroup::any_priority, out);
  for (int i = 0; i < 4096; ++i) entry(ingress);
  for (int i = 0; i < 1024; ++i) entry(egress);
  int id = 0;
  EXPECT_EQ(processor.create_entry(ingress, id), Status::full);
  EXPECT_EQ(processor.create_entry(egress, id), Status::full);
}

TEST_F(FieldProcessor, InstallsAnEntryOnce) {
  const int id = entry(group());
  EXPECT_EQ(processor.reinstall(id), Status::not_found);
  EXPECT_EQ(met(), "");
  EXPECT_EQ(processor.install(id), Status::ok);
  EXPECT_EQ(met(), "1 ");
  EXPECT_EQ(processor.install(id), Status::exists);
  EXPECT_EQ(processor.reinstall(id), Status::ok);
  EXPECT_EQ(met(), "1 ");
}

TEST_F(FieldProcessor, RemovesAnEntryOfWhichItKeepsEverythingElse) {
  const int id = entry(group(), FieldAction::drop);
  EXPECT_EQ(processor.remove(id), Status::ok);
  EXPECT_FALSE(classify().dropped);
  EXPECT_EQ(processor.remove(id), Status::ok);
  EXPECT_EQ(processor.install(id), Status::ok);
  EXPECT_TRUE(classify().dropped);
}

TEST_F(FieldProcessor, DestroysNoInstalledEntry) {
  const int id = entry(group(), FieldAction::drop);
  EXPECT_EQ(processor.destroy_entry(id), Status::busy);
  EXPECT_TRUE(classify().dropped);
  processor.remove(id);
  EXPECT_EQ(processor.destroy_entry(id), Status::ok);
  EXPECT_EQ(processor.destroy_entry(id), Status::not_found);
}

TEST_F(FieldProcessor, ForgetsEverythingOfADestroyedEntry) {
  const int in_group = group();
  const int id = entry(in_group);
  processor.qualify(id, FieldQualifier::in_port, port_1);
  add_action(id, FieldAction::drop);
  processor.set_priority(id, 9);
  processor.destroy_entry(id);
  ASSERT_EQ(entry(in_group), id);
  const chip::FieldEntry& fresh = processor.entries().at(id);
  EXPECT_EQ(fresh.rule, chip::FieldRule{});
  EXPECT_EQ(fresh.priority, chip::FieldEntry::default_priority);
}

TEST_F(FieldProcessor, MatchesWhatItsGroupHoldsAlone) {
  const int id = entry(group());
  EXPECT_EQ(processor.qualify(id, FieldQualifier::source_mac, {1, 1}), Status::bad_parameter);
  EXPECT_EQ(processor.qualify(id, FieldQualifier::out_port, port_1), Status::bad_parameter);
  EXPECT_EQ(processor.qualify_ip_type(id, 5), Status::bad_parameter);
  EXPECT_TRUE(processor.entries().at(id).rule.matches.empty());
}

TEST_F(FieldProcessor, RefusesPortsThatTheChipDoesNotHaveAndDataWiderThanTheField) {
  const int id = entry(group());
  EXPECT_EQ(processor.qualify(id, FieldQualifier::in_port, {13, ~0ULL}), Status::bad_port);
  EXPECT_EQ(processor.qualify(id, FieldQualifier::in_port, {0xFFFFFFFF, ~0ULL}), Status::bad_port);
  EXPECT_EQ(processor.qualify(id, FieldQualifier::in_port, {0, ~0ULL}), Status::ok);
  EXPECT_EQ(processor.qualify(id, FieldQualifier::outer_vlan, {0x10000, 0xFFFF}), Status::bad_parameter);
  EXPECT_EQ(processor.qualify(id, FieldQualifier::outer_vlan, {0xFFFF, ~0ULL}), Status::ok);
}

TEST_F(FieldProcessor, KnowsThreeKindsOfIp) {
  int id = 0;
  processor.create_group({in, static_cast<int>(FieldQualifier::ip_type)}, FieldGroup::any_priority, id);
  const int asked = entry(id);
  for (const int type : {5, 10, 11}) EXPECT_EQ(processor.qualify_ip_type(asked, type), Status::ok) << type;
  for (const int type : {-1, 0, 4, 6, 12}) EXPECT_EQ(processor.qualify_ip_type(asked, type), Status::unavailable);
}

TEST_F(FieldProcessor, MeetsFramesThatHaveAllThatAnEntryMatches) {
  const int id = entry(group());
  processor.qualify(id, FieldQualifier::in_port, port_1);
  processor.qualify(id, FieldQualifier::outer_vlan, vlan_10);
  processor.install(id);
  EXPECT_EQ(met({.in_port = 1, .outer_tag = 10}), "1 ");
  EXPECT_EQ(met({.in_port = 1, .outer_tag = 0xE00A}), "1 ");
  EXPECT_EQ(met({.in_port = 2, .outer_tag = 10}), "");
  EXPECT_EQ(met({.in_port = 1, .outer_tag = 11}), "");
}

TEST_F(FieldProcessor, TakesTheLastWordOnAQualifier) {
  const int id = entry(group());
  processor.qualify(id, FieldQualifier::in_port, port_1);
  processor.qualify(id, FieldQualifier::in_port, {2, ~0ULL});
  processor.install(id);
  EXPECT_EQ(met({.in_port = 1}), "");
  EXPECT_EQ(met({.in_port = 2}), "1 ");
}

TEST_F(FieldProcessor, GoesByWhatWasInstalledUntilItIsInstalledAgain) {
  const int id = entry(group(), FieldAction::drop);
  processor.qualify(id, FieldQualifier::in_port, port_1);
  add_action(id, FieldAction::copy_to_cpu);
  EXPECT_TRUE(classify({.in_port = 2}).dropped);
  EXPECT_FALSE(classify({.in_port = 2}).copied_to_cpu);
  processor.reinstall(id);
  EXPECT_FALSE(classify({.in_port = 2}).dropped);
  EXPECT_TRUE(classify({.in_port = 1}).copied_to_cpu);
  processor.clear_qualifiers(id);
  EXPECT_FALSE(classify({.in_port = 2}).dropped);
  processor.reinstall(id);
  EXPECT_TRUE(classify({.in_port = 2}).dropped);
}

TEST_F(FieldProcessor, CountsTheFramesThatMeetAnEntrySinceItWasInstalled) {
  const int id = entry(group());
  processor.qualify(id, FieldQualifier::in_port, port_1);
  processor.install(id);
  for (const int port : {1, 2, 1, 1}) classify({.in_port = port});
  EXPECT_EQ(processor.entries().at(id).hits, 3U);
  processor.reinstall(id);
  EXPECT_EQ(processor.entries().at(id).hits, 3U);
  processor.remove(id);
  processor.install(id);
  EXPECT_EQ(processor.entries().at(id).hits, 0U);
}

TEST_F(FieldProcessor, ResetForgetsGroupsAndEntries) {
  entry(group(), FieldAction::drop);
  processor.reset();
  EXPECT_TRUE(processor.groups().empty());
  EXPECT_TRUE(processor.entries().empty());
  EXPECT_EQ(group(), 1);
  EXPECT_EQ(entry(1), 1);
}

// -------------------------------------------------------------------------------------------------- priority ----

TEST_F(FieldProcessor, MeetsTheEntryOfHighestPriorityInAGroup) {
  const int in_group = group();
  const int usual = entry(in_group, FieldAction::drop);
  const int low = entry(in_group, FieldAction::drop);
  const int high = entry(in_group, FieldAction::drop);
  processor.set_priority(low, 0);
  processor.set_priority(high, 3);
  EXPECT_EQ(met(), "3 ");
  processor.remove(high);
  EXPECT_EQ(met(), "2 ");
  processor.remove(low);
  EXPECT_EQ(met(), std::to_string(usual) + ' ');
  EXPECT_EQ(processor.set_priority(usual, -2), Status::bad_parameter);
  EXPECT_EQ(processor.set_priority(usual, -1), Status::ok);
}

TEST_F(FieldProcessor, MeetsTheEntryThatWasInstalledFirstOfEqualOnes) {
  const int in_group = group();
  const int first = entry(in_group);
  const int second = entry(in_group);
  processor.install(second);
  processor.install(first);
  EXPECT_EQ(met(), "2 ");
  processor.reinstall(second);
  EXPECT_EQ(met(), "2 ");
  processor.remove(second);
  processor.install(second);
  EXPECT_EQ(met(), "1 ");
}

TEST_F(FieldProcessor, MeetsOneEntryOfEachGroupTheGroupOfHighestPriorityFirst) {
  const int any = group();
  const int low = group(1);
  const int high = group(7);
  const int other_any = group();
  entry(any, FieldAction::drop);
  entry(low, FieldAction::drop);
  entry(high, FieldAction::drop);
  entry(other_any, FieldAction::drop);
  EXPECT_EQ(met(), "3 2 1 4 ");
  processor.set_group_priority(any, 4);
  EXPECT_EQ(met(), "3 1 2 4 ");
}

// --------------------------------------------------------------------------------------------------- actions ----

TEST_F(FieldProcessor, LeavesAFrameAloneThatMeetsNothing) {
  entry(group(FieldGroup::any_priority, out), FieldAction::drop);
  const FieldVerdict verdict = classify();
  EXPECT_TRUE(verdict.hits.empty());
  EXPECT_FALSE(verdict.dropped || verdict.drop_cancelled || verdict.red_dropped || verdict.copied_to_cpu);
  EXPECT_EQ(verdict.redirect_port, std::nullopt);
  EXPECT_EQ(verdict.priority, std::nullopt);
  EXPECT_EQ(verdict.policers, (std::array{0, 0}));
}

TEST_F(FieldProcessor, DoesWhatEachActionSays) {
  const int in_group = group();
  const int trap = entry(in_group, FieldAction::packet_priority, 7);
  EXPECT_EQ(classify().priority, 7);
  EXPECT_FALSE(classify().copied_to_cpu);
  add_action(trap, FieldAction::copy_to_cpu, 0, 0);
  add_action(trap, FieldAction::redirect_port, 0, 9);
  processor.reinstall(trap);
  EXPECT_EQ(classify().priority, 7);
  EXPECT_TRUE(classify().copied_to_cpu);
  EXPECT_EQ(classify().redirect_port, 9);
  EXPECT_FALSE(classify().dropped);

  const int red = entry(group(FieldGroup::any_priority, out), FieldAction::drop_red);
  EXPECT_TRUE(classify({}, FieldStage::egress).red_dropped);
  EXPECT_FALSE(classify({}, FieldStage::egress).dropped);
  add_action(red, FieldAction::drop_cancel);
  processor.reinstall(red);
  EXPECT_TRUE(classify({}, FieldStage::egress).drop_cancelled);
}

TEST_F(FieldProcessor, RefusesActionsTwiceOppositeUnknownOrWrong) {
  const int dropping = entry(group());
  EXPECT_EQ(add_action(dropping, FieldAction::drop), Status::ok);
  EXPECT_EQ(add_action(dropping, FieldAction::drop), Status::exists);
  EXPECT_EQ(add_action(dropping, FieldAction::drop_cancel), Status::bad_configuration);
  const int permitting = entry(1);
  EXPECT_EQ(add_action(permitting, FieldAction::drop_cancel), Status::ok);
  EXPECT_EQ(add_action(permitting, FieldAction::drop), Status::bad_configuration);
  EXPECT_EQ(processor.add_action(permitting, 11, 0, 0), Status::unavailable);
  EXPECT_EQ(add_action(permitting, FieldAction::packet_priority, 8), Status::bad_parameter);
  EXPECT_EQ(add_action(permitting, FieldAction::redirect_port, 0, 13), Status::bad_port);
  EXPECT_EQ(add_action(permitting, FieldAction::redirect_port, 1, 3), Status::bad_port);
  EXPECT_EQ(processor.entries().at(permitting).rule.actions.size(), 1U);
}

TEST_F(FieldProcessor, OnlyDropsOrPermitsOnTheWayOut) {
  const int id = entry(group(FieldGroup::any_priority, out));
  EXPECT_EQ(add_action(id, FieldAction::packet_priority, 1), Status::unavailable);
  EXPECT_EQ(add_action(id, FieldAction::copy_to_cpu), Status::unavailable);
  EXPECT_EQ(add_action(id, FieldAction::redirect_port, 0, 1), Status::unavailable);
  EXPECT_EQ(add_action(id, FieldAction::drop), Status::ok);
  EXPECT_EQ(add_action(id, FieldAction::drop_red), Status::ok);
}

TEST_F(FieldProcessor, LetsTheGroupOfHighestPriorityDecideOnDropping) {
  const int low = group(1);
  const int high = group(2);
  entry(low, FieldAction::drop);
  entry(high, FieldAction::drop_cancel);
  EXPECT_FALSE(classify().dropped);
  EXPECT_TRUE(classify().drop_cancelled);
  processor.set_group_priority(low, 3);
  EXPECT_TRUE(classify().dropped);
  EXPECT_FALSE(classify().drop_cancelled);
}

TEST_F(FieldProcessor, LetsTheGroupOfHighestPriorityDecideOnPortAndPriority) {
  const int low = group(1);
  const int high = group(2);
  add_action(entry(low, FieldAction::packet_priority, 1), FieldAction::redirect_port, 0, 1);
  add_action(entry(high, FieldAction::packet_priority, 2), FieldAction::redirect_port, 0, 2);
  processor.reinstall(1);
  processor.reinstall(2);
  EXPECT_EQ(classify().priority, 2);
  EXPECT_EQ(classify().redirect_port, 2);
  processor.set_group_priority(low, 3);
  EXPECT_EQ(classify().priority, 1);
  EXPECT_EQ(classify().redirect_port, 1);
}

TEST_F(FieldProcessor, DropsARedirectedFrameAndStillCopiesItToTheCpu) {
  const int high = entry(group(2), FieldAction::redirect_port, 0, 5);
  add_action(high, FieldAction::copy_to_cpu);
  processor.reinstall(high);
  entry(group(1), FieldAction::drop);
  const FieldVerdict verdict = classify();
  EXPECT_TRUE(verdict.dropped);
  EXPECT_EQ(verdict.redirect_port, std::nullopt);
  EXPECT_TRUE(verdict.copied_to_cpu);
}

// -------------------------------------------------------------------------------------------------- policers ----

class FieldPolicers : public FieldProcessor {
 protected:
  int policer() {
    int id = 0;
    EXPECT_EQ(policers.create({}, id), Status::ok);
    return id;
  }
};

TEST_F(FieldPolicers, AreAttachedByLevel) {
  const int id = entry(group());
  const int first = policer();
  const int second = policer();
  EXPECT_EQ(processor.attach_policer(id, 0, first), Status::ok);
  EXPECT_EQ(processor.attach_policer(id, 0, second), Status::exists);
  EXPECT_EQ(processor.attach_policer(id, 1, second), Status::ok);
  int found = 0;
  EXPECT_EQ(processor.policer(id, 0, found), Status::ok);
  EXPECT_EQ(found, first);
  EXPECT_EQ(processor.policer(id, 1, found), Status::ok);
  EXPECT_EQ(found, second);
  EXPECT_EQ(processor.detach_policer(id, 0), Status::ok);
  EXPECT_EQ(processor.detach_policer(id, 0), Status::not_found);
  EXPECT_EQ(processor.policer(id, 0, found), Status::not_found);
  EXPECT_EQ(found, second);
  EXPECT_EQ(processor.policer(id, 1, found), Status::ok);
}

TEST_F(FieldPolicers, AreRefusedAtOtherLevelsOrWhenThereIsNone) {
  const int id = entry(group());
  int found = 0;
  for (const int level : {-1, 2}) {
    EXPECT_EQ(processor.attach_policer(id, level, policer()), Status::bad_parameter);
    EXPECT_EQ(processor.detach_policer(id, level), Status::bad_parameter);
    EXPECT_EQ(processor.policer(id, level, found), Status::bad_parameter);
  }
  EXPECT_EQ(processor.attach_policer(id, 0, 100), Status::not_found);
  EXPECT_EQ(processor.attach_policer(id, 0, 0), Status::not_found);
  EXPECT_EQ(processor.policer(id, 0, found), Status::not_found);
}

TEST_F(FieldPolicers, StayWhileAnEntryUsesThem) {
  const int id = entry(group());
  const int other = entry(1);
  const int shared = policer();
  processor.attach_policer(id, 0, shared);
  processor.attach_policer(other, 0, shared);
  EXPECT_EQ(policers.destroy(shared), Status::busy);
  processor.detach_policer(id, 0);
  EXPECT_EQ(policers.destroy(shared), Status::busy);
  processor.destroy_entry(other);
  EXPECT_EQ(policers.destroy(shared), Status::ok);
}

TEST_F(FieldPolicers, MeterTheFramesOfAnEntryOnceItIsInstalledWithThem) {
  const int low = entry(group(1), FieldAction::drop_red);
  const int high = entry(group(2), FieldAction::drop_red);
  const int first = policer();
  const int second = policer();
  const int third = policer();
  processor.attach_policer(low, 0, first);
  EXPECT_EQ(classify().policers, (std::array{0, 0}));
  processor.reinstall(low);
  EXPECT_EQ(classify().policers, (std::array{first, 0}));
  processor.attach_policer(low, 1, second);
  processor.attach_policer(high, 0, third);
  processor.reinstall(low);
  processor.reinstall(high);
  EXPECT_EQ(classify().policers, (std::array{third, second}));
}

TEST_F(FieldPolicers, AreAllForgottenTogether) {
  const int id = entry(group());
  const int used = policer();
  processor.attach_policer(id, 0, used);
  processor.install(id);
  processor.forget_policers();
  EXPECT_EQ(classify().policers, (std::array{0, 0}));
  EXPECT_EQ(policers.destroy(used), Status::ok);
}

}  // namespace
