#include "chip/switch_controls.h"

#include <gtest/gtest.h>

namespace {

using chip::Status;

constexpr int dhcp_to_cpu = 94;
constexpr int l3_egress_mode = 230;

class SwitchControls : public testing::Test {
 protected:
  int value(int control) {
    int result = -1;
    EXPECT_EQ(controls.get(control, result), Status::ok);
    return result;
  }
  int value(int control, int port) {
    int result = -1;
    EXPECT_EQ(controls.get_port(port, control, result), Status::ok);
    return result;
  }

  chip::Ports ports{12};
  chip::SwitchControls controls{ports};
};

TEST_F(SwitchControls, AreZeroAtFirst) {
  EXPECT_EQ(value(l3_egress_mode), 0);
  EXPECT_EQ(value(dhcp_to_cpu, 1), 0);
}

TEST_F(SwitchControls, OfTheChipKeepTheirValue) {
  EXPECT_EQ(controls.set(l3_egress_mode, 1), Status::ok);
  EXPECT_EQ(value(l3_egress_mode), 1);
  controls.reset();
  EXPECT_EQ(value(l3_egress_mode), 0);
}

TEST_F(SwitchControls, OfAPortAreKeptPerPort) {
  EXPECT_EQ(controls.set_port(3, dhcp_to_cpu, 1), Status::ok);
  EXPECT_EQ(value(dhcp_to_cpu, 3), 1);
  EXPECT_EQ(value(dhcp_to_cpu, 4), 0);
}

TEST_F(SwitchControls, OfAPortSetForTheChipAreSetOnEveryPort) {
  controls.set_port(3, dhcp_to_cpu, 5);
  EXPECT_EQ(controls.set(dhcp_to_cpu, 1), Status::ok);
  EXPECT_EQ(value(dhcp_to_cpu), 1);
  for (const int port : {0, 1, 3, 12}) EXPECT_EQ(value(dhcp_to_cpu, port), 1) << port;
}

TEST_F(SwitchControls, OfTheChipAreNotAvailableOnAPort) {
  int ignored = 0;
  EXPECT_EQ(controls.set_port(3, l3_egress_mode, 1), Status::unavailable);
  EXPECT_EQ(controls.get_port(3, l3_egress_mode, ignored), Status::unavailable);
}

TEST_F(SwitchControls, ThatTheChipDoesNotHaveAreUnavailable) {
  int ignored = 0;
  for (const int control : {-1, 0, 21, 23, 1000}) {
    EXPECT_EQ(controls.set(control, 1), Status::unavailable) << control;
    EXPECT_EQ(controls.get(control, ignored), Status::unavailable) << control;
    EXPECT_EQ(controls.set_port(1, control, 1), Status::unavailable) << control;
  }
}

TEST_F(SwitchControls, RefuseAPortThatTheChipDoesNotHave) {
  int ignored = 0;
  for (const int port : {-1, 13, 256}) {
    EXPECT_EQ(controls.set_port(port, dhcp_to_cpu, 1), Status::bad_port) << port;
    EXPECT_EQ(controls.get_port(port, dhcp_to_cpu, ignored), Status::bad_port) << port;
  }
}

}  // namespace
