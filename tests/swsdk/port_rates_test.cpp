#include "chip/port_rates.h"

#include <gtest/gtest.h>

namespace {

using chip::RateUnit;
using chip::Status;

class PortRates : public testing::Test {
 protected:
  std::string policing(int port) {
    uint32_t rate = 99;
    uint32_t burst = 99;
    const Status status = rates.policing(port, rate, burst);
    return status == Status::ok ? std::to_string(rate) + "/" + std::to_string(burst) : "refused";
  }
  std::string shaping(int port, RateUnit unit) {
    uint32_t rate = 99;
    uint32_t burst = 99;
    switch (rates.shaping(port, unit, rate, burst)) {
      case Status::ok:
        return std::to_string(rate) + "/" + std::to_string(burst);
      case Status::bad_configuration:
        return "other unit";
      default:
        return "refused";
    }
  }

  chip::Ports ports{12};
  chip::PortRates rates{ports};
};

TEST_F(PortRates, AreWithoutLimitAtFirst) {
  EXPECT_EQ(policing(1), "0/0");
  EXPECT_EQ(shaping(1, RateUnit::kilobits), "0/0");
  EXPECT_EQ(shaping(1, RateUnit::packets), "0/0");
}

TEST_F(PortRates, AreApartInAndOutAndByPort) {
  EXPECT_EQ(rates.police(1, {RateUnit::kilobits, 64, 8}), Status::ok);
  EXPECT_EQ(rates.shape(1, {RateUnit::kilobits, 128, 16}), Status::ok);
  EXPECT_EQ(policing(1), "64/8");
  EXPECT_EQ(shaping(1, RateUnit::kilobits), "128/16");
  EXPECT_EQ(policing(2), "0/0");
  EXPECT_EQ(shaping(2, RateUnit::kilobits), "0/0");
}

TEST_F(PortRates, TellAShapedRateInItsOwnUnitOnly) {
  rates.shape(1, {RateUnit::packets, 100, 10});
  EXPECT_EQ(shaping(1, RateUnit::packets), "100/10");
  EXPECT_EQ(shaping(1, RateUnit::kilobits), "other unit");
  rates.shape(1, {RateUnit::kilobits, 200, 20});
  EXPECT_EQ(shaping(1, RateUnit::packets), "other unit");
}

TEST_F(PortRates, EndWithRate0) {
  rates.shape(1, {RateUnit::packets, 100, 10});
  EXPECT_EQ(rates.shape(1, {RateUnit::packets, 0, 10}), Status::ok);
  EXPECT_EQ(shaping(1, RateUnit::packets), "0/0");
  EXPECT_EQ(shaping(1, RateUnit::kilobits), "0/0");
  EXPECT_TRUE(rates.egress().empty());
}

TEST_F(PortRates, AreOnTheCpuPortToo) {
  EXPECT_EQ(rates.shape(0, {RateUnit::packets, UINT32_MAX, UINT32_MAX}), Status::ok);
  EXPECT_EQ(shaping(0, RateUnit::packets), "4294967295/4294967295");
}

TEST_F(PortRates, RefuseAPortThatTheChipDoesNotHave) {
  for (const int port : {-1, 13, 256}) {
    EXPECT_EQ(rates.police(port, {}), Status::bad_port) << port;
    EXPECT_EQ(rates.shape(port, {}), Status::bad_port) << port;
    EXPECT_EQ(policing(port), "refused") << port;
    EXPECT_EQ(shaping(port, RateUnit::packets), "refused") << port;
  }
}

}  // namespace
