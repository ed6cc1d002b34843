// The port calls: settings that read back, the ones of a port record, and the answers to what cannot be set.
#include <bcm/error.h>
#include <bcm/port.h>
#include <bcm/rate.h>
#include <gtest/gtest.h>
#include <swsdk/chip.h>

#include <string>
#include <utility>

#include "support/start.h"

namespace {

class PortSettings : public testing::Test {
 protected:
  PortSettings() { support::start_chip(); }
  ~PortSettings() override { swsdk_power_off(); }

  /// What a getter tells of port 1.
  template <class Value>
  static int value(int (*get)(int, bcm_port_t, Value*), bcm_port_t port = 1) {
    Value result{};
    EXPECT_EQ(get(0, port, &result), BCM_E_NONE);
    return static_cast<int>(result);
  }

  static int select(uint32 mask, bcm_port_info_t info = {}, bcm_port_t port = 1) {
    info.action_mask = mask;
    return bcm_port_selective_set(0, port, &info);
  }
};

TEST_F(PortSettings, ReadBack) {
  EXPECT_EQ(bcm_port_enable_set(0, 1, 0), BCM_E_NONE);
  EXPECT_EQ(value(bcm_port_enable_get), 0);
  EXPECT_EQ(bcm_port_autoneg_set(0, 1, 0), BCM_E_NONE);
  EXPECT_EQ(value(bcm_port_autoneg_get), 0);
  EXPECT_EQ(bcm_port_speed_set(0, 1, 100), BCM_E_NONE);
  EXPECT_EQ(value(bcm_port_speed_get), 100);
  EXPECT_EQ(bcm_port_duplex_set(0, 1, BCM_PORT_DUPLEX_HALF), BCM_E_NONE);
  EXPECT_EQ(value(bcm_port_duplex_get), BCM_PORT_DUPLEX_HALF);
  EXPECT_EQ(bcm_port_learn_set(0, 1, BCM_PORT_LEARN_CPU), BCM_E_NONE);
  EXPECT_EQ(value(bcm_port_learn_get), BCM_PORT_LEARN_CPU);
  EXPECT_EQ(bcm_port_untagged_vlan_set(0, 1, 20), BCM_E_NONE);
  EXPECT_EQ(value(bcm_port_untagged_vlan_get), 20);
  EXPECT_EQ(bcm_port_ifg_set(0, 1, 100, BCM_PORT_DUPLEX_HALF, 128), BCM_E_NONE);
  int gap = 0;
  EXPECT_EQ(bcm_port_ifg_get(0, 1, 100, BCM_PORT_DUPLEX_HALF, &gap), BCM_E_NONE);
  EXPECT_EQ(gap, 128);
  EXPECT_EQ(bcm_port_pause_set(0, 1, 1, 0), BCM_E_NONE);
  EXPECT_EQ(bcm_port_frame_max_set(0, 1, 1518), BCM_E_NONE);
}

TEST_F(PortSettings, TakeAPortByItsGport) {
  bcm_gport_t gport = 0;
  ASSERT_EQ(bcm_port_gport_get(0, 1, &gport), BCM_E_NONE);
  EXPECT_EQ(bcm_port_speed_set(0, gport, 10), BCM_E_NONE);
  EXPECT_EQ(value(bcm_port_speed_get), 10);
}

TEST_F(PortSettings, RefuseTheCpuPortAndPortsThatAreNotThere) {
  int value = 0;
  for (const int port : {-1, 0, 13, 65537}) {
    EXPECT_EQ(bcm_port_speed_get(0, port, &value), BCM_E_PORT) << port;
    EXPECT_EQ(bcm_port_enable_set(0, port, 1), BCM_E_PORT) << port;
    EXPECT_EQ(select(BCM_PORT_ATTR_ENABLE_MASK, {}, port), BCM_E_PORT) << port;
  }
  EXPECT_EQ(bcm_port_speed_set(0, 1, 9), BCM_E_PARAM);
  EXPECT_EQ(bcm_port_loopback_set(0, 1, 3), BCM_E_PARAM);
  EXPECT_EQ(bcm_port_ifg_get(0, 1, 10000, BCM_PORT_DUPLEX_FULL, &value), BCM_E_PARAM);
}

TEST_F(PortSettings, KeepPortsApartByTheirEgressBitmap) {
  bcm_pbmp_t ports;
  ASSERT_EQ(bcm_port_egress_get(0, 1, 0, &ports), BCM_E_NONE);
  EXPECT_TRUE(BCM_PBMP_MEMBER(ports, 12));
  BCM_PBMP_PORT_REMOVE(ports, 12);
  EXPECT_EQ(bcm_port_egress_set(0, 1, 0, ports), BCM_E_NONE);
  ASSERT_EQ(bcm_port_egress_get(0, 1, 0, &ports), BCM_E_NONE);
  EXPECT_FALSE(BCM_PBMP_MEMBER(ports, 12));
  EXPECT_TRUE(BCM_PBMP_MEMBER(ports, 11));
  EXPECT_EQ(bcm_port_egress_get(0, 1, 1, &ports), BCM_E_PARAM);
  EXPECT_EQ(bcm_port_egress_set(0, 1, 1, ports), BCM_E_PARAM);
  BCM_PBMP_PORT_ADD(ports, 13);
  EXPECT_EQ(bcm_port_egress_set(0, 1, 0, ports), BCM_E_PORT);
}

TEST_F(PortSettings, HaveALinkWhenLoopedBack) {
  EXPECT_EQ(value(bcm_port_link_status_get), 0);
  EXPECT_EQ(bcm_port_loopback_set(0, 1, BCM_PORT_LOOPBACK_MAC), BCM_E_NONE);
  EXPECT_EQ(value(bcm_port_link_status_get), 1);
}

TEST_F(PortSettings, PutProtocolsInVlans) {
  EXPECT_EQ(bcm_port_protocol_vlan_add(0, 1, 1, 0x0800, 10), BCM_E_NONE);
  EXPECT_EQ(bcm_port_protocol_vlan_delete(0, 1, 1, 0x0800), BCM_E_NONE);
  EXPECT_EQ(bcm_port_protocol_vlan_delete(0, 1, 1, 0x0800), BCM_E_NOT_FOUND);
  EXPECT_EQ(bcm_port_protocol_vlan_add(0, 1, 1, 0x0800, 10), BCM_E_NONE);
  EXPECT_EQ(bcm_port_protocol_vlan_delete_all(0, 1), BCM_E_NONE);
  EXPECT_EQ(bcm_port_protocol_vlan_delete(0, 1, 1, 0x0800), BCM_E_NOT_FOUND);
}

TEST_F(PortSettings, OfARecordAreThoseThatItsMaskNames) {
  bcm_port_info_t info{};
  info.speed = 100;
  info.duplex = BCM_PORT_DUPLEX_HALF;
  EXPECT_EQ(select(BCM_PORT_ATTR_SPEED_MASK, info), BCM_E_NONE);
  EXPECT_EQ(value(bcm_port_speed_get), 100);
  EXPECT_EQ(value(bcm_port_duplex_get), BCM_PORT_DUPLEX_FULL);
  EXPECT_EQ(value(bcm_port_enable_get), 1);
  EXPECT_EQ(select(BCM_PORT_ATTR_ENABLE_MASK | BCM_PORT_ATTR_DUPLEX_MASK, info), BCM_E_NONE);
  EXPECT_EQ(value(bcm_port_duplex_get), BCM_PORT_DUPLEX_HALF);
  EXPECT_EQ(value(bcm_port_enable_get), 0);
}

TEST_F(PortSettings, OfAnEmptyRecordGoWithTheInterface) {
  bcm_port_speed_set(0, 1, 10);
  bcm_port_autoneg_set(0, 1, 1);
  bcm_port_info_t info{};
  info.interface = static_cast<bcm_port_if_t>(7);
  EXPECT_EQ(select(BCM_PORT_ATTR_INTERFACE_MASK | BCM_PORT_ATTR_LINKSTAT_MASK | BCM_PORT_ATTR_AUTONEG_MASK |
                       BCM_PORT_ATTR_SPEED_MASK | BCM_PORT_ATTR_LOCAL_ADVERT_MASK | BCM_PORT_ATTR_REMOTE_ADVERT_MASK,
                   info),
            BCM_E_NONE);
  EXPECT_EQ(value(bcm_port_interface_get), 7);
  EXPECT_EQ(value(bcm_port_interface_get, 2), 3);
  EXPECT_EQ(value(bcm_port_autoneg_get), 0);
  EXPECT_EQ(value(bcm_port_speed_get), 1000);
}

TEST_F(PortSettings, OfARecordNegotiateWhenItSaysSo) {
  bcm_port_info_t info{};
  info.speed = 100;
  info.autoneg = 1;
  EXPECT_EQ(select(BCM_PORT_ATTR_AUTONEG_MASK | BCM_PORT_ATTR_SPEED_MASK, info), BCM_E_NONE);
  EXPECT_EQ(value(bcm_port_autoneg_get), 1);
}

TEST_F(PortSettings, OfARecordAreAppliedUpToTheOneThatIsRefused) {
  bcm_port_info_t info{};
  info.speed = 9;
  EXPECT_EQ(select(BCM_PORT_ATTR_ENABLE_MASK | BCM_PORT_ATTR_SPEED_MASK | BCM_PORT_ATTR_AUTONEG_MASK, info),
            BCM_E_PARAM);
  EXPECT_EQ(value(bcm_port_enable_get), 0);
  EXPECT_EQ(value(bcm_port_autoneg_get), 1);
}

TEST_F(PortSettings, OfARecordThatTheChipDoesNotModelAreUnavailable) {
  EXPECT_EQ(select(BCM_PORT_ATTR_ENABLE_MASK | 0x20), BCM_E_UNAVAIL);
  EXPECT_EQ(value(bcm_port_enable_get), 1);
  bcm_port_info_t info{};
  info.action_mask2 = 1;
  EXPECT_EQ(select(BCM_PORT_ATTR_ENABLE_MASK, info), BCM_E_UNAVAIL);
  EXPECT_EQ(select(0), BCM_E_NONE);
}

TEST_F(PortSettings, LimitRates) {
  uint32 rate = 77;
  uint32 burst = 77;
  for (const auto get : {bcm_port_rate_ingress_get, bcm_port_rate_egress_get, bcm_port_rate_egress_pps_get}) {
    EXPECT_EQ(get(0, 13, &rate, &burst), BCM_E_PORT);
    EXPECT_EQ(get(0, 0, &rate, &burst), BCM_E_NONE) << "no limit is one in every unit";
    EXPECT_EQ(std::exchange(rate, 77), 0U);
    EXPECT_EQ(std::exchange(burst, 77), 0U);
  }
  EXPECT_EQ(bcm_port_rate_ingress_set(0, 1, 64, 8), BCM_E_NONE);
  EXPECT_EQ(bcm_port_rate_ingress_get(0, 1, &rate, &burst), BCM_E_NONE);
  EXPECT_EQ(rate, 64U);
  EXPECT_EQ(burst, 8U);
  EXPECT_EQ(bcm_port_rate_egress_set(0, 0, 128, 16), BCM_E_NONE);
  EXPECT_EQ(bcm_port_rate_egress_get(0, 0, &rate, &burst), BCM_E_NONE);
  EXPECT_EQ(rate, 128U);
  EXPECT_EQ(burst, 16U);
  EXPECT_EQ(bcm_port_rate_egress_pps_get(0, 0, &rate, &burst), BCM_E_CONFIG);
  EXPECT_EQ(bcm_port_rate_egress_pps_set(0, 0, 5, 6), BCM_E_NONE);
  EXPECT_EQ(bcm_port_rate_egress_pps_get(0, 0, &rate, &burst), BCM_E_NONE);
  EXPECT_EQ(rate, 5U);
  EXPECT_EQ(burst, 6U);
  EXPECT_EQ(bcm_port_rate_egress_get(0, 0, &rate, &burst), BCM_E_CONFIG);
  EXPECT_EQ(bcm_port_rate_egress_pps_set(0, 0, 0, 6), BCM_E_NONE);
  for (const auto get : {bcm_port_rate_egress_get, bcm_port_rate_egress_pps_get}) {
    EXPECT_EQ(get(0, 0, &rate, &burst), BCM_E_NONE);
    EXPECT_EQ(std::exchange(rate, 77), 0U);
    EXPECT_EQ(std::exchange(burst, 77), 0U);
  }
}

TEST_F(PortSettings, LimitStorms) {
  EXPECT_EQ(bcm_rate_bcast_set(0, 100, BCM_RATE_BCAST, 1), BCM_E_NONE);
  EXPECT_EQ(bcm_rate_mcast_set(0, 100, BCM_RATE_MCAST, 1), BCM_E_NONE);
  EXPECT_EQ(bcm_rate_dlfbc_set(0, 100, BCM_RATE_DLF, 1), BCM_E_NONE);
  EXPECT_EQ(bcm_rate_dlfbc_set(0, 100, 0, 1), BCM_E_NONE);
  EXPECT_EQ(bcm_rate_bcast_set(0, 100, BCM_RATE_MCAST, 1), BCM_E_PARAM);
  EXPECT_EQ(bcm_rate_bcast_set(0, 100, BCM_RATE_BCAST, 65537), BCM_E_PORT);
  bcm_port_info_t info{};
  info.mcast_limit = -1;
  info.mcast_limit_enable = 1;
  EXPECT_EQ(select(BCM_PORT_ATTR_RATE_BCAST_MASK | BCM_PORT_ATTR_RATE_DLFBC_MASK, info), BCM_E_NONE);
  EXPECT_EQ(select(BCM_PORT_ATTR_RATE_MCAST_MASK, info), BCM_E_PARAM);
}

}  // namespace
