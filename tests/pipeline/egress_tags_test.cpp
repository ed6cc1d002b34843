// What the way out makes of the tags that a copy has inside the chip.
#include "pipeline_fixture.h"

namespace {

using chip::EgressAction;
using chip::TagAction;
using chip::VlanControlOfPort;
using support::Bytes;
using support::Frame;

class EgressTags : public support::PipelineTest {
 protected:
  EgressTags() {
    vlan(10, {1, 2});
    chip.vlan_controls.set(static_cast<int>(chip::VlanControlOfChip::translate), 1);
    enable(1);
  }

  void enable(int value) {
    chip.vlan_controls.set_port(1, static_cast<int>(VlanControlOfPort::translate_egress), value);
  }
  /// Sets an action for port 1.
  void action(int outer, int inner, const EgressAction& what) {
    EXPECT_EQ(chip.egress_actions.set({chip::Port{1}, outer, inner}, what), Status::ok);
  }
  /// The tags with which a frame leaves at port 1.
  std::string tags(const Frame& frame) {
    const std::string out = send(2, Frame(frame).type(0x9000));
    return out.substr(9, out.find("9000") - 9);
  }
  /// An action that does the same to every kind of frame.
  static EgressAction both(EgressAction what, chip::TagChange outer, chip::TagChange inner = {}) {
    what.double_tagged = what.outer_tagged = what.inner_tagged = what.untagged = {outer, inner};
    return what;
  }

  /// What actions have to give; they differ in what they do with it.
  static EgressAction offering() {
    EgressAction what;
    what.outer_vlan = 20;
    what.inner_vlan = 30;
    what.priority = 5;
    what.inner_packet_priority = 6;
    what.outer_cfi = 1;
    what.inner_cfi = 1;
    return what;
  }

  const Frame single = Frame(2, 1).tag(10, 2);
  const Frame stacked = Frame(2, 1).tag(10, 2).tag(7, 3);
  const EgressAction offer = offering();
};

TEST_F(EgressTags, AreThoseInsideForTaggedMembers) {
  EXPECT_EQ(tags(single), "[10p2] ");
  EXPECT_EQ(tags(stacked), "[10p2 7p3] ");
}

TEST_F(EgressTags, HaveNoOuterOneForUntaggedMembers) {
  chip.vlans.add_ports(10, {1}, {1});
  EXPECT_EQ(tags(single), "");
  EXPECT_EQ(tags(stacked), "[7p3] ");
}

TEST_F(EgressTags, AreChangedByTheActionOfBothVlansOrElseOfTheOuterOne) {
  EgressAction what = offer;
  what.double_tagged.outer.vlan = TagAction::replace;
  action(10, 0, what);
  EXPECT_EQ(tags(stacked), "[20p2 7p3] ");
  what.outer_vlan = 21;
  action(10, 7, what);
  EXPECT_EQ(tags(stacked), "[21p2 7p3] ");
  EXPECT_EQ(tags(Frame(2, 1).tag(10).tag(8)), "[20 8] ");
}

TEST_F(EgressTags, AreChangedOfPortsThatTranslateOnTheWayOut) {
  EgressAction what = offer;
  what.outer_tagged.outer.vlan = TagAction::replace;
  action(10, 0, what);
  EXPECT_EQ(tags(single), "[20p2] ");
  enable(0);
  EXPECT_EQ(tags(single), "[10p2] ");
}

TEST_F(EgressTags, OfEachKindOfFrameHaveChangesOfTheirOwn) {
  EgressAction what = offer;
  what.double_tagged.inner.vlan = TagAction::remove;
  what.outer_tagged.inner.vlan = TagAction::add;
  what.inner_tagged.inner.vlan = TagAction::replace;
  what.untagged.outer.vlan = TagAction::add;
  action(10, 0, what);
  EXPECT_EQ(tags(stacked), "[10p2] ");
  EXPECT_EQ(tags(single), "[10p2 30p2] ");
  chip.vlans.add_ports(10, {1}, {1});
  EXPECT_EQ(tags(stacked), "[30p3] ");
  EXPECT_EQ(tags(single), "[20p2] ");
}

TEST_F(EgressTags, AreReplacedWhereTheyAreAlone) {
  action(10, 0, both(offer, {.vlan = TagAction::replace}, {.vlan = TagAction::replace}));
  EXPECT_EQ(tags(single), "[20p2] ");
  EXPECT_EQ(tags(stacked), "[20p2 30p3] ");
}

TEST_F(EgressTags, AreRemoved) {
  action(10, 0, both(offer, {.vlan = TagAction::remove}));
  EXPECT_EQ(tags(single), "");
  EXPECT_EQ(tags(stacked), "[7p3] ");
}

TEST_F(EgressTags, AreCopiedFromTheOtherOneAsItWas) {
  action(10, 0, both(offer, {.vlan = TagAction::copy}, {.vlan = TagAction::copy}));
  EXPECT_EQ(tags(stacked), "[7p2 10p3] ");
  EXPECT_EQ(tags(single), "[10p2 10p2] ");
}

TEST_F(EgressTags, ChangeTheirPrioritiesOnTheirOwn) {
  action(10, 0, both(offer, {.priority = TagAction::replace}, {.packet_priority = TagAction::replace}));
  EXPECT_EQ(tags(stacked), "[10p5 7p6] ");
  action(10, 0, both(offer, {.packet_priority = TagAction::copy}, {.packet_priority = TagAction::copy}));
  EXPECT_EQ(tags(stacked), "[10p3 7p2] ");
  action(10, 0, both(offer, {.packet_priority = TagAction::remove}));
  EXPECT_EQ(tags(stacked), "[10 7p3] ");
}

TEST_F(EgressTags, KeepTheirPriorityWhereTheActionHasNone) {
  EgressAction what = offer;
  what.priority = -1;
  action(10, 0, both(what, {.packet_priority = TagAction::replace}));
  EXPECT_EQ(tags(stacked), "[10p2 7p3] ");
}

TEST_F(EgressTags, KeepTheirPriorityOnTheWireWhereBothPrioritiesChange) {
  action(10, 0, both(offer, {}, {.priority = TagAction::replace, .packet_priority = TagAction::replace}));
  EXPECT_EQ(tags(stacked), "[10p2 7p6] ");
}

TEST_F(EgressTags, ChangeTheirMarksOfWhatMayBeDropped) {
  constexpr int cfi = 0x1000;
  action(10, 0, both(offer, {.cfi = TagAction::replace}, {.cfi = TagAction::copy}));
  EXPECT_EQ(tags(single), "[10p2c] ");
  EXPECT_EQ(tags(Frame(2, 1).tag(10 + cfi).tag(7)), "[10c 7c] ");
  EXPECT_EQ(tags(Frame(2, 1).tag(10).tag(7 + cfi)), "[10c 7] ");
}

TEST_F(EgressTags, AreTranslatedAndThenChangedByWhatTheyWereInside) {
  chip.vlan_translations.add_egress(1, 10, {5, 4});
  EgressAction what = offer;
  what.double_tagged.outer.vlan = TagAction::remove;
  action(10, 0, what);
  action(5, 0, both(offer, {.vlan = TagAction::replace}));
  EXPECT_EQ(tags(single), "[5p4] ");
  EXPECT_EQ(tags(stacked), "[7p3] ");
}

}  // namespace
