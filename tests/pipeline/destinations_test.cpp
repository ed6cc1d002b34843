// Where bridged frames go: entries, trunks, floods and what keeps them back.
#include <set>

#include "pipeline_fixture.h"

namespace {

using chip::MacEntry;
using chip::Port;
using chip::PortFilters;
using chip::TrunkId;
using support::Bytes;
using support::Frame;

class Destinations : public support::PipelineTest {
 protected:
  Destinations() { vlan(10, {0, 1, 2, 3, 4, 5, 6}); }

  void add(uint8_t last, const MacEntry& where) {
    MacEntry entry = where;
    entry.mac = {0x02, 0, 0, 0, 0, last};
    entry.vlan = 10;
    EXPECT_EQ(chip.mac_table.add(entry), Status::ok);
  }
  TrunkId trunk(const std::vector<Port>& members, int criterion = 0) {
    TrunkId id;
    EXPECT_EQ(chip.trunks.create(0, id), Status::ok);
    EXPECT_EQ(chip.trunks.set(id, criterion, members), Status::ok);
    return id;
  }
  /// The ports where copies leave, the CPU's as 0: "2 3 ".
  std::string ports(Port from, const Bytes& frame) {
    std::string result;
    const std::string out = send(from, frame);
    for (std::size_t at = 0; at < out.size(); at = out.find('\n', at) + 1)
      result += out.compare(at, 4, "cpu ") == 0 ? "0 " : out.substr(at, out.find(':', at) - at) + ' ';
    return result;
  }
  static Bytes unicast(int to = 9, int from = 8) { return Frame(from, to).tag(10).type(0x9000); }
  static Bytes broadcast() { return Frame(8, 0xFF).tag(10).type(0x9000); }
  static Bytes multicast() {
    return Frame(support::mac(8), {1, 0, 0x5E, 1, 1, 1}).tag(10).ip("10.0.0.1", "239.1.1.1").udp(1, 2);
  }
};

TEST_F(Destinations, AnEntryCanDiscardOrCopyToTheCpu) {
  add(9, {.flags = MacEntry::discard_destination, .place = Port{2}});
  EXPECT_EQ(send(1, unicast()), "dropped: destination discard\n");
  add(9, {.flags = MacEntry::copy_to_cpu, .place = Port{2}});
  EXPECT_EQ(send(1, unicast()), "2: 08>09 [10] 9000\ncpu 0x40: 08>09 [10] 9000\n");
}

TEST_F(Destinations, AFrameDoesNotGoBackWhereItCameFrom) {
  add(9, {.place = Port{1}});
  EXPECT_EQ(send(1, unicast()), "dropped: own port\n");
}

TEST_F(Destinations, TheCpusAddressLeadsToTheCpu) {
  add(9, {.flags = MacEntry::fixed, .place = Port{0}});
  EXPECT_EQ(send(1, unicast()), "cpu 0x80: 08>09 [10] 9000\n");
}

TEST_F(Destinations, AFloodEndsAtTheFloodBlocksOfItsKind) {
  EXPECT_EQ(ports(1, broadcast()), "2 3 4 5 6 0 ");
  chip.port_filters.block_floods(1, 3, PortFilters::broadcast);
  chip.port_filters.block_floods(1, 4, PortFilters::unknown_unicast);
  chip.port_filters.block_floods(1, 0, PortFilters::unknown_multicast);
  EXPECT_EQ(ports(1, broadcast()), "2 4 5 6 0 ");
  EXPECT_EQ(ports(1, unicast()), "2 3 5 6 0 ");
  EXPECT_EQ(ports(1, multicast()), "2 3 4 5 6 ");
  EXPECT_EQ(ports(2, broadcast()), "1 3 4 5 6 0 ") << "of others nothing is kept back";
}

TEST_F(Destinations, APortIsKeptApartFromOthers) {
  add(9, {.place = Port{3}});
  chip.port_forwarding.set_destinations(1, {0, 1, 2});
  EXPECT_EQ(ports(1, broadcast()), "2 0 ");
  EXPECT_EQ(send(1, unicast()), "dropped: isolated port\n");
  EXPECT_EQ(ports(3, broadcast()), "1 2 4 5 6 0 ") << "one way only";
}

TEST_F(Destinations, MulticastFloodsAsTheVlanSays) {
  chip.vlans.set_multicast_flood(10, {&chip::VlanControl::ip4_multicast_flood_mode}, 2);
  EXPECT_EQ(send(1, multicast()), "dropped: multicast flood\n");
  EXPECT_EQ(ports(1, broadcast()), "2 3 4 5 6 0 ");
  const Bytes reserved = Frame(support::mac(8), {1, 0, 0x5E, 0, 0, 5}).tag(10).ip("10.0.0.1", "224.0.0.5").udp(1, 2);
  EXPECT_EQ(send(1, reserved), "dropped: multicast flood\n");
  chip.switch_controls.set_port(1, static_cast<int>(chip::SwitchControlOfPort::ip4_reserved_multicast_flood), 1);
  EXPECT_EQ(ports(1, reserved), "2 3 4 5 6 0 ") << "routers find each other there";
}

TEST_F(Destinations, OneMemberSpeaksForATrunk) {
  trunk({3, 4});
  const std::string from_1 = ports(1, broadcast());
  EXPECT_TRUE(from_1 == "2 3 5 6 0 " || from_1 == "2 4 5 6 0 ") << from_1;
  EXPECT_EQ(ports(3, broadcast()), "1 2 5 6 0 ") << "nothing goes back into the trunk";
}

TEST_F(Destinations, ATrunkCarriesFramesThatAreAlikeTheSameWayAndOthersElsewhere) {
  constexpr int by_source_mac = 1;
  const TrunkId id = trunk({3, 4, 5, 6}, by_source_mac);
  add(9, {.place = id});
  std::set<std::string> ways;
  for (int source = 20; source < 60; ++source) {
    const std::string way = ports(1, unicast(9, source));
    EXPECT_EQ(ports(2, unicast(9, source)), way);
    ways.insert(way);
  }
  EXPECT_EQ(ways, (std::set<std::string>{"3 ", "4 ", "5 ", "6 "}));
}

TEST_F(Destinations, ATrunkDoesWithoutMembersWhoseLinkIsDown) {
  const TrunkId id = trunk({3, 4});
  add(9, {.place = id});
  chip.port_macs.set_partner(3, false);
  for (int source = 20; source < 30; ++source) EXPECT_EQ(ports(1, unicast(9, source)), "4 ");
  chip.port_macs.set_partner(4, false);
  EXPECT_EQ(send(1, unicast()), "dropped: no exit\n");
}

TEST_F(Destinations, SourcesOnATrunkAreLearnedThere) {
  trunk({3, 4});
  send(3, unicast(7, 9));
  EXPECT_EQ(ports(4, unicast(9, 1)), "dropped ") << "it is on the same trunk";
  const std::string back = ports(1, unicast(9, 1));
  EXPECT_TRUE(back == "3 " || back == "4 ") << back;
}

TEST_F(Destinations, APortWithoutALinkSendsAndHearsNothing) {
  chip.port_macs.set_partner(2, false);
  EXPECT_EQ(ports(1, broadcast()), "3 4 5 6 0 ");
  EXPECT_EQ(send(2, broadcast()), "dropped: port down\n");
}

TEST_F(Destinations, ThePortsThatDoNotForwardGetNothing) {
  chip.spanning_trees.set_state(1, 3, static_cast<int>(chip::StpState::block));
  EXPECT_EQ(ports(1, broadcast()), "2 4 5 6 0 ");
}

}  // namespace
