// The tables of the ports, as people see them.
#include <bcm/port.h>
#include <bcm/rate.h>
#include <bcm/stat.h>
#include <gtest/gtest.h>
#include <soc/cmic.h>
#include <swsdk/chip.h>

#include <string>

#include "support/start.h"

namespace {

class ShowPorts : public testing::Test {
 protected:
  ShowPorts() { support::start_chip(); }
  ~ShowPorts() override { swsdk_power_off(); }

  /// The first lines of a table.
  static std::string head(const char* table, int lines) {
    char text[8192];
    const long length = swsdk_show(0, table, text, sizeof text);
    EXPECT_TRUE(length > 0 && length < static_cast<long>(sizeof text)) << table;
    const std::string all = text;
    std::size_t end = 0;
    for (; lines > 0 && end < all.size(); --lines) end = all.find('\n', end) + 1;
    return '\n' + all.substr(0, end);
  }
};

TEST_F(ShowPorts, TellsAttributes) {
  bcm_port_speed_set(0, 2, 100);
  bcm_port_duplex_set(0, 2, BCM_PORT_DUPLEX_HALF);
  bcm_port_ifg_set(0, 2, 100, BCM_PORT_DUPLEX_HALF, 128);
  bcm_port_loopback_set(0, 2, BCM_PORT_LOOPBACK_PHY);
  bcm_port_frame_max_set(0, 2, 1518);
  bcm_port_pause_set(0, 2, 1, 1);
  bcm_port_enable_set(0, 3, 0);
  EXPECT_EQ(head("attribute", 4), R"(
port  enabled  link  auto  speed  duplex  interface  loopback  pause  frame max  gap
1     yes      down  on    1000   full    3          -         -      9216       96
2     yes      up    off   100    half    3          PHY       tx,rx  1518       128
3     no       down  on    1000   full    3          -         -      9216       96
)");
}

TEST_F(ShowPorts, TellsForwarding) {
  bcm_pbmp_t ports;
  BCM_PBMP_CLEAR(ports);
  BCM_PBMP_PORT_ADD(ports, 0);
  BCM_PBMP_PORT_ADD(ports, 5);
  bcm_port_egress_set(0, 1, 0, ports);
  bcm_port_learn_set(0, 1, BCM_PORT_LEARN_CPU);
  bcm_port_untagged_vlan_set(0, 1, 20);
  bcm_port_protocol_vlan_add(0, 1, 1, 0x0800, 30);
  bcm_port_protocol_vlan_add(0, 1, 1, 0x0806, 40);
  EXPECT_EQ(head("forwarding", 3), R"(
port  unknown addresses  untagged VLAN  by protocol        goes to
0     learn,forward      1              -                  {0-12}
1     to-cpu             20             0x800:30,0x806:40  {0,5}
)");
}

TEST_F(ShowPorts, TellsTheRatesOfPortsThatHaveAny) {
  EXPECT_EQ(head("rate", 9), "\nport  in  out  broadcast  multicast  unknown\n");
  bcm_port_rate_egress_pps_set(0, 0, 100, 10);
  bcm_port_rate_ingress_set(0, 2, 64, 8);
  bcm_rate_mcast_set(0, 0, BCM_RATE_MCAST, 2);
  EXPECT_EQ(head("rate", 9), R"(
port  in         out             broadcast  multicast  unknown
0     -          100/10 packets  -          -          -
2     64/8 kbit  -               -          0          -
)");
}

TEST_F(ShowPorts, TellsWhatWasWrittenToPhys) {
  soc_miim_write(0, 1, 4, 0x1234);
  soc_miimc45_write(0, 1, 3, 0x8000, 1);
  bcm_port_phy_control_set(0, 2, BCM_PORT_PHY_CONTROL_RX_TAP6, 9);
  EXPECT_EQ(head("phy", 9), R"(
PHY  device  register or control  value
1    -       0x4                  0x1234
1    3       0x8000               0x1
2    -       RX tap 6             9
)");
}

TEST_F(ShowPorts, TellsCountersThatAreNotZero) {
  EXPECT_EQ(head("counters", 9), "\nport  counter  value\n");
  swsdk_counter_set(0, 0, snmpIfInOctets, 0);
  swsdk_counter_set(0, 12, snmpIfInErrors, 1ULL << 32);
  EXPECT_EQ(head("counters", 9), R"(
port  counter         value
12    snmpIfInErrors  4294967296
)");
}

TEST_F(ShowPorts, TellsTemperatures) {
  const swsdk_temperature readings[] = {{405, 450}, {-5, 1250}};
  swsdk_temperatures_set(0, readings, 2);
  EXPECT_EQ(head("temperature", 9), R"(
sensor  current  peak
0       40.5     45.0
1       -0.5     125.0
)");
}

}  // namespace
