// The headers that the chip finds in a frame, and the frames that it does not believe.
#include "chip/pipeline/parse.h"

#include <gtest/gtest.h>

#include "support/frames.h"

namespace {

using chip::Framing;
using chip::Packet;
using support::Bytes;
using support::Frame;
using support::ip4;

Packet parsed(const Bytes& frame) {
  Packet packet;
  EXPECT_TRUE(chip::parse(3, frame, packet));
  return packet;
}

bool is_malformed(const Bytes& frame) {
  Packet packet;
  return !chip::parse(3, frame, packet);
}

TEST(Parse, FindsTheAddressesAndThePort) {
  const Packet packet = parsed(Frame(1, 2).type(0x9000));
  EXPECT_EQ(packet.fields.source_mac[5], 1);
  EXPECT_EQ(packet.fields.destination_mac[5], 2);
  EXPECT_EQ(packet.fields.ether_type, 0x9000);
  EXPECT_EQ(packet.fields.in_port, 3);
  EXPECT_EQ(packet.source, 3);
}

TEST(Parse, FindsUpToTwoTags) {
  EXPECT_EQ(parsed(Frame(1, 2).type(0x9000)).fields.vlan_format, 0);
  const Packet one = parsed(Frame(1, 2).tag(10, 5).type(0x9000));
  EXPECT_EQ(one.vlan(), 10);
  EXPECT_EQ(one.priority, 5);
  EXPECT_EQ(one.fields.vlan_format, 1);
  const Packet two = parsed(Frame(1, 2).tag(10, 0, 0x88A8).tag(20, 3).type(0x9000));
  EXPECT_EQ(two.vlan(), 10);
  EXPECT_EQ(two.inner_vlan(), 20);
  EXPECT_EQ(two.fields.vlan_format, 3);
  EXPECT_EQ(parsed(Frame(1, 2).tag(1).tag(2).tag(3).type(0x9000)).fields.ether_type, 0x8100) << "a third is payload";
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
  EXPECT_TRUE(report.igmp);
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

TEST(Parse, DoesNotBelieveLengthsBeyondTheFrame) {
  Bytes long_ip = Frame(1, 2).ip("10.0.0.1", "10.0.0.2").udp(1, 2);
  long_ip[17] = 200;
  EXPECT_TRUE(is_malformed(long_ip));
  Bytes short_header = Frame(1, 2).ip("10.0.0.1", "10.0.0.2").udp(1, 2);
  short_header[14] = 0x44;
  EXPECT_TRUE(is_malformed(short_header));
  EXPECT_TRUE(is_malformed(Frame(1, 2).type(100).bytes({0x42, 0x42, 3})));
}

TEST(Parse, ReadsNoPortsInALaterFragment) {
  Bytes fragment = Frame(1, 2).ip("10.0.0.1", "10.0.0.2").udp(5, 6);
  fragment[21] = 1;  // eight bytes into the packet
  EXPECT_EQ(parsed(fragment).fields.l4_source_port, 0);
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
