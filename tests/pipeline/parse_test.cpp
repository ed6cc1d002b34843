// The headers that the chip finds in a frame, and how far it can read those that are malformed.
#include "chip/pipeline/parse.h"

#include <gtest/gtest.h>

#include "support/frames.h"

namespace {

using chip::Framing;
using chip::Layer;
using chip::Packet;
using support::Bytes;
using support::Frame;
using support::ip4;

Packet parsed(const Bytes& frame) {
  Packet packet;
  EXPECT_TRUE(chip::parse(3, frame, packet));
  return packet;
}

/// The last header of a frame that can be read.
Layer readable(const Bytes& frame) { return parsed(frame).fields.readable; }

/// A frame without its last bytes.
Bytes cut(const Bytes& frame, std::size_t length) {
  return {frame.begin(), frame.begin() + static_cast<std::ptrdiff_t>(length)};
}

constexpr std::size_t untagged = 14;  // bytes of an Ethernet header

TEST(Parse, FindsTheAddressesAndThePort) {
  const Packet packet = parsed(Frame(1, 2).type(0x9000));
  EXPECT_EQ(packet.fields.source_mac[5], 1);
  EXPECT_EQ(packet.fields.destination_mac[5], 2);
  EXPECT_EQ(packet.fields.ether_type, 0x9000);
  EXPECT_EQ(packet.fields.in_port, chip::Port{3});
  EXPECT_EQ(packet.source, chip::Place{chip::Port{3}});
}

TEST(Parse, FindsUpToTwoTags) {
  EXPECT_EQ(parsed(Frame(1, 2).type(0x9000)).fields.vlan_format, 0);
  const Packet one = parsed(Frame(1, 2).tag(10, 5).type(0x9000));
  EXPECT_EQ(one.vlan(), 10);
  EXPECT_EQ(one.priority, 5);
  EXPECT_EQ(one.fields.vlan_format, 1);
  const Packet two = parsed(Frame(1, 2).tag(10).tag(20, 3).type(0x9000));
  EXPECT_EQ(two.vlan(), 10);
  EXPECT_EQ(two.inner_vlan(), 20);
  EXPECT_EQ(two.fields.vlan_format, 3);
  EXPECT_EQ(parsed(Frame(1, 2).tag(1).tag(2).tag(3).type(0x9000)).fields.ether_type, 0x8100) << "a third is payload";
}

TEST(Parse, TakesTagsOfAnotherTypeThanThePortsForPayload) {
  for (const uint16_t type : {uint16_t{0x88A8}, uint16_t{0x9100}}) {
    const Packet outer = parsed(Frame(1, 2).tag(10, 5, type).tag(20).ip("10.0.0.1", "10.0.0.2").udp(1, 2));
    EXPECT_FALSE(outer.outer_tagged);
    EXPECT_EQ(outer.priority, 0);
    EXPECT_EQ(outer.fields.vlan_format, 0);
    EXPECT_EQ(outer.fields.ether_type, type);
    EXPECT_FALSE(outer.is_ip4());
    const Packet inner = parsed(Frame(1, 2).tag(10).tag(20, 5, type).ip("10.0.0.1", "10.0.0.2").udp(1, 2));
    EXPECT_EQ(inner.vlan(), 10);
    EXPECT_FALSE(inner.inner_tagged);
    EXPECT_EQ(inner.fields.vlan_format, 1);
    EXPECT_EQ(inner.fields.ether_type, type);
  }
}

TEST(Parse, ReadsIp4WithItsPorts) {
  const Packet packet = parsed(Frame(1, 2).tag(10).ip("10.0.0.1", "10.0.0.2", 7, 0xB8).tcp(1000, 80));
  EXPECT_EQ(packet.fields.source_ip, ip4("10.0.0.1"));
  EXPECT_EQ(packet.fields.destination_ip, ip4("10.0.0.2"));
  EXPECT_EQ(packet.fields.ttl, 7);
  EXPECT_EQ(packet.fields.tos, 0xB8);
  EXPECT_EQ(packet.fields.l4_source_port, 1000);
  EXPECT_EQ(packet.fields.l4_destination_port, 80);
}

TEST(Parse, ReadsWhatIp6CarriesBehindItsExtensionHeaders) {
  const Packet packet = parsed(Frame(1, 2).ip("fe80::1", "ff02::16", 1).hop_by_hop().icmp(143));
  EXPECT_EQ(packet.fields.ip_protocol, 58);
  EXPECT_EQ(packet.fields.icmp_type, 143);
  EXPECT_EQ(packet.fields.destination_ip6[1], 0x02);
}

TEST(Parse, ReadsArpAndIgmp) {
  EXPECT_EQ(parsed(Frame(1, 0xFF).arp(false, "10.0.0.1", "10.0.0.9")).fields.arp_target_ip, ip4("10.0.0.9"));
  const Packet report = parsed(Frame(1, 2).ip("10.0.0.1", "239.1.2.3", 1).igmp(0x16, "239.1.2.3"));
  EXPECT_TRUE(report.is_igmp());
  EXPECT_EQ(report.fields.icmp_type, 0x16);
}

TEST(Parse, KnowsHowTheProtocolStandsInTheFrame) {
  EXPECT_EQ(parsed(Frame(1, 2).type(0x0806).bytes(Bytes(28))).framing, Framing::ethernet2);
  const Packet snap = parsed(Frame(1, 2).type(8).bytes({0xAA, 0xAA, 3, 0, 0, 0, 0x80, 0x9B}));
  EXPECT_EQ(snap.framing, Framing::snap);
  EXPECT_EQ(snap.fields.ether_type, 0x809B);
  const Packet llc = parsed(Frame(1, 2).type(3).bytes({0x42, 0x42, 3}));
  EXPECT_EQ(llc.framing, Framing::llc);
  EXPECT_EQ(llc.access_points, 0x4242);
  const Packet no_ip = parsed(Frame(1, 2).type(3).bytes({0x08, 0x00, 3}));
  EXPECT_EQ(no_ip.fields.ether_type, 0) << "access points that look like a type are none";
}

TEST(Parse, FindsATypeInSnapOfItsOwnOrganizationAlone) {
  const auto snap_of = [](const Bytes& organization) {
    const Bytes packet = Frame(1, 2).ip("10.0.0.1", "10.0.0.2").udp(1, 2);
    Frame frame = Frame(1, 2).type(36).bytes({0xAA, 0xAA, 3}).bytes(organization).bytes({0x08, 0x00});
    return parsed(frame.bytes({packet.begin() + untagged, packet.end()}));
  };
  EXPECT_TRUE(snap_of({0, 0, 0}).is_ip4());
  EXPECT_EQ(snap_of({0, 0, 0}).fields.l4_destination_port, 2);
  for (const Bytes& other : {Bytes{0, 0, 0xF8}, Bytes{0, 0x0C, 0}, Bytes{1, 0, 0}}) {
    const Packet packet = snap_of(other);
    EXPECT_EQ(packet.framing, Framing::llc);
    EXPECT_EQ(packet.access_points, 0xAAAA);
    EXPECT_EQ(packet.fields.ether_type, 0);
    EXPECT_FALSE(packet.is_ip4());
  }
}

TEST(Parse, ReadsTheAddressesOfAPacketWhoseLengthsDoNotAgree) {
  const Bytes good = Frame(1, 2).ip("10.0.0.1", "10.0.0.2").udp(5, 6);
  EXPECT_TRUE(parsed(good).lengths_agree);
  Bytes longer = good;
  longer[16] = 2;  // as of a frame that a capture has cut
  EXPECT_FALSE(parsed(longer).lengths_agree);
  EXPECT_EQ(parsed(longer).fields.destination_ip, ip4("10.0.0.2"));
  EXPECT_EQ(parsed(longer).fields.l4_destination_port, 6);
  EXPECT_EQ(readable(longer), Layer::transport);
  Bytes shorter = good;
  shorter[17] = 19;  // than its header
  EXPECT_FALSE(parsed(shorter).lengths_agree);
  EXPECT_EQ(parsed(shorter).fields.source_ip, ip4("10.0.0.1"));
  EXPECT_EQ(readable(shorter), Layer::network);

  Bytes longer6 = Frame(1, 2).ip("fe80::1", "ff02::16").icmp(143);
  EXPECT_TRUE(parsed(longer6).lengths_agree);
  longer6[18] = 2;
  EXPECT_FALSE(parsed(longer6).lengths_agree);
  EXPECT_EQ(parsed(longer6).fields.icmp_type, 143);
}

TEST(Parse, ReadsNoHeaderThatIsCutShortOrIsNone) {
  const Bytes ip = Frame(1, 2).ip("10.0.0.1", "10.0.0.2").tcp(5, 6);
  EXPECT_EQ(readable(cut(ip, untagged + 19)), Layer::ethernet);
  EXPECT_FALSE(parsed(cut(ip, untagged + 19)).is_ip4());
  EXPECT_EQ(readable(cut(ip, untagged + 20)), Layer::network);
  EXPECT_EQ(readable(cut(ip, untagged + 23)), Layer::network);
  EXPECT_EQ(readable(cut(ip, untagged + 24)), Layer::transport) << "its ports are there";
  for (const uint8_t first : {uint8_t{0x44}, uint8_t{0x55}}) {  // a header of 16 bytes, and one of version 5
    Bytes none = ip;
    none[untagged] = first;
    EXPECT_EQ(readable(none), Layer::ethernet);
  }
  Bytes options = ip;
  options[untagged] = 0x4F;
  EXPECT_EQ(readable(options), Layer::network) << "60 bytes of a packet of 40";

  const Bytes ip6 = Frame(1, 2).ip("fe80::1", "ff02::16").hop_by_hop().icmp(143);
  EXPECT_EQ(readable(cut(ip6, untagged + 39)), Layer::ethernet);
  EXPECT_EQ(readable(cut(ip6, untagged + 47)), Layer::network);
  EXPECT_EQ(readable(cut(ip6, untagged + 49)), Layer::network);
  EXPECT_EQ(readable(cut(ip6, untagged + 50)), Layer::transport);

  const Bytes arp = Frame(1, 2).arp(false, "10.0.0.1", "10.0.0.2");
  EXPECT_EQ(readable(cut(arp, untagged + 27)), Layer::ethernet);
  EXPECT_TRUE(parsed(cut(arp, untagged + 28)).is_arp());
}

TEST(Parse, ReadsNoAccessPointsThatAreCutShort) {
  EXPECT_EQ(parsed(Frame(1, 2).type(100).bytes({0x42, 0x42, 3})).framing, Framing::llc) << "as of a frame that is cut";
  EXPECT_EQ(parsed(Frame(1, 2).type(2).bytes({0x42, 0x42, 3})).framing, Framing::unreadable);
  EXPECT_EQ(parsed(cut(Frame(1, 2).type(3), untagged + 2)).framing, Framing::unreadable);
}

TEST(Parse, BelievesNoFrameWhoseEthernetHeaderIsCutShort) {
  const auto shortest = [](const Bytes& whole) {
    Packet packet;
    std::size_t length = 0;
    while (!chip::parse(3, cut(whole, length), packet)) ++length;
    return length;
  };
  EXPECT_EQ(shortest(Frame(1, 2).type(0x9000)), 14U);
  EXPECT_EQ(shortest(Frame(1, 2).tag(10).type(0x9000)), 18U);
  EXPECT_EQ(shortest(Frame(1, 2).tag(10).tag(20).type(0x9000)), 22U);
  EXPECT_EQ(shortest(Frame(1, 2).tag(10, 0, 0x88A8).type(0x9000)), 14U);
}

TEST(Parse, ReadsNoPortsInALaterFragment) {
  Bytes fragment = Frame(1, 2).ip("10.0.0.1", "10.0.0.2").udp(5, 6);
  fragment[21] = 1;  // eight bytes into the packet
  EXPECT_EQ(parsed(fragment).fields.l4_source_port, 0);
  EXPECT_EQ(readable(fragment), Layer::transport) << "it has none";
}

TEST(Parse, NeverReadsPastTheEnd) {
  const Bytes frames[] = {Frame(1, 2).tag(10).tag(20).ip("10.0.0.1", "10.0.0.2").tcp(1, 2),
                          Frame(1, 2).ip("fe80::1", "ff02::16").hop_by_hop().icmp(143),
                          Frame(1, 2).arp(true, "10.0.0.1", "10.0.0.2"),
                          Frame(1, 2).type(8).bytes({0xAA, 0xAA, 3, 0, 0, 0, 0x80, 0x9B})};
  int believed = 0;
  for (const Bytes& frame : frames)
    for (std::size_t length = 0; length <= frame.size(); ++length) {
      const Bytes cut(frame.begin(), frame.begin() + static_cast<std::ptrdiff_t>(length));  // a block of its own
      Packet packet;
      believed += chip::parse(1, cut, packet) ? 1 : 0;
    }
  EXPECT_GE(believed, 4) << "the whole ones at least";
}

}  // namespace
