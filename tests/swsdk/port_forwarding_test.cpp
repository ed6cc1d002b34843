#include "chip/port_forwarding.h"

#include <gtest/gtest.h>

namespace {

using chip::PortForwarding;
using chip::Status;
using Table = chip::PortForwardings;

class PortForwardings : public testing::Test {
 protected:
  chip::Ports ports{12};
  Table table{ports};
};

TEST_F(PortForwardings, StartLearningTowardsEveryPortInTheDefaultVlan) {
  for (const int port : {0, 1, 12}) {
    EXPECT_EQ(table.all().at(port).learning, Table::learn | Table::forward);
    EXPECT_EQ(text(table.all().at(port).destinations), "{0-12}");
    EXPECT_EQ(table.all().at(port).untagged_vlan, 1);
  }
}

TEST_F(PortForwardings, KeepWhatIsSetUntilTheReset) {
  EXPECT_EQ(table.set_learning(3, Table::to_cpu), Status::ok);
  EXPECT_EQ(table.set_destinations(3, {1, 2}), Status::ok);
  EXPECT_EQ(table.set_untagged_vlan(3, 4095), Status::ok);
  uint32_t learning = 0;
  chip::PortSet destinations;
  int vlan = 0;
  EXPECT_EQ(table.get(3, &PortForwarding::learning, learning), Status::ok);
  EXPECT_EQ(table.get(3, &PortForwarding::destinations, destinations), Status::ok);
  EXPECT_EQ(table.get(3, &PortForwarding::untagged_vlan, vlan), Status::ok);
  EXPECT_EQ(learning, Table::to_cpu);
  EXPECT_EQ(text(destinations), "{1-2}");
  EXPECT_EQ(vlan, 4095);
  EXPECT_EQ(table.all().at(4).untagged_vlan, 1);
  table.reset();
  EXPECT_EQ(text(table.all().at(3).destinations), "{0-12}");
}

TEST_F(PortForwardings, RefuseWhatIsOutOfRange) {
  EXPECT_EQ(table.set_learning(3, 0x8), Status::bad_parameter);
  EXPECT_EQ(table.set_destinations(3, {1, 13}), Status::bad_port);
  for (const int vlan : {-1, 0, 4096}) EXPECT_EQ(table.set_untagged_vlan(3, vlan), Status::bad_parameter) << vlan;
  EXPECT_EQ(table.all().at(3).learning, Table::learn | Table::forward);
  EXPECT_EQ(text(table.all().at(3).destinations), "{0-12}");
  EXPECT_EQ(table.all().at(3).untagged_vlan, 1);
}

TEST_F(PortForwardings, RefuseAPortThatTheChipDoesNotHave) {
  uint32_t learning = 0;
  for (const int port : {-1, 13, 256}) {
    EXPECT_EQ(table.get(port, &PortForwarding::learning, learning), Status::bad_port) << port;
    EXPECT_EQ(table.set_learning(port, 0), Status::bad_port) << port;
    EXPECT_EQ(table.set_destinations(port, {}), Status::bad_port) << port;
    EXPECT_EQ(table.set_untagged_vlan(port, 1), Status::bad_port) << port;
  }
}

}  // namespace
