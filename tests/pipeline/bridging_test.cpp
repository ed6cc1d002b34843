// Frames within a VLAN: floods, learned destinations, membership.
#include "pipeline_fixture.h"

namespace {

using support::Frame;

class Bridging : public support::PipelineTest {
 protected:
  Bridging() { vlan(10, {1, 2, 3}, {1, 2}); }
};

TEST_F(Bridging, FloodsAFrameToAnUnknownDestinationToTheOtherMembers) {
  EXPECT_EQ(send(1, Frame(1, 2).tag(10).ip("10.0.0.1", "10.0.0.2").udp(5, 6)),
            "2: 01>02 10.0.0.1>10.0.0.2 ttl 64 udp 5>6\n"
            "3: 01>02 [10] 10.0.0.1>10.0.0.2 ttl 64 udp 5>6\n");
}

TEST_F(Bridging, SendsAFrameToALearnedDestinationThereAlone) {
  send(3, Frame(2, 0xFF).tag(10).type(0x9000));
  EXPECT_EQ(send(1, Frame(1, 2).tag(10).type(0x9000)), "3: 01>02 [10] 9000\n");
}

TEST_F(Bridging, GivesAnUntaggedFrameTheVlanOfItsPort) {
  chip.port_forwarding.set_untagged_vlan(1, 10);
  EXPECT_EQ(send(1, Frame(1, 2).type(0x9000)), "2: 01>02 9000\n3: 01>02 [10] 9000\n");
}

TEST_F(Bridging, GivesAFrameWithATagOfAnotherTypeTheVlanOfItsPortAndLeavesThatTagAlone) {
  vlan(20, {1, 2, 3});
  chip.port_forwarding.set_untagged_vlan(1, 10);
  EXPECT_EQ(send(1, Frame(1, 2).tag(20, 3, 0x88A8).type(0x9000)), "2: 01>02 [s20p3] 9000\n3: 01>02 [10 s20p3] 9000\n");
}

TEST_F(Bridging, LeavesAnInnerTagOfAnotherTypeAlone) {
  EXPECT_EQ(send(1, Frame(1, 2).tag(10).tag(20, 3, 0x88A8).type(0x9000)),
            "2: 01>02 [s20p3] 9000\n3: 01>02 [10 s20p3] 9000\n");
}

TEST_F(Bridging, DropsAFrameOfAVlanThatDoesNotExist) {
  EXPECT_EQ(send(1, Frame(1, 2).tag(11).type(0x9000)), "dropped: no such vlan\n");
  EXPECT_EQ(drops(Drop::no_vlan), 1U);
}

TEST_F(Bridging, DropsAFrameFromAPortThatIsNoMemberAndChecksThat) {
  EXPECT_EQ(send(4, Frame(1, 2).tag(10).type(0x9000)), "1: 01>02 9000\n2: 01>02 9000\n3: 01>02 [10] 9000\n");
  chip.port_filters.set_membership_checks(4, chip::PortFilters::check_ingress);
  EXPECT_EQ(send(4, Frame(1, 2).tag(10).type(0x9000)), "dropped: not a member of the vlan\n");
}

}  // namespace
