// What the library's settings make of frames that come in without a VLAN.
#include <arpa/inet.h>

#include "forwarding_fixture.h"

namespace {

using support::Bytes;
using support::Frame;

class AssignedVlans : public support::ForwardingTest {
 protected:
  AssignedVlans() {
    vlan(10, {2});
    vlan(20, {2});
    vlan(30, {2});
    for (const uint16_t id : std::initializer_list<uint16_t>{10, 20, 30}) EXPECT_EQ(sai_vlan_port_add(0, id, 1, 0), 0);
  }

  /// The tag with which an IP frame from port 1 leaves at port 2.
  std::string tag_of(const Bytes& frame) {
    const std::string out = send(1, frame);
    const std::size_t tag = out.find('[');
    return tag == std::string::npos ? "none" : out.substr(tag, out.find(']') + 1 - tag);
  }
  static uint32_t network_order(std::string_view address) { return htonl(support::ip4(address)); }

  const Bytes source = support::mac(1);
  const Bytes plain = Frame(1, 2).type(0x9000);
  const Bytes ip4 = Frame(1, 2).ip("10.1.2.3", "10.0.0.2").udp(5, 6);
  const Bytes ip6 = Frame(1, 2).ip("2001:db8::1", "2001:db8::2").udp(5, 6);
  static constexpr bcm_ip6_t prefix = {0x20, 0x01, 0x0D, 0xB8};
};

TEST_F(AssignedVlans, APortsUntaggedVlanIsThatOfItsUntaggedFrames) {
  EXPECT_EQ(tag_of(plain), "none");
  EXPECT_EQ(sai_port_untagged_vlan_set(0, 1, 10), 0);
  EXPECT_EQ(tag_of(plain), "[10]");
}

TEST_F(AssignedVlans, AMacAddressHasItsVlanOnPortsThatAreSwitchedToThat) {
  EXPECT_EQ(sai_vlan_mac_add(0, source.data(), 10, 5), 0);
  EXPECT_EQ(tag_of(plain), "none");
  EXPECT_EQ(sai_port_mac_vlan_set(0, 1, 1), 0);
  EXPECT_EQ(tag_of(plain), "[10p5]");
  EXPECT_EQ(sai_port_mac_vlan_set(0, 1, 0), 0);
  EXPECT_EQ(tag_of(plain), "none");
}

TEST_F(AssignedVlans, AMacAddressLosesItsVlan) {
  EXPECT_EQ(sai_port_mac_vlan_set(0, 1, 1), 0);
  EXPECT_EQ(sai_vlan_mac_add(0, source.data(), 10, 5), 0);
  EXPECT_EQ(tag_of(plain), "[10p5]");
  EXPECT_EQ(sai_vlan_mac_del(0, source.data()), 0);
  EXPECT_EQ(tag_of(plain), "none");
  EXPECT_EQ(sai_vlan_mac_add(0, source.data(), 20, 0), 0);
  EXPECT_EQ(tag_of(plain), "[20]");
  EXPECT_EQ(sai_vlan_mac_clear(0), 0);
  EXPECT_EQ(tag_of(plain), "none");
}

TEST_F(AssignedVlans, AnIp4SubnetHasItsVlanOnPortsThatAreSwitchedToThat) {
  EXPECT_EQ(sai_vlan_ip_subnet_add(0, network_order("10.1.0.0"), network_order("255.255.0.0"), 10, 3), 0);
  EXPECT_EQ(tag_of(ip4), "none");
  EXPECT_EQ(sai_port_subnet_vlan_set(0, 1, 1), 0);
  EXPECT_EQ(tag_of(ip4), "[10p3]");
  EXPECT_EQ(tag_of(Frame(1, 2).ip("10.2.2.3", "10.0.0.2").udp(5, 6)), "none");
  EXPECT_EQ(sai_port_subnet_vlan_set(0, 1, 0), 0);
  EXPECT_EQ(tag_of(ip4), "none");
}

TEST_F(AssignedVlans, TheSmallestSubnetCounts) {
  EXPECT_EQ(sai_port_subnet_vlan_set(0, 1, 1), 0);
  EXPECT_EQ(sai_vlan_ip_subnet_add(0, network_order("10.1.2.0"), network_order("255.255.255.0"), 20, 0), 0);
  EXPECT_EQ(sai_vlan_ip_subnet_add(0, network_order("10.0.0.0"), network_order("255.0.0.0"), 10, 0), 0);
  EXPECT_EQ(tag_of(ip4), "[20]");
  EXPECT_EQ(sai_vlan_ip_subnet_del(0, network_order("10.1.2.0"), network_order("255.255.255.0")), 0);
  EXPECT_EQ(tag_of(ip4), "[10]");
}

TEST_F(AssignedVlans, AnIp6SubnetHasItsVlanUntilItIsDeleted) {
  EXPECT_EQ(sai_port_subnet_vlan_set(0, 1, 1), 0);
  EXPECT_EQ(sai_vlan_ipv6_subnet_add(0, &prefix, 32, 10, 3), 0);
  EXPECT_EQ(tag_of(ip6), "[10p3]");
  EXPECT_EQ(tag_of(ip4), "none");
  EXPECT_EQ(sai_vlan_ipv6_subnet_del(0, &prefix, 32), 0);
  EXPECT_EQ(tag_of(ip6), "none");
}

TEST_F(AssignedVlans, SubnetsOfBothFamiliesAreClearedAtOnce) {
  EXPECT_EQ(sai_port_subnet_vlan_set(0, 1, 1), 0);
  EXPECT_EQ(sai_vlan_ip_subnet_add(0, network_order("10.0.0.0"), network_order("255.0.0.0"), 10, 0), 0);
  EXPECT_EQ(sai_vlan_ipv6_subnet_add(0, &prefix, 32, 20, 0), 0);
  EXPECT_EQ(tag_of(ip4) + tag_of(ip6), "[10][20]");
  EXPECT_EQ(sai_vlan_subnet_clear(0), 0);
  EXPECT_EQ(tag_of(ip4) + tag_of(ip6), "nonenone");
}

TEST_F(AssignedVlans, ThePortSaysWhetherTheMacAddressOrTheSubnetCounts) {
  EXPECT_EQ(sai_port_mac_vlan_set(0, 1, 1), 0);
  EXPECT_EQ(sai_port_subnet_vlan_set(0, 1, 1), 0);
  EXPECT_EQ(sai_vlan_mac_add(0, source.data(), 10, 0), 0);
  EXPECT_EQ(sai_vlan_ip_subnet_add(0, network_order("10.0.0.0"), network_order("255.0.0.0"), 20, 0), 0);
  EXPECT_EQ(tag_of(ip4), "[10]");
  EXPECT_EQ(sai_vlan_precedence_set(0, 1, SAI_VLAN_PRECEDENCE_SUBNET), 0);
  EXPECT_EQ(tag_of(ip4), "[20]");
  EXPECT_EQ(sai_vlan_precedence_set(0, 1, SAI_VLAN_PRECEDENCE_MAC), 0);
  EXPECT_EQ(tag_of(ip4), "[10]");
}

TEST_F(AssignedVlans, AProtocolHasItsVlanUntilItIsDeleted) {
  constexpr int32_t ethernet2 = 1;
  EXPECT_EQ(sai_port_protocol_vlan_add(0, 1, ethernet2, 0x9000, 10), 0);
  EXPECT_EQ(tag_of(plain), "[10]");
  EXPECT_EQ(tag_of(ip4), "none");
  EXPECT_EQ(sai_port_protocol_vlan_del(0, 1, ethernet2, 0x9000), 0);
  EXPECT_EQ(tag_of(plain), "none");
}

TEST_F(AssignedVlans, ProtocolsOfAPortAreClearedAtOnce) {
  constexpr int32_t snap = 2;
  constexpr int32_t llc = 4;
  const Bytes in_snap = Frame(1, 2).type(8).bytes({0xAA, 0xAA, 3, 0, 0, 0, 0x90, 0x00});
  const Bytes in_llc = Frame(1, 2).type(3).bytes({0x42, 0x42, 3});
  EXPECT_EQ(sai_port_protocol_vlan_add(0, 1, snap, 0x9000, 20), 0);
  EXPECT_EQ(sai_port_protocol_vlan_add(0, 1, llc, 0x4242, 30), 0);
  EXPECT_EQ(tag_of(in_snap) + tag_of(in_llc), "[20][30]");
  EXPECT_EQ(sai_port_protocol_vlan_clear(0, 1), 0);
  EXPECT_EQ(tag_of(in_snap) + tag_of(in_llc), "nonenone");
}

}  // namespace
