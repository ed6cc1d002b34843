// What each stage makes of frames whose headers are cut short or contradict themselves: only those that need such a
// header keep the frame back.
#include "pipeline_fixture.h"

namespace {

using chip::FieldQualifier;
using chip::SwitchControlOfPort;
using support::Bytes;
using support::Frame;

/// A frame without its last bytes, and one with another byte at a place.
Bytes cut(const Bytes& frame, std::ptrdiff_t length) { return {frame.begin(), frame.begin() + length}; }
Bytes changed(Bytes frame, std::size_t at, uint8_t byte) {
  frame[at] = byte;
  return frame;
}

constexpr std::ptrdiff_t ethernet = 18;  // bytes of a header with a tag
constexpr std::size_t version = 18;      // where fields of the IPv4 header stand
constexpr std::size_t high_of_length = 20;
constexpr std::size_t low_of_length = 21;

Frame ip(int destination = 2) { return Frame(1, destination).tag(10).ip("10.0.0.1", "20.0.0.3").udp(68, 67); }
Frame ip6(int destination = 2) {
  return Frame(1, destination).tag(10).ip("2001:db8::1", "2001:db8::2").hop_by_hop().icmp(135);
}

/// The packets whose IP header the router does not take, as they come to an address.
struct Bad {
  const char* name;
  Bytes frame;
  const char* reason;  // why the router drops it
};
std::vector<Bad> bad_packets(int to) {
  return {{"a header that is cut short", cut(ip(to), ethernet + 19), "not ip"},
          {"another version", changed(ip(to), version, 0x65), "not ip"},
          {"a header of 16 bytes", changed(ip(to), version, 0x44), "not ip"},
          {"a length beyond the frame", changed(ip(to), high_of_length, 1), "ip length"},
          {"a length within the header", changed(ip(to), low_of_length, 19), "ip length"},
          {"an IPv6 header that is cut short", cut(ip6(to), ethernet + 39), "not ip"},
          {"a version other than 6", changed(ip6(to), version, 0x45), "not ip"},
          {"an IPv6 length beyond the frame", changed(ip6(to), 22, 1), "ip length"}};
}

class Malformed : public support::PipelineTest {
 protected:
  Malformed() { vlan(10, {1, 2}); }

  void control(SwitchControlOfPort control) {
    EXPECT_EQ(chip.switch_controls.set_port(1, static_cast<int>(control), 1), Status::ok);
  }
  uint64_t counter(int number) const { return *chip.counters.find(1, number); }
  /// Whether a frame leaves at port 2 as it came in, but that it is padded.
  bool is_bridged(const Bytes& frame) {
    Bytes padded = frame;
    padded.resize(std::max(padded.size(), std::size_t{60}));
    return send(1, frame) == "2: " + support::told(padded) + '\n';
  }
};

TEST_F(Malformed, FramesAreBridgedByTheirAddresses) {
  for (const Bad& bad : bad_packets(2)) EXPECT_TRUE(is_bridged(bad.frame)) << bad.name;
  const Bytes arp = Frame(1, 2).tag(10).arp(false, "10.0.0.1", "10.0.0.2");
  EXPECT_TRUE(is_bridged(cut(ip(), ethernet + 22))) << "ports that are cut short";
  EXPECT_TRUE(is_bridged(cut(ip6(), ethernet + 45))) << "extension headers that are cut short";
  EXPECT_TRUE(is_bridged(cut(arp, ethernet + 20))) << "ARP that is cut short";
  EXPECT_TRUE(is_bridged(Frame(1, 2).tag(10).type(1500).bytes({0x42, 0x42, 3}))) << "a length beyond the frame";
  EXPECT_TRUE(is_bridged(cut(Frame(1, 2).tag(10).type(1), ethernet + 1))) << "LLC that is cut short";
  EXPECT_TRUE(is_bridged(cut(Frame(1, 2).tag(10).type(0x9000), ethernet))) << "nothing behind the header";
  EXPECT_EQ(counter(3), 0U) << "none is discarded";
  EXPECT_EQ(chip.mac_table.size(), 1) << "their source is learned";
}

TEST_F(Malformed, EthernetHeadersAreDropped) {
  const Bytes tagged = Frame(1, 2).tag(10).tag(20).type(0x9000);
  for (const std::ptrdiff_t length : {0, 1, 6, 13, 14, 17, 18, 21})
    EXPECT_EQ(send(1, cut(tagged, length)), "dropped: malformed\n") << length;
  EXPECT_EQ(counter(3), 8U);
}

// ---------------------------------------------------------------------------------------------------- router ----

class MalformedForTheRouter : public Malformed {
 protected:
  MalformedForTheRouter() {
    vlan(20, {3});
    chip.unicast_routing = true;
    int in = 0;
    int out = 0;
    chip.l3_interfaces.create({.flags = chip::L3Interface::in_mac_table, .mac = mac(router), .vlan = 10}, in);
    chip.l3_interfaces.create({.flags = chip::L3Interface::in_mac_table, .mac = mac(router), .vlan = 20}, out);
    const uint32_t host = support::ip4("20.0.0.3");
    EXPECT_EQ(chip.hosts.add({0, host}, {.interface = out, .next_hop = mac(0x33), .place = chip::Port{3}}, false),
              Status::ok);
    EXPECT_EQ(send(1, ip(router)).substr(0, 8), "3: e0>33");
  }

  static constexpr int ip4_received = 12;
  static constexpr int ip4_header_errors = 13;
  static constexpr int ip6_header_errors = 67;
};

TEST_F(MalformedForTheRouter, PacketsAreHeaderErrors) {
  uint64_t errors = 0;
  for (const Bad& bad : bad_packets(router)) {
    EXPECT_EQ(send(1, bad.frame), std::string("dropped: ") + bad.reason + '\n') << bad.name;
    EXPECT_EQ(counter(ip4_header_errors) + counter(ip6_header_errors), ++errors) << bad.name;
  }
  EXPECT_EQ(counter(ip6_header_errors), 3U);
  EXPECT_EQ(counter(ip4_received), 6U) << "with the good one";
}

TEST_F(MalformedForTheRouter, PacketsGoToTheCpuWhereThePortSaysSo) {
  control(SwitchControlOfPort::non_ip_l3_error_to_cpu);
  for (const Bad& bad : bad_packets(router)) EXPECT_EQ(send(1, bad.frame).substr(0, 9), "cpu 0x8: ") << bad.name;
}

TEST_F(MalformedForTheRouter, WhatThePacketCarriesDoesNotMatter) {
  Bytes short_udp = ip(router);
  short_udp[low_of_length] = 24;
  short_udp[version + 11] = static_cast<uint8_t>(short_udp[version + 11] + 4);  // the header's checksum
  EXPECT_EQ(send(1, short_udp).substr(0, 8), "3: e0>33");
}

TEST_F(MalformedForTheRouter, PacketsToGroupsAreBridgedWithinTheirVlanAtMost) {
  const Bytes to_group = {0x01, 0x00, 0x5E, 0x01, 0x01, 0x01};
  const Bytes packet = Frame(support::mac(1), to_group).tag(10).ip("10.0.0.1", "225.1.1.1").udp(5, 6);
  chip::GroupId group;
  int within = 0;
  int beyond = 0;
  chip.multicast_routing = true;
  chip.multicast_groups.create(chip::MulticastGroups::l3, group);
  chip.l3_interfaces.create({.mac = mac(0xE1), .vlan = 10}, within);
  chip.l3_interfaces.create({.mac = mac(0xE1), .vlan = 20}, beyond);
  chip.multicast_groups.add_member(group, {2, within});
  chip.multicast_groups.add_member(group, {3, beyond});
  chip.multicast_routes.add({.vlan = 10, .address = {225, 1, 1, 1}},
                            {.flags = chip::MulticastRoute::from_any_port, .group = group, .valid = 1});
  const auto copies = [&](const Bytes& frame) {
    const std::string out = send(1, frame);
    return std::count(out.begin(), out.end(), '\n');
  };
  EXPECT_EQ(copies(packet), 2);
  EXPECT_EQ(copies(changed(packet, high_of_length, 1)), 1);
  EXPECT_EQ(send(1, changed(packet, high_of_length, 1)).substr(0, 3), "2: ");
  EXPECT_EQ(copies(cut(packet, ethernet + 19)), 1) << "flooded: no route can be found for it";
}

// ----------------------------------------------------------------------------------------- entries and VLANs ----

class MalformedForEntries : public Malformed {
 protected:
  /// Drops the frames that match, until the next entry is made.
  void drop(FieldQualifier qualifier, const chip::FieldMatch& match) {
    chip::FieldProcessor& rules = chip.field_processor;
    int group = 0;
    int entry = 0;
    rules.reset();
    rules.create_group({chip::FieldProcessor::ingress_stage, static_cast<int>(qualifier)}, 0, group);
    rules.enable_group(group, true);
    rules.create_entry(group, entry);
    EXPECT_EQ(rules.qualify(entry, qualifier, match), Status::ok);
    rules.add_action(entry, static_cast<int>(chip::FieldAction::drop), 0, 0);
    EXPECT_EQ(rules.install(entry), Status::ok);
  }
  bool is_dropped(const Bytes& frame) { return send(1, frame) == "dropped: field rule\n"; }
};

TEST_F(MalformedForEntries, FieldsThatCannotBeReadAreNotMatched) {
  const Bytes without_ip = cut(ip(), ethernet + 19);
  const Bytes without_ports = cut(ip(), ethernet + 22);
  const Bytes other_kind = Frame(1, 2).tag(10).type(0x9000);
  for (const FieldQualifier field :
       {FieldQualifier::source_ip, FieldQualifier::destination_ip, FieldQualifier::source_ip6,
        FieldQualifier::destination_ip6, FieldQualifier::ip_protocol, FieldQualifier::dscp, FieldQualifier::ttl,
        FieldQualifier::arp_target_ip, FieldQualifier::l4_source_port, FieldQualifier::l4_destination_port,
        FieldQualifier::icmp_type_code}) {
    drop(field, {0U, 0x1U});
    EXPECT_FALSE(is_dropped(without_ip)) << static_cast<int>(field);
    EXPECT_TRUE(is_dropped(other_kind)) << "which has no such field, and so 0 in it: " << static_cast<int>(field);
  }
  drop(FieldQualifier::l4_source_port, {0U, 0x1U});
  EXPECT_TRUE(is_dropped(ip()));
  EXPECT_FALSE(is_dropped(without_ports));
  drop(FieldQualifier::source_ip, {support::ip4("10.0.0.1"), 0xFFFFFFFFU});
  EXPECT_TRUE(is_dropped(without_ports));
  EXPECT_TRUE(is_dropped(changed(ip(), high_of_length, 1)));
}

TEST_F(MalformedForEntries, TheKindOfFrameIsMatchedAllTheSame) {
  const Bytes without_ip = cut(ip(), ethernet + 19);
  drop(FieldQualifier::ether_type, {0x0800U, 0xFFFFU});
  EXPECT_TRUE(is_dropped(without_ip));
  drop(FieldQualifier::ip_type, {chip::is_ip_bit | chip::is_ip4_bit, 0x3U});
  EXPECT_TRUE(is_dropped(without_ip));
  drop(FieldQualifier::outer_vlan, {10U, 0xFFFU});
  EXPECT_TRUE(is_dropped(without_ip));
}

TEST_F(MalformedForEntries, ASubnetGivesAVlanOnlyWhereTheSourceCanBeRead) {
  vlan(20, {2});
  chip.port_forwarding.set_untagged_vlan(1, 10);
  chip.vlan_controls.set_port(1, static_cast<int>(chip::VlanControlOfPort::lookup_ip), 1);
  chip.subnet_vlans.add(*chip::subnet_of_ip4(0, 0), {20, 0});
  const Bytes packet = Frame(1, 2).ip("10.0.0.1", "20.0.0.3").udp(68, 67);
  EXPECT_EQ(send(1, packet).substr(0, 13), "2: 01>02 [20]");
  EXPECT_EQ(send(1, cut(packet, 34)).substr(0, 13), "2: 01>02 [20]");
  EXPECT_EQ(send(1, cut(packet, 33)).substr(0, 13), "2: 01>02 [10]");
}

TEST_F(MalformedForEntries, AProtocolGivesAVlanWhateverIsBehindIt) {
  vlan(20, {2});
  vlan(30, {2});
  chip.port_forwarding.set_untagged_vlan(1, 10);
  chip.protocol_vlans.add({1, chip::ProtocolVlans::ethernet2, 0x0800}, 20);
  chip.protocol_vlans.add({1, chip::ProtocolVlans::llc, 0x0000}, 30);
  EXPECT_EQ(send(1, cut(Frame(1, 2).ip("10.0.0.1", "20.0.0.3").udp(68, 67), 20)).substr(0, 13), "2: 01>02 [20]");
  EXPECT_EQ(send(1, Frame(1, 2).type(3).bytes({0, 0, 3})).substr(0, 13), "2: 01>02 [30]");
  EXPECT_EQ(send(1, cut(Frame(1, 2).type(3), 16)).substr(0, 13), "2: 01>02 [10]") << "there are no access points";
}

// ----------------------------------------------------------------------------------------------------- traps ----

TEST_F(Malformed, ProtocolsAreTrappedWhereTheyCanBeToldByWhatIsThere) {
  const Bytes arp = Frame(1, 2).tag(10).arp(false, "10.0.0.1", "10.0.0.2");
  for (const SwitchControlOfPort which :
       {SwitchControlOfPort::arp_request_to_cpu, SwitchControlOfPort::arp_reply_to_cpu,
        SwitchControlOfPort::dhcp_to_cpu, SwitchControlOfPort::neighbor_discovery_to_cpu})
    control(which);
  const auto is_trapped = [&](const Bytes& frame) { return send(1, frame).find("cpu 0x2: ") != std::string::npos; };
  EXPECT_TRUE(is_trapped(arp));
  EXPECT_TRUE(is_trapped(cut(arp, ethernet + 28)));
  EXPECT_FALSE(is_trapped(cut(arp, ethernet + 27)));
  EXPECT_TRUE(is_trapped(ip()));
  EXPECT_TRUE(is_trapped(changed(ip(), high_of_length, 1)));
  EXPECT_TRUE(is_trapped(cut(ip(), ethernet + 24)));
  EXPECT_FALSE(is_trapped(cut(ip(), ethernet + 22)));
  EXPECT_TRUE(is_trapped(ip6()));
  EXPECT_FALSE(is_trapped(cut(ip6(), ethernet + 48)));
}

TEST_F(Malformed, PacketsToGroupsFloodAsTheirKindDoesAndAreNeverReserved) {
  const Bytes to_group = {0x01, 0x00, 0x5E, 0, 0, 5};
  const Bytes packet = Frame(support::mac(1), to_group).tag(10).ip("10.0.0.1", "224.0.0.5").udp(5, 6);
  EXPECT_EQ(send(1, cut(packet, ethernet + 19)).substr(0, 3), "2: ");
  chip.vlans.set_multicast_flood(10, {&chip::VlanControl::ip4_multicast_flood_mode}, 2);
  control(SwitchControlOfPort::ip4_reserved_multicast_flood);
  EXPECT_EQ(send(1, packet).substr(0, 3), "2: ");
  EXPECT_EQ(send(1, cut(packet, ethernet + 19)), "dropped: multicast flood\n");
}

TEST_F(Malformed, PacketsToATrunkGoByTheirMacAddresses) {
  chip::TrunkId trunk;
  chip.trunks.create(0, trunk);
  constexpr int by_source_ip = 4;
  EXPECT_EQ(chip.trunks.set(trunk, by_source_ip, {2, 3, 4, 5}), Status::ok);
  chip.vlans.add_ports(10, {3, 4, 5}, {});
  std::string ports_by_mac;
  std::string ports_of_cut;
  for (int source = 1; source <= 20; ++source) {
    const Bytes packet = Frame(source, 99).tag(10).ip("10.0.0.1", "20.0.0.3").udp(5, 6);
    ports_of_cut += send(1, cut(packet, ethernet + 19))[0];
    ports_by_mac += send(1, Frame(source, 99).tag(10).type(0x9000))[0];
  }
  EXPECT_EQ(ports_of_cut, ports_by_mac);
  EXPECT_NE(ports_of_cut, std::string(20, ports_of_cut[0]));
}

}  // namespace
