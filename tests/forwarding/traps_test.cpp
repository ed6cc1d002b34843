// The frames that reach the CPU: by the controls of start-up, by the L2 cache and by rules of the field processor.
#include "forwarding_fixture.h"

namespace {

using support::Bytes;
using support::Frame;

const Bytes own_mac = {0x02, 0, 0, 0, 0, 0x77};

class Traps : public support::ForwardingTest {
 protected:
  Traps() { vlan(10, {1, 2, 9}); }

  static int32_t group(int32_t (*create)(int32_t, int32_t*)) {
    int32_t id = 0;
    EXPECT_EQ(create(0, &id), 0);
    return id;
  }
  static Bytes to(const Bytes& destination) { return Frame(support::mac(1), destination).tag(10).type(0x9000); }
  static Bytes dhcp(int source, int destination) {
    return Frame(1, 2).tag(10).ip("10.0.0.1", "10.0.0.2").udp(source, destination);
  }
  /// How the CPU gets a frame, and whether it goes on: "cpu 0x10: ... " of the copies, without their frames.
  std::string ways(int port, const Bytes& frame) {
    std::string found;
    const std::string copies = send(port, frame);
    for (std::size_t at = 0; at < copies.size(); at = copies.find('\n', at) + 1) {
      const std::size_t end = copies.find(": ", at);
      found += copies.substr(at, end - at) + ' ';
    }
    return found;
  }
};

// ------------------------------------------------------------------------------------------------- start-up ----

TEST_F(Traps, StartUpCopiesArpDhcpAndNeighborDiscoveryOfTheFrontPortsToTheCpu) {
  const Bytes frames[] = {
      Frame(1, 2).tag(10).arp(false, "10.0.0.1", "10.0.0.2"),
      Frame(1, 2).tag(10).arp(true, "10.0.0.1", "10.0.0.2"),
      dhcp(68, 67),
      Frame(1, 2).tag(10).ip("2001:db8::1", "2001:db8::2").udp(546, 547),
      Frame(1, 2).tag(10).ip("fe80::1", "fe80::2").icmp(135),
  };
  for (const Bytes& frame : frames) {
    EXPECT_EQ(ways(1, frame), "2 9 cpu 0x2 ") << support::told(frame);
    EXPECT_EQ(ways(9, frame), "1 2 ") << support::told(frame);
  }
  EXPECT_EQ(ways(1, Frame(1, 2).tag(10).type(0x9000)), "2 9 ");
}

TEST_F(Traps, StartUpKeepsSlowProtocolsForTheCpu) {
  EXPECT_EQ(send(1, to({0x01, 0x80, 0xC2, 0, 0, 2})),
            "cpu 0x1: 01>01:80:c2:00:00:02 [10] 9000\ndropped: trapped to the cpu\n");
  EXPECT_EQ(ways(1, to({0x01, 0x80, 0xC2, 0, 0, 3})), "2 9 ");
}

TEST_F(Traps, DhcpIsDroppedButForTheCpuUntilThatIsTakenBack) {
  EXPECT_EQ(ways(1, dhcp(68, 67)), "2 9 cpu 0x2 ");
  EXPECT_EQ(sai_dhcp_packet_to_cpu(0, 1), 0);
  EXPECT_EQ(send(1, dhcp(68, 67)), "cpu 0x2: 01>02 [10] 10.0.0.1>10.0.0.2 ttl 64 udp 68>67\ndropped: switch control\n");
  EXPECT_EQ(sai_dhcp_packet_to_cpu(0, 0), 0);
  EXPECT_EQ(ways(1, dhcp(68, 67)), "2 9 cpu 0x2 ");
}

TEST_F(Traps, ControlFramesButSlowProtocolsAreFloodedUntilTheirAddressIsSet) {
  const std::string for_the_cpu = "cpu 0x1 dropped ";
  for (uint8_t last = 0; last < 16; ++last) {
    const Bytes address = {0x01, 0x80, 0xC2, 0, 0, last};
    const bool is_slow_protocol = last == 2;
    EXPECT_EQ(ways(1, to(address)), is_slow_protocol ? for_the_cpu : "2 9 ") << int{last};
    int32_t index = 0;
    EXPECT_EQ(sai_bpdu_set(0, address.data(), &index), 0);
    EXPECT_EQ(ways(1, to(address)), for_the_cpu) << int{last};
  }
}

TEST_F(Traps, RoutingProtocolsAreFloodedUntilTheirAddressIsSet) {
  const struct {
    Bytes address;
    const char* source;
    const char* group;
  } rows[] = {
      {{0x01, 0x00, 0x5E, 0, 0, 0x05}, "10.0.0.1", "224.0.0.5"},
      {{0x01, 0x00, 0x5E, 0, 0, 0x06}, "10.0.0.1", "224.0.0.6"},
      {{0x01, 0x00, 0x5E, 0, 0, 0x09}, "10.0.0.1", "224.0.0.9"},
      {{0x01, 0x00, 0x5E, 0, 0, 0x12}, "10.0.0.1", "224.0.0.18"},
      {{0x33, 0x33, 0, 0, 0, 0x05}, "fe80::1", "ff02::5"},
  };
  for (const auto& [address, source, group] : rows) {
    const Bytes hello = Frame(support::mac(1), address).tag(10).ip(source, group, 1).protocol(89, {});
    EXPECT_EQ(ways(1, hello), "2 9 ") << group;
    int32_t index = 0;
    EXPECT_EQ(sai_bpdu_set(0, address.data(), &index), 0);
    EXPECT_EQ(ways(1, hello), "cpu 0x1 dropped ") << group;
  }
}

// -------------------------------------------------------------------------------------------------- L2 cache ----

TEST_F(Traps, BpdusAreKeptForTheCpuOnBlockedPortsToo) {
  const Bytes group_address = {0x01, 0x80, 0xC2, 0, 0, 0};
  const std::string trapped = "cpu 0x1: 01>01:80:c2:00:00:00 [10] 9000\ndropped: trapped to the cpu\n";
  EXPECT_EQ(ways(1, to(group_address)), "2 9 ");
  int32_t index = 0;
  EXPECT_EQ(sai_bpdu_set(0, group_address.data(), &index), 0);
  EXPECT_EQ(send(1, to(group_address)), trapped);
  EXPECT_EQ(sai_port_stg_stp_set(0, 1, {1, 1}), 0);
  EXPECT_EQ(send(1, to(group_address)), trapped);
  EXPECT_EQ(send(1, Frame(1, 2).tag(10).type(0x9000)), "dropped: spanning tree\n");
  EXPECT_EQ(sai_bpdu_unset(0, index), 0);
  EXPECT_EQ(send(1, to(group_address)), "dropped: spanning tree\n");
}

TEST_F(Traps, LldpIsKeptForTheCpu) {
  const Bytes nearest_bridge = {0x01, 0x80, 0xC2, 0, 0, 0x0E};
  EXPECT_EQ(ways(1, to(nearest_bridge)), "2 9 ");
  EXPECT_EQ(sai_lldp_set(0), 0);
  EXPECT_EQ(send(1, to(nearest_bridge)), "cpu 0x1: 01>01:80:c2:00:00:0e [10] 9000\ndropped: trapped to the cpu\n");
  EXPECT_EQ(sai_lldp_unset(0), 0);
  EXPECT_EQ(ways(1, to(nearest_bridge)), "2 9 ");
}

// ----------------------------------------------------------------------------------------------------- rules ----

const std::string for_the_cpu_alone = "cpu 0x10 dropped ";
const std::string control_and_rule = "cpu 0x12 dropped ";

TEST_F(Traps, OspfOfTtlOneIsCopiedToTheCpu) {
  const Bytes hello = Frame(1, 2).tag(10).ip("10.0.0.1", "10.0.0.2", 1).protocol(89, {});
  EXPECT_EQ(ways(1, hello), "2 9 ");
  int32_t entry = 0;
  EXPECT_EQ(sai_fp_ospf_ttl1_set(0, 1, group(sai_system_ipv4_fp_create), &entry), 0);
  EXPECT_EQ(ways(1, hello), "2 9 cpu 0x10 ");
  EXPECT_EQ(ways(2, hello), "1 9 ");
  EXPECT_EQ(ways(1, Frame(1, 2).tag(10).ip("10.0.0.1", "10.0.0.2", 2).protocol(89, {})), "2 9 ");
  EXPECT_EQ(sai_fp_entry_destroy(0, entry), 0);
  EXPECT_EQ(ways(1, hello), "2 9 ");
}

TEST_F(Traps, TheFrameOfLoopDetectionGoesToTheCpuAloneWithPrioritySeven) {
  const Bytes probe = Frame(own_mac, support::mac(0xFF)).tag(10).type(0x9088);
  EXPECT_EQ(ways(1, probe), "2 9 cpu 0x80 ");
  int32_t entry = 0;
  EXPECT_EQ(sai_fp_loopd_packet_to_cpu_set(0, 1, own_mac.data(), group(sai_system_ipv4_fp_create), &entry), 0);
  EXPECT_EQ(send(1, probe), "cpu 0x10: 77>all [10p7] 9088\ndropped: trapped to the cpu\n");
  EXPECT_EQ(ways(1, Frame(1, 0xFF).tag(10).type(0x9088)), "2 9 cpu 0x80 ");
}

TEST_F(Traps, DhcpOfAVlanGoesToTheCpuAlone) {
  vlan(20, {1, 2});
  const int32_t system = group(sai_system_ipv4_fp_create);
  int32_t entry = 0;
  EXPECT_EQ(sai_fp_dhcp_requeset_to_cpu_set(0, 10, system, &entry), 0);
  EXPECT_EQ(send(1, dhcp(68, 67)),
            "cpu 0x12: 01>02 [10p6] 10.0.0.1>10.0.0.2 ttl 64 udp 68>67\ndropped: trapped to the cpu\n");
  EXPECT_EQ(ways(1, dhcp(67, 68)), "2 9 cpu 0x2 ");
  EXPECT_EQ(sai_fp_dhcp_response_to_cpu_set(0, 10, system, &entry), 0);
  EXPECT_EQ(ways(1, dhcp(67, 68)), control_and_rule);
  EXPECT_EQ(ways(1, Frame(1, 2).tag(20).ip("10.0.0.1", "10.0.0.2").udp(68, 67)), "2 cpu 0x2 ");
}

TEST_F(Traps, Dhcp6OfAVlanGoesToTheCpuAlone) {
  const Bytes request = Frame(1, 2).tag(10).ip("2001:db8::1", "2001:db8::2").udp(546, 547);
  int32_t entry = 0;
  EXPECT_EQ(ways(1, request), "2 9 cpu 0x2 ");
  EXPECT_EQ(sai_fp_dhcpv6_req_to_cpu_set(0, 10, group(sai_system_ipv6_fp_create), &entry), 0);
  EXPECT_EQ(ways(1, request), control_and_rule);
}

TEST_F(Traps, IgmpGoesToTheCpuAlone) {
  const Bytes report = Frame(1, 2).tag(10).ip("10.0.0.1", "239.1.1.1", 1).igmp(0x16, "239.1.1.1");
  EXPECT_EQ(ways(1, report), "2 9 ");
  int32_t entry = 0;
  EXPECT_EQ(sai_fp_igmp_packet_to_cpu(0, 1, group(sai_system_ipv4_fp_create), &entry), 0);
  EXPECT_EQ(ways(1, report), for_the_cpu_alone);
  EXPECT_EQ(ways(2, report), "1 9 ");
}

TEST_F(Traps, TheGroupForMldHoldsRulesOfPortsAndProtocols) {
  const Bytes report = Frame(1, 2).tag(10).ip("10.0.0.1", "239.1.1.1", 1).igmp(0x16, "239.1.1.1");
  int32_t entry = 0;
  const int32_t mld = group(sai_fp_mld_group_create);
  EXPECT_EQ(ways(1, report), "2 9 ");
  EXPECT_EQ(sai_fp_igmp_packet_to_cpu(0, 1, mld, &entry), 0);
  EXPECT_EQ(ways(1, report), for_the_cpu_alone);
}

TEST_F(Traps, MldGoesToTheCpuAlone) {
  const auto message = [](int type) {
    return Frame(support::mac(1), {0x33, 0x33, 0, 0, 0, 0x16})
        .tag(10)
        .ip("fe80::1", "ff05::16", 1)
        .hop_by_hop()
        .icmp(type);
  };
  int32_t entry = 0;
  for (const int type : {130, 131, 132, 143}) EXPECT_EQ(ways(1, message(type)), "2 9 ") << type;
  EXPECT_EQ(sai_fp_mld_packet_to_cpu(0, 1, group(sai_system_ipv6_fp_create), &entry), 0);
  for (const int type : {130, 131, 132, 143}) EXPECT_EQ(ways(1, message(type)), for_the_cpu_alone) << type;
  EXPECT_EQ(ways(1, message(128)), "2 9 ");
}

TEST_F(Traps, ArpForAnAddressGoesToTheCpuAlone) {
  const Bytes request = Frame(support::mac(1), own_mac).tag(10).arp(false, "10.0.0.1", "10.0.0.2");
  EXPECT_EQ(ways(1, request), "2 9 cpu 0x2 ");
  int32_t entry = 0;
  EXPECT_EQ(sai_fp_arp_packet_vlan_qualify_set(0, 1, group(sai_system_ipv4_fp_create), &entry, own_mac.data()), 0);
  EXPECT_EQ(ways(1, request), control_and_rule);
  EXPECT_EQ(ways(1, Frame(1, 2).tag(10).arp(false, "10.0.0.1", "10.0.0.2")), "2 9 cpu 0x2 ");
}

TEST_F(Traps, BroadcastArpGoesToTheCpuAlone) {
  const Bytes request = Frame(1, 0xFF).tag(10).arp(false, "10.0.0.1", "10.0.0.2");
  EXPECT_EQ(ways(1, request), "2 9 cpu 0x82 ");
  int32_t entry = 0;
  EXPECT_EQ(sai_fp_arp_packet_cpu_qualify_set(0, 1, group(sai_system_ipv4_fp_create), &entry), 0);
  EXPECT_EQ(ways(1, request), control_and_rule);
}

TEST_F(Traps, BroadcastArpGoesToOnePortAndAsACopyToTheCpu) {
  const Bytes request = Frame(1, 0xFF).tag(10).arp(false, "10.0.0.1", "10.0.0.2");
  EXPECT_EQ(ways(1, request), "2 9 cpu 0x82 ");
  int32_t entry = 0;
  EXPECT_EQ(sai_fp_arp_packet_port_qualify_set(0, 1, group(sai_system_ipv4_fp_create), &entry, 2), 0);
  EXPECT_EQ(send(1, request), "2: 01>all [10p7] arp 10.0.0.1>10.0.0.2\ncpu 0x2: 01>all [10p7] arp 10.0.0.1>10.0.0.2\n");
}

// ------------------------------------------------------------------------------------------- on the way out ----

TEST_F(Traps, AnExcludeFilterKeepsAGroupOfASourceAwayFromAPort) {
  const Bytes frame = Frame(support::mac(1), {0x33, 0x33, 0, 0, 0, 5}).tag(10).ip("2001:db8::1", "ff05::5").udp(5, 6);
  EXPECT_EQ(ways(1, frame), "2 9 ");
  int32_t entry = 0;
  const int32_t exclude = group(sai_fp_mld_exclude_group_create);
  EXPECT_EQ(sai_fp_mld_packet_exclude_filter_set(0, 2, exclude, &entry, 0, &frame[18 + 24], &frame[18 + 8]), 0);
  EXPECT_EQ(ways(1, frame), "9 ");
  EXPECT_EQ(ways(1, Frame(support::mac(1), {0x33, 0x33, 0, 0, 0, 5}).tag(10).ip("2001:db8::2", "ff05::5").udp(5, 6)),
            "2 9 ");
}

class Policers : public Traps {
 protected:
  /// How many of 20 frames reach port 2.
  int passing(int vlan = 10) {
    int count = 0;
    const Bytes frame = Frame(1, 0xFF).tag(vlan).type(0x9000);
    for (int i = 0; i < 20; ++i) count += send(1, frame).substr(0, 2) == "2:" ? 1 : 0;
    return count;
  }

  /// Lets 64 bytes of VLAN 10 out of port 2, and no more until time passes.
  void hold() {
    const int32_t vport = group(sai_fp_vport_group_create);
    EXPECT_EQ(sai_fp_vport_qualify_set(0, 2, vport, &entry, 10), 0);
    EXPECT_EQ(sai_vport_fp_policer_set(0, entry, &policer, 8, 8, 64, 64), 0);
    EXPECT_EQ(sai_fp_vport_qualify_action(0, vport, entry), 0);
  }

  int32_t entry = 0;
  int32_t policer = 0;
};

TEST_F(Policers, HoldAVlanOnItsWayOutOfAPortToItsRate) {
  vlan(20, {1, 2});
  const int32_t vport = group(sai_fp_vport_group_create);
  EXPECT_EQ(sai_fp_vport_qualify_set(0, 2, vport, &entry, 10), 0);
  EXPECT_EQ(sai_vport_fp_policer_set(0, entry, &policer, 8, 16, 64, 320), 0);
  EXPECT_EQ(passing(), 20) << "it is not installed yet";
  EXPECT_EQ(sai_fp_vport_qualify_action(0, vport, entry), 0);
  EXPECT_EQ(passing(), 5) << "320 bytes, 64 a frame";
  EXPECT_EQ(passing(20), 20);
  EXPECT_EQ(swsdk_clock_advance(0, 100'000'000), 0);
  EXPECT_EQ(passing(), 3) << "1600 bits";

  int32_t found = 0;
  uint32_t committed = 0;
  uint32_t peak = 0;
  uint32_t committed_burst = 0;
  uint32_t peak_burst = 0;
  EXPECT_EQ(sai_vport_fp_policer_get(0, entry, &found, &committed, &peak, &committed_burst, &peak_burst), 0);
  EXPECT_EQ(found, policer);
  EXPECT_EQ(peak, 16U);
  EXPECT_EQ(peak_burst, 320U);
}

TEST_F(Policers, MeterNothingOnceTheyAreDetached) {
  hold();
  EXPECT_EQ(passing(), 1);
  EXPECT_NE(sai_vport_fp_policer_destroy(0, policer), 0) << "it is attached";
  EXPECT_EQ(passing(), 0);
  EXPECT_EQ(sai_fp_entry_policer_detach(0, entry), 0);
  EXPECT_EQ(passing(), 20);
  EXPECT_EQ(sai_vport_fp_policer_destroy(0, policer), 0);
  EXPECT_EQ(passing(), 20);
}

TEST_F(Policers, MeterNothingOnceTheirEntryIsDestroyed) {
  hold();
  EXPECT_EQ(passing(), 1);
  EXPECT_EQ(sai_fp_entry_destroy(0, entry), 0);
  EXPECT_EQ(passing(), 20);
}

}  // namespace
