// The settings of ports as frames see them.
#include "forwarding_fixture.h"

namespace {

using support::Frame;

class Ports : public support::ForwardingTest {
 protected:
  Ports() { vlan(10, {1, 2, 3}); }

  std::string send_from(int port, int source = 1) { return send(port, Frame(source, 9).tag(10).type(0x9000)); }

  const std::string from_1 = "2: 01>09 [10] 9000\n3: 01>09 [10] 9000\n";
};

TEST_F(Ports, ADisabledPortSendsAndHearsNothing) {
  EXPECT_EQ(send_from(1), from_1);
  EXPECT_EQ(sai_port_enable_set(0, 3, 0), SAI_E_NONE);
  EXPECT_EQ(send_from(1), "2: 01>09 [10] 9000\n");
  EXPECT_EQ(send_from(3), "dropped: port down\n");
  EXPECT_EQ(sai_port_enable_set(0, 3, 1), SAI_E_NONE);
  EXPECT_EQ(send_from(1), from_1);
}

TEST_F(Ports, LongerFramesThanThePortTakesAreLost) {
  const auto send_long = [&] { return send(1, Frame(1, 9).tag(10).type(0x9000).length(1518 + 4)); };
  EXPECT_EQ(send_long(), from_1);
  EXPECT_EQ(sai_port_frame_max_set(0, 3, 1518), SAI_E_NONE);
  EXPECT_EQ(send_long(), "2: 01>09 [10] 9000\n");
  EXPECT_EQ(sai_port_frame_max_set(0, 1, 1518), SAI_E_NONE);
  EXPECT_EQ(send_long(), "dropped: too long\n");
}

TEST_F(Ports, LearningDecidesWhatBecomesOfUnknownSources) {
  EXPECT_EQ(sai_port_learn_set(0, 1, 0x2), SAI_E_NONE);
  EXPECT_EQ(send_from(1), "cpu 0x20: 01>09 [10] 9000\ndropped: unknown source\n");
  EXPECT_EQ(sai_port_learn_set(0, 1, 0x1 | 0x4), SAI_E_NONE);
  EXPECT_EQ(send_from(1), from_1);
}

TEST_F(Ports, APortThatDoesNotLearnStillForwards) {
  EXPECT_EQ(sai_port_learn_set(0, 3, 0x4), SAI_E_NONE);
  EXPECT_EQ(send_from(3, 9), "1: 09>09 [10] 9000\n2: 09>09 [10] 9000\n");
  EXPECT_EQ(send_from(1), from_1);
  EXPECT_EQ(sai_port_learn_set(0, 3, 0x1), SAI_E_NONE);
  EXPECT_EQ(send_from(3, 9), "dropped: unknown source\n") << "learned from, and known next time";
  EXPECT_EQ(send_from(1), "3: 01>09 [10] 9000\n");
}

TEST_F(Ports, AnIsolatedPortReachesAllButItsTargets) {
  EXPECT_EQ(sai_port_isolate_set(0, 1, 3), SAI_E_NONE);
  EXPECT_EQ(send_from(1), "2: 01>09 [10] 9000\n");
  EXPECT_EQ(send_from(3, 4), "1: 04>09 [10] 9000\n2: 04>09 [10] 9000\n");
  EXPECT_EQ(sai_port_isolate_reset(0, 1), SAI_E_NONE);
  EXPECT_EQ(send_from(1), from_1);
}

TEST_F(Ports, FramesComeBackFromALoop) {
  swsdk_link_event(0, 3, 0);
  EXPECT_EQ(send_from(1), "2: 01>09 [10] 9000\n");
  EXPECT_EQ(sai_port_loopback_set(0, 3, 1), SAI_E_NONE);
  EXPECT_EQ(send_from(1).substr(0, 57), "2: 01>09 [10] 9000\n1: 01>09 [10] 9000\n2: 01>09 [10] 9000\n")
      << "what port 3 sent came in there and was flooded";
  EXPECT_EQ(sai_port_loopback_set(0, 3, 0), SAI_E_NONE);
  EXPECT_EQ(send_from(1), "2: 01>09 [10] 9000\n");
}

TEST_F(Ports, TheCountersCountFrames) {
  uint64_t values[18];
  EXPECT_EQ(sai_port_stat_clean(0, 1), SAI_E_NONE);
  EXPECT_EQ(sai_port_stat_clean(0, 2), SAI_E_NONE);
  send_from(1);
  send(1, Frame(1, 9).tag(99).type(0x9000));
  EXPECT_EQ(sai_port_mib_read(0, 1, values), SAI_E_NONE);
  EXPECT_EQ(values[0], 128U) << "bytes in";
  EXPECT_EQ(values[1], 2U) << "frames in";
  EXPECT_EQ(values[5], 1U) << "discarded: its VLAN does not exist";
  EXPECT_EQ(sai_port_mib_read(0, 2, values), SAI_E_NONE);
  EXPECT_EQ(values[8], 64U) << "bytes out";
  EXPECT_EQ(values[10], 1U) << "unicast frames out";
  EXPECT_EQ(sai_port_stat_clean(0, 2), SAI_E_NONE);
  EXPECT_EQ(sai_port_mib_read(0, 2, values), SAI_E_NONE);
  EXPECT_EQ(values[10], 0U);
  EXPECT_EQ(sai_stat_clean(0), SAI_E_NONE);
  EXPECT_EQ(sai_port_mib_read(0, 1, values), SAI_E_NONE);
  EXPECT_EQ(values[1], 0U);
}

TEST_F(Ports, TheCountersThatAreShownCountFrames) {
  const auto shown = [] {
    testing::internal::CaptureStdout();
    EXPECT_EQ(sai_port_stat_show(0, 1), SAI_E_NONE);
    return testing::internal::GetCapturedStdout();
  };
  EXPECT_EQ(sai_port_stat_clean(0, 1), SAI_E_NONE);
  EXPECT_NE(shown().find("       0\tsnmpIfInUcastPkts (stat 1)\r\n"), std::string::npos);
  send_from(1);
  EXPECT_NE(shown().find("       1\tsnmpIfInUcastPkts (stat 1)\r\n"), std::string::npos);
}

TEST_F(Ports, StartUpKeepsUnknownFloodsFromTheCpu) {
  EXPECT_EQ(send_from(1), from_1);
  EXPECT_EQ(send(1, Frame(1, 0xFF).tag(10).type(0x9000)),
            "2: 01>all [10] 9000\n3: 01>all [10] 9000\ncpu 0x80: 01>all [10] 9000\n");
}

TEST_F(Ports, StartUpChecksThatPortsAreMembers) { EXPECT_EQ(send_from(4), "dropped: not a member of the vlan\n"); }

}  // namespace
