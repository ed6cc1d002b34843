// Token buckets: what passes at once, what a pause brings back, and numbers at their limits.
#include "chip/meters.h"

#include <gtest/gtest.h>

namespace {

using chip::PortRate;
using chip::RateUnit;

constexpr uint64_t second = 1'000'000'000;

class Meters : public testing::Test {
 protected:
  using Kind = chip::Meters::Kind;

  /// How many of 1000 packets pass at once.
  int passing(uint64_t now, uint64_t rate, uint64_t burst, int number = 1) {
    int count = 0;
    for (int i = 0; i < 1000; ++i) count += meters.take(Kind::port_ingress, number, now, rate, burst, 1) ? 1 : 0;
    return count;
  }
  /// The same for frames of 60 bytes, 512 bits on the wire.
  int frames(uint64_t now, const PortRate& rate) {
    int count = 0;
    for (int i = 0; i < 1000; ++i) count += meters.take_frame(Kind::port_egress, 1, now, rate, 60) ? 1 : 0;
    return count;
  }

  chip::Meters meters;
};

TEST_F(Meters, LetTheBurstPassAtOnceAndThenTheRate) {
  EXPECT_EQ(passing(0, 10, 25), 25);
  EXPECT_EQ(passing(0, 10, 25), 0);
  EXPECT_EQ(passing(second, 10, 25), 10);
  EXPECT_EQ(passing(2 * second, 10, 25), 10);
}

TEST_F(Meters, LoseNoFractionOfAPacket) {
  EXPECT_EQ(passing(0, 3, 3), 3);
  EXPECT_EQ(passing(second / 3, 3, 3), 0) << "a billionth is missing";
  EXPECT_EQ(passing(second / 3 + 1, 3, 3), 1);
  int passed = 0;
  for (uint64_t now = second / 3 + 1; now <= 10 * second; now += 999'983) passed += passing(now, 3, 3);
  EXPECT_EQ(passed, 28) << "three a second for ten seconds, but for one that passed before and one that is due";
}

TEST_F(Meters, AreFullAfterALongPauseAndNoMore) {
  EXPECT_EQ(passing(0, 10, 25), 25);
  EXPECT_EQ(passing(1000 * second, 10, 25), 25);
  EXPECT_EQ(passing(UINT64_MAX, 10, 25), 25);
}

TEST_F(Meters, FillAgainInTheTimeThatTheRateTells) {
  EXPECT_EQ(passing(0, 10, 25), 25);
  EXPECT_EQ(passing(2 * second + second / 2 - 1, 10, 25), 24);
  meters.reset();
  EXPECT_EQ(passing(0, 10, 25), 25);
  EXPECT_EQ(passing(2 * second + second / 2, 10, 25), 25);
}

TEST_F(Meters, TakeTheGreatestRatesAndBursts) {
  constexpr uint64_t bits = UINT32_MAX * 1000ULL;
  EXPECT_EQ(passing(0, bits, bits), 1000);
  EXPECT_EQ(passing(UINT64_MAX / 2, bits, bits), 1000);
  EXPECT_TRUE(meters.take(Kind::port_ingress, 1, UINT64_MAX, bits, bits, 18'000'000'000));
  EXPECT_FALSE(meters.take(Kind::port_ingress, 1, UINT64_MAX, bits, bits, 18'000'000'000)) << "it was in there once";
  EXPECT_FALSE(meters.take(Kind::port_ingress, 1, UINT64_MAX, bits, bits, UINT64_MAX));
  EXPECT_EQ(passing(0, UINT64_MAX, UINT64_MAX, 2), 1000);
}

TEST_F(Meters, LetNothingPassAtRateNoneOnceTheBurstIsGone) {
  EXPECT_EQ(passing(0, 0, 5), 5);
  EXPECT_EQ(passing(100 * second, 0, 5), 0);
  EXPECT_EQ(passing(100 * second, 0, 0, 2), 0);
}

TEST_F(Meters, TakeNothingOutWhenThereIsTooLittle) {
  EXPECT_FALSE(meters.take(Kind::committed, 1, 0, 1, 10, 11));
  EXPECT_TRUE(meters.take(Kind::committed, 1, 0, 1, 10, 10));
}

TEST_F(Meters, KeepEachKindAndNumberByItself) {
  EXPECT_EQ(passing(0, 10, 10), 10);
  EXPECT_EQ(passing(0, 10, 10, 2), 10);
  EXPECT_TRUE(meters.take(Kind::storm_broadcast, 1, 0, 1, 1, 1));
  EXPECT_TRUE(meters.take(Kind::storm_multicast, 1, 0, 1, 1, 1));
  EXPECT_FALSE(meters.take(Kind::storm_broadcast, 1, 0, 1, 1, 1));
}

TEST_F(Meters, FollowABurstThatBecomesSmaller) {
  EXPECT_EQ(passing(0, 10, 25), 25);
  EXPECT_EQ(passing(100 * second, 10, 5), 5);
}

TEST_F(Meters, CountFramesInBitsWithTheirChecksumOrByNumber) {
  EXPECT_EQ(frames(0, {RateUnit::kilobits, 512, 256}), 500);
  EXPECT_EQ(frames(second / 10, {RateUnit::kilobits, 512, 256}), 100);
  meters.reset();
  EXPECT_EQ(frames(0, {RateUnit::packets, 10, 4}), 4);
  EXPECT_EQ(frames(second, {RateUnit::packets, 10, 20}), 10);
}

TEST_F(Meters, CountAShortFrameAsItIsOnTheWire) {
  const PortRate rate{RateUnit::kilobits, 1, 1};
  EXPECT_TRUE(meters.take_frame(Kind::port_egress, 1, 0, rate, 14));
  EXPECT_FALSE(meters.take_frame(Kind::port_egress, 1, 0, rate, 60)) << "488 of 512 bits are left";
}

TEST_F(Meters, LetOneLongestFramePassAtOnceWithoutABurst) {
  EXPECT_TRUE(meters.take_frame(Kind::port_egress, 1, 0, {RateUnit::kilobits, 1, 0}, 9216));
  EXPECT_FALSE(meters.take_frame(Kind::port_egress, 1, 0, {RateUnit::kilobits, 1, 0}, 60));
  EXPECT_EQ(frames(second, {RateUnit::kilobits, 1, 0}), 1) << "1000 bits";
  meters.reset();
  EXPECT_EQ(frames(0, {RateUnit::packets, 10, 0}), 1);
}

}  // namespace
