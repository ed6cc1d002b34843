// Mirrored copies leave their port as all copies do.
#include "pipeline_fixture.h"

namespace {

using support::Frame;

class Mirroring : public support::PipelineTest {
 protected:
  static constexpr chip::Port monitor = 5;

  Mirroring() {
    vlan(10, {1, 2});
    chip::MirrorId id;
    chip.mirrors.set_mode(1);
    chip.mirrors.create(0, monitor, id);
    EXPECT_EQ(chip.mirrors.add_source(1, chip::Mirrors::enable | chip::Mirrors::ingress, id), Status::ok);
  }

  const Frame frame = Frame(1, 2).tag(10).type(0x9000);
};

TEST_F(Mirroring, AShortFrameIsMirroredAsLongAsAFrameHasToBe) {
  struct Lengths : chip::Wire {
    std::vector<std::size_t> seen;
    void transmit(chip::Port, std::span<const uint8_t> copy) override { seen.push_back(copy.size()); }
    void deliver(const chip::CpuFrame&) override {}
  } lengths;
  pipeline.receive(1, Frame(frame).length(18).done(), lengths);
  EXPECT_EQ(lengths.seen, (std::vector<std::size_t>{60, 60}));
}

TEST_F(Mirroring, AFrameTooLongForTheMonitorIsNotMirrored) {
  chip.port_macs.set_frame_max(monitor, 1000);
  EXPECT_EQ(send(1, Frame(frame).length(1001)), "2: 01>02 [10] 9000\n");
  EXPECT_EQ(send(1, Frame(frame).length(1000)), "5: 01>02 [10] 9000\n2: 01>02 [10] 9000\n");
}

TEST_F(Mirroring, TheMonitorHasItsRate) {
  chip.port_rates.shape(monitor, {.unit = chip::RateUnit::packets, .rate = 1, .burst = 1});
  chip.now += second;
  EXPECT_EQ(send(1, frame), "5: 01>02 [10] 9000\n2: 01>02 [10] 9000\n");
  EXPECT_EQ(send(1, frame), "2: 01>02 [10] 9000\n");
}

TEST_F(Mirroring, WhatIsMirroredToALoopComesInThere) {
  vlan(20, {6}, {6});
  chip.port_macs.set_loopback(monitor, 1);
  EXPECT_EQ(send(1, Frame(1, 2).tag(20).type(0x9000)), "6: 01>02 9000\n6: 01>02 9000\n");
}

}  // namespace
