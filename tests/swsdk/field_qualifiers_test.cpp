// What each qualifier sees of a frame, and of frames of other kinds.
#include "chip/field_qualifiers.h"

#include <bcm/field.h>
#include <gtest/gtest.h>

#include <string>

namespace {

using chip::FieldMatch;
using chip::FieldQualifier;
using chip::FieldStage;
using chip::FieldValue;
using chip::FrameFields;

constexpr uint16_t ip4 = 0x0800;
constexpr uint16_t ip6 = 0x86DD;
constexpr uint16_t arp = 0x0806;
constexpr uint8_t tcp = 6;
constexpr uint8_t udp = 17;

constexpr chip::Mac some_mac{0x02, 0x34, 0x56, 0x78, 0x9A, 0xBC};
constexpr chip::Mac other_mac{0x02, 0x34, 0x56, 0x78, 0x9A, 0xBD};
constexpr chip::Ip6 address{0x20, 0x01, 0x0D, 0xB8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x01};
constexpr chip::Ip6 far_address{0xA0, 0x01, 0x0D, 0xB8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x01};
constexpr chip::Ip6 near_address{0x20, 0x01, 0x0D, 0xB8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x03};

/// A frame that has the field, one that has it one bit off, and what of it the qualifier matches.
struct Sample {
  const char* name;
  FieldQualifier qualifier;
  FieldValue value;
  FrameFields frame;
  FrameFields near_miss;
};

const Sample samples[] = {
    {"the start of an IPv6 source address",
     FieldQualifier::source_ip6,
     address,
     {.ether_type = ip6, .source_ip6 = address},
     {.ether_type = ip6, .source_ip6 = far_address}},
    {"the end of an IPv6 source address",
     FieldQualifier::source_ip6,
     address,
     {.ether_type = ip6, .source_ip6 = address},
     {.ether_type = ip6, .source_ip6 = near_address}},
    {"the start of an IPv6 destination address",
     FieldQualifier::destination_ip6,
     address,
     {.ether_type = ip6, .destination_ip6 = address},
     {.ether_type = ip6, .destination_ip6 = far_address}},
    {"the end of an IPv6 destination address",
     FieldQualifier::destination_ip6,
     address,
     {.ether_type = ip6, .destination_ip6 = address},
     {.ether_type = ip6, .destination_ip6 = near_address}},
    {"a source MAC address", FieldQualifier::source_mac, some_mac, {.source_mac = some_mac}, {.source_mac = other_mac}},
    {"a destination MAC address",
     FieldQualifier::destination_mac,
     some_mac,
     {.destination_mac = some_mac},
     {.destination_mac = other_mac}},
    {"an IPv4 source address",
     FieldQualifier::source_ip,
     0x0A000001,
     {.ether_type = ip4, .source_ip = 0x0A000001},
     {.ether_type = ip4, .source_ip = 0x8A000001}},
    {"an IPv4 destination address",
     FieldQualifier::destination_ip,
     0x0A000001,
     {.ether_type = ip4, .destination_ip = 0x0A000001},
     {.ether_type = ip4, .destination_ip = 0x0A000000}},
    {"a port of entry", FieldQualifier::in_port, 5, {.in_port = 5}, {.in_port = 4}},
    {"a port of exit", FieldQualifier::out_port, 5, {.out_port = 5}, {.out_port = 4}},
    {"a VLAN", FieldQualifier::outer_vlan, 0x600A, {.outer_tag = 0x600A}, {.outer_tag = 0x600B}},
    {"a VLAN's priority", FieldQualifier::outer_vlan, 0x600A, {.outer_tag = 0x600A}, {.outer_tag = 0x400A}},
    {"a VLAN's CFI", FieldQualifier::outer_vlan, 0x600A, {.outer_tag = 0x600A}, {.outer_tag = 0x700A}},
    {"a priority", FieldQualifier::outer_vlan_priority, 3, {.outer_tag = 0x6FFF}, {.outer_tag = 0x8FFF}},
    {"an inner VLAN", FieldQualifier::inner_vlan, 0x600A, {.inner_tag = 0x600A}, {.inner_tag = 0x600B}},
    {"an inner priority", FieldQualifier::inner_vlan_priority, 3, {.inner_tag = 0x6FFF}, {.inner_tag = 0x8FFF}},
    {"a VLAN format", FieldQualifier::vlan_format, 1, {.vlan_format = 1}, {.vlan_format = 3}},
    {"an ether type", FieldQualifier::ether_type, 0x9088, {.ether_type = 0x9088}, {.ether_type = 0x9089}},
    {"an IPv4 protocol",
     FieldQualifier::ip_protocol,
     89,
     {.ether_type = ip4, .ip_protocol = 89},
     {.ether_type = ip4, .ip_protocol = 88}},
    {"an IPv6 next header",
     FieldQualifier::ip_protocol,
     89,
     {.ether_type = ip6, .ip_protocol = 89},
     {.ether_type = ip6, .ip_protocol = 88}},
    {"a type of service",
     FieldQualifier::dscp,
     0xB8,
     {.ether_type = ip4, .tos = 0xB8},
     {.ether_type = ip4, .tos = 0xB9}},
    {"a traffic class", FieldQualifier::dscp, 0xB8, {.ether_type = ip6, .tos = 0xB8}, {.ether_type = ip6, .tos = 0xBC}},
    {"a time to live", FieldQualifier::ttl, 1, {.ether_type = ip4, .ttl = 1}, {.ether_type = ip4, .ttl = 0}},
    {"a hop limit", FieldQualifier::ttl, 1, {.ether_type = ip6, .ttl = 1}, {.ether_type = ip6, .ttl = 3}},
    {"a TCP source port",
     FieldQualifier::l4_source_port,
     179,
     {.ether_type = ip4, .ip_protocol = tcp, .l4_source_port = 179},
     {.ether_type = ip4, .ip_protocol = tcp, .l4_source_port = 178}},
    {"a UDP destination port",
     FieldQualifier::l4_destination_port,
     547,
     {.ether_type = ip6, .ip_protocol = udp, .l4_destination_port = 547},
     {.ether_type = ip6, .ip_protocol = udp, .l4_destination_port = 546}},
    {"an ICMP type",
     FieldQualifier::icmp_type_code,
     0x0801,
     {.ether_type = ip4, .ip_protocol = 1, .icmp_type = 8, .icmp_code = 1},
     {.ether_type = ip4, .ip_protocol = 1, .icmp_type = 9, .icmp_code = 1}},
    {"an ICMPv6 code",
     FieldQualifier::icmp_type_code,
     0x8200,
     {.ether_type = ip6, .ip_protocol = 58, .icmp_type = 130},
     {.ether_type = ip6, .ip_protocol = 58, .icmp_type = 130, .icmp_code = 1}},
    {"an ARP target",
     FieldQualifier::arp_target_ip,
     0x0A000001,
     {.ether_type = arp, .arp_target_ip = 0x0A000001},
     {.ether_type = arp, .arp_target_ip = 0x0A000003}},
};

FieldMatch exactly(const Sample& field) {
  return {field.value, exact_mask(*chip::field_qualifier(static_cast<int>(field.qualifier)))};
}

TEST(FieldQualifiers, MatchTheirFieldAndNotOneThatIsABitOff) {
  for (const Sample& field : samples) {
    EXPECT_TRUE(exactly(field).meets(field_of(field.frame, field.qualifier))) << field.name;
    EXPECT_FALSE(exactly(field).meets(field_of(field.near_miss, field.qualifier))) << field.name;
  }
}

TEST(FieldQualifiers, CompareTheBitsOfTheMaskAlone) {
  const FieldMatch multicast{chip::Mac{0x33, 0x33, 0xAA}, chip::Mac{0xFF, 0xFF}};
  EXPECT_TRUE(multicast.meets(chip::Mac{0x33, 0x33, 0, 0, 0, 1}));
  EXPECT_FALSE(multicast.meets(chip::Mac{0x33, 0x32, 0, 0, 0, 1}));
  const FieldMatch network{address, chip::Ip6{0xFF, 0xFF, 0xFF, 0xFF}};
  EXPECT_TRUE(network.meets(near_address));
  EXPECT_FALSE(network.meets(far_address));
  const FieldMatch anything{address, {}};
  EXPECT_TRUE(anything.meets(far_address));
}

TEST(FieldQualifiers, SeeZeroInWhatAFrameOfItsKindDoesNotHave) {
  const FrameFields full{.source_ip = 1,
                         .destination_ip = 1,
                         .source_ip6 = address,
                         .destination_ip6 = address,
                         .ip_protocol = tcp,
                         .tos = 1,
                         .ttl = 1,
                         .l4_source_port = 1,
                         .l4_destination_port = 1,
                         .icmp_type = 1,
                         .icmp_code = 1,
                         .arp_target_ip = 1};
  const auto expect_nothing = [&](uint16_t ether_type, uint8_t protocol, std::initializer_list<FieldQualifier> absent) {
    FrameFields frame = full;
    frame.ether_type = ether_type;
    frame.ip_protocol = protocol;
    for (const FieldQualifier qualifier : absent)
      EXPECT_EQ(field_of(frame, qualifier), FieldValue())
          << std::hex << ether_type << ' ' << chip::field_qualifier(static_cast<int>(qualifier))->name;
  };
  using enum FieldQualifier;
  for (const uint16_t not_ip : {arp, uint16_t{0x9088}})
    expect_nothing(not_ip, tcp,
                   {source_ip, destination_ip, source_ip6, destination_ip6, ip_protocol, dscp, ttl, l4_source_port,
                    l4_destination_port, icmp_type_code, ip_type});
  expect_nothing(ip4, tcp, {source_ip6, destination_ip6, icmp_type_code, arp_target_ip});
  expect_nothing(ip6, tcp, {source_ip, destination_ip, icmp_type_code, arp_target_ip});
  expect_nothing(ip4, 1, {l4_source_port, l4_destination_port});
  expect_nothing(ip4, 58, {icmp_type_code});
  expect_nothing(ip6, 1, {icmp_type_code});
  expect_nothing(0x9088, tcp, {arp_target_ip});
}

TEST(FieldQualifiers, TellKindsOfIpApart) {
  const auto kinds = [](uint16_t ether_type) {
    std::string met;
    for (const chip::FieldIpType& type : chip::field_ip_types)
      if (FieldMatch{type.data, type.mask}.meets(field_of({.ether_type = ether_type}, FieldQualifier::ip_type)))
        met += type.name + std::string(" ");
    return met;
  };
  EXPECT_EQ(kinds(ip4), "IPv4 IP ");
  EXPECT_EQ(kinds(ip6), "IPv6 IP ");
  EXPECT_EQ(kinds(arp), "");
}

TEST(FieldQualifiers, StandInTheHeaderThatHasThem) {
  using chip::Layer;
  using enum FieldQualifier;
  for (const FieldQualifier field : {source_mac, outer_vlan, inner_vlan, ether_type, ip_type, in_port, vlan_format})
    EXPECT_EQ(layer_of(field), Layer::ethernet);
  for (const FieldQualifier field : {source_ip, destination_ip6, ip_protocol, dscp, ttl, arp_target_ip})
    EXPECT_EQ(layer_of(field), Layer::network);
  for (const FieldQualifier field : {l4_source_port, l4_destination_port, icmp_type_code})
    EXPECT_EQ(layer_of(field), Layer::transport);
}

TEST(FieldQualifiers, AreAsWideAsTheirField) {
  const auto ones = [](FieldQualifier qualifier) {
    return exact_mask(*chip::field_qualifier(static_cast<int>(qualifier)));
  };
  EXPECT_EQ(ones(FieldQualifier::vlan_format), FieldValue(0x3));
  EXPECT_EQ(ones(FieldQualifier::ttl), FieldValue(0xFF));
  EXPECT_EQ(ones(FieldQualifier::source_mac), FieldValue(0xFFFFFFFFFFFF));
  EXPECT_EQ(ones(FieldQualifier::source_ip6).high, ~0ULL);
  EXPECT_EQ(ones(FieldQualifier::source_ip6).low, ~0ULL);
}

TEST(FieldQualifiers, BelongToTheStagesThatKnowTheirField) {
  EXPECT_TRUE(has_qualifier(FieldStage::ingress, FieldQualifier::in_port));
  EXPECT_FALSE(has_qualifier(FieldStage::ingress, FieldQualifier::out_port));
  EXPECT_FALSE(has_qualifier(FieldStage::egress, FieldQualifier::in_port));
  EXPECT_TRUE(has_qualifier(FieldStage::egress, FieldQualifier::out_port));
  EXPECT_TRUE(has_qualifier(FieldStage::egress, FieldQualifier::source_mac));
}

TEST(FieldQualifiers, AreThoseOfTheInterface) {
  EXPECT_EQ(chip::field_qualifier(2), nullptr);
  EXPECT_EQ(chip::field_qualifier(-1), nullptr);
  EXPECT_STREQ(chip::field_qualifier(bcmFieldQualifySrcIp6)->name, "SrcIp6");
  EXPECT_STREQ(chip::field_qualifier(bcmFieldQualifyIcmpTypeCode)->name, "IcmpTypeCode");
  EXPECT_EQ(chip::field_qualifier(bcmFieldQualifyTos), chip::field_qualifier(bcmFieldQualifyDSCP));
}

}  // namespace
