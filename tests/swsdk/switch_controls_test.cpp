#include "chip/switch_controls.h"

#include <gtest/gtest.h>

namespace {

using chip::Port;
using chip::Status;
using chip::SwitchControlOfChip;
using chip::SwitchControlOfPort;

constexpr int dhcp_to_cpu = 94;
constexpr int l3_egress_mode = 230;

class SwitchControls : public testing::Test {
 protected:
  bool is_on(Port port) { return controls.is_on(SwitchControlOfPort::dhcp_to_cpu, port); }

  chip::Ports ports{12};
  chip::SwitchControls controls{ports};
};

TEST_F(SwitchControls, AreZeroAtFirst) {
  EXPECT_EQ(controls.get(l3_egress_mode), 0);
  EXPECT_FALSE(controls.is_on(SwitchControlOfChip::l3_egress_mode));
  EXPECT_EQ(controls.get(dhcp_to_cpu), 0);
  EXPECT_FALSE(is_on(1));
}

TEST_F(SwitchControls, OfTheChipKeepTheirValue) {
  EXPECT_EQ(controls.set(l3_egress_mode, 1), Status::ok);
  EXPECT_EQ(controls.get(l3_egress_mode), 1);
  EXPECT_TRUE(controls.is_on(SwitchControlOfChip::l3_egress_mode));
  controls.reset();
  EXPECT_EQ(controls.get(l3_egress_mode), 0);
  EXPECT_FALSE(controls.is_on(SwitchControlOfChip::l3_egress_mode));
}

TEST_F(SwitchControls, OfAPortAreKeptPerPort) {
  EXPECT_EQ(controls.set_port(3, dhcp_to_cpu, 1), Status::ok);
  EXPECT_TRUE(is_on(3));
  EXPECT_FALSE(is_on(4));
  EXPECT_EQ(text(controls.ports_with(SwitchControlOfPort::dhcp_to_cpu)), "{3}");
  EXPECT_TRUE(controls.ports_with(SwitchControlOfPort::dhcp_drop).empty());
  EXPECT_EQ(controls.set_port(3, dhcp_to_cpu, 0), Status::ok);
  EXPECT_FALSE(is_on(3));
  controls.set_port(3, dhcp_to_cpu, 1);
  controls.reset();
  EXPECT_FALSE(is_on(3));
}

TEST_F(SwitchControls, OfAPortSetForTheChipAreSetOnEveryPort) {
  controls.set_port(3, dhcp_to_cpu, 5);
  EXPECT_EQ(controls.set(dhcp_to_cpu, 1), Status::ok);
  EXPECT_EQ(controls.get(dhcp_to_cpu), 1);
  for (const Port port : chip::PortSet{0, 1, 3, 12}) EXPECT_TRUE(is_on(port)) << port.number();
  EXPECT_EQ(controls.ports_with(SwitchControlOfPort::dhcp_to_cpu), ports.all());
  EXPECT_EQ(controls.set(dhcp_to_cpu, 0), Status::ok);
  EXPECT_TRUE(controls.ports_with(SwitchControlOfPort::dhcp_to_cpu).empty());
}

TEST_F(SwitchControls, OfTheChipAreNotAvailableOnAPort) {
  EXPECT_EQ(controls.set_port(3, l3_egress_mode, 1), Status::unavailable);
  EXPECT_EQ(controls.get(l3_egress_mode), 0);
}

TEST_F(SwitchControls, ThatTheChipDoesNotHaveAreUnavailable) {
  for (const int control : {-1, 0, 21, 23, 1000}) {
    EXPECT_EQ(controls.set(control, 1), Status::unavailable) << control;
    EXPECT_EQ(controls.get(control), std::nullopt) << control;
    EXPECT_EQ(controls.set_port(1, control, 1), Status::unavailable) << control;
  }
}

TEST_F(SwitchControls, RefuseAPortThatTheChipDoesNotHave) {
  for (const Port port : {Port{-1}, Port{13}, Port{256}}) {
    EXPECT_EQ(controls.set_port(port, dhcp_to_cpu, 1), Status::bad_port) << port.number();
    EXPECT_FALSE(is_on(port)) << port.number();
  }
}

TEST_F(SwitchControls, AreListedByNumberAndEachIsItsOwn) {
  int before = -1;
  for (const chip::SwitchControls::Info& info : chip::SwitchControls::infos()) {
    EXPECT_GT(info.control, before) << info.name;
    before = info.control;
    EXPECT_EQ(controls.get(info.control), 0) << info.name;
    EXPECT_EQ(controls.set(info.control, info.control), Status::ok) << info.name;
    EXPECT_EQ(controls.set_port(1, info.control, 1), info.of_each_port ? Status::ok : Status::unavailable) << info.name;
  }
  for (const chip::SwitchControls::Info& info : chip::SwitchControls::infos())
    EXPECT_EQ(controls.get(info.control), info.control) << info.name;
}

}  // namespace
