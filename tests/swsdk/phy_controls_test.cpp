#include "chip/phy_controls.h"

#include <gtest/gtest.h>

namespace {

using chip::Status;

constexpr int all_controls[] = {74,  100, 101, 102, 103, 104, 105, 106, 107, 232,
                                233, 234, 235, 236, 302, 303, 304, 319, 338, 353};

class PhyControls : public testing::Test {
 protected:
  uint32_t value(chip::Port port, int control) {
    const std::optional<uint32_t> result = controls.get(port, control);
    EXPECT_TRUE(result.has_value());
    return result.value_or(99);
  }

  chip::Ports ports{12};
  chip::PhyControls controls{ports};
};

TEST_F(PhyControls, AreZeroAtFirstAndKeptPerPort) {
  for (const int control : all_controls) {
    EXPECT_EQ(value(1, control), 0U) << control;
    EXPECT_EQ(controls.set(1, control, UINT32_MAX), Status::ok) << control;
    EXPECT_EQ(value(1, control), UINT32_MAX) << control;
    EXPECT_EQ(value(2, control), 0U) << control;
  }
  controls.clear();
  EXPECT_EQ(value(1, 74), 0U);
}

TEST_F(PhyControls, HaveEachItsOwnName) {
  EXPECT_STREQ(chip::PhyControls::name(233), "TX FIR main");
  EXPECT_STREQ(chip::PhyControls::name(338), "RX tap 6");
  EXPECT_EQ(chip::PhyControls::name(108), nullptr);
}

TEST_F(PhyControls, ThatThePhysDoNotHaveAreUnavailable) {
  for (const int control : {-1, 0, 99, 108, 231, 237, 400}) {
    EXPECT_EQ(controls.set(1, control, 1), Status::unavailable) << control;
    EXPECT_EQ(controls.get(1, control), std::nullopt) << control;
    EXPECT_EQ(controls.absent(1, control), Status::unavailable) << control;
  }
}

TEST_F(PhyControls, AreOnEthernetPortsOnly) {
  for (const chip::Port port : {chip::Port{-1}, chip::Port{0}, chip::Port{13}}) {
    EXPECT_EQ(controls.set(port, 74, 1), Status::bad_port) << port.number();
    EXPECT_EQ(controls.get(port, 74), std::nullopt) << port.number();
    EXPECT_EQ(controls.absent(port, 74), Status::bad_port) << port.number();
  }
}

}  // namespace
