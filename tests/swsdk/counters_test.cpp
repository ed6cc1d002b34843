#include "chip/counters.h"

#include <gtest/gtest.h>

namespace {

using chip::Port;
using chip::Status;

class Counters : public testing::Test {
 protected:
  uint64_t value(Port port, int counter) {
    const uint64_t* const result = counters.find(port, counter);
    EXPECT_NE(result, nullptr);
    return result == nullptr ? 99 : *result;
  }

  chip::Ports ports{12};
  chip::Counters counters{ports};
};

TEST_F(Counters, AreZeroAtFirst) {
  for (const Port port : chip::PortSet{0, 1, 12})
    for (const int counter : {0, 58, 311}) EXPECT_EQ(value(port, counter), 0U);
}

TEST_F(Counters, AreOfEachPortAndKeep64Bits) {
  EXPECT_EQ(counters.set(1, 0, UINT64_MAX), Status::ok);
  EXPECT_EQ(counters.set(1, 311, 7), Status::ok);
  EXPECT_EQ(counters.set(0, 0, 8), Status::ok);
  EXPECT_EQ(value(1, 0), UINT64_MAX);
  EXPECT_EQ(value(1, 311), 7U);
  EXPECT_EQ(value(0, 0), 8U);
  EXPECT_EQ(value(2, 0), 0U);
}

TEST_F(Counters, AreClearedPortByPortOrAllInAReset) {
  for (const Port port : chip::PortSet{1, 2, 3}) counters.set(port, 58, 100);
  EXPECT_EQ(counters.clear(1), Status::ok);
  EXPECT_EQ(value(1, 58), 0U);
  EXPECT_EQ(value(2, 58), 100U);
  counters.reset();
  EXPECT_EQ(value(2, 58), 0U);
  for (const auto& [port, values] : counters.all()) EXPECT_EQ(values, chip::Counters::Values{}) << port.number();
}

TEST_F(Counters, RefuseWhatIsNotThere) {
  for (const int counter : {-1, 312}) {
    EXPECT_EQ(counters.find(1, counter), nullptr) << counter;
    EXPECT_EQ(counters.absent(1, counter), Status::bad_parameter) << counter;
    EXPECT_EQ(counters.set(1, counter, 1), Status::bad_parameter) << counter;
  }
  for (const Port port : {Port{-1}, Port{13}}) {
    EXPECT_EQ(counters.find(port, 0), nullptr) << port.number();
    EXPECT_EQ(counters.absent(port, 0), Status::bad_port) << port.number();
    EXPECT_EQ(counters.set(port, 0, 1), Status::bad_port) << port.number();
    EXPECT_EQ(counters.clear(port), Status::bad_port) << port.number();
  }
}

}  // namespace
