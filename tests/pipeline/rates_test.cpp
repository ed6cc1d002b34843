// How many frames, and how long ones, a port lets in and out.
#include "pipeline_fixture.h"

namespace {

using chip::RateUnit;
using support::Bytes;
using support::Frame;

class Rates : public support::PipelineTest {
 protected:
  Rates() {
    vlan(10, {0, 1, 2}, {1});
    chip.now = second;
  }

  /// How many of 20 frames of 64 bytes pass at once, at their way out.
  int passing(chip::Port port = 1) {
    int count = 0;
    for (int i = 0; i < 20; ++i) count += send(port, flood).find("2: ") != std::string::npos ? 1 : 0;
    return count;
  }

  const Bytes flood = Frame(1, 0xFF).tag(10).type(0x9000);
};

TEST_F(Rates, APortLetsInItsBurstAndThenItsRate) {
  chip.port_rates.police(1, {RateUnit::kilobits, 1, 2});
  EXPECT_EQ(passing(), 3) << "2000 bits, 512 a frame";
  EXPECT_EQ(send(1, flood), "dropped: port rate\n") << "and the CPU gets none";
  EXPECT_EQ(drops(Drop::rate), 18U);
  chip.now += second;
  EXPECT_EQ(passing(), 2) << "1464 bits";
  chip.port_rates.police(1, {RateUnit::kilobits, 0, 0});
  EXPECT_EQ(passing(), 20);
}

TEST_F(Rates, TheCpuPortLetsInItsRate) {
  chip.port_rates.police(0, {RateUnit::kilobits, 1, 2});
  EXPECT_EQ(passing(0), 3);
  EXPECT_EQ(passing(1), 20) << "another port has its own";
}

TEST_F(Rates, APortLetsOutItsKilobits) {
  chip.port_rates.shape(2, {RateUnit::kilobits, 1, 2});
  EXPECT_EQ(passing(), 3);
  EXPECT_EQ(send(1, flood), "cpu 0x80: 01>all [10] 9000\n") << "the other copies leave";
  chip.now += second;
  EXPECT_EQ(passing(), 2);
}

TEST_F(Rates, APortLetsOutItsPackets) {
  chip.port_rates.shape(2, {RateUnit::packets, 5, 7});
  EXPECT_EQ(passing(), 7);
  chip.now += second;
  EXPECT_EQ(passing(), 5);
}

TEST_F(Rates, TheCpuGetsItsRate) {
  chip.port_rates.shape(0, {RateUnit::packets, 1, 1});
  EXPECT_EQ(send(1, flood), "2: 01>all [10] 9000\ncpu 0x80: 01>all [10] 9000\n");
  EXPECT_EQ(send(1, flood), "2: 01>all [10] 9000\n");
}

TEST_F(Rates, APortTakesFramesUpToItsLengthTheirTagNotCounted) {
  chip.port_macs.set_frame_max(1, 1518);
  EXPECT_NE(send(1, Frame(1, 0xFF).tag(10).type(0x9000).length(1518)), "dropped: too long\n");
  EXPECT_EQ(send(1, Frame(1, 0xFF).tag(10).type(0x9000).length(1519)), "dropped: too long\n");
  EXPECT_NE(send(1, Frame(1, 0xFF).type(0x9000).length(1514)), "dropped: too long\n");
  EXPECT_EQ(send(1, Frame(1, 0xFF).type(0x9000).length(1515)), "dropped: too long\n");
}

TEST_F(Rates, APortSendsFramesUpToItsLength) {
  chip.port_macs.set_frame_max(2, 1518);
  const std::string both = "2: 01>all [10] 9000\ncpu 0x80: 01>all [10] 9000\n";
  EXPECT_EQ(send(1, Frame(1, 0xFF).tag(10).type(0x9000).length(1518)), both);
  EXPECT_EQ(send(1, Frame(1, 0xFF).tag(10).type(0x9000).length(1519)), "cpu 0x80: 01>all [10] 9000\n");
}

}  // namespace
