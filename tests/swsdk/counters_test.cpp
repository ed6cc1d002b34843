#include "chip/counters.h"

#include <gtest/gtest.h>

namespace {

using chip::Status;

class Counters : public testing::Test {
 protected:
  uint64_t value(int port, int counter) {
    uint64_t result = 99;
    EXPECT_EQ(counters.get(port, counter, result), Status::ok);
    return result;
  }

  chip::Ports ports{12};
  chip::Counters counters{ports};
};

TEST_F(Counters, AreZeroAtFirst) {
  for (const int port : {0, 1, 12})
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
  for (const int port : {1, 2, 3}) counters.set(port, 58, 100);
  EXPECT_EQ(counters.clear(1), Status::ok);
  EXPECT_EQ(value(1, 58), 0U);
  EXPECT_EQ(value(2, 58), 100U);
  counters.reset();
  EXPECT_EQ(value(2, 58), 0U);
  EXPECT_TRUE(counters.all().empty());
}

TEST_F(Counters, RefuseWhatIsNotThere) {
  uint64_t ignored = 0;
  for (const int counter : {-1, 312}) {
    EXPECT_EQ(counters.get(1, counter, ignored), Status::bad_parameter) << counter;
    EXPECT_EQ(counters.set(1, counter, 1), Status::bad_parameter) << counter;
  }
  for (const int port : {-1, 13}) {
    EXPECT_EQ(counters.get(port, 0, ignored), Status::bad_port) << port;
    EXPECT_EQ(counters.set(port, 0, 1), Status::bad_port) << port;
    EXPECT_EQ(counters.clear(port), Status::bad_port) << port;
  }
}

}  // namespace
