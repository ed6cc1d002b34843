// What the entries of the field processor do to frames on their way in and out, and their policers.
#include "pipeline_fixture.h"

namespace {

using chip::FieldAction;
using chip::FieldProcessor;
using chip::FieldQualifier;
using chip::SwitchControlOfPort;
using support::Bytes;
using support::Frame;

class Rules : public support::PipelineTest {
 protected:
  Rules() { vlan(10, {0, 1, 2, 3}, {2}); }

  int entry(int stage, FieldAction action, uint32_t parameter0 = 0, uint32_t parameter1 = 0) {
    int group = 0;
    int entry = 0;
    const int vlan = static_cast<int>(FieldQualifier::outer_vlan);
    EXPECT_EQ(rules.create_group({stage, vlan}, 0, group), Status::ok);
    EXPECT_EQ(rules.enable_group(group, true), Status::ok);
    EXPECT_EQ(rules.create_entry(group, entry), Status::ok);
    add(entry, action, parameter0, parameter1);
    EXPECT_EQ(rules.install(entry), Status::ok);
    return entry;
  }
  void add(int entry, FieldAction action, uint32_t parameter0 = 0, uint32_t parameter1 = 0) {
    EXPECT_EQ(rules.add_action(entry, static_cast<int>(action), parameter0, parameter1), Status::ok);
  }
  void add_later(int entry, FieldAction action, uint32_t parameter0 = 0, uint32_t parameter1 = 0) {
    add(entry, action, parameter0, parameter1);
    EXPECT_EQ(rules.reinstall(entry), Status::ok);
  }
  /// Holds an entry to 8 kbit/s, and three frames of 64 bytes at once.
  void police(int entry, int mode = 3) {
    int policer = 0;
    EXPECT_EQ(chip.policers.create({.mode = mode, .committed = {0, 0, 0}, .peak = {8, 1, 536}}, policer), Status::ok);
    EXPECT_EQ(rules.attach_policer(entry, 0, policer), Status::ok);
    EXPECT_EQ(rules.reinstall(entry), Status::ok);
  }
  /// How many of 30 frames reach port 2.
  int passing(const Bytes& frame) {
    int count = 0;
    for (int i = 0; i < 30; ++i) count += send(1, frame).find("2: ") != std::string::npos ? 1 : 0;
    return count;
  }

  static constexpr int in = FieldProcessor::ingress_stage;
  static constexpr int out = FieldProcessor::egress_stage;

  FieldProcessor& rules = chip.field_processor;
  const Bytes broadcast = Frame(1, 0xFF).tag(10).type(0x9000);
  const std::string everywhere = "2: 01>all 9000\n3: 01>all [10] 9000\ncpu 0x80: 01>all [10] 9000\n";
};

// ---------------------------------------------------------------------------------------------------- way in ----

TEST_F(Rules, DropFrames) {
  const int id = entry(in, FieldAction::drop);
  EXPECT_EQ(send(1, broadcast), "dropped: field rule\n");
  rules.remove(id);
  EXPECT_EQ(send(1, broadcast), everywhere);
}

TEST_F(Rules, CopyFramesToTheCpuOnce) {
  const int id = entry(in, FieldAction::copy_to_cpu);
  EXPECT_EQ(send(1, Frame(1, 2).tag(10).type(0x9000)),
            "2: 01>02 9000\n3: 01>02 [10] 9000\ncpu 0x90: 01>02 [10] 9000\n");
  add_later(id, FieldAction::drop);
  EXPECT_EQ(send(1, broadcast), "cpu 0x10: 01>all [10] 9000\ndropped: field rule\n");
}

TEST_F(Rules, RedirectFramesToAPort) {
  entry(in, FieldAction::redirect_port, 0, 3);
  EXPECT_EQ(send(1, broadcast), "3: 01>all [10] 9000\n");
}

TEST_F(Rules, RedirectFramesToTheCpu) {
  entry(in, FieldAction::redirect_port, 0, 0);
  EXPECT_EQ(send(1, broadcast), "cpu 0x10: 01>all [10] 9000\ndropped: trapped to the cpu\n");
}

TEST_F(Rules, DoNotRedirectWhatIsDropped) {
  entry(in, FieldAction::redirect_port, 0, 0);
  EXPECT_EQ(send(1, Frame(1, 0xFF).tag(11).type(0x9000)), "dropped: no such vlan\n");
}

TEST_F(Rules, GiveFramesAPriority) {
  entry(in, FieldAction::packet_priority, 6);
  EXPECT_EQ(send(1, broadcast), "2: 01>all 9000\n3: 01>all [10p6] 9000\ncpu 0x80: 01>all [10p6] 9000\n");
}

TEST_F(Rules, PermitWhatAControlDropsButOpenNoPort) {
  entry(in, FieldAction::drop_cancel);
  chip.switch_controls.set_port(1, static_cast<int>(SwitchControlOfPort::dhcp_drop), 1);
  EXPECT_EQ(send(1, Frame(1, 2).tag(10).ip("10.0.0.1", "10.0.0.2").udp(68, 67)).substr(0, 2), "2:");
  EXPECT_EQ(send(1, Frame(1, 0xFF).tag(11).type(0x9000)), "dropped: no such vlan\n");
  chip.port_filters.set_membership_checks(4, chip::PortFilters::check_ingress);
  EXPECT_EQ(send(4, broadcast), "dropped: not a member of the vlan\n");
  chip.spanning_trees.set_state(1, 1, static_cast<int>(chip::StpState::block));
  EXPECT_EQ(send(1, broadcast), "dropped: spanning tree\n");
}

TEST_F(Rules, LeaveControlFramesToTheCpu) {
  entry(in, FieldAction::drop_cancel);
  int index = 0;
  chip.l2_cache.set(-1, {.flags = 17, .mac = {0x01, 0x80, 0xC2}, .mac_mask = {255, 255, 255, 255, 255, 255}}, index);
  EXPECT_EQ(send(1, Frame(support::mac(1), {0x01, 0x80, 0xC2, 0, 0, 0}).tag(10).type(0x9000)),
            "cpu 0x1: 01>01:80:c2:00:00:00 [10] 9000\ndropped: trapped to the cpu\n");
}

// ------------------------------------------------------------------------------------------------- policers ----

TEST_F(Rules, DropRedFramesWhereTheyAreAskedTo) {
  const int id = entry(in, FieldAction::copy_to_cpu);
  police(id);
  EXPECT_EQ(passing(broadcast), 30) << "red, but nobody drops it";
  chip.now += second;
  add_later(id, FieldAction::drop_red);
  EXPECT_EQ(passing(broadcast), 3) << "1536 bits, 512 a frame";
  EXPECT_EQ(send(1, broadcast), "dropped: policer\n") << "and the CPU gets none";
  EXPECT_EQ(drops(Drop::policer), 28U);
}

TEST_F(Rules, LeaveWhatIsDroppedAndRedTooItsFirstReason) {
  const int id = entry(in, FieldAction::drop_red);
  police(id);
  for (int i = 0; i < 3; ++i) send(1, broadcast);
  EXPECT_EQ(send(1, broadcast), "dropped: policer\n");
  EXPECT_EQ(send(1, Frame(1, 0xFF).tag(11).type(0x9000)), "dropped: no such vlan\n");
  add_later(id, FieldAction::redirect_port, 0, 0);
  EXPECT_EQ(send(1, broadcast), "dropped: policer\n") << "for the CPU, until it is too much for that";
}

TEST_F(Rules, LetTheRateOfAPolicerPass) {
  const int id = entry(in, FieldAction::drop_red);
  police(id);
  EXPECT_EQ(passing(broadcast), 3);
  chip.now += second / 8;
  EXPECT_EQ(passing(broadcast), 1) << "1000 bits";
  chip.now += second;
  EXPECT_EQ(passing(broadcast), 3) << "no more than the burst";
}

TEST_F(Rules, CountBytesNotFrames) {
  police(entry(in, FieldAction::drop_red));
  EXPECT_EQ(passing(Frame(1, 0xFF).tag(10).type(0x9000).length(124)), 1) << "1024 bits of 1536";
  EXPECT_EQ(passing(broadcast), 1);
}

TEST_F(Rules, LetFramesThatArePermittedBeTooMany) {
  const int id = entry(in, FieldAction::drop_cancel);
  police(id);
  add_later(id, FieldAction::drop_red);
  EXPECT_EQ(passing(broadcast), 3);
}

TEST_F(Rules, KnowNoRedInOtherModes) {
  police(entry(in, FieldAction::drop_red), 0);
  EXPECT_EQ(passing(broadcast), 30);
}

// --------------------------------------------------------------------------------------------------- way out ----

TEST_F(Rules, DropCopiesOnTheirWayOut) {
  const int id = entry(out, FieldAction::drop);
  EXPECT_EQ(send(1, broadcast), "cpu 0x80: 01>all [10] 9000\n");
  rules.qualify(id, FieldQualifier::outer_vlan, {11, 0xFFF});
  rules.reinstall(id);
  EXPECT_EQ(send(1, broadcast), everywhere);
}

TEST_F(Rules, DropRedCopiesOnTheirWayOut) {
  chip.spanning_trees.set_state(1, 3, static_cast<int>(chip::StpState::block));  // one copy a frame
  const int id = entry(out, FieldAction::drop_red);
  police(id);
  EXPECT_EQ(passing(broadcast), 3);
  EXPECT_EQ(rules.entries().at(id).hits, 30U);
}

}  // namespace
