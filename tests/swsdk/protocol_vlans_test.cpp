#include "chip/protocol_vlans.h"

#include <gtest/gtest.h>

namespace {

using chip::Status;
using ProtocolTable = chip::ProtocolVlans;

constexpr uint16_t ip4_type = 0x0800;
constexpr uint16_t arp_type = 0x0806;

class ProtocolVlans : public testing::Test {
 protected:
  chip::Ports ports{12};
  ProtocolTable vlans{ports};
};

TEST_F(ProtocolVlans, AreByPortFrameAndEthertype) {
  EXPECT_EQ(vlans.add({1, ProtocolTable::ethernet2, ip4_type}, 10), Status::ok);
  EXPECT_EQ(vlans.add({1, ProtocolTable::snap, ip4_type}, 20), Status::ok);
  EXPECT_EQ(vlans.add({2, ProtocolTable::ethernet2, ip4_type}, 30), Status::ok);
  EXPECT_EQ(vlans.add({1, ProtocolTable::ethernet2, arp_type}, 40), Status::ok);
  EXPECT_EQ(vlans.all().size(), 4U);
  EXPECT_EQ(vlans.all().at({1, ProtocolTable::ethernet2, ip4_type}), 10);
}

TEST_F(ProtocolVlans, TakeTheLastWord) {
  vlans.add({1, ProtocolTable::llc, ip4_type}, 10);
  EXPECT_EQ(vlans.add({1, ProtocolTable::llc, ip4_type}, 20), Status::ok);
  EXPECT_EQ(vlans.all().size(), 1U);
  EXPECT_EQ(vlans.all().at({1, ProtocolTable::llc, ip4_type}), 20);
}

TEST_F(ProtocolVlans, AreRemovedOneByOneOrForAPort) {
  vlans.add({1, ProtocolTable::ethernet2, ip4_type}, 10);
  vlans.add({1, ProtocolTable::ethernet2, arp_type}, 10);
  vlans.add({2, ProtocolTable::ethernet2, ip4_type}, 10);
  EXPECT_EQ(vlans.remove({1, ProtocolTable::ethernet2, arp_type}), Status::ok);
  EXPECT_EQ(vlans.remove({1, ProtocolTable::ethernet2, arp_type}), Status::not_found);
  EXPECT_EQ(vlans.remove_all(1), Status::ok);
  EXPECT_EQ(vlans.all().size(), 1U);
  EXPECT_EQ(vlans.remove_all(1), Status::ok);
}

TEST_F(ProtocolVlans, ShareSixteenProtocolsBetweenThePorts) {
  for (uint16_t type = 1; type <= 16; ++type) ASSERT_EQ(vlans.add({1, ProtocolTable::ethernet2, type}, 10), Status::ok);
  EXPECT_EQ(vlans.add({1, ProtocolTable::ethernet2, 17}, 10), Status::full);
  EXPECT_EQ(vlans.add({1, ProtocolTable::snap, 16}, 10), Status::full);
  EXPECT_EQ(vlans.add({2, ProtocolTable::ethernet2, 16}, 10), Status::ok);
  vlans.remove({1, ProtocolTable::ethernet2, 1});
  EXPECT_EQ(vlans.add({1, ProtocolTable::ethernet2, 17}, 10), Status::ok);
}

TEST_F(ProtocolVlans, RefuseWhatIsOutOfRange) {
  for (const int frame : {-1, 0, 3, 8}) {
    EXPECT_EQ(vlans.add({1, frame, ip4_type}, 10), Status::bad_parameter) << frame;
    EXPECT_EQ(vlans.remove({1, frame, ip4_type}), Status::bad_parameter) << frame;
  }
  for (const int vlan : {0, 4096})
    EXPECT_EQ(vlans.add({1, ProtocolTable::ethernet2, ip4_type}, vlan), Status::bad_parameter);
  for (const chip::Port port : {chip::Port{-1}, chip::Port{13}}) {
    EXPECT_EQ(vlans.add({port, ProtocolTable::ethernet2, ip4_type}, 10), Status::bad_port) << port.number();
    EXPECT_EQ(vlans.remove({port, ProtocolTable::ethernet2, ip4_type}), Status::bad_port) << port.number();
    EXPECT_EQ(vlans.remove_all(port), Status::bad_port) << port.number();
  }
  EXPECT_TRUE(vlans.all().empty());
}

}  // namespace
