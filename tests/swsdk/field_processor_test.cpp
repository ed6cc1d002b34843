// Groups and entries of the field processor: their states, limits and errors.
#include "swsdk/field_processor_fixture.h"

#include <vector>

namespace {

using chip::FieldMatch;
using support::FieldProcessor;

constexpr FieldMatch port_1{1, ~0ULL};
constexpr FieldMatch vlan_10{10, 0xFFF};

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
    EXPECT_EQ(processor.policer(absent, 0), std::nullopt);
    EXPECT_EQ(processor.absent_policer(absent, 0), Status::not_found);
    EXPECT_EQ(processor.find_entry(absent), nullptr);
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
  EXPECT_EQ(processor.entries().at(id).rule.matches.at(FieldQualifier::outer_vlan), (FieldMatch{0xFFFF, 0xFFFF}));
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
  for (const chip::Port port : {chip::Port{1}, chip::Port{2}, chip::Port{1}, chip::Port{1}})
    classify({.in_port = port});
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

}  // namespace
