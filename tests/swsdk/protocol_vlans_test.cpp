#include "chip/protocol_vlans.h"

#include <gtest/gtest.h>

namespace {

using chip::Status;
using Table = chip::ProtocolVlans;

constexpr uint16_t ip4 = 0x0800;
constexpr uint16_t arp = 0x0806;

class ProtocolVlans : public testing::Test {
 protected:
  chip::Ports ports{12};
  Table vlans{ports};
};

TEST_F(ProtocolVlans, AreByPortFrameAndEthertype) {
  EXPECT_EQ(vlans.add({1, Table::ethernet2, ip4}, 10), Status::ok);
  EXPECT_EQ(vlans.add({1, Table::snap, ip4}, 20), Status::ok);
  EXPECT_EQ(vlans.add({2, Table::ethernet2, ip4}, 30), Status::ok);
  EXPECT_EQ(vlans.add({1, Table::ethernet2, arp}, 40), Status::ok);
  EXPECT_EQ(vlans.all().size(), 4U);
  EXPECT_EQ(vlans.all().at({1, Table::ethernet2, ip4}), 10);
}

TEST_F(ProtocolVlans, TakeTheLastWord) {
  vlans.add({1, Table::llc, ip4}, 10);
  EXPECT_EQ(vlans.add({1, Table::llc, ip4}, 20), Status::ok);
  EXPECT_EQ(vlans.all().size(), 1U);
  EXPECT_EQ(vlans.all().at({1, Table::llc, ip4}), 20);
}

TEST_F(ProtocolVlans, AreRemovedOneByOneOrForAPort) {
  vlans.add({1, Table::ethernet2, ip4}, 10);
  vlans.add({1, Table::ethernet2, arp}, 10);
  vlans.add({2, Table::ethernet2, ip4}, 10);
  EXPECT_EQ(vlans.remove({1, Table::ethernet2, arp}), Status::ok);
  EXPECT_EQ(vlans.remove({1, Table::ethernet2, arp}), Status::not_found);
  EXPECT_EQ(vlans.remove_all(1), Status::ok);
  EXPECT_EQ(vlans.all().size(), 1U);
  EXPECT_EQ(vlans.remove_all(1), Status::ok);
}

TEST_F(ProtocolVlans, ShareSixteenProtocolsBetweenThePorts) {
  for (uint16_t type = 1; type <= 16; ++type) ASSERT_EQ(vlans.add({1, Table::ethernet2, type}, 10), Status::ok);
  EXPECT_EQ(vlans.add({1, Table::ethernet2, 17}, 10), Status::full);
  EXPECT_EQ(vlans.add({1, Table::snap, 16}, 10), Status::full);
  EXPECT_EQ(vlans.add({2, Table::ethernet2, 16}, 10), Status::ok);
  vlans.remove({1, Table::ethernet2, 1});
  EXPECT_EQ(vlans.add({1, Table::ethernet2, 17}, 10), Status::ok);
}

TEST_F(ProtocolVlans, RefuseWhatIsOutOfRange) {
  for (const int frame : {-1, 0, 3, 8}) {
    EXPECT_EQ(vlans.add({1, frame, ip4}, 10), Status::bad_parameter) << frame;
    EXPECT_EQ(vlans.remove({1, frame, ip4}), Status::bad_parameter) << frame;
  }
  for (const int vlan : {0, 4096}) EXPECT_EQ(vlans.add({1, Table::ethernet2, ip4}, vlan), Status::bad_parameter);
  for (const int port : {-1, 13}) {
    EXPECT_EQ(vlans.add({port, Table::ethernet2, ip4}, 10), Status::bad_port) << port;
    EXPECT_EQ(vlans.remove({port, Table::ethernet2, ip4}), Status::bad_port) << port;
    EXPECT_EQ(vlans.remove_all(port), Status::bad_port) << port;
  }
  EXPECT_TRUE(vlans.all().empty());
}

}  // namespace
