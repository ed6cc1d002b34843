// Frames that the router passes on to one destination.
#include <utility>

#include "pipeline_fixture.h"

namespace {

using chip::L3Entry;
using chip::Port;
using chip::SwitchControlOfPort;
using support::Frame;

class Routing : public support::PipelineTest {
 protected:
  Routing() {
    vlan(10, {0, 1, 2});
    vlan(20, {3, 4});
    chip.unicast_routing = true;
    interface({.vlan = 10});
    out = interface({.vlan = 20});
  }

  int interface(chip::L3Interface wanted) {
    wanted.flags = chip::L3Interface::in_mac_table;
    if (wanted.mac == chip::Mac{}) wanted.mac = mac(router);
    int id = 0;
    EXPECT_EQ(chip.l3_interfaces.create(wanted, id), Status::ok);
    return id;
  }
  void host(std::string_view address, const L3Entry& entry) {
    EXPECT_EQ(chip.hosts.add({0, support::ip4(address)}, entry, true), Status::ok);
  }
  void subnet(std::string_view address, int length, const L3Entry& entry) {
    EXPECT_EQ(chip.routes.add({0, support::ip4(address), length}, entry, true), Status::ok);
  }
  void to_cpu(SwitchControlOfPort control, Port port) {
    EXPECT_EQ(chip.switch_controls.set_port(port, static_cast<int>(control), 1), Status::ok);
  }
  /// Since they were asked for last.
  uint32_t hits_of_host(std::string_view address) {
    return std::exchange(chip.hosts.find({0, support::ip4(address)})->hit, 0);
  }
  uint32_t hits_of_subnet(std::string_view address, int length) {
    return std::exchange(chip.routes.find({0, support::ip4(address), length})->hit, 0);
  }

  static Frame packet(std::string_view destination, int ttl = 64) {
    return Frame(1, router).tag(10).ip("10.0.0.1", destination, ttl).udp(5, 6);
  }

  int out = 0;
};

TEST_F(Routing, GivesAPacketTheAddressesAndTheVlanOfItsNextHop) {
  host("20.0.0.3", {.interface = out, .next_hop = mac(0x33), .place = Port{3}});
  EXPECT_EQ(send(1, packet("20.0.0.3")), "3: e0>33 [20] 10.0.0.1>20.0.0.3 ttl 63 udp 5>6\n");
}

TEST_F(Routing, ShowsRulesOnTheWayOutWhatItMade) {
  constexpr auto ttl = chip::FieldQualifier::ttl;
  constexpr auto format = chip::FieldQualifier::vlan_format;
  chip::FieldProcessor& rules = chip.field_processor;
  int group = 0;
  int entry = 0;
  rules.create_group({chip::FieldProcessor::egress_stage, static_cast<int>(ttl), static_cast<int>(format)}, 0, group);
  rules.enable_group(group, true);
  rules.create_entry(group, entry);
  EXPECT_EQ(rules.qualify(entry, ttl, {63, 0xFF}), Status::ok);
  EXPECT_EQ(rules.qualify(entry, format, {1, 3}), Status::ok);
  rules.add_action(entry, static_cast<int>(chip::FieldAction::drop), 0, 0);
  EXPECT_EQ(rules.install(entry), Status::ok);

  host("20.0.0.3", {.interface = out, .next_hop = mac(0x33), .place = Port{3}});
  chip.port_forwarding.set_untagged_vlan(1, 10);
  const auto without_tag = [](int hops) { return Frame(1, router).ip("10.0.0.1", "20.0.0.3", hops).udp(5, 6); };
  EXPECT_EQ(send(1, without_tag(63)), "3: e0>33 [20] 10.0.0.1>20.0.0.3 ttl 62 udp 5>6\n");
  EXPECT_EQ(send(1, without_tag(64)), "dropped: egress field rule\n");
}

TEST_F(Routing, SendsAPacketBackOutOfItsPort) {
  host("10.0.0.9", {.interface = interface({.mac = mac(0xE1), .vlan = 10}), .next_hop = mac(0x99), .place = Port{1}});
  EXPECT_EQ(send(1, packet("10.0.0.9")), "1: e1>99 [10] 10.0.0.1>10.0.0.9 ttl 63 udp 5>6\n");
}

TEST_F(Routing, FollowsAnEgressObject) {
  int object = 0;
  EXPECT_EQ(chip.egress_objects.create({.interface = out, .mac = mac(0x44), .vlan = 20, .place = Port{4}}, object),
            Status::ok);
  host("20.0.0.4", {.interface = object, .next_hop = mac(0x99), .place = Port{3}});
  EXPECT_EQ(send(1, packet("20.0.0.4")), "4: e0>44 [20] 10.0.0.1>20.0.0.4 ttl 63 udp 5>6\n");
}

TEST_F(Routing, PrefersAHostAndThenTheLongestPrefix) {
  const auto way = [this] { return send(1, packet("20.1.2.3")).substr(0, 8); };
  subnet("0.0.0.0", 0, {.interface = out, .next_hop = mac(0x30), .place = Port{3}});
  EXPECT_EQ(way(), "3: e0>30");
  subnet("20.1.2.0", 24, {.interface = out, .next_hop = mac(0x34), .place = Port{3}});
  EXPECT_EQ(way(), "3: e0>34");
  subnet("20.1.0.0", 16, {.interface = out, .next_hop = mac(0x46), .place = Port{4}});
  EXPECT_EQ(way(), "3: e0>34");
  host("20.1.2.3", {.interface = out, .next_hop = mac(0x32), .place = Port{3}});
  EXPECT_EQ(way(), "3: e0>32");
  EXPECT_EQ(chip.hosts.remove({0, support::ip4("20.1.2.3")}), Status::ok);
  EXPECT_EQ(chip.routes.remove({0, support::ip4("20.1.2.0"), 24}), Status::ok);
  EXPECT_EQ(way(), "4: e0>46");
  chip.routes.clear();
  EXPECT_EQ(way(), "dropped:");
}

TEST_F(Routing, LooksUpInTheVrfOfTheInterfaceWhereThePacketCameIn) {
  vlan(30, {5});
  interface({.vrf = 7, .vlan = 30});
  host("20.0.0.3", {.interface = out, .next_hop = mac(0x33), .place = Port{3}});
  const Frame frame = Frame(1, router).tag(30).ip("30.0.0.1", "20.0.0.3").udp(5, 6);
  EXPECT_EQ(send(5, frame), "dropped: no route\n");
  EXPECT_EQ(
      chip.hosts.add({7, support::ip4("20.0.0.3")}, {.interface = out, .next_hop = mac(0x44), .place = Port{4}}, false),
      Status::ok);
  EXPECT_EQ(send(5, frame), "4: e0>44 [20] 30.0.0.1>20.0.0.3 ttl 63 udp 5>6\n");
}

TEST_F(Routing, NotesThatEntriesAreHitAsSourceAndAsDestination) {
  host("20.0.0.3", {.interface = out, .next_hop = mac(0x33), .place = Port{3}});
  subnet("10.0.0.0", 8, {.interface = out, .next_hop = mac(0x33), .place = Port{3}});
  EXPECT_EQ(hits_of_host("20.0.0.3"), 0U);
  send(1, packet("20.0.0.3"));
  EXPECT_EQ(hits_of_host("20.0.0.3"), L3Entry::destination_hit);
  EXPECT_EQ(hits_of_subnet("10.0.0.0", 8), L3Entry::source_hit);
  EXPECT_EQ(hits_of_subnet("10.0.0.0", 8), 0U);
}

TEST_F(Routing, IsOnlyForFramesToTheAddressOfAnInterfaceOfTheirVlan) {
  host("20.0.0.3", {.interface = out, .next_hop = mac(0x33), .place = Port{3}});
  const std::string bridged = "2: 01>e0 [10] 10.0.0.1>20.0.0.3 ttl 64 udp 5>6\n";
  const std::optional<int> in = chip.l3_interfaces.find_by_vlan(10);
  ASSERT_TRUE(in.has_value());
  EXPECT_EQ(chip.l3_interfaces.remove(*in), Status::ok);
  EXPECT_EQ(send(1, packet("20.0.0.3")).substr(0, bridged.size()), bridged);
  int id = 0;
  EXPECT_EQ(chip.l3_interfaces.create({.mac = mac(router), .vlan = 10}, id), Status::ok);  // not in the MAC table
  EXPECT_EQ(send(1, packet("20.0.0.3")).substr(0, bridged.size()), bridged);
}

TEST_F(Routing, SendsTheCpuWhatIsForARouterThatDoesNotRoute) {
  host("20.0.0.3", {.interface = out, .next_hop = mac(0x33), .place = Port{3}});
  chip.unicast_routing = false;
  EXPECT_EQ(send(1, packet("20.0.0.3")), "cpu 0x80: 01>e0 [10] 10.0.0.1>20.0.0.3 ttl 64 udp 5>6\n");
}

TEST_F(Routing, SendsTheCpuWhatHasAnEntryForIt) {
  host("10.0.0.254", {.flags = 0x1000, .interface = out, .next_hop = mac(0xC0), .place = Port{0}});
  subnet("30.0.0.0", 8, {.flags = 0x2000, .interface = out, .next_hop = mac(0xC0), .place = Port{0}});
  EXPECT_EQ(send(1, packet("10.0.0.254", 1)), "cpu 0x80: 01>e0 [10] 10.0.0.1>10.0.0.254 ttl 1 udp 5>6\n");
  EXPECT_EQ(send(1, packet("30.0.0.1")), "cpu 0x80: 01>e0 [10] 10.0.0.1>30.0.0.1 ttl 64 udp 5>6\n");
  EXPECT_EQ(hits_of_host("10.0.0.254"), L3Entry::destination_hit);
}

TEST_F(Routing, SendsTheCpuWhatNobodyKnowsTheWayToIfThePortSaysSo) {
  EXPECT_EQ(send(1, packet("20.0.0.3")), "dropped: no route\n");
  to_cpu(SwitchControlOfPort::ip4_l3_destination_miss_to_cpu, 1);
  EXPECT_EQ(send(1, packet("20.0.0.3")), "cpu 0x4: 01>e0 [10] 10.0.0.1>20.0.0.3 ttl 64 udp 5>6\n");
  EXPECT_EQ(send(2, packet("20.0.0.3")), "dropped: no route\n");
}

TEST_F(Routing, KnowsNoWayForIp6) {
  const Frame frame = Frame(1, router).tag(10).ip("2001:db8::1", "2001:db8::2").udp(5, 6);
  to_cpu(SwitchControlOfPort::ip4_l3_destination_miss_to_cpu, 1);
  EXPECT_EQ(send(1, frame), "dropped: no route\n");
  to_cpu(SwitchControlOfPort::ip6_l3_destination_miss_to_cpu, 1);
  EXPECT_EQ(send(1, frame), "cpu 0x4: 01>e0 [10] 2001:db8::1>2001:db8::2 ttl 64 udp 5>6\n");
}

TEST_F(Routing, SendsTheCpuWhatItCannotPassOnIfThePortSaysSo) {
  subnet("0.0.0.0", 0, {.interface = out, .next_hop = mac(0x33), .place = Port{3}});
  support::Bytes spoilt = packet("20.0.0.3");
  spoilt[28] ^= 1;
  struct Case {
    support::Bytes frame;
    std::string at_cpu;
    std::string reason;
  };
  const Case cases[] = {
      {packet("20.0.0.3", 1), "01>e0 [10] 10.0.0.1>20.0.0.3 ttl 1 udp 5>6", "ttl expired"},
      {packet("20.0.0.3", 0), "01>e0 [10] 10.0.0.1>20.0.0.3 ttl 0 udp 5>6", "ttl expired"},
      {packet("224.1.1.1"), "01>e0 [10] 10.0.0.1>224.1.1.1 ttl 64 udp 5>6", "martian destination"},
      {packet("127.0.0.1"), "01>e0 [10] 10.0.0.1>127.0.0.1 ttl 64 udp 5>6", "martian destination"},
      {spoilt, "01>e0 [10] 10.0.0.1>20.0.0.3 ttl 64 BAD CHECKSUM udp 5>6", "ip checksum"},
      {Frame(1, router).tag(10).ip("255.1.1.1", "20.0.0.3").udp(5, 6), "01>e0 [10] 255.1.1.1>20.0.0.3 ttl 64 udp 5>6",
       "martian source"},
      {Frame(1, router).tag(10).ip("2001:db8::1", "2001:db8::2", 1).udp(5, 6),
       "01>e0 [10] 2001:db8::1>2001:db8::2 ttl 1 udp 5>6", "ttl expired"},
      {Frame(1, router).tag(10).type(0x9000), "01>e0 [10] 9000", "not ip"},
  };
  for (const Case& one : cases) EXPECT_EQ(send(1, one.frame), "dropped: " + one.reason + '\n') << one.at_cpu;
  to_cpu(SwitchControlOfPort::non_ip_l3_error_to_cpu, 1);
  for (const Case& one : cases) EXPECT_EQ(send(1, one.frame), "cpu 0x8: " + one.at_cpu + '\n');
  EXPECT_EQ(send(2, cases[0].frame), "dropped: ttl expired\n");
}

TEST_F(Routing, DoesNotPassOnOptions) {
  subnet("0.0.0.0", 0, {.interface = out, .next_hop = mac(0x33), .place = Port{3}});
  support::Bytes frame = Frame(1, router).tag(10).ip("10.0.0.1", "20.0.0.3").protocol(99, {0, 0, 0, 0});
  EXPECT_EQ(send(1, frame), "3: e0>33 [20] 10.0.0.1>20.0.0.3 ttl 63 protocol 99\n");
  frame[18] = 0x46;  // the four zeros are options now
  --frame[28];
  EXPECT_EQ(send(1, frame), "dropped: ip options\n");
  to_cpu(SwitchControlOfPort::non_ip_l3_error_to_cpu, 1);
  EXPECT_EQ(send(1, frame), "cpu 0x8: 01>e0 [10] 10.0.0.1>20.0.0.3 ttl 64 protocol 99\n");
}

TEST_F(Routing, TakesServiceAccessPointsForNoEtherType) {
  subnet("0.0.0.0", 0, {.interface = out, .next_hop = mac(0x33), .place = Port{3}});
  const Frame frame = Frame(1, router).tag(10).type(3).bytes({0x08, 0x00, 0x03}).length(21);
  EXPECT_EQ(send(1, frame), "dropped: not ip\n");
}

TEST_F(Routing, SendsAPacketOutOfAMemberOfATrunkThatHasALink) {
  chip::TrunkId trunk;
  EXPECT_EQ(chip.trunks.create(0, trunk), Status::ok);
  EXPECT_EQ(chip.trunks.set(trunk, 0, {3, 4}), Status::ok);
  host("20.0.0.3", {.interface = out, .next_hop = mac(0x33), .place = trunk});
  chip.port_macs.set_partner(3, false);
  EXPECT_EQ(send(1, packet("20.0.0.3")), "4: e0>33 [20] 10.0.0.1>20.0.0.3 ttl 63 udp 5>6\n");
  chip.port_macs.set_partner(4, false);
  EXPECT_EQ(send(1, packet("20.0.0.3")), "dropped: no next hop\n");
}

TEST_F(Routing, GivesBothTagsOfADoubleTaggedInterface) {
  const int both = interface({.vlan = 20, .inner_vlan = 200});
  host("20.0.0.3", {.interface = both, .next_hop = mac(0x33), .place = Port{3}});
  EXPECT_EQ(send(1, Frame(1, router).tag(10, 5).ip("10.0.0.1", "20.0.0.3").udp(5, 6)),
            "3: e0>33 [20p5 200p5] 10.0.0.1>20.0.0.3 ttl 63 udp 5>6\n");
  host("20.0.0.3", {.interface = out, .next_hop = mac(0x33), .place = Port{3}});
  EXPECT_EQ(send(1, Frame(1, router).tag(10).tag(100).ip("10.0.0.1", "20.0.0.3").udp(5, 6)),
            "3: e0>33 [20] 10.0.0.1>20.0.0.3 ttl 63 udp 5>6\n");
}

TEST_F(Routing, LeavesTheWayOutToTheChecksOfItsPort) {
  host("20.0.0.5", {.interface = out, .next_hop = mac(0x55), .place = Port{5}});
  EXPECT_EQ(send(1, packet("20.0.0.5")), "5: e0>55 [20] 10.0.0.1>20.0.0.5 ttl 63 udp 5>6\n");
  chip.port_filters.set_membership_checks(5, chip::PortFilters::check_egress);
  EXPECT_EQ(send(1, packet("20.0.0.5")), "dropped: egress not a member\n");
}

TEST_F(Routing, SendsNothingThroughAnInterfaceThatIsGone) {
  host("20.0.0.3", {.interface = out, .next_hop = mac(0x33), .place = Port{3}});
  EXPECT_EQ(chip.l3_interfaces.remove(out), Status::ok);
  EXPECT_EQ(send(1, packet("20.0.0.3")), "dropped: no interface\n");
}

TEST_F(Routing, KeepsBackWhatLivesTooShortForItsInterface) {
  const int far = interface({.vlan = 20, .inner_vlan = 7, .ttl = 10});
  host("20.0.0.3", {.interface = far, .next_hop = mac(0x33), .place = Port{3}});
  EXPECT_EQ(send(1, packet("20.0.0.3", 10)), "3: e0>33 [20 7] 10.0.0.1>20.0.0.3 ttl 9 udp 5>6\n");
  EXPECT_EQ(send(1, packet("20.0.0.3", 9)), "dropped: ttl threshold\n");
}

}  // namespace
