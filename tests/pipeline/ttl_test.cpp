// The time to live of routed packets, and the checksum that goes with it.
#include <gtest/gtest.h>

#include "chip/pipeline/egress_frame.h"
#include "chip/pipeline/parse.h"
#include "support/frames.h"

namespace {

using support::Bytes;
using support::Frame;

/// What a packet becomes when it is routed.
std::string routed(const Bytes& frame) {
  chip::Packet packet;
  EXPECT_TRUE(chip::parse(1, frame, packet));
  chip::EgressFrame out;
  const chip::EgressHeader header{.destination = packet.fields.destination_mac,
                                  .source = packet.fields.source_mac,
                                  .outer_tag = {},
                                  .inner_tag = {},
                                  .routed = true};
  return support::told(out.write(header, packet));
}

TEST(TimeToLive, IsOneLessAndTheChecksumStaysRight) {
  for (int ttl = 1; ttl <= 255; ++ttl)
    EXPECT_EQ(routed(Frame(1, 2).ip("10.0.0.1", "20.0.0.2", ttl).udp(5, 6)),
              "01>02 10.0.0.1>20.0.0.2 ttl " + std::to_string(ttl - 1) + " udp 5>6");
}

TEST(TimeToLive, KeepsEveryChecksumRight) {
  // Every low byte beside the high ones at which a carry runs through.
  for (const int high : {0, 1, 2, 127, 128, 253, 254, 255})
    for (int low = 0; low < 256; ++low) {
      const std::string source = "10.0." + std::to_string(high) + '.' + std::to_string(low);
      ASSERT_EQ(routed(Frame(1, 2).ip(source, "20.0.0.2", 64).udp(5, 6)),
                "01>02 " + source + ">20.0.0.2 ttl 63 udp 5>6");
    }
}

TEST(TimeToLive, IsTheHopLimitOfIp6) {
  EXPECT_EQ(routed(Frame(1, 2).tag(10).ip("2001:db8::1", "ff05::1", 64).udp(5, 6)),
            "01>02 2001:db8::1>ff05::1 ttl 63 udp 5>6");
}

TEST(TimeToLive, IsFoundBehindLlcAndSnapToo) {
  Bytes frame = Frame(1, 2).ip("10.0.0.1", "20.0.0.2").udp(5, 6).length(0);
  const Bytes snap = {0, static_cast<uint8_t>(frame.size() - 12 + 6), 0xAA, 0xAA, 3, 0, 0, 0};
  frame.insert(frame.begin() + 12, snap.begin(), snap.end());
  chip::Packet packet;
  ASSERT_TRUE(chip::parse(1, frame, packet));
  chip::EgressFrame out;
  const auto written = out.write({.outer_tag = {}, .inner_tag = {}, .routed = true}, packet);
  Bytes expected(written.begin(), written.end());
  expected.erase(expected.begin() + 12, expected.begin() + 20);
  EXPECT_EQ(support::told(expected), "00:00:00:00:00:00>00:00:00:00:00:00 10.0.0.1>20.0.0.2 ttl 63 udp 5>6");
}

}  // namespace
