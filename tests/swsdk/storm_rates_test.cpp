#include "chip/storm_rates.h"

#include <gtest/gtest.h>

namespace {

using chip::Status;
using Rates = chip::StormRates;

class StormRates : public testing::Test {
 protected:
  /// How many limits there are.
  int limits() const {
    int count = 0;
    for (const chip::Port port : ports.all())
      for (const uint32_t kind : {Rates::unknown_destination, Rates::multicast, Rates::broadcast})
        count += rates.find({port, kind}) != nullptr ? 1 : 0;
    return count;
  }

  chip::Ports ports{12};
  Rates rates{ports};
};

TEST_F(StormRates, AreOfEachKindAndPort) {
  EXPECT_EQ(rates.set({1, Rates::broadcast}, Rates::broadcast, 100), Status::ok);
  EXPECT_EQ(rates.set({1, Rates::multicast}, Rates::multicast, 200), Status::ok);
  EXPECT_EQ(rates.set({2, Rates::unknown_destination}, Rates::unknown_destination, 0), Status::ok);
  EXPECT_FALSE(rates.empty());
  EXPECT_EQ(limits(), 3);
  EXPECT_EQ(*rates.find({1, Rates::broadcast}), 100);
  EXPECT_EQ(*rates.find({1, Rates::multicast}), 200);
  EXPECT_EQ(*rates.find({2, Rates::unknown_destination}), 0);
  rates.clear();
  EXPECT_TRUE(rates.empty());
  EXPECT_EQ(limits(), 0);
}

TEST_F(StormRates, EndWithoutTheFlagWhateverTheRate) {
  rates.set({1, Rates::broadcast}, Rates::broadcast, 100);
  EXPECT_EQ(rates.set({1, Rates::broadcast}, 0, -1), Status::ok);
  EXPECT_TRUE(rates.empty());
}

TEST_F(StormRates, RefuseTheFlagOfAnotherKindAndANegativeRate) {
  EXPECT_EQ(rates.set({1, Rates::broadcast}, Rates::multicast, 100), Status::bad_parameter);
  EXPECT_EQ(rates.set({1, Rates::broadcast}, Rates::broadcast | Rates::multicast, 100), Status::bad_parameter);
  EXPECT_EQ(rates.set({1, Rates::broadcast}, Rates::broadcast, -1), Status::bad_parameter);
  EXPECT_TRUE(rates.empty());
}

TEST_F(StormRates, RefuseAPortThatTheChipDoesNotHave) {
  for (const chip::Port port : {chip::Port{-1}, chip::Port{13}, chip::Port{65537}}) {
    EXPECT_EQ(rates.set({port, Rates::broadcast}, Rates::broadcast, 100), Status::bad_port) << port.number();
    EXPECT_EQ(rates.find({port, Rates::broadcast}), nullptr) << port.number();
  }
}

}  // namespace
