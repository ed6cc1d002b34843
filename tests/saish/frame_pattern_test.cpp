#include "frame_pattern.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

const std::string addresses = "02:00:00:00:00:01 > 02:00:00:00:00:02 ";

std::vector<uint8_t> frame(const std::string& text) { return saish::frame_bytes(saish::words(text)); }

bool matches(const std::string& pattern, const std::vector<uint8_t>& frame) {
  return saish::FramePattern(saish::words(pattern)).matches(frame);
}

/// Whether a pattern and a frame match, both with the same addresses.
bool fits(const std::string& pattern, const std::string& fields) {
  return matches(addresses + pattern, frame(addresses + fields));
}

std::string refused(const std::string& pattern) {
  try {
    saish::FramePattern{saish::words(pattern)};
  } catch (const saish::BadInput& bad) {
    return bad.what();
  }
  return "";
}

TEST(AFramePattern, OfTheTextOfAFrameMatchesIt) {
  for (const std::string fields :
       {"vlan 10 arp 10.0.0.1 > 10.0.0.2", "svlan 10/3 vlan 20/7 type 0x1234",
        "ip 10.0.0.1 > 10.0.0.2 tos 8 ttl 1 tcp 80 > 81", "ip 2001:db8::1 > ff02::1 tos 184 ttl 255 icmp 135",
        "ip 10.0.0.1 > 224.0.0.22 ttl 1 igmp 22 239.1.1.1", "ip 10.0.0.1 > 10.0.0.2 ttl 64 protocol 89"}) {
    const std::vector<uint8_t> sent = frame(addresses + fields);
    EXPECT_TRUE(matches(saish::frame_text(sent), sent)) << fields;
  }
}

TEST(AFramePattern, IsOpenInWhatItDoesNotName) {
  const std::string udp = "ip 10.0.0.1 > 10.0.0.2 tos 8 ttl 1 udp 5 > 6";
  for (const std::string pattern :
       {"", "ip 10.0.0.1 > 10.0.0.2", "ip 10.0.0.1 > 10.0.0.2 ttl 1", "ip 10.0.0.1 > 10.0.0.2 udp 5 > 6",
        "ip 10.0.0.1 > 10.0.0.2 udp 5 > 6 tos 8", "type 0x0800"})
    EXPECT_TRUE(fits(pattern, udp)) << pattern;
  EXPECT_TRUE(fits("arp 10.0.0.1 > 10.0.0.2", "arp 10.0.0.1 > 10.0.0.2"));
  EXPECT_TRUE(fits("", "type 0x1234 length 100"));
}

TEST(AFramePattern, MatchesNoFrameThatDiffersInAFieldThatItNames) {
  const std::string udp = "ip 10.0.0.1 > 10.0.0.2 tos 8 ttl 2 udp 5 > 6";
  for (const std::string pattern :
       {"ip 10.0.0.3 > 10.0.0.2", "ip 10.0.0.1 > 10.0.0.3", "ip 10.0.0.1 > 10.0.0.2 ttl 3",
        "ip 10.0.0.1 > 10.0.0.2 tos 0", "ip 10.0.0.1 > 10.0.0.2 udp 5 > 7", "ip 10.0.0.1 > 10.0.0.2 tcp 5 > 6",
        "ip 10.0.0.1 > 10.0.0.2 protocol 6", "ip ::1 > ::2", "ip ::1 > *", "arp 10.0.0.1 > 10.0.0.2", "type 0x0806"})
    EXPECT_FALSE(fits(pattern, udp)) << pattern;
  const std::string ip6 = "ip 2001:db8::1 > ff02::1 tos 184 ttl 255 icmp 135";
  for (const std::string pattern : {"tos 185", "tos 56", "ttl 1", "icmp 136", "udp * > *"})
    EXPECT_FALSE(fits("ip 2001:db8::1 > ff02::1 " + pattern, ip6)) << pattern;
  EXPECT_FALSE(matches("02:00:00:00:00:03 > *", frame(addresses)));
  EXPECT_FALSE(matches("* > 02:00:00:00:00:03", frame(addresses)));
  EXPECT_FALSE(fits("ip * > * igmp 22 239.1.1.2", "ip 10.0.0.1 > 224.0.0.22 igmp 22 239.1.1.1"));
}

TEST(AFramePattern, LeavesValuesOpenWithAStar) {
  const std::string udp = "ip 10.0.0.1 > 10.0.0.2 ttl 2 udp 5 > 6";
  for (const std::string pattern :
       {"ip * > 10.0.0.2", "ip 10.0.0.1 > *", "ip * > *", "ip * > * udp * > 6", "ip * > * udp 5 > *",
        "ip * > * udp * > *", "ip * > * ttl * tos * protocol *", "type *", "length *"})
    EXPECT_TRUE(fits(pattern, udp)) << pattern;
  for (const std::string pattern : {"ip * > 10.0.0.3", "ip * > * tcp * > *", "ip * > * udp * > 5", "arp * > *"})
    EXPECT_FALSE(fits(pattern, udp)) << pattern;
  EXPECT_TRUE(matches("* > 02:00:00:00:00:02", frame(addresses)));
  EXPECT_TRUE(matches("* > *", frame(addresses)));
  EXPECT_TRUE(fits("arp * > 10.0.0.2", "arp 10.0.0.1 > 10.0.0.2"));
  EXPECT_FALSE(fits("arp * > 10.0.0.1", "arp 10.0.0.1 > 10.0.0.2"));
  EXPECT_TRUE(fits("ip * > * icmp *", "ip 10.0.0.1 > 10.0.0.2 icmp 8"));
  EXPECT_TRUE(fits("ip * > * igmp * *", "ip 10.0.0.1 > 224.0.0.22 igmp 22 239.1.1.1"));
}

TEST(AFramePattern, WithOpenIpAddressesMatchesBothVersions) {
  EXPECT_TRUE(fits("ip * > * udp 5 > 6", "ip 2001:db8::1 > 2001:db8::2 udp 5 > 6"));
  EXPECT_TRUE(fits("ip * > * udp 5 > 6", "ip 10.0.0.1 > 10.0.0.2 udp 5 > 6"));
  EXPECT_TRUE(fits("ip * > * icmp 135", "ip 2001:db8::1 > 2001:db8::2 icmp 135"));
  EXPECT_FALSE(fits("ip * > * udp 5 > 7", "ip 2001:db8::1 > 2001:db8::2 udp 5 > 6"));
}

TEST(AFramePattern, HasJustTheTagsThatItNames) {
  for (const std::string pattern : {"vlan 10", "vlan *", "vlan 10/*", "vlan */0", "vlan 10 type 0x1234"})
    EXPECT_TRUE(fits(pattern, "vlan 10 type 0x1234")) << pattern;
  for (const std::string pattern : {"", "type *", "svlan 10", "vlan 11", "vlan 10/1", "vlan */1", "vlan * vlan *"})
    EXPECT_FALSE(fits(pattern, "vlan 10 type 0x1234")) << pattern;
  for (const std::string pattern : {"vlan 10/3", "vlan *", "vlan 10/*", "vlan */3"})
    EXPECT_TRUE(fits(pattern, "vlan 10/3")) << pattern;
  EXPECT_FALSE(fits("vlan 10", "vlan 10/3"));
  EXPECT_FALSE(fits("vlan *", ""));
  EXPECT_FALSE(fits("vlan 10", "vlan 10 vlan 20"));
  EXPECT_TRUE(fits("vlan 10 vlan *", "vlan 10 vlan 20"));
  EXPECT_TRUE(fits("svlan * vlan 20", "svlan 10/3 vlan 20"));
  EXPECT_TRUE(matches(addresses + "vlan 10", frame("0200000000020200000000018100100a1234"))) << "whatever its DEI bit";
}

TEST(AFramePattern, IsTheWholeFrameOfHexadecimalDigits) {
  const std::string digits = "0200000000020200000000011234";
  EXPECT_TRUE(matches(digits, frame(digits)));
  EXPECT_FALSE(matches(digits, frame(digits + "00")));
  EXPECT_FALSE(matches(digits + "00", frame(digits)));
  EXPECT_FALSE(matches(digits, frame("0200000000020200000000011235")));
  const std::string padded = "02000000000202000000000108004500001400000000400600000a0000010a000002";
  EXPECT_TRUE(matches(padded + "0000", frame(padded + "0000"))) << "with the padding behind a packet";
}

TEST(AFramePattern, OfNoWordsIsAnyFrame) {
  for (const std::string pattern : {"", "*"})
    for (const std::string& any : {addresses, addresses + "vlan 10", std::string("02")})
      EXPECT_TRUE(matches(pattern, frame(any))) << pattern;
}

TEST(AFramePattern, CanNameTheLengthOfTheFrame) {
  EXPECT_TRUE(fits("length 60", ""));
  EXPECT_TRUE(fits("vlan 10 length 100", "vlan 10 length 100"));
  EXPECT_FALSE(fits("length 59", ""));
  EXPECT_FALSE(fits("length 61", ""));
}

TEST(AFramePattern, FindsFieldsBehindOptionsButNotInPadding) {
  const std::string ethernet = "0200000000020200000000010800";
  const std::string with_options = "46000020000000004011000001020304050607080101010100050006";
  EXPECT_TRUE(matches(addresses + "ip 1.2.3.4 > 5.6.7.8 udp 5 > 6", frame(ethernet + with_options)));
  const std::string without_content = "4500001400000000401100000102030405060708";
  EXPECT_TRUE(matches(addresses + "ip 1.2.3.4 > 5.6.7.8 protocol 17", frame(ethernet + without_content + "00000000")));
  EXPECT_FALSE(matches(addresses + "ip 1.2.3.4 > 5.6.7.8 udp 0 > 0", frame(ethernet + without_content + "00000000")));
  EXPECT_FALSE(matches(addresses + "ip 1.2.3.4 > 5.6.7.8 udp * > *", frame(ethernet + without_content + "00000000")));
}

TEST(AFramePattern, MatchesNoFrameThatEndsBeforeWhatItNames) {
  EXPECT_FALSE(matches("* > * type *", frame("020000000002020000000001")));
  EXPECT_FALSE(matches("* > * ip * > *", frame("02000000000202000000000108004500")));
  EXPECT_FALSE(matches("* > * vlan *", frame("0200000000020200000000018100")));
}

TEST(AFramePattern, RefusesWhatIsNoFrame) {
  EXPECT_EQ(refused("123"), "frame: \"123\" is not pairs of hexadecimal digits");
  EXPECT_EQ(refused("vlan 10"), "frame: \"vlan\" is not a MAC address such as 00:11:22:33:44:55");
  EXPECT_EQ(refused("* *"), "frame: \"*\" is not >");
  EXPECT_EQ(refused("* > * vlan"), "frame: it ends where a VLAN should be");
  EXPECT_EQ(refused("* > * vlan 4096"), "frame: a tag has a VLAN up to 4095 and a priority up to 7");
  EXPECT_EQ(refused("* > * vlan */8"), "frame: a tag has a VLAN up to 4095 and a priority up to 7");
  EXPECT_EQ(refused("* > * arp ::1 > *"), "frame: ARP is of IPv4 addresses");
  EXPECT_EQ(refused("* > * ip 10.0.0.1 > ::1"), "frame: an IPv4 address does not go with an IPv6 one");
  EXPECT_EQ(refused("* > * udp * > *"), "frame: \"udp\" is no field, or comes before ip");
  EXPECT_EQ(refused("* > * ip * > * utp *"), "frame: there is no field \"utp\"");
  EXPECT_EQ(refused("* > * *"), "frame: \"*\" is no field, or comes before ip");
}

}  // namespace
