#include "chip/port_macs.h"

#include <gtest/gtest.h>

#include <climits>

namespace {

using chip::Duplex;
using chip::Port;
using chip::PortMac;
using chip::Status;

constexpr Port gigabit = 1;
constexpr Port uplink = 9;
constexpr int half = 0;
constexpr int full = 1;

class PortMacs : public testing::Test {
 protected:
  const PortMac& mac(Port port) { return macs.of(port); }
  int gap(Port port, int speed, int duplex) {
    const std::optional<int> bit_times = macs.gap(port, speed, duplex);
    EXPECT_TRUE(bit_times.has_value());
    return bit_times.value_or(-1);
  }

  chip::Ports ports{12};
  chip::PortMacs macs{ports};
};

TEST_F(PortMacs, StartEnabledWithoutALinkAtTheirFastest) {
  EXPECT_TRUE(mac(gigabit).enabled);
  EXPECT_FALSE(mac(gigabit).link());
  EXPECT_TRUE(mac(gigabit).negotiates);
  EXPECT_EQ(mac(gigabit).speed, 1000);
  EXPECT_EQ(mac(gigabit).duplex, Duplex::full);
  EXPECT_EQ(mac(gigabit).frame_max, 9216);
  EXPECT_EQ(mac(gigabit).loopback, chip::Loopback::none);
  EXPECT_FALSE(mac(gigabit).pause_tx || mac(gigabit).pause_rx);
  EXPECT_FALSE(mac(uplink).negotiates);
  EXPECT_EQ(mac(uplink).speed, 10000);
  EXPECT_NE(mac(uplink).interface, mac(gigabit).interface);
}

TEST_F(PortMacs, RunAtTheSpeedsOfTheirKind) {
  for (const int speed : {10, 100, 1000}) {
    EXPECT_EQ(macs.set_speed(gigabit, speed), Status::ok);
    EXPECT_EQ(mac(gigabit).speed, speed);
  }
  for (const int speed : {1000, 10000}) {
    EXPECT_EQ(macs.set_speed(uplink, speed), Status::ok);
    EXPECT_EQ(mac(uplink).speed, speed);
  }
  for (const int speed : {-1, 1, 11, 2500, 10000}) EXPECT_EQ(macs.set_speed(gigabit, speed), Status::bad_parameter);
  for (const int speed : {-1, 10, 100, 40000}) EXPECT_EQ(macs.set_speed(uplink, speed), Status::bad_parameter);
  EXPECT_EQ(mac(gigabit).speed, 1000);
  EXPECT_EQ(mac(uplink).speed, 10000);
}

TEST_F(PortMacs, TakeSpeed0ForTheirFastest) {
  macs.set_speed(gigabit, 10);
  EXPECT_EQ(macs.set_speed(gigabit, 0), Status::ok);
  EXPECT_EQ(mac(gigabit).speed, 1000);
}

TEST_F(PortMacs, RunAtHalfDuplexOnGigabitPortsOnly) {
  EXPECT_EQ(macs.set_duplex(gigabit, half), Status::ok);
  EXPECT_EQ(mac(gigabit).duplex, Duplex::half);
  EXPECT_EQ(macs.set_duplex(uplink, half), Status::bad_parameter);
  EXPECT_EQ(macs.set_duplex(uplink, full), Status::ok);
  for (const int duplex : {-1, 2}) EXPECT_EQ(macs.set_duplex(gigabit, duplex), Status::bad_parameter);
  EXPECT_EQ(mac(gigabit).duplex, Duplex::half);
}

TEST_F(PortMacs, StopNegotiatingWhenSpeedOrDuplexIsForced) {
  macs.set_speed(gigabit, 100);
  EXPECT_FALSE(mac(gigabit).negotiates);
  macs.negotiate(gigabit, true);
  macs.set_duplex(gigabit, half);
  EXPECT_FALSE(mac(gigabit).negotiates);
}

TEST_F(PortMacs, NegotiateWhenTheLinkComesUp) {
  macs.set_speed(gigabit, 10);
  macs.set_duplex(gigabit, half);
  macs.negotiate(gigabit, true);
  EXPECT_EQ(mac(gigabit).speed, 10);
  EXPECT_EQ(macs.set_partner(gigabit, true), Status::ok);
  EXPECT_EQ(mac(gigabit).speed, 1000);
  EXPECT_EQ(mac(gigabit).duplex, Duplex::full);
}

TEST_F(PortMacs, KeepWhatIsForcedWhenTheLinkComesUp) {
  macs.set_speed(gigabit, 10);
  macs.set_partner(gigabit, true);
  EXPECT_EQ(mac(gigabit).speed, 10);
}

TEST_F(PortMacs, NegotiateAtOnceWhileTheLinkIsUp) {
  macs.set_partner(gigabit, true);
  macs.set_speed(gigabit, 10);
  EXPECT_EQ(macs.negotiate(gigabit, true), Status::ok);
  EXPECT_EQ(mac(gigabit).speed, 1000);
}

TEST_F(PortMacs, NegotiateNotBeforeTheyAreEnabled) {
  macs.set_speed(gigabit, 10);
  macs.enable(gigabit, false);
  macs.negotiate(gigabit, true);
  macs.set_partner(gigabit, true);
  EXPECT_EQ(mac(gigabit).speed, 10);
  macs.enable(gigabit, true);
  EXPECT_EQ(mac(gigabit).speed, 1000);
}

TEST_F(PortMacs, HaveALinkWhileEnabledWithAPartnerOrLoopedBack) {
  macs.set_partner(gigabit, true);
  EXPECT_TRUE(mac(gigabit).link());
  macs.enable(gigabit, false);
  EXPECT_FALSE(mac(gigabit).link());
  macs.enable(gigabit, true);
  EXPECT_TRUE(mac(gigabit).link());
  macs.set_partner(gigabit, false);
  EXPECT_FALSE(mac(gigabit).link());
  for (const int loopback : {1, 2}) {
    EXPECT_EQ(macs.set_loopback(gigabit, loopback), Status::ok);
    EXPECT_TRUE(mac(gigabit).link());
  }
  EXPECT_EQ(macs.set_loopback(gigabit, 0), Status::ok);
  EXPECT_FALSE(mac(gigabit).link());
}

TEST_F(PortMacs, KeepTheirCablesWhenTheyAreReset) {
  macs.set_partner(gigabit, true);
  macs.set_speed(gigabit, 10);
  macs.enable(gigabit, false);
  macs.reset();
  EXPECT_TRUE(mac(gigabit).link());
  EXPECT_EQ(mac(gigabit).speed, 1000);
  EXPECT_FALSE(mac(uplink).link());
}

TEST_F(PortMacs, KeepTheirOtherSettings) {
  macs.set_pause(gigabit, true, false);
  EXPECT_TRUE(mac(gigabit).pause_tx);
  EXPECT_FALSE(mac(gigabit).pause_rx);
  macs.advertise(gigabit, 0x2A);
  EXPECT_EQ(mac(gigabit).advertised, 0x2AU);
  macs.set_interface(gigabit, 4);
  EXPECT_EQ(mac(gigabit).interface, 4);
  EXPECT_EQ(mac(2).interface, 3);
  macs.reset();
  EXPECT_FALSE(mac(gigabit).pause_tx);
  EXPECT_EQ(mac(gigabit).interface, 3);
}

TEST_F(PortMacs, RefuseWhatIsOutOfRange) {
  for (const int size : {-1, 0, 63, 9217}) EXPECT_EQ(macs.set_frame_max(gigabit, size), Status::bad_parameter) << size;
  for (const int size : {64, 1518, 9216}) {
    EXPECT_EQ(macs.set_frame_max(gigabit, size), Status::ok);
    EXPECT_EQ(mac(gigabit).frame_max, size);
  }
  for (const int loopback : {-1, 3}) EXPECT_EQ(macs.set_loopback(gigabit, loopback), Status::bad_parameter);
  EXPECT_EQ(macs.set_interface(gigabit, -1), Status::bad_parameter);
}

TEST_F(PortMacs, HaveAGapForEachSpeedAndDuplex) {
  EXPECT_EQ(gap(gigabit, 1000, full), 96);
  EXPECT_EQ(macs.set_gap(gigabit, 1000, full, 64), Status::ok);
  EXPECT_EQ(macs.set_gap(gigabit, 100, half, 248), Status::ok);
  EXPECT_EQ(gap(gigabit, 1000, full), 64);
  EXPECT_EQ(gap(gigabit, 100, half), 248);
  EXPECT_EQ(gap(gigabit, 100, full), 96);
  EXPECT_EQ(gap(2, 1000, full), 96);
}

TEST_F(PortMacs, RefuseGapsOutOfRangeAndForWhatTheyDoNotRunAt) {
  for (const int bad : {-1, 63, 249}) EXPECT_EQ(macs.set_gap(gigabit, 1000, full, bad), Status::bad_parameter) << bad;
  EXPECT_EQ(macs.set_gap(gigabit, 10000, full, 96), Status::bad_parameter);
  EXPECT_EQ(macs.set_gap(uplink, 1000, half, 96), Status::bad_parameter);
  EXPECT_EQ(macs.gap(gigabit, 1000, 2), std::nullopt);
  EXPECT_EQ(macs.gap(gigabit, 0, full), std::nullopt);
  EXPECT_EQ(macs.absent_gap(gigabit), Status::bad_parameter);
}

TEST_F(PortMacs, AreOnEthernetPortsOnly) {
  EXPECT_EQ(macs.find(gigabit), &mac(gigabit));
  for (const int number : {INT_MIN, -1, 0, 13, 256, 0x7FF, INT_MAX}) {
    const Port port = Port::of(number);
    EXPECT_EQ(macs.find(port), nullptr) << number;
    EXPECT_EQ(macs.all().find(port), nullptr) << number;
    EXPECT_EQ(macs.enable(port, true), Status::bad_port) << number;
    EXPECT_EQ(macs.set_partner(port, true), Status::bad_port) << number;
    EXPECT_EQ(macs.set_speed(port, 1000), Status::bad_port) << number;
    EXPECT_EQ(macs.gap(port, 1000, full), std::nullopt) << number;
    EXPECT_EQ(macs.absent_gap(port), Status::bad_port) << number;
    EXPECT_EQ(macs.set_gap(port, 1000, full, 96), Status::bad_port) << number;
  }
}

}  // namespace
