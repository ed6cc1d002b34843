// Frames of virtual ports: which belong to them, what they look like inside, and where they go.
#include "chip/encapsulations.h"
#include "pipeline_fixture.h"

namespace {

using chip::NetworkGroups;
using chip::Port;
using chip::VirtualPort;
using chip::VirtualPortId;
using chip::VlanControlOfPort;
using support::Bytes;
using support::Frame;

class VirtualPorts : public support::PipelineTest {
 protected:
  VirtualPorts() {
    chip.vlan_controls.set(static_cast<int>(chip::VlanControlOfChip::translate), 1);
    for (const Port port : chip::PortSet{1, 2, 3}) {
      control(port, VlanControlOfPort::translate_ingress, 1);
      control(port, VlanControlOfPort::translate_first_key, chip::VlanControls::key_port_double);
      control(port, VlanControlOfPort::translate_second_key, chip::VlanControls::key_port_outer);
    }
    vlan(100, {9});
    vlan(200, {9});
    vlan(300, {9});
  }

  void control(Port port, VlanControlOfPort which, int value) {
    EXPECT_EQ(chip.vlan_controls.set_port(port, static_cast<int>(which), value), Status::ok);
  }

  /// Makes a virtual port that is a member of its inside VLAN.
  VirtualPortId make(VirtualPort what) {
    what.criteria = what.match_inner_vlan != 0 ? VirtualPort::match_port_vlan_stacked : VirtualPort::match_port_vlan;
    VirtualPortId id;
    EXPECT_EQ(chip.virtual_ports.create(what, id), Status::ok);
    EXPECT_EQ(chip.vlans.add_virtual_port(what.egress_vlan != 0 ? what.egress_vlan : what.match_inner_vlan, id),
              Status::ok);
    return id;
  }
  /// One of port `port` that matches the outer VLAN `match`, in VLAN 100 and a network group.
  VirtualPortId make_simple(Port port, uint16_t match, int group = 0) {
    return make({.port = port,
                 .match_vlan = match,
                 .egress_vlan = 100,
                 .ingress_network_group = group,
                 .egress_network_group = group});
  }
  /// A frame to an address that nobody knows.
  static Frame from(int source) { return {source, 0x99}; }
  static constexpr const char* nowhere = "dropped: no destination\n";
};

TEST_F(VirtualPorts, TakeTheFramesOfTheirPortAndOuterVlan) {
  make_simple(1, 10);
  EXPECT_EQ(send(1, from(1).tag(10, 3).type(0x9000)), "9: 01>99 [100p3] 9000\n");
  EXPECT_EQ(send(1, from(1).tag(11).type(0x9000)), "dropped: no such vlan\n");
  EXPECT_EQ(send(2, from(1).tag(10).type(0x9000)), "dropped: no such vlan\n");
}

TEST_F(VirtualPorts, ThatMatchBothTagsComeBeforeThoseThatMatchOne) {
  make({.port = 1, .match_vlan = 10, .egress_vlan = 100});
  make({.port = 1, .match_vlan = 10, .match_inner_vlan = 7, .egress_vlan = 200});
  EXPECT_EQ(send(1, from(1).tag(10).tag(7, 2).type(0x9000)), "9: 01>99 [200] 9000\n");
  EXPECT_EQ(send(1, from(2).tag(10).tag(8).type(0x9000)), "9: 02>99 [100] 9000\n");
  EXPECT_EQ(send(1, from(3).tag(10).type(0x9000)), "9: 03>99 [100] 9000\n");
}

TEST_F(VirtualPorts, AreLookedForByTheKeysOfThePort) {
  make({.port = 1, .match_vlan = 10, .match_inner_vlan = 7, .egress_vlan = 200});
  make_simple(1, 10);
  const Bytes stacked = from(1).tag(10).tag(7).type(0x9000);
  control(1, VlanControlOfPort::translate_first_key, 0);
  EXPECT_EQ(send(1, stacked), "9: 01>99 [100] 9000\n");
  control(1, VlanControlOfPort::translate_second_key, 0);
  EXPECT_EQ(send(1, stacked), "dropped: no such vlan\n");
}

TEST_F(VirtualPorts, AreLookedForOnPortsThatTranslate) {
  make_simple(1, 10);
  control(1, VlanControlOfPort::translate_ingress, 0);
  EXPECT_EQ(send(1, from(1).tag(10).type(0x9000)), "dropped: no such vlan\n");
}

TEST_F(VirtualPorts, ComeBeforeTranslations) {
  make_simple(1, 10);
  chip.vlan_translations.add(1, 10, {200, 0});
  EXPECT_EQ(send(1, from(1).tag(10).type(0x9000)), "9: 01>99 [100] 9000\n");
}

TEST_F(VirtualPorts, GiveTheirFramesTheTagsOfTheInside) {
  make({.port = 1, .match_vlan = 10, .egress_vlan = 100, .egress_inner_vlan = 50});
  make({.port = 1, .match_vlan = 10, .match_inner_vlan = 7, .egress_vlan = 200, .egress_inner_vlan = 60});
  make({.port = 1, .match_vlan = 10, .match_inner_vlan = 300});
  EXPECT_EQ(send(1, from(1).tag(10, 3).type(0x9000)), "9: 01>99 [100p3 50p3] 9000\n");
  EXPECT_EQ(send(1, from(2).tag(10, 3).tag(7, 2).type(0x9000)), "9: 02>99 [200p3 60p2] 9000\n");
  EXPECT_EQ(send(1, from(3).tag(10, 3).tag(300, 2).type(0x9000)), "9: 03>99 [300p3] 9000\n");
}

TEST_F(VirtualPorts, AreWhereSourcesAreLearned) {
  const VirtualPortId first = make_simple(1, 10);
  make_simple(1, 11);
  chip::EgressAction to_customer;
  to_customer.outer_vlan = 10;
  to_customer.outer_tagged.outer.vlan = chip::TagAction::replace;
  chip.egress_actions.set({first, 100, 0}, to_customer);
  control(1, VlanControlOfPort::translate_egress, 1);
  send(1, from(1).tag(10).type(0x9000));
  EXPECT_EQ(send(9, Frame(2, 1).tag(100).type(0x9000)), "1: 02>01 [10] 9000\n");
  EXPECT_EQ(send(1, Frame(3, 1).tag(11).type(0x9000)), "1: 03>01 [10] 9000\n");
  EXPECT_EQ(send(1, Frame(4, 1).tag(10).type(0x9000)), "dropped: own port\n");
}

TEST_F(VirtualPorts, GetTheFloodsOfTheirVlanButTheirOwn) {
  make_simple(1, 10);
  make_simple(1, 11);
  make_simple(2, 10);
  EXPECT_EQ(send(1, from(1).tag(10).type(0x9000)), "9: 01>99 [100] 9000\n1: 01>99 [100] 9000\n2: 01>99 [100] 9000\n");
}

TEST_F(VirtualPorts, GetNoFloodsThatAreBlockedBetweenTheirPorts) {
  make_simple(1, 10);
  make_simple(2, 10);
  chip.port_filters.block_floods(1, 2, chip::PortFilters::unknown_unicast);
  EXPECT_EQ(send(1, from(1).tag(10).type(0x9000)), "9: 01>99 [100] 9000\n");
  EXPECT_EQ(send(1, Frame(1, 0xFF).tag(10).type(0x9000)), "9: 01>all [100] 9000\n2: 01>all [100] 9000\n");
}

TEST_F(VirtualPorts, ThatAreGoneGetNothingThoughTheyAreStillMembers) {
  make_simple(1, 10);
  chip.virtual_ports.destroy(make_simple(2, 10));
  EXPECT_EQ(send(1, from(1).tag(10).type(0x9000)), "9: 01>99 [100] 9000\n");
}

class IsolatedGroups : public VirtualPorts {
 protected:
  IsolatedGroups() {
    make_simple(1, 10, 5);
    make_simple(2, 10, 6);
    make_simple(3, 10, 5);
  }

  /// The places where a flood leaves, "9 2 ".
  std::string places(Port port) {
    const std::string out = send(port, from(port.number()).tag(port == 9 ? 100 : 10).type(0x9000));
    std::string result;
    for (std::size_t line = 0; line < out.size(); line = out.find('\n', line) + 1) {
      result += out.substr(line, out.find(':', line) - line);
      result += ' ';
    }
    return result;
  }
};

TEST_F(IsolatedGroups, KeepWhatCameInThroughThemFromLeavingThroughOthers) {
  EXPECT_EQ(places(1), "9 2 3 ");
  for (const uint32_t setting : {NetworkGroups::prune_ingress, NetworkGroups::prune_egress}) {
    chip.network_groups.set(5, setting);
    EXPECT_EQ(places(1), "9 3 ") << setting;
  }
  chip.network_groups.set(5, NetworkGroups::remap_multicast);
  EXPECT_EQ(places(1), "9 2 3 ");
}

TEST_F(IsolatedGroups, GetWhatCameInThroughOthersAndThroughNone) {
  chip.network_groups.set(5, NetworkGroups::prune_ingress | NetworkGroups::prune_egress);
  EXPECT_EQ(places(2), "9 1 3 ");
  EXPECT_EQ(places(9), "1 2 3 ");
}

TEST_F(IsolatedGroups, KeepKnownDestinationsToThemselvesToo) {
  send(2, Frame(2, 0x99).tag(10).type(0x9000));
  const Bytes to_other_group = Frame(1, 2).tag(10).type(0x9000);
  EXPECT_EQ(send(1, to_other_group), "2: 01>02 [100] 9000\n");
  chip.network_groups.set(5, NetworkGroups::prune_ingress);
  EXPECT_EQ(send(1, to_other_group), "dropped: split horizon\n");
}

TEST_F(IsolatedGroups, LeaveVirtualPortsWithoutAGroupAlone) {
  chip.network_groups.set(5, NetworkGroups::prune_ingress);
  make_simple(4, 10, -1);
  EXPECT_EQ(places(1), "9 3 4 ");
}

}  // namespace
