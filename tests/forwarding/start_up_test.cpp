// What start-up makes of a bare chip, as frames see it.
#include "forwarding_fixture.h"

namespace {

using support::Bytes;
using support::Frame;

class StartUp : public support::ForwardingTest {
 protected:
  StartUp() {
    support::start_chip();
    connect();
  }
  /// What becomes of a frame before and after the library has started the chip, of whose VLAN 10 port 3 is no member.
  std::string before_and_after(int port, const Bytes& frame) {
    const std::string before = in_vlan_10(port, frame);
    EXPECT_EQ(sai_switch_chip_init(support::mac(0xC0).data()), SAI_E_NONE);
    connect();
    return before + "then\n" + in_vlan_10(port, frame);
  }

 private:
  std::string in_vlan_10(int port, const Bytes& frame) {
    vlan(10, {1, 2});
    const std::string out = send(port, frame);
    EXPECT_EQ(sai_vlan_destroy(0, 10), SAI_E_NONE);
    return out;
  }
};

TEST_F(StartUp, HasPortsCheckThatTheyAreMembers) {
  EXPECT_EQ(before_and_after(3, Frame(1, 2).tag(10).type(0x9000)),
            "1: 01>02 [10] 9000\n"
            "2: 01>02 [10] 9000\n"
            "cpu 0x80: 01>02 [10] 9000\n"
            "then\n"
            "dropped: not a member of the vlan\n");
}

TEST_F(StartUp, KeepsUnknownDestinationsFromTheCpu) {
  EXPECT_EQ(before_and_after(1, Frame(1, 2).tag(10).type(0x9000)),
            "2: 01>02 [10] 9000\n"
            "cpu 0x80: 01>02 [10] 9000\n"
            "then\n"
            "2: 01>02 [10] 9000\n");
}

TEST_F(StartUp, CopiesArpToTheCpu) {
  EXPECT_EQ(before_and_after(1, Frame(1, 2).tag(10).arp(true, "10.0.0.1", "10.0.0.2")),
            "2: 01>02 [10] arp 10.0.0.1>10.0.0.2\n"
            "cpu 0x80: 01>02 [10] arp 10.0.0.1>10.0.0.2\n"
            "then\n"
            "2: 01>02 [10] arp 10.0.0.1>10.0.0.2\n"
            "cpu 0x2: 01>02 [10] arp 10.0.0.1>10.0.0.2\n");
}

TEST_F(StartUp, KeepsSlowProtocolsForTheCpu) {
  const Bytes slow = Frame(support::mac(1), {0x01, 0x80, 0xC2, 0, 0, 2}).tag(10).type(0x8809);
  EXPECT_EQ(before_and_after(1, slow),
            "2: 01>01:80:c2:00:00:02 [10] 8809\n"
            "cpu 0x80: 01>01:80:c2:00:00:02 [10] 8809\n"
            "then\n"
            "cpu 0x1: 01>01:80:c2:00:00:02 [10] 8809\n"
            "dropped: trapped to the cpu\n");
}

TEST_F(StartUp, JoinsAllPortsInVlan4095WhateverTheirVlans) {
  const Bytes frame = Frame(1, 2).tag(4095).type(0x9000);
  std::string out;
  EXPECT_EQ(sai_switch_chip_init(support::mac(0xC0).data()), SAI_E_NONE);
  connect();
  vlan(10, {}, {3});
  vlan(20, {}, {4});
  EXPECT_EQ(sai_vlan_port_remove(0, 1, 3), SAI_E_NONE);
  EXPECT_EQ(sai_vlan_port_remove(0, 1, 4), SAI_E_NONE);
  for (int port = 1; port <= 12; ++port)
    if (port != 3) out += std::to_string(port) + ": 01>02 [4095] 9000\n";
  EXPECT_EQ(send(3, frame), out);

  EXPECT_EQ(sai_vlan_port_remove(0, 4095, 3), SAI_E_NONE);
  EXPECT_EQ(send(3, frame), "dropped: not a member of the vlan\n");
}

}  // namespace
