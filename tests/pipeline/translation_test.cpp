// Translation and double tagging, on the way in and on the way out.
#include "chip/pipeline/parse.h"
#include "chip/pipeline/stages.h"
#include "pipeline_fixture.h"

namespace {

using chip::VlanControlOfPort;
using support::Bytes;
using support::Frame;

class Translations : public support::PipelineTest {
 protected:
  Translations() {
    vlan(10, {1, 2});
    chip.vlan_controls.set(static_cast<int>(chip::VlanControlOfChip::translate), 1);
    for (const chip::Port port : chip::PortSet{1, 2}) {
      control(port, VlanControlOfPort::translate_ingress, 1);
      control(port, VlanControlOfPort::translate_egress, 1);
    }
  }

  void control(chip::Port port, VlanControlOfPort which, int value) {
    EXPECT_EQ(chip.vlan_controls.set_port(port, static_cast<int>(which), value), Status::ok);
  }

  const Bytes of_customer = Frame(1, 2).tag(5, 2).type(0x9000);
  const Bytes of_network = Frame(2, 1).tag(10, 2).type(0x9000);
};

TEST_F(Translations, OnTheWayInReplaceTheTagAndThePriority) {
  EXPECT_EQ(chip.vlan_translations.add(1, 5, {10, 6}), Status::ok);
  EXPECT_EQ(send(1, of_customer), "2: 01>02 [10p6] 9000\n");
  EXPECT_EQ(send(2, of_customer), "dropped: no such vlan\n");
}

TEST_F(Translations, WithoutAPriorityKeepTheFramesOwn) {
  chip.vlan_translations.add(1, 5, {10, -1});
  EXPECT_EQ(send(1, of_customer), "2: 01>02 [10p2] 9000\n");
}

TEST_F(Translations, LeaveASecondTagAlone) {
  chip.vlan_translations.add(1, 5, {10, 6});
  EXPECT_EQ(send(1, Frame(1, 2).tag(5).tag(7, 3).type(0x9000)), "2: 01>02 [10p6 7p3] 9000\n");
}

TEST_F(Translations, AreNotOfUntaggedFrames) {
  chip.vlan_translations.add(1, 1, {10, 6});
  EXPECT_EQ(send(1, Frame(1, 2).type(0x9000)).substr(0, 15), "2: 01>02 9000\n3");
}

TEST_F(Translations, OnTheWayInNeedTheControlsOfTheChipAndOfThePort) {
  chip.vlan_translations.add(1, 5, {10, 6});
  control(1, VlanControlOfPort::translate_ingress, 0);
  EXPECT_EQ(send(1, of_customer), "dropped: no such vlan\n");
  control(1, VlanControlOfPort::translate_ingress, 1);
  chip.vlan_controls.set(static_cast<int>(chip::VlanControlOfChip::translate), 0);
  EXPECT_EQ(send(1, of_customer), "dropped: no such vlan\n");
}

TEST_F(Translations, OnTheWayOutReplaceTheTagAndThePriority) {
  EXPECT_EQ(chip.vlan_translations.add_egress(1, 10, {5, 3}), Status::ok);
  EXPECT_EQ(send(2, of_network), "1: 02>01 [5p3] 9000\n");
  control(1, VlanControlOfPort::translate_egress, 0);
  EXPECT_EQ(send(2, of_network), "1: 02>01 [10p2] 9000\n");
}

TEST_F(Translations, OnTheWayOutAreNotOfUntaggedMembers) {
  chip.vlan_translations.add_egress(1, 10, {5, 3});
  chip.vlans.add_ports(10, {1}, {1});
  EXPECT_EQ(send(2, of_network), "1: 02>01 9000\n");
}

TEST_F(Translations, CanPutATagInFront) {
  EXPECT_EQ(chip.vlan_translations.add_outer(1, 5, 5, {10, 6}), Status::ok);
  EXPECT_EQ(send(1, of_customer), "2: 01>02 [10p6 5p2] 9000\n");
  EXPECT_EQ(send(1, Frame(1, 2).tag(6).type(0x9000)), "dropped: no such vlan\n");
}

TEST_F(Translations, CanPutATagInFrontOfARangeOfTags) {
  EXPECT_EQ(chip.vlan_translations.add_outer(1, 100, 199, {10, -1}), Status::ok);
  EXPECT_EQ(send(1, Frame(1, 2).tag(100, 1).type(0x9000)), "2: 01>02 [10p1 100p1] 9000\n");
  EXPECT_EQ(send(1, Frame(1, 2).tag(199).type(0x9000)), "2: 01>02 [10 199] 9000\n");
  EXPECT_EQ(send(1, Frame(1, 2).tag(99).type(0x9000)), "dropped: no such vlan\n");
  EXPECT_EQ(send(1, Frame(1, 2).tag(200).type(0x9000)), "dropped: no such vlan\n");
  EXPECT_EQ(send(2, Frame(1, 2).tag(150).type(0x9000)), "dropped: no such vlan\n");
}

TEST_F(Translations, PutNoThirdTagInFront) {
  chip.vlan_translations.add_outer(1, 5, 5, {10, 6});
  EXPECT_EQ(send(1, Frame(1, 2).tag(5).tag(7).type(0x9000)), "dropped: no such vlan\n");
}

TEST_F(Translations, OfOneTagComeBeforeRanges) {
  vlan(20, {2});
  chip.vlan_translations.add_outer(1, 1, 4095, {10, 0});
  chip.vlan_translations.add(1, 5, {20, 0});
  EXPECT_EQ(send(1, of_customer), "2: 01>02 [20] 9000\n");
}

TEST_F(Translations, LeaveWhatIsKnownOfTheTagsOnArrivalAlone) {
  chip.vlan_translations.add_outer(1, 5, 5, {10, 6});
  std::vector<chip::Copy> copies;
  std::vector<chip::Looped> looped;
  chip::Passage frame(chip, copies, looped);
  ASSERT_TRUE(chip::parse(1, of_customer, frame.packet));
  chip::assign_vlan(frame);
  EXPECT_EQ(frame.packet.inner_vlan(), 5);
  EXPECT_EQ(frame.packet.priority, 6);
  EXPECT_EQ(frame.packet.fields.vlan_format, 1);
}

}  // namespace
