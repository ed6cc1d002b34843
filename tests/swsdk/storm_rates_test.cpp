#include "chip/storm_rates.h"

#include <gtest/gtest.h>

namespace {

using chip::Status;
using Rates = chip::StormRates;

class StormRates : public testing::Test {
 protected:
  chip::Ports ports{12};
  Rates rates{ports};
};

TEST_F(StormRates, AreOfEachKindAndPort) {
  EXPECT_EQ(rates.set({1, Rates::broadcast}, Rates::broadcast, 100), Status::ok);
  EXPECT_EQ(rates.set({1, Rates::multicast}, Rates::multicast, 200), Status::ok);
  EXPECT_EQ(rates.set({2, Rates::unknown_destination}, Rates::unknown_destination, 0), Status::ok);
  EXPECT_EQ(rates.all().size(), 3U);
  EXPECT_EQ(rates.all().at({1, Rates::broadcast}), 100);
  EXPECT_EQ(rates.all().at({1, Rates::multicast}), 200);
  EXPECT_EQ(rates.all().at({2, Rates::unknown_destination}), 0);
}

TEST_F(StormRates, EndWithoutTheFlagWhateverTheRate) {
  rates.set({1, Rates::broadcast}, Rates::broadcast, 100);
  EXPECT_EQ(rates.set({1, Rates::broadcast}, 0, -1), Status::ok);
  EXPECT_TRUE(rates.all().empty());
}

TEST_F(StormRates, RefuseTheFlagOfAnotherKindAndANegativeRate) {
  EXPECT_EQ(rates.set({1, Rates::broadcast}, Rates::multicast, 100), Status::bad_parameter);
  EXPECT_EQ(rates.set({1, Rates::broadcast}, Rates::broadcast | Rates::multicast, 100), Status::bad_parameter);
  EXPECT_EQ(rates.set({1, Rates::broadcast}, Rates::broadcast, -1), Status::bad_parameter);
  EXPECT_TRUE(rates.all().empty());
}

TEST_F(StormRates, RefuseAPortThatTheChipDoesNotHave) {
  for (const int port : {-1, 13, 65537})
    EXPECT_EQ(rates.set({port, Rates::broadcast}, Rates::broadcast, 100), Status::bad_port) << port;
}

}  // namespace
