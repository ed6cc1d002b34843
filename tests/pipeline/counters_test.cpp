// What frames add to the counters of their ports, and what mirrors see of them.
#include "pipeline_fixture.h"

namespace {

using support::Bytes;
using support::Frame;

class Counting : public support::PipelineTest {
 protected:
  Counting() { vlan(10, {1, 2}, {2}); }

  /// The counters of a port that are not 0: "1:64 59:1 ".
  std::string counters(chip::Port port) const {
    std::string text;
    const chip::Counters::Values& values = chip.counters.all()[port];
    for (std::size_t i = 0; i < values.size(); ++i)
      if (values[i] != 0) text += std::to_string(i) + ':' + std::to_string(values[i]) + ' ';
    return text;
  }
  uint64_t counter(chip::Port port, int number) const { return *chip.counters.find(port, number); }
};

TEST_F(Counting, AFrameCountsWhereItComesInAndWhereItLeaves) {
  send(1, Frame(1, 2).tag(10).type(0x9000));
  EXPECT_EQ(counters(1), "0:64 1:1 18:1 26:1 36:64 37:1 41:1 58:64 59:1 90:1 176:1 ");
  EXPECT_EQ(counters(2), "6:64 7:1 19:1 26:1 36:64 37:1 40:1 62:64 63:1 99:1 ");
}

TEST_F(Counting, BroadcastsAndMulticastsCountApart) {
  send(1, Frame(1, 0xFF).tag(10).type(0x9000));
  send(1, Frame(support::mac(1), {1, 0, 0, 0, 0, 1}).tag(10).type(0x9000));
  EXPECT_EQ(counter(1, 61), 1U);
  EXPECT_EQ(counter(1, 60), 1U);
  EXPECT_EQ(counter(1, 59), 0U);
  EXPECT_EQ(counter(1, 2), 2U) << "neither is unicast";
}

TEST_F(Counting, FramesCountByTheirLengthOnTheCable) {
  send(1, Frame(1, 2).tag(10).type(0x9000).length(61));
  send(1, Frame(1, 2).tag(10).type(0x9000).length(1514));
  send(1, Frame(1, 2).tag(10).type(0x9000).length(1515));
  EXPECT_EQ(counter(1, 91), 1U);
  EXPECT_EQ(counter(1, 95), 1U);
  EXPECT_EQ(counter(1, 96), 1U);
  EXPECT_EQ(counter(1, 86), 1U);
}

TEST_F(Counting, WhatIsDroppedCountsAsDiscarded) {
  send(1, Frame(1, 2).tag(11).type(0x9000));
  EXPECT_EQ(counter(1, 3), 1U);
  chip.port_macs.set_partner(1, false);
  send(1, Frame(1, 2).tag(10).type(0x9000));
  EXPECT_EQ(counter(1, 18), 1U) << "a port without a link hears nothing";
}

TEST_F(Counting, FramesThatAreTooLongAreErrorsOnTheWayInAndDiscardedOnTheWayOut) {
  chip.port_macs.set_frame_max(1, 1518);
  chip.port_macs.set_frame_max(2, 1000);
  EXPECT_EQ(send(1, Frame(1, 2).tag(10).type(0x9000).length(1519)), "dropped: too long\n");
  EXPECT_EQ(counter(1, 52), 1U);
  EXPECT_EQ(send(1, Frame(1, 2).tag(10).type(0x9000).length(1518)), "dropped: egress too long\n")
      << "a tag does not count";
  EXPECT_EQ(counter(2, 9), 1U);
}

TEST_F(Counting, CopiesThatRulesDropOnTheWayOutAreDiscarded) {
  chip::FieldProcessor& rules = chip.field_processor;
  int group = 0;
  int entry = 0;
  rules.create_group({chip::FieldProcessor::egress_stage}, 0, group);
  rules.enable_group(group, true);
  rules.create_entry(group, entry);
  rules.add_action(entry, static_cast<int>(chip::FieldAction::drop), 0, 0);
  EXPECT_EQ(rules.install(entry), Status::ok);
  EXPECT_EQ(send(1, Frame(1, 2).tag(10).type(0x9000)), "dropped: egress field rule\n");
  EXPECT_EQ(counters(2), "9:1 ");
}

TEST_F(Counting, Ip6MulticastCountsBothWays) {
  const Bytes frame = Frame(support::mac(1), {0x33, 0x33, 0, 0, 0, 1}).tag(10).ip("2001::1", "ff05::1").udp(5, 6);
  send(1, frame);
  EXPECT_EQ(counter(1, 72), 1U);
  EXPECT_EQ(counter(2, 73), 1U);
  EXPECT_EQ(counter(2, 70), 0U) << "it is not routed";
}

TEST_F(Counting, AMirrorSeesWhatComesInAsItCame) {
  chip::MirrorId id;
  chip.mirrors.set_mode(1);
  EXPECT_EQ(chip.mirrors.create(0, chip::Port{5}, id), Status::ok);
  EXPECT_EQ(chip.mirrors.add_source(1, chip::Mirrors::enable | chip::Mirrors::ingress, id), Status::ok);
  EXPECT_EQ(send(1, Frame(1, 2).tag(10).type(0x9000)), "5: 01>02 [10] 9000\n2: 01>02 9000\n");
  EXPECT_EQ(send(2, Frame(2, 1).tag(10).type(0x9000)), "1: 02>01 [10] 9000\n");
  EXPECT_EQ(counter(5, 63), 1U);
}

TEST_F(Counting, AMirrorSeesWhatGoesOutAsItGoes) {
  chip::MirrorId id;
  chip.mirrors.set_mode(1);
  chip.mirrors.create(0, chip::Port{5}, id);
  chip.mirrors.add_source(2, chip::Mirrors::enable | chip::Mirrors::egress, id);
  EXPECT_EQ(send(1, Frame(1, 2).tag(10).type(0x9000)), "5: 01>02 9000\n2: 01>02 9000\n");
  chip.mirrors.set_mode(0);
  EXPECT_EQ(send(1, Frame(1, 2).tag(10).type(0x9000)), "2: 01>02 9000\n");
}

}  // namespace
