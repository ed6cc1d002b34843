// Rates, storm control and the CPU's share as frames see them.
#include "forwarding_fixture.h"

namespace {

using support::Bytes;
using support::Frame;

constexpr uint64_t second = 1'000'000'000;

class Rates : public support::ForwardingTest {
 protected:
  Rates() { vlan(10, {1, 3}, {2}); }

  /// How many of 20 frames that come in at port 1 reach a place.
  int passing(const Bytes& frame, const std::string& place = "2: ") {
    int count = 0;
    for (int i = 0; i < 20; ++i) {
      const std::string copies = '\n' + send(1, frame);
      count += copies.find('\n' + place) != std::string::npos ? 1 : 0;
    }
    return count;
  }
  static void pause(uint64_t nanoseconds) { EXPECT_EQ(swsdk_clock_advance(0, nanoseconds), 0); }

  const Bytes broadcast = Frame(1, 0xFF).tag(10).type(0x9000);  // 512 bits with its checksum
  const Bytes multicast = Frame(support::mac(1), {0x01, 0, 0x5E, 1, 2, 3}).tag(10).type(0x9000);
  const Bytes unknown = Frame(1, 9).tag(10).type(0x9000);
};

TEST_F(Rates, TheIngressRateOfAPortLetsItsBurstInAndThenItsRate) {
  EXPECT_EQ(passing(broadcast), 20);
  EXPECT_EQ(sai_port_rate_ingress_set(0, 1, 2, 3), 0);
  EXPECT_EQ(passing(broadcast), 5) << "3000 bits";
  pause(second);
  EXPECT_EQ(passing(broadcast), 4) << "2000 bits, and 440 left";
  EXPECT_EQ(send(1, broadcast), "dropped: port rate\n");
  uint32_t rate = 0;
  uint32_t burst = 0;
  EXPECT_EQ(sai_port_rate_ingress_get(0, 1, &rate, &burst), 0);
  EXPECT_EQ(rate, 2U);
  EXPECT_EQ(burst, 3U);
  EXPECT_EQ(sai_port_rate_ingress_set(0, 1, 0, 0), 0);
  EXPECT_EQ(passing(broadcast), 20);
}

TEST_F(Rates, TheEgressRateOfAPortLetsItsKilobitsOut) {
  EXPECT_EQ(passing(broadcast), 20);
  EXPECT_EQ(sai_port_rate_egress_set(0, 2, 2, 3), 0);
  EXPECT_EQ(passing(broadcast), 5);
  EXPECT_EQ(passing(broadcast, "3: "), 20) << "other ports have their own";
  pause(second);
  EXPECT_EQ(passing(broadcast), 4);
  uint32_t rate = 0;
  uint32_t burst = 0;
  EXPECT_EQ(sai_port_rate_egress_get(0, 2, &rate, &burst), 0);
  EXPECT_EQ(rate, 2U);
  EXPECT_EQ(burst, 3U);
}

TEST_F(Rates, TheEgressRateOfAPortLetsItsPacketsOut) {
  EXPECT_EQ(passing(broadcast), 20);
  EXPECT_EQ(sai_port_rate_egress_pps_set(0, 2, 4, 6), 0);
  EXPECT_EQ(passing(broadcast), 6);
  pause(second);
  EXPECT_EQ(passing(broadcast), 4);
  uint32_t rate = 0;
  uint32_t burst = 0;
  EXPECT_EQ(sai_port_rate_egress_pps_get(0, 2, &rate, &burst), 0);
  EXPECT_EQ(rate, 4U);
  EXPECT_EQ(burst, 6U);
}

TEST_F(Rates, TheEgressRateOfTheCpuLetsItsKilobitsReachIt) {
  EXPECT_EQ(passing(broadcast, "cpu 0x80: "), 20);
  EXPECT_EQ(sai_cpu_rate_egress_set(0, 2, 3), 0);
  EXPECT_EQ(passing(broadcast, "cpu 0x80: "), 5);
  pause(second);
  EXPECT_EQ(passing(broadcast, "cpu 0x80: "), 4);
  EXPECT_EQ(passing(broadcast), 20);
  uint32_t rate = 0;
  uint32_t burst = 0;
  EXPECT_EQ(sai_cpu_rate_egress_get(0, &rate, &burst), 0);
  EXPECT_EQ(rate, 2U);
  EXPECT_EQ(burst, 3U);
}

TEST_F(Rates, APortTakesFramesUpToItsLength) {
  const Bytes long_frame = Frame(1, 0xFF).tag(10).type(0x9000).length(1600);
  EXPECT_EQ(passing(long_frame), 20);
  EXPECT_EQ(sai_port_frame_max_set(0, 2, 1518), 0);
  EXPECT_EQ(passing(long_frame), 0);
  EXPECT_EQ(passing(long_frame, "3: "), 20);
  EXPECT_EQ(sai_port_frame_max_set(0, 1, 1518), 0);
  EXPECT_EQ(send(1, long_frame), "dropped: too long\n");
}

// ---------------------------------------------------------------------------------------------------- storms ----

TEST_F(Rates, StormControlLetsEachKindPassAtItsRate) {
  EXPECT_EQ(passing(broadcast), 20);
  EXPECT_EQ(sai_rate_bcast_set(0, 1, 1, 3), 0);
  EXPECT_EQ(passing(broadcast), 3);
  EXPECT_EQ(passing(multicast), 20);
  EXPECT_EQ(passing(unknown), 20);
  EXPECT_EQ(sai_rate_mcast_set(0, 1, 1, 4), 0);
  EXPECT_EQ(passing(multicast), 4);
  EXPECT_EQ(passing(unknown), 20);
  EXPECT_EQ(sai_rate_dlfbc_set(0, 1, 1, 5), 0);
  EXPECT_EQ(passing(unknown), 5);
  EXPECT_EQ(send(1, unknown), "dropped: storm control\n");
  pause(second);
  EXPECT_EQ(passing(broadcast), 3);
  EXPECT_EQ(passing(multicast), 4);
  EXPECT_EQ(passing(unknown), 5);
}

TEST_F(Rates, StormControlEndsWhenItIsDisabled) {
  EXPECT_EQ(sai_rate_bcast_set(0, 1, 1, 3), 0);
  EXPECT_EQ(sai_rate_mcast_set(0, 1, 1, 3), 0);
  EXPECT_EQ(sai_rate_dlfbc_set(0, 1, 1, 3), 0);
  EXPECT_EQ(sai_rate_bcast_set(0, 1, 0, 3), 0);
  EXPECT_EQ(sai_rate_mcast_set(0, 1, 0, 3), 0);
  EXPECT_EQ(sai_rate_dlfbc_set(0, 1, 0, 3), 0);
  for (const Bytes& frame : {broadcast, multicast, unknown}) EXPECT_EQ(passing(frame), 20);
}

TEST_F(Rates, StormControlByRequestIsOfTheKindThatItNames) {
  const struct {
    uint32_t type;
    const Bytes& frame;
  } kinds[] = {{4, broadcast}, {2, multicast}, {1, unknown}};
  for (const auto& kind : kinds) {
    EXPECT_EQ(passing(kind.frame), 20);
    EXPECT_EQ(sai_port_storm_ctrl_set(0, 1, {2, kind.type}), 0);
    EXPECT_EQ(passing(kind.frame), 2) << kind.type;
  }
}

TEST_F(Rates, StormControlLetsFramesToKnownDestinationsPass) {
  EXPECT_EQ(sai_rate_dlfbc_set(0, 1, 1, 0), 0);
  EXPECT_EQ(passing(unknown), 0);
  send(2, Frame(9, 0xFF).tag(10).type(0x9000));
  EXPECT_EQ(passing(unknown), 20);
}

TEST_F(Rates, StormControlSparesTheCpuAsWell) {
  EXPECT_EQ(sai_rate_bcast_set(0, 1, 1, 1), 0);
  const Bytes request = Frame(1, 0xFF).tag(10).arp(false, "10.0.0.1", "10.0.0.2");
  EXPECT_EQ(passing(request, "cpu 0x82: "), 1);
}

TEST_F(Rates, StormControlLetsSlowProtocolsReachTheCpu) {
  EXPECT_EQ(sai_rate_mcast_set(0, 1, 1, 0), 0);
  const Bytes slow = Frame(support::mac(1), {0x01, 0x80, 0xC2, 0, 0, 2}).tag(10).type(0x8809);
  EXPECT_EQ(passing(slow, "cpu 0x1: "), 20);
}

}  // namespace
