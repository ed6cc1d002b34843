// Frames to groups of IP multicast, which routes replicate.
#include <algorithm>

#include "pipeline_fixture.h"

namespace {

using chip::MulticastRoute;
using chip::SwitchControlOfChip;
using chip::SwitchControlOfPort;
using support::Frame;

const support::Bytes to_group = {0x01, 0x00, 0x5E, 0x01, 0x01, 0x01};
const support::Bytes to_group6 = {0x33, 0x33, 0, 0, 0, 1};

class Multicast : public support::PipelineTest {
 protected:
  Multicast() {
    vlan(10, {1, 2, 3});
    vlan(20, {1, 4});
    chip.multicast_routing = true;
    EXPECT_EQ(chip.multicast_groups.create(chip::MulticastGroups::l3, group), Status::ok);
    EXPECT_EQ(chip.multicast_routes.add({.vlan = 10, .address = {225, 1, 1, 1}}, route()), Status::ok);
    within = interface({.vlan = 10});
    beyond = interface({.vlan = 20});
  }

  MulticastRoute route() const { return {.flags = MulticastRoute::from_any_port, .group = group, .valid = 1}; }
  int interface(chip::L3Interface wanted) {
    wanted.mac = mac(0xE0);
    int id = 0;
    EXPECT_EQ(chip.l3_interfaces.create(wanted, id), Status::ok);
    return id;
  }
  void member(chip::Port port, int id) { EXPECT_EQ(chip.multicast_groups.add_member(group, {port, id}), Status::ok); }
  void set(SwitchControlOfChip control) {
    EXPECT_EQ(chip.switch_controls.set(static_cast<int>(control), 1), Status::ok);
  }

  static Frame packet(int ttl = 64) {
    return Frame(support::mac(1), to_group).tag(10).ip("10.0.0.1", "225.1.1.1", ttl).udp(5, 6);
  }

  chip::GroupId group;
  int within = 0;
  int beyond = 0;
};

constexpr char flooded[] =
    "2: 01>01:00:5e:01:01:01 [10] 10.0.0.1>225.1.1.1 ttl 64 udp 5>6\n"
    "3: 01>01:00:5e:01:01:01 [10] 10.0.0.1>225.1.1.1 ttl 64 udp 5>6\n";

TEST_F(Multicast, ReachesTheMembersInTheirVlansInsteadOfTheFlood) {
  member(2, within);
  member(4, beyond);
  EXPECT_EQ(send(1, packet()),
            "2: 01>01:00:5e:01:01:01 [10] 10.0.0.1>225.1.1.1 ttl 64 udp 5>6\n"
            "4: e0>01:00:5e:01:01:01 [20] 10.0.0.1>225.1.1.1 ttl 63 udp 5>6\n");
  chip.multicast_routing = false;
  EXPECT_EQ(send(1, packet()), flooded);
}

TEST_F(Multicast, IsCountedAsBridgedRoutedOrDropped) {
  const auto counts = [&] {
    std::string text;
    for (const int counter : {12, 82, 83, 84}) text += std::to_string(*chip.counters.find(1, counter)) + ' ';
    return text;
  };
  send(1, packet());
  EXPECT_EQ(counts(), "1 0 0 1 ") << "there is no member";
  member(2, within);
  send(1, packet());
  EXPECT_EQ(counts(), "2 1 0 1 ");
  member(4, beyond);
  send(1, packet());
  EXPECT_EQ(counts(), "3 1 1 1 ");
}

TEST_F(Multicast, IsRoutedWithinItsVlanWhenTheChipIsToldSo) {
  member(2, within);
  set(SwitchControlOfChip::ipmc_same_vlan_l3_route);
  EXPECT_EQ(send(1, packet()), "2: e0>01:00:5e:01:01:01 [10] 10.0.0.1>225.1.1.1 ttl 63 udp 5>6\n");
}

TEST_F(Multicast, GoesBackOutOfItsPortInAnotherVlanOnly) {
  member(1, within);
  EXPECT_EQ(send(1, packet()), "dropped: no group member\n");
  EXPECT_EQ(send(1, Frame(support::mac(1), to_group).tag(10).tag(5).ip("10.0.0.1", "225.1.1.1").udp(5, 6)),
            "dropped: no group member\n");
  member(1, beyond);
  EXPECT_EQ(send(1, packet()), "1: e0>01:00:5e:01:01:01 [20] 10.0.0.1>225.1.1.1 ttl 63 udp 5>6\n");
}

TEST_F(Multicast, IsFloodedWithoutARoute) {
  EXPECT_EQ(chip.multicast_routes.remove({.vlan = 10, .address = {225, 1, 1, 1}}), Status::ok);
  EXPECT_EQ(send(1, packet()), flooded);
  EXPECT_EQ(chip.multicast_routes.add({.vlan = 20, .address = {225, 1, 1, 1}}, route()), Status::ok);
  EXPECT_EQ(chip.multicast_routes.add({.vlan = 10, .address = {225, 1, 1, 2}}, route()), Status::ok);
  EXPECT_EQ(chip.multicast_routes.add({.vrf = 1, .vlan = 10, .address = {225, 1, 1, 1}}, route()), Status::ok);
  EXPECT_EQ(send(1, packet()), flooded);
}

TEST_F(Multicast, PrefersTheRouteOfItsSource) {
  chip::GroupId other;
  EXPECT_EQ(chip.multicast_groups.create(chip::MulticastGroups::l3, other), Status::ok);
  EXPECT_EQ(chip.multicast_groups.add_member(other, {3, within}), Status::ok);
  member(2, within);
  MulticastRoute of_source = route();
  of_source.group = other;
  EXPECT_EQ(chip.multicast_routes.add({.vlan = 10, .address = {225, 1, 1, 1}, .source = {10, 0, 0, 1}}, of_source),
            Status::ok);
  EXPECT_EQ(send(1, packet()).substr(0, 2), "3:");
  EXPECT_EQ(send(1, Frame(support::mac(1), to_group).tag(10).ip("10.0.0.2", "225.1.1.1").udp(5, 6)).substr(0, 2), "2:");
}

TEST_F(Multicast, OfIp6HasRoutesToo) {
  const auto frame = [](std::string_view source, std::string_view destination) {
    return Frame(support::mac(1), to_group6).tag(10).ip(source, destination).udp(5, 6);
  };
  chip::MulticastRouteKey key{.vlan = 10, .ip6 = true, .address = {0xFF, 5}, .source = {0x20, 1}};
  key.address[15] = key.source[15] = 1;
  EXPECT_EQ(chip.multicast_routes.add(key, route()), Status::ok);
  member(4, beyond);
  EXPECT_EQ(send(1, frame("2001::1", "ff05::1")), "4: e0>33:33:00:00:00:01 [20] 2001::1>ff05::1 ttl 63 udp 5>6\n");
  EXPECT_EQ(send(1, frame("2001::2", "ff05::1")).substr(0, 2), "2:");
  EXPECT_EQ(send(1, frame("2001::1", "ff05::2")).substr(0, 2), "2:");
  key.source = {};
  EXPECT_EQ(chip.multicast_routes.add(key, route()), Status::ok);
  EXPECT_EQ(send(1, frame("2001::2", "ff05::1")).substr(0, 2), "4:");
}

TEST_F(Multicast, OfTheLinkIsNotRouted) {
  EXPECT_EQ(chip.multicast_routes.add({.vlan = 10, .address = {224, 0, 0, 5}}, route()), Status::ok);
  chip::MulticastRouteKey key{.vlan = 10, .ip6 = true, .address = {0xFF, 2}};
  key.address[15] = 5;
  EXPECT_EQ(chip.multicast_routes.add(key, route()), Status::ok);
  member(4, beyond);
  EXPECT_EQ(send(1, Frame(support::mac(1), to_group).tag(10).ip("10.0.0.1", "224.0.0.5").udp(5, 6)).substr(0, 2), "2:");
  EXPECT_EQ(send(1, Frame(support::mac(1), to_group6).tag(10).ip("2001::1", "ff02::5").udp(5, 6)).substr(0, 2), "2:");
}

TEST_F(Multicast, ReportsAndQueriesAreNotRouted) {
  chip::MulticastRouteKey key{.vlan = 10, .ip6 = true, .address = {0xFF, 5}};
  key.address[15] = 1;
  EXPECT_EQ(chip.multicast_routes.add(key, route()), Status::ok);
  member(4, beyond);
  const Frame report = Frame(support::mac(1), to_group).tag(10).ip("10.0.0.1", "225.1.1.1").igmp(0x16, "225.1.1.1");
  EXPECT_EQ(send(1, report).substr(0, 2), "2:");
  for (const int type : {130, 131, 132, 143})
    EXPECT_EQ(send(1, Frame(support::mac(1), to_group6).tag(10).ip("2001::1", "ff05::1").icmp(type)).substr(0, 2),
              "2:");
  EXPECT_EQ(send(1, Frame(support::mac(1), to_group6).tag(10).ip("2001::1", "ff05::1").icmp(128)).substr(0, 2), "4:");
}

TEST_F(Multicast, ComesInAtThePortOfItsRouteWhereThatIsChecked) {
  EXPECT_EQ(chip.multicast_routes.remove({.vlan = 10, .address = {225, 1, 1, 1}}), Status::ok);
  EXPECT_EQ(chip.multicast_routes.add({.vlan = 10, .address = {225, 1, 1, 1}}, {.group = group, .from = chip::Port{3}}),
            Status::ok);
  member(4, beyond);
  EXPECT_EQ(send(1, packet()), "dropped: wrong ingress port\n");
  EXPECT_EQ(send(3, packet()).substr(0, 2), "4:");
}

TEST_F(Multicast, ThatLivesForOneHopStaysInItsVlan) {
  member(2, within);
  member(4, beyond);
  EXPECT_EQ(send(1, packet(1)), "2: 01>01:00:5e:01:01:01 [10] 10.0.0.1>225.1.1.1 ttl 1 udp 5>6\n");
  set(SwitchControlOfChip::ipmc_same_vlan_l3_route);
  EXPECT_EQ(send(1, packet(1)), "dropped: ttl expired\n");
  EXPECT_EQ(chip.switch_controls.set_port(1, static_cast<int>(SwitchControlOfPort::non_ip_l3_error_to_cpu), 1),
            Status::ok);
  EXPECT_EQ(send(1, packet(1)), "cpu 0x8: 01>01:00:5e:01:01:01 [10] 10.0.0.1>225.1.1.1 ttl 1 udp 5>6\n");
}

TEST_F(Multicast, IsKeptBackByTheThresholdOfAnInterface) {
  member(3, interface({.vlan = 20, .inner_vlan = 30, .ttl = 8}));
  member(4, beyond);
  EXPECT_EQ(send(1, packet(8)),
            "3: e0>01:00:5e:01:01:01 [20 30] 10.0.0.1>225.1.1.1 ttl 7 udp 5>6\n"
            "4: e0>01:00:5e:01:01:01 [20] 10.0.0.1>225.1.1.1 ttl 7 udp 5>6\n");
  EXPECT_EQ(send(1, packet(7)), "4: e0>01:00:5e:01:01:01 [20] 10.0.0.1>225.1.1.1 ttl 6 udp 5>6\n");
}

TEST_F(Multicast, LeavesATrunkOnceAndNotTheOneItCameFrom) {
  chip::TrunkId trunk;
  EXPECT_EQ(chip.trunks.create(0, trunk), Status::ok);
  EXPECT_EQ(chip.trunks.set(trunk, 0, {2, 3}), Status::ok);
  member(2, within);
  member(3, within);
  const std::string copies = send(1, packet());
  EXPECT_EQ(std::ranges::count(copies, '\n'), 1) << copies;
  EXPECT_EQ(send(2, packet()), "dropped: no group member\n");
  chip.port_macs.set_partner(2, false);
  EXPECT_EQ(send(1, packet()).substr(0, 2), "3:");
}

}  // namespace
