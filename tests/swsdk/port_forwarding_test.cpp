#include "chip/port_forwarding.h"

#include <gtest/gtest.h>

namespace {

using chip::Port;
using chip::PortForwarding;
using chip::Status;
using ForwardingTable = chip::PortForwardings;

class PortForwardings : public testing::Test {
 protected:
  chip::Ports ports{12};
  ForwardingTable table{ports};
};

TEST_F(PortForwardings, StartLearningTowardsEveryPortInTheDefaultVlan) {
  for (const Port port : chip::PortSet{0, 1, 12}) {
    EXPECT_EQ(table.of(port).learning, ForwardingTable::learn | ForwardingTable::forward);
    EXPECT_EQ(text(table.of(port).destinations), "{0-12}");
    EXPECT_EQ(table.of(port).untagged_vlan, 1);
  }
}

TEST_F(PortForwardings, KeepWhatIsSetUntilTheReset) {
  EXPECT_EQ(table.set_learning(3, ForwardingTable::to_cpu), Status::ok);
  EXPECT_EQ(table.set_destinations(3, {1, 2}), Status::ok);
  EXPECT_EQ(table.set_untagged_vlan(3, 4095), Status::ok);
  const PortForwarding* const found = table.find(3);
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->learning, ForwardingTable::to_cpu);
  EXPECT_EQ(text(found->destinations), "{1-2}");
  EXPECT_EQ(found->untagged_vlan, 4095);
  EXPECT_EQ(table.of(4).untagged_vlan, 1);
  table.reset();
  EXPECT_EQ(text(table.of(3).destinations), "{0-12}");
}

TEST_F(PortForwardings, RefuseWhatIsOutOfRange) {
  EXPECT_EQ(table.set_learning(3, 0x8), Status::bad_parameter);
  EXPECT_EQ(table.set_destinations(3, {1, 13}), Status::bad_port);
  for (const int vlan : {-1, 0, 4096}) EXPECT_EQ(table.set_untagged_vlan(3, vlan), Status::bad_parameter) << vlan;
  EXPECT_EQ(table.of(3).learning, ForwardingTable::learn | ForwardingTable::forward);
  EXPECT_EQ(text(table.of(3).destinations), "{0-12}");
  EXPECT_EQ(table.of(3).untagged_vlan, 1);
}

TEST_F(PortForwardings, RefuseAPortThatTheChipDoesNotHave) {
  for (const Port port : {Port{-1}, Port{13}, Port{256}}) {
    EXPECT_EQ(table.find(port), nullptr) << port.number();
    EXPECT_EQ(table.set_learning(port, 0), Status::bad_port) << port.number();
    EXPECT_EQ(table.set_destinations(port, {}), Status::bad_port) << port.number();
    EXPECT_EQ(table.set_untagged_vlan(port, 1), Status::bad_port) << port.number();
  }
}

}  // namespace
