// The frames that the L2 cache keeps for the CPU, and those that the controls of a port copy to it or drop.
#include "chip/spanning_trees.h"
#include "pipeline_fixture.h"

namespace {

using chip::Port;
using chip::StpState;
using chip::SwitchControlOfChip;
using chip::SwitchControlOfPort;
using support::Bytes;
using support::Frame;

class Traps : public support::PipelineTest {
 protected:
  Traps() { vlan(10, {1, 2}, {2}); }

  void entry(uint32_t flags, const chip::L2CacheEntry& match = {}) {
    chip::L2CacheEntry entry = match;
    entry.flags = flags;
    entry.mac = {0x01, 0x80, 0xC2, 0, 0, 0};
    entry.mac_mask = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xF0};
    int index = 0;
    EXPECT_EQ(chip.l2_cache.set(chip::L2Cache::any_index, entry, index), Status::ok);
  }
  void control(SwitchControlOfPort control, Port port = 1) {
    EXPECT_EQ(chip.switch_controls.set_port(port, static_cast<int>(control), 1), Status::ok);
  }
  void block(Port port) { chip.spanning_trees.set_state(1, port, static_cast<int>(StpState::block)); }

  static Bytes to_group(int last) {
    return Frame(support::mac(1), {0x01, 0x80, 0xC2, 0, 0, static_cast<uint8_t>(last)}).tag(10).type(0x9000);
  }

  static constexpr uint32_t cpu = 1;
  static constexpr uint32_t bpdu = 17;
};

// -------------------------------------------------------------------------------------------------- L2 cache ----

TEST_F(Traps, KeepFramesThatTheL2CacheMatchesForTheCpu) {
  entry(cpu);
  EXPECT_EQ(send(1, to_group(14)), "cpu 0x1: 01>01:80:c2:00:00:0e [10] 9000\ndropped: trapped to the cpu\n");
  EXPECT_EQ(send(1, to_group(16)), "2: 01>01:80:c2:00:00:10 9000\n");
}

TEST_F(Traps, MatchTheVlanAndThePortWhereAsked) {
  entry(cpu, {.vlan = 10, .vlan_mask = 0xFFF, .source_port = 1, .source_port_mask = 0xFF});
  const std::string trapped = "cpu 0x1: 01>01:80:c2:00:00:00 [10] 9000\ndropped: trapped to the cpu\n";
  EXPECT_EQ(send(1, to_group(0)), trapped);
  EXPECT_EQ(send(2, to_group(0)), "1: 01>01:80:c2:00:00:00 [10] 9000\n");
  vlan(11, {1, 2});
  EXPECT_EQ(send(1, Frame(support::mac(1), {0x01, 0x80, 0xC2, 0, 0, 0}).tag(11).type(0x9000)),
            "2: 01>01:80:c2:00:00:00 [11] 9000\n");
}

TEST_F(Traps, KeepBpdusAloneOfAPortThatSpanningTreeBlocks) {
  entry(cpu);
  block(1);
  EXPECT_EQ(send(1, to_group(0)), "dropped: spanning tree\n");
  chip.l2_cache.clear();
  entry(bpdu);
  EXPECT_EQ(send(1, to_group(0)), "cpu 0x1: 01>01:80:c2:00:00:00 [10] 9000\ndropped: trapped to the cpu\n");
  EXPECT_EQ(send(1, Frame(1, 2).tag(11).type(0x9000)), "dropped: no such vlan\n");
}

TEST_F(Traps, LetTheHostSendControlFrames) {
  entry(bpdu);
  EXPECT_EQ(send(0, to_group(0)), "1: 01>01:80:c2:00:00:00 [10] 9000\n2: 01>01:80:c2:00:00:00 9000\n");
}

// -------------------------------------------------------------------------------------------------- controls ----

struct Protocol {
  const char* name;
  SwitchControlOfPort control;
  Bytes frame;
};

const Protocol protocols[] = {
    {"ARP request", SwitchControlOfPort::arp_request_to_cpu, Frame(1, 2).tag(10).arp(false, "10.0.0.1", "10.0.0.2")},
    {"ARP reply", SwitchControlOfPort::arp_reply_to_cpu, Frame(1, 2).tag(10).arp(true, "10.0.0.1", "10.0.0.2")},
    {"DHCP request", SwitchControlOfPort::dhcp_to_cpu, Frame(1, 2).tag(10).ip("10.0.0.1", "10.0.0.2").udp(68, 67)},
    {"DHCP reply", SwitchControlOfPort::dhcp_to_cpu, Frame(1, 2).tag(10).ip("10.0.0.1", "10.0.0.2").udp(67, 68)},
    {"DHCPv6 request", SwitchControlOfPort::dhcp_to_cpu,
     Frame(1, 2).tag(10).ip("2001:db8::1", "2001:db8::2").udp(546, 547)},
    {"DHCPv6 reply", SwitchControlOfPort::dhcp_to_cpu,
     Frame(1, 2).tag(10).ip("2001:db8::1", "2001:db8::2").udp(547, 546)},
    {"router solicitation", SwitchControlOfPort::neighbor_discovery_to_cpu,
     Frame(1, 2).tag(10).ip("fe80::1", "2001:db8::2").icmp(133)},
    {"redirect", SwitchControlOfPort::neighbor_discovery_to_cpu,
     Frame(1, 2).tag(10).ip("fe80::1", "2001:db8::2").icmp(137)},
    {"reserved IPv6 multicast", SwitchControlOfPort::ip6_reserved_multicast_to_cpu,
     Frame(1, 2).tag(10).ip("fe80::1", "ff02::5").udp(5, 6)},
};
const Bytes others[] = {
    Frame(1, 2).tag(10).type(0x9000),
    Frame(1, 2).tag(10).ip("10.0.0.1", "10.0.0.2").udp(67, 69),
    Frame(1, 2).tag(10).ip("10.0.0.1", "10.0.0.2").tcp(68, 67),
    Frame(1, 2).tag(10).ip("10.0.0.1", "10.0.0.2").udp(546, 547),
    Frame(1, 2).tag(10).ip("10.0.0.1", "10.0.0.2").icmp(135),
    Frame(1, 2).tag(10).ip("2001:db8::1", "2001:db8::2").udp(68, 67),
    Frame(1, 2).tag(10).ip("fe80::1", "2001:db8::2").icmp(132),
    Frame(1, 2).tag(10).ip("fe80::1", "2001:db8::2").icmp(138),
    Frame(1, 2).tag(10).ip("fe80::1", "ff05::5").udp(5, 6),
    Frame(1, 2).tag(10).type(3).bytes({0x08, 0x06, 0x03}),  // LLC, whose service access points are no ether type
};

TEST_F(Traps, CopyEachProtocolToTheCpuWhenItsControlSaysSo) {
  const auto enable = static_cast<int>(SwitchControlOfChip::mld_reserved_multicast_enable);
  chip.reserved_multicast.set(0, {{{0xFF, 0x02}, {0xFF, 0xFF}}});
  chip.switch_controls.set(enable, 1);
  for (const Protocol& protocol : protocols) {
    const std::string told = support::told(protocol.frame);
    const std::string forwarded = send(1, protocol.frame);
    EXPECT_EQ(forwarded.substr(0, 3), "2: ") << protocol.name;
    control(protocol.control);
    EXPECT_EQ(send(1, protocol.frame), forwarded + "cpu 0x2: " + told + '\n') << protocol.name;
    EXPECT_EQ(send(1, others[0]), "2: 01>02 9000\n") << protocol.name;
    EXPECT_EQ(send(2, protocol.frame).find("cpu"), std::string::npos) << protocol.name << ": the port of another";
    chip.switch_controls.set_port(1, static_cast<int>(protocol.control), 0);
  }
}

TEST_F(Traps, CopyNothingElse) {
  chip.reserved_multicast.set(0, {{{0xFF, 0x02}, {0xFF, 0xFF}}});
  chip.switch_controls.set(static_cast<int>(SwitchControlOfChip::mld_reserved_multicast_enable), 1);
  for (const Protocol& protocol : protocols) control(protocol.control);
  for (const Bytes& frame : others) EXPECT_EQ(send(1, frame).substr(0, 3), "2: ");
  for (const Bytes& frame : others) EXPECT_EQ(send(1, frame).find("cpu"), std::string::npos) << support::told(frame);
}

TEST_F(Traps, TakeNoAddressForReservedUntilThatIsEnabled) {
  chip.reserved_multicast.set(0, {{{0xFF, 0x02}, {0xFF, 0xFF}}});
  control(SwitchControlOfPort::ip6_reserved_multicast_to_cpu);
  const Bytes frame = Frame(1, 2).tag(10).ip("fe80::1", "ff02::5").udp(5, 6);
  EXPECT_EQ(send(1, frame).find("cpu"), std::string::npos);
}

TEST_F(Traps, DropDhcpWhereAskedWhetherTheCpuWantsItOrNot) {
  const Bytes request = Frame(1, 2).tag(10).ip("10.0.0.1", "10.0.0.2").udp(68, 67);
  control(SwitchControlOfPort::dhcp_drop);
  EXPECT_EQ(send(1, request), "dropped: switch control\n");
  EXPECT_EQ(send(1, others[0]), "2: 01>02 9000\n");
  control(SwitchControlOfPort::dhcp_to_cpu);
  EXPECT_EQ(send(1, request), "cpu 0x2: 01>02 [10] 10.0.0.1>10.0.0.2 ttl 64 udp 68>67\ndropped: switch control\n");
}

TEST_F(Traps, CopyNothingOfAFrameThatIsNotLetIn) {
  control(SwitchControlOfPort::arp_request_to_cpu);
  block(1);
  EXPECT_EQ(send(1, Frame(1, 2).tag(10).arp(false, "10.0.0.1", "10.0.0.2")), "dropped: spanning tree\n");
}

TEST_F(Traps, GiveTheCpuOneCopyForSeveralReasons) {
  vlan(20, {0, 1});
  control(SwitchControlOfPort::arp_request_to_cpu);
  EXPECT_EQ(send(1, Frame(1, 0xFF).tag(20).arp(false, "10.0.0.1", "10.0.0.2")),
            "cpu 0x82: 01>all [20] arp 10.0.0.1>10.0.0.2\n");
}

}  // namespace
