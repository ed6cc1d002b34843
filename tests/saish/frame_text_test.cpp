#include "frame_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <span>
#include <string>
#include <vector>

namespace {

const std::string addresses = "02:00:00:00:00:01 > 02:00:00:00:00:02 ";

std::vector<uint8_t> read(const std::string& text) { return saish::frame_bytes(saish::words(text)); }

/// How the frame of these fields is shown, without its addresses.
std::string shown(std::span<const uint8_t> frame) {
  const std::string text = saish::frame_text(frame);
  EXPECT_EQ(text.substr(0, addresses.size()), addresses);
  return text.substr(std::min(addresses.size(), text.size()));
}

/// The first so many bytes of the frame of these fields.
std::string shown_cut(const std::string& fields, std::size_t size) {
  const std::vector<uint8_t> frame = read(addresses + fields);
  return shown(std::span(frame).first(size));
}

TEST(TheTextOfAFrame, ReadsAsAFrameOfTheSameFields) {
  for (const std::string fields :
       {"vlan 10 arp 10.0.0.1 > 10.0.0.2", "svlan 10/3 vlan 20/7 type 0x1234",
        "ip 10.0.0.1 > 10.0.0.2 tos 8 ttl 1 tcp 80 > 81", "ip 2001:db8::1 > ff02::1 ttl 255 icmp 135",
        "ip 10.0.0.1 > 224.0.0.22 ttl 1 igmp 22 239.1.1.1", "ip 10.0.0.1 > 10.0.0.2 ttl 64 protocol 89"}) {
    const std::vector<uint8_t> frame = read(addresses + fields);
    EXPECT_EQ(shown(frame), fields);
    EXPECT_EQ(read(saish::frame_text(frame)), frame);
  }
}

TEST(TheTextOfAFrame, HasNoFieldsOfThePaddingBehindAPacket) {
  for (const std::string protocol : {"1", "2", "6", "17"}) {
    const std::string fields = "ip 10.0.0.1 > 10.0.0.2 ttl 64 protocol " + protocol;
    EXPECT_EQ(shown(read(addresses + fields)), fields);
  }
  const std::string fields = "ip 2001:db8::1 > 2001:db8::2 ttl 64 protocol 17";
  EXPECT_EQ(shown(read(addresses + fields + " length 80")), fields);
}

TEST(TheTextOfAFrame, HasNoFieldsThatWereCutOff) {
  constexpr std::size_t behind_ip = 14 + 20;
  const std::string ip = "ip 10.0.0.1 > 10.0.0.2 ttl 64 ";
  EXPECT_EQ(shown_cut(ip + "udp 5 > 6", behind_ip + 4), ip + "udp 5 > 6");
  EXPECT_EQ(shown_cut(ip + "udp 5 > 6", behind_ip + 3), ip + "protocol 17");
  EXPECT_EQ(shown_cut(ip + "tcp 5 > 6", behind_ip + 3), ip + "protocol 6");
  EXPECT_EQ(shown_cut(ip + "icmp 8", behind_ip), ip + "protocol 1");
  EXPECT_EQ(shown_cut(ip + "igmp 22 239.1.1.1", behind_ip + 7), ip + "protocol 2");
  EXPECT_EQ(shown_cut(ip + "udp 5 > 6", behind_ip - 1), "ip cut short");
  EXPECT_EQ(shown_cut("arp 10.0.0.1 > 10.0.0.2", 14 + 28), "arp 10.0.0.1 > 10.0.0.2");
  EXPECT_EQ(shown_cut("arp 10.0.0.1 > 10.0.0.2", 14 + 27), "arp cut short");
}

}  // namespace
