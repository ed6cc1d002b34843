#include "chip/port_rates.h"

#include <gtest/gtest.h>

namespace {

using chip::Port;
using chip::PortRate;
using chip::RateUnit;
using chip::Status;

class PortRates : public testing::Test {
 protected:
  /// "rate/burst unit"
  static std::string text_of(const PortRate* rate) {
    if (rate == nullptr) return "refused";
    const char* const unit = rate->unit == RateUnit::packets ? " packets" : " kilobits";
    return std::to_string(rate->rate) + "/" + std::to_string(rate->burst) + unit;
  }
  std::string policing(Port port) { return text_of(rates.ingress().find(port)); }
  std::string shaping(Port port) { return text_of(rates.egress().find(port)); }
  /// The ports that have a limit on the way out: "1 2 ".
  std::string shaped() {
    std::string text;
    for (const auto& [port, rate] : rates.egress())
      if (rate.is_limit()) text += std::to_string(port.number()) + ' ';
    return text;
  }

  chip::Ports ports{12};
  chip::PortRates rates{ports};
};

TEST_F(PortRates, AreWithoutLimitAtFirst) {
  EXPECT_EQ(policing(1), "0/0 kilobits");
  EXPECT_EQ(shaping(1), "0/0 kilobits");
  EXPECT_FALSE(rates.ingress()[1].is_limit());
  EXPECT_FALSE(rates.egress()[1].is_limit());
}

TEST_F(PortRates, AreApartInAndOutAndByPort) {
  EXPECT_EQ(rates.police(1, {RateUnit::kilobits, 64, 8}), Status::ok);
  EXPECT_EQ(rates.shape(1, {RateUnit::kilobits, 128, 16}), Status::ok);
  EXPECT_EQ(policing(1), "64/8 kilobits");
  EXPECT_EQ(shaping(1), "128/16 kilobits");
  EXPECT_EQ(policing(2), "0/0 kilobits");
  EXPECT_EQ(shaping(2), "0/0 kilobits");
  EXPECT_EQ(shaped(), "1 ");
}

TEST_F(PortRates, KeepTheUnitOfAShapedRate) {
  rates.shape(1, {RateUnit::packets, 100, 10});
  EXPECT_EQ(shaping(1), "100/10 packets");
  rates.shape(1, {RateUnit::kilobits, 200, 20});
  EXPECT_EQ(shaping(1), "200/20 kilobits");
}

TEST_F(PortRates, EndWithRate0) {
  rates.shape(1, {RateUnit::packets, 100, 10});
  EXPECT_EQ(rates.shape(1, {RateUnit::packets, 0, 10}), Status::ok);
  EXPECT_EQ(shaping(1), "0/0 kilobits");
  EXPECT_EQ(shaped(), "");
}

TEST_F(PortRates, AreOnTheCpuPortToo) {
  EXPECT_EQ(rates.shape(0, {RateUnit::packets, UINT32_MAX, UINT32_MAX}), Status::ok);
  EXPECT_EQ(shaping(0), "4294967295/4294967295 packets");
}

TEST_F(PortRates, RefuseAPortThatTheChipDoesNotHave) {
  for (const Port port : {Port{-1}, Port{13}, Port{256}}) {
    EXPECT_EQ(rates.police(port, {}), Status::bad_port) << port.number();
    EXPECT_EQ(rates.shape(port, {}), Status::bad_port) << port.number();
    EXPECT_EQ(policing(port), "refused") << port.number();
    EXPECT_EQ(shaping(port), "refused") << port.number();
  }
}

}  // namespace
