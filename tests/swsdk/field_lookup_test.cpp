// Which entry of several a frame meets, and what entries do to it together.
#include "swsdk/field_processor_fixture.h"

namespace {

using support::FieldProcessor;

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
  EXPECT_EQ(classify().redirect_port, chip::Port{9});
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
  EXPECT_EQ(classify().redirect_port, chip::Port{2});
  processor.set_group_priority(low, 3);
  EXPECT_EQ(classify().priority, 1);
  EXPECT_EQ(classify().redirect_port, chip::Port{1});
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
  EXPECT_EQ(processor.policer(id, 0), first);
  EXPECT_EQ(processor.policer(id, 1), second);
  EXPECT_EQ(processor.detach_policer(id, 0), Status::ok);
  EXPECT_EQ(processor.detach_policer(id, 0), Status::not_found);
  EXPECT_EQ(processor.policer(id, 0), std::nullopt);
  EXPECT_EQ(processor.absent_policer(id, 0), Status::not_found);
  EXPECT_EQ(processor.policer(id, 1), second);
}

TEST_F(FieldPolicers, AreRefusedAtOtherLevelsOrWhenThereIsNone) {
  const int id = entry(group());
  for (const int level : {-1, 2}) {
    EXPECT_EQ(processor.attach_policer(id, level, policer()), Status::bad_parameter);
    EXPECT_EQ(processor.detach_policer(id, level), Status::bad_parameter);
    EXPECT_EQ(processor.policer(id, level), std::nullopt);
    EXPECT_EQ(processor.absent_policer(id, level), Status::bad_parameter);
  }
  EXPECT_EQ(processor.attach_policer(id, 0, 100), Status::not_found);
  EXPECT_EQ(processor.attach_policer(id, 0, 0), Status::bad_parameter);
  EXPECT_EQ(processor.policer(id, 0), std::nullopt);
  EXPECT_EQ(processor.absent_policer(id, 0), Status::not_found);
  EXPECT_EQ(processor.policer(id + 1, 0), std::nullopt);
  EXPECT_EQ(processor.absent_policer(id + 1, 0), Status::not_found);
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
