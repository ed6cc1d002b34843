// What the MAC table makes of the sources of frames, and they of it.
#include "pipeline_fixture.h"

namespace {

using chip::LearnLimit;
using chip::MacEntry;
using chip::Place;
using chip::Port;
using chip::PortForwardings;
using chip::VlanAddresses;
using support::Frame;

class SourceLearning : public support::PipelineTest {
 protected:
  SourceLearning() { vlan(10, {1, 2, 3}); }

  std::string send_from(Port port, int source) { return send(port, Frame(source, 9).tag(10).type(0x9000)); }
  const MacEntry* entry(uint8_t last) const { return chip.mac_table.find(10, {0x02, 0, 0, 0, 0, last}); }
  void add(uint8_t last, Port port, uint32_t flags) {
    EXPECT_EQ(chip.mac_table.add({.mac = {0x02, 0, 0, 0, 0, last}, .vlan = 10, .flags = flags, .place = port}),
              Status::ok);
  }

  const std::string flooded_from_1 = "2: 01>09 [10] 9000\n3: 01>09 [10] 9000\n";
};

TEST_F(SourceLearning, FollowsAStationThatMoves) {
  send_from(1, 1);
  EXPECT_EQ(entry(1)->place, Place{Port{1}});
  send_from(2, 1);
  EXPECT_EQ(entry(1)->place, Place{Port{2}});
}

TEST_F(SourceLearning, DropsFramesOfASourceThatIsNotToBeHeard) {
  add(1, 1, MacEntry::discard_source | MacEntry::fixed);
  EXPECT_EQ(send_from(1, 1), "dropped: source discard\n");
}

TEST_F(SourceLearning, NeitherLearnsNorPassesOnWhatComesFromAGroup) {
  const Frame from_group = Frame({0x01, 0, 0x5E, 0, 0, 1}, support::mac(9)).tag(10).type(0x9000);
  EXPECT_EQ(send(1, from_group), "dropped: source is a group\n");
  EXPECT_EQ(chip.mac_table.size(), 0);
  EXPECT_EQ(send_from(1, 0xFF), "dropped: source is a group\n");

  int group = 0;
  int permit = 0;
  chip.field_processor.create_group({chip::FieldProcessor::ingress_stage}, 0, group);
  chip.field_processor.enable_group(group, true);
  chip.field_processor.create_entry(group, permit);
  chip.field_processor.add_action(permit, static_cast<int>(chip::FieldAction::drop_cancel), 0, 0);
  chip.field_processor.install(permit);
  EXPECT_EQ(send(1, from_group), "dropped: source is a group\n") << "no rule makes it a host";
}

TEST_F(SourceLearning, DoesNotLearnTheAddressOfZeros) {
  const Frame from_nobody = Frame(support::Bytes(6), support::mac(9)).tag(10).type(0x9000);
  EXPECT_EQ(send(1, from_nobody),
            "2: 00:00:00:00:00:00>09 [10] 9000\n"
            "3: 00:00:00:00:00:00>09 [10] 9000\n");
  EXPECT_EQ(chip.mac_table.size(), 0);
  chip.port_forwarding.set_learning(1, PortForwardings::learn);
  EXPECT_EQ(send(1, from_nobody), "dropped: unknown source\n") << "it never is known";
}

TEST_F(SourceLearning, LearnsNothingFromFramesThatAreDropped) {
  chip.port_filters.set_membership_checks(4, chip::PortFilters::check_ingress);
  send_from(4, 1);
  EXPECT_EQ(entry(1), nullptr);
}

TEST_F(SourceLearning, APortDecidesWhatBecomesOfUnknownSources) {
  chip.port_forwarding.set_learning(1, 0);
  EXPECT_EQ(send_from(1, 1), "dropped: unknown source\n");
  EXPECT_EQ(entry(1), nullptr);
  chip.port_forwarding.set_learning(1, PortForwardings::to_cpu);
  EXPECT_EQ(send_from(1, 1), "cpu 0x20: 01>09 [10] 9000\ndropped: unknown source\n");
  chip.port_forwarding.set_learning(1, PortForwardings::forward);
  EXPECT_EQ(send_from(1, 1), flooded_from_1);
  EXPECT_EQ(entry(1), nullptr);
  add(1, 1, MacEntry::fixed);
  chip.port_forwarding.set_learning(1, 0);
  EXPECT_EQ(send_from(1, 1), flooded_from_1) << "it is known now";
}

TEST_F(SourceLearning, ALimitDecidesWhatBecomesOfOneTooMany) {
  chip.learn_limits.enable(true);
  chip.learn_limits.set({VlanAddresses{10}}, {.limit = 1, .actions = 0});
  send_from(2, 2);
  EXPECT_EQ(send_from(1, 1), flooded_from_1);
  EXPECT_EQ(entry(1), nullptr);
  chip.learn_limits.set({VlanAddresses{10}}, {.limit = 1, .actions = LearnLimit::drop | LearnLimit::to_cpu});
  EXPECT_EQ(send_from(1, 1), "cpu 0x20: 01>09 [10] 9000\ndropped: learn limit\n");
}

TEST_F(SourceLearning, GoesOnInThePortStateThatLearnsButDoesNotForward) {
  chip.spanning_trees.set_state(1, 1, static_cast<int>(chip::StpState::learn));
  EXPECT_EQ(send_from(1, 1), "dropped: spanning tree\n");
  EXPECT_NE(entry(1), nullptr);
  chip.spanning_trees.set_state(1, 1, static_cast<int>(chip::StpState::block));
  EXPECT_EQ(send_from(1, 2), "dropped: spanning tree\n");
  EXPECT_EQ(entry(2), nullptr);
}

}  // namespace
