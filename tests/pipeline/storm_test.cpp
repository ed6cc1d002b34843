// Storm control: which floods of a port count, and what happens to those that are too many.
#include "pipeline_fixture.h"

namespace {

using chip::StormRates;
using chip::SwitchControlOfPort;
using support::Bytes;
using support::Frame;

class Storms : public support::PipelineTest {
 protected:
  Storms() { vlan(10, {0, 1, 2}, {2}); }

  void limit(uint32_t kind, int rate, chip::Port port = 1) {
    EXPECT_EQ(chip.storm_rates.set({port, kind}, kind, rate), Status::ok);
  }
  /// How many of 20 frames pass at once.
  int passing(const Bytes& frame, chip::Port port = 1) {
    int count = 0;
    for (int i = 0; i < 20; ++i) count += send(port, frame) != "dropped: storm control\n" ? 1 : 0;
    return count;
  }

  const Bytes broadcast = Frame(1, 0xFF).tag(10).type(0x9000);
  const Bytes multicast = Frame(support::mac(1), {0x01, 0, 0x5E, 1, 2, 3}).tag(10).type(0x9000);
  const Bytes unknown = Frame(1, 9).tag(10).type(0x9000);
  const Bytes known = Frame(1, 2).tag(10).type(0x9000);
};

TEST_F(Storms, EachKindHasItsLimit) {
  send(2, Frame(2, 0xFF).tag(10).type(0x9000));
  limit(StormRates::broadcast, 3);
  EXPECT_EQ(passing(broadcast), 3);
  EXPECT_EQ(passing(multicast), 20);
  EXPECT_EQ(passing(unknown), 20);
  limit(StormRates::multicast, 4);
  EXPECT_EQ(passing(multicast), 4);
  EXPECT_EQ(passing(unknown), 20);
  limit(StormRates::unknown_destination, 5);
  EXPECT_EQ(passing(unknown), 5);
  EXPECT_EQ(passing(known), 20);
  EXPECT_EQ(drops(Drop::storm), 17U + 16U + 15U);
}

TEST_F(Storms, ComeBackWithTime) {
  limit(StormRates::broadcast, 10);
  EXPECT_EQ(passing(broadcast), 10);
  chip.now += 500'000'000;
  EXPECT_EQ(passing(broadcast), 5);
}

TEST_F(Storms, AreOfOnePort) {
  limit(StormRates::broadcast, 1);
  EXPECT_EQ(passing(broadcast, 2), 20);
  EXPECT_EQ(passing(broadcast), 1);
}

TEST_F(Storms, NoneOfThemPassesAtRateNoneAndAllWithoutControl) {
  limit(StormRates::broadcast, 0);
  EXPECT_EQ(passing(broadcast), 0);
  chip.storm_rates.set({1, StormRates::broadcast}, 0, 0);
  EXPECT_EQ(passing(broadcast), 20);
}

TEST_F(Storms, DoNotReachTheCpuEither) {
  const auto control = static_cast<int>(SwitchControlOfPort::arp_request_to_cpu);
  chip.switch_controls.set_port(1, control, 1);
  limit(StormRates::broadcast, 1);
  const Bytes request = Frame(1, 0xFF).tag(10).arp(false, "10.0.0.1", "10.0.0.2");
  EXPECT_EQ(send(1, request), "2: 01>all arp 10.0.0.1>10.0.0.2\ncpu 0x82: 01>all [10] arp 10.0.0.1>10.0.0.2\n");
  EXPECT_EQ(send(1, request), "dropped: storm control\n");
}

TEST_F(Storms, LetControlFramesThrough) {
  int index = 0;
  chip.l2_cache.set(-1, {.flags = 17, .mac = {0x01, 0x80, 0xC2}, .mac_mask = {255, 255, 255, 255, 255, 255}}, index);
  limit(StormRates::multicast, 0);
  EXPECT_EQ(send(1, Frame(support::mac(1), {0x01, 0x80, 0xC2, 0, 0, 0}).tag(10).type(0x9000)),
            "cpu 0x1: 01>01:80:c2:00:00:00 [10] 9000\ndropped: trapped to the cpu\n");
}

TEST_F(Storms, DoNotCountFramesThatAreDroppedAnyway) {
  limit(StormRates::broadcast, 1);
  for (int i = 0; i < 20; ++i) EXPECT_EQ(send(1, Frame(1, 0xFF).tag(11).type(0x9000)), "dropped: no such vlan\n");
  EXPECT_EQ(passing(broadcast), 1);
}

}  // namespace
