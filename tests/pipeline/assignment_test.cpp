// The VLANs of frames that come in without one: by source, by protocol, by port.
#include "pipeline_fixture.h"

namespace {

using chip::ProtocolVlans;
using chip::subnet_of_ip4;
using chip::subnet_of_ip6;
using chip::VlanControlOfPort;
using support::Bytes;
using support::Frame;
using support::ip4;

class Assignment : public support::PipelineTest {
 protected:
  Assignment() {
    for (const int id : {10, 20, 30, 40}) vlan(id, {2});
    for (const chip::Port port : chip::PortSet{1, 3}) chip.port_forwarding.set_untagged_vlan(port, 99);
    control(VlanControlOfPort::lookup_mac);
    control(VlanControlOfPort::lookup_ip);
  }

  void control(VlanControlOfPort which, int value = 1) {
    EXPECT_EQ(chip.vlan_controls.set_port(1, static_cast<int>(which), value), Status::ok);
  }
  void subnet(std::string_view address, std::string_view mask, const chip::VlanAssignment& to) {
    EXPECT_EQ(chip.subnet_vlans.add(*subnet_of_ip4(ip4(address), ip4(mask)), to), Status::ok);
  }
  static Frame from_ip4() { return Frame(1, 2).ip("10.1.2.3", "10.0.0.2").udp(5, 6); }

  static constexpr const char* nowhere = "dropped: no such vlan\n";
  const chip::Mac source{0x02, 0, 0, 0, 0, 1};
};

TEST_F(Assignment, IsThePortsVlanWhenNothingElseIsKnown) {
  chip.port_forwarding.set_untagged_vlan(1, 10);
  EXPECT_EQ(send(1, Frame(1, 2).type(0x9000)), "2: 01>02 [10] 9000\n");
}

TEST_F(Assignment, BySourceMacGivesThePriorityToo) {
  chip.mac_vlans.add(source, {10, 5});
  EXPECT_EQ(send(1, Frame(1, 2).type(0x9000)), "2: 01>02 [10p5] 9000\n");
  EXPECT_EQ(send(1, Frame(3, 2).type(0x9000)), nowhere);
}

TEST_F(Assignment, BySourceMacIsOfPortsThatLookForIt) {
  chip.mac_vlans.add(source, {10, 5});
  control(VlanControlOfPort::lookup_mac, 0);
  EXPECT_EQ(send(1, Frame(1, 2).type(0x9000)), nowhere);
}

TEST_F(Assignment, IsOfFramesWithATagOfPriorityAloneToo) {
  chip.port_forwarding.set_untagged_vlan(1, 20);
  EXPECT_EQ(send(1, Frame(1, 2).tag(0, 6).type(0x9000)), "2: 01>02 [20p6] 9000\n");
  chip.mac_vlans.add(source, {10, 5});
  EXPECT_EQ(send(1, Frame(1, 2).tag(0, 6).type(0x9000)), "2: 01>02 [10p5] 9000\n");
}

TEST_F(Assignment, LeavesTaggedFramesAlone) {
  chip.mac_vlans.add(source, {10, 5});
  subnet("10.0.0.0", "255.0.0.0", {30, 1});
  EXPECT_EQ(send(1, Frame(1, 2).tag(20, 3).ip("10.1.2.3", "10.0.0.2").udp(5, 6)),
            "2: 01>02 [20p3] 10.1.2.3>10.0.0.2 ttl 64 udp 5>6\n");
}

TEST_F(Assignment, BySubnetIsByTheLongestPrefix) {
  subnet("10.0.0.0", "255.0.0.0", {10, 1});
  subnet("10.1.2.0", "255.255.254.0", {30, 3});
  subnet("10.1.0.0", "255.255.0.0", {20, 2});
  subnet("0.0.0.0", "0.0.0.0", {40, 4});
  const auto vlan_of = [&](std::string_view address) {
    const std::string out = send(1, Frame(1, 2).ip(address, "10.0.0.2").udp(5, 6));
    return out.substr(9, out.find(']') - 8);
  };
  EXPECT_EQ(vlan_of("10.1.3.255"), "[30p3]");
  EXPECT_EQ(vlan_of("10.1.4.0"), "[20p2]");
  EXPECT_EQ(vlan_of("10.2.0.1"), "[10p1]");
  EXPECT_EQ(vlan_of("11.0.0.1"), "[40p4]");
}

TEST_F(Assignment, BySubnetIsByFamily) {
  subnet("0.0.0.0", "0.0.0.0", {10, 0});
  const std::string from_ip6 = "01>02 [20] 2001:db8::1>2001:db8::2 ttl 64 udp 5>6\n";
  const Bytes frame = Frame(1, 2).ip("2001:db8::1", "2001:db8::2").udp(5, 6);
  EXPECT_EQ(send(1, frame), nowhere);
  chip::Ip6 prefix{0x20, 0x01, 0x0D, 0xB8};
  chip.subnet_vlans.add(*subnet_of_ip6(prefix, 32), {20, 0});
  EXPECT_EQ(send(1, frame), "2: " + from_ip6);
  prefix[15] = 1;
  chip.subnet_vlans.add(*subnet_of_ip6(prefix, 128), {30, 7});
  EXPECT_EQ(send(1, frame).substr(0, 15), "2: 01>02 [30p7]");
  EXPECT_EQ(send(1, from_ip4()).substr(0, 13), "2: 01>02 [10]");
}

TEST_F(Assignment, BySubnetIsOfPortsThatLookForIt) {
  subnet("10.0.0.0", "255.0.0.0", {10, 0});
  control(VlanControlOfPort::lookup_ip, 0);
  EXPECT_EQ(send(1, from_ip4()), nowhere);
}

TEST_F(Assignment, ByMacComesBeforeBySubnetUnlessThePortPrefersTheOther) {
  chip.mac_vlans.add(source, {10, 0});
  subnet("10.0.0.0", "255.0.0.0", {20, 0});
  const std::string by_mac = "2: 01>02 [10]";
  const std::string by_subnet = "2: 01>02 [20]";
  EXPECT_EQ(send(1, from_ip4()).substr(0, 13), by_mac);
  control(VlanControlOfPort::prefer_ip4);
  EXPECT_EQ(send(1, from_ip4()).substr(0, 13), by_subnet);
  control(VlanControlOfPort::prefer_mac);
  EXPECT_EQ(send(1, from_ip4()).substr(0, 13), by_mac);
  control(VlanControlOfPort::prefer_mac, 0);
  EXPECT_EQ(send(1, from_ip4()).substr(0, 13), by_subnet);
  control(VlanControlOfPort::prefer_ip4, 0);
  EXPECT_EQ(send(1, from_ip4()).substr(0, 13), by_mac);
}

TEST_F(Assignment, FallsBackToWhatThePortPrefersLess) {
  control(VlanControlOfPort::prefer_ip4);
  chip.mac_vlans.add(source, {10, 0});
  EXPECT_EQ(send(1, from_ip4()).substr(0, 13), "2: 01>02 [10]");
}

TEST_F(Assignment, ByProtocolDependsOnHowItStandsInTheFrame) {
  chip.protocol_vlans.add({1, ProtocolVlans::ethernet2, 0x9000}, 10);
  chip.protocol_vlans.add({1, ProtocolVlans::snap, 0x9000}, 20);
  chip.protocol_vlans.add({1, ProtocolVlans::llc, 0x4242}, 30);
  const Bytes snap = Frame(1, 2).type(8).bytes({0xAA, 0xAA, 3, 0, 0, 0, 0x90, 0x00});
  const Bytes llc = Frame(1, 2).type(3).bytes({0x42, 0x42, 3});
  EXPECT_EQ(send(1, Frame(1, 2).type(0x9000)).substr(0, 13), "2: 01>02 [10]");
  EXPECT_EQ(send(1, snap).substr(0, 13), "2: 01>02 [20]");
  EXPECT_EQ(send(1, llc).substr(0, 13), "2: 01>02 [30]");
  EXPECT_EQ(send(1, Frame(1, 2).type(0x9001)), nowhere);
  EXPECT_EQ(send(3, Frame(1, 2).type(0x9000)), nowhere);
}

TEST_F(Assignment, BySourceComesBeforeByProtocol) {
  chip.protocol_vlans.add({1, ProtocolVlans::ethernet2, 0x0800}, 30);
  EXPECT_EQ(send(1, from_ip4()).substr(0, 13), "2: 01>02 [30]");
  subnet("10.0.0.0", "255.0.0.0", {20, 0});
  EXPECT_EQ(send(1, from_ip4()).substr(0, 13), "2: 01>02 [20]");
}

}  // namespace
