// Which frames an entry meets by each qualifier, through the SDK's calls.
#include <algorithm>

#include "support/gports.h"
#include "swsdk/field_fixture.h"

namespace {

class FieldMatches : public support::Field {
 protected:
  using Set = std::function<void(swsdk_frame&)>;

  /// Checks that an entry that `qualify` gives its match meets the frame of `hit` and not the one of `miss`.
  static void expect_match(std::initializer_list<int> qualifiers, const std::function<int(int entry)>& qualify,
                           const Set& hit, const Set& miss) {
    support::start_chip();
    const int stage = std::count(qualifiers.begin(), qualifiers.end(), bcmFieldQualifyStageEgress) == 1
                          ? SWSDK_FIELD_EGRESS
                          : SWSDK_FIELD_INGRESS;
    const int id = entry(group(qualifiers));
    EXPECT_EQ(qualify(id), BCM_E_NONE);
    EXPECT_EQ(bcm_field_entry_install(unit, id), BCM_E_NONE);
    EXPECT_EQ(classify(frame(hit), stage).hits, 1);
    EXPECT_EQ(classify(frame(miss), stage).hits, 0);
    const int other = entry(group({bcmFieldQualifyStageIngress}));
    EXPECT_EQ(qualify(other), BCM_E_PARAM) << "in a group that does not hold it";
  }
};

TEST_F(FieldMatches, ComparePorts) {
  expect_match(
      {bcmFieldQualifyStageIngress, bcmFieldQualifyInPort},
      [](int id) { return bcm_field_qualify_InPort(unit, id, 5, exact); }, [](swsdk_frame& f) { f.in_port = 5; },
      [](swsdk_frame& f) { f.in_port = 4; });
  expect_match(
      {bcmFieldQualifyStageEgress, bcmFieldQualifyOutPort},
      [](int id) { return bcm_field_qualify_OutPort(unit, id, 5, 0xFF); }, [](swsdk_frame& f) { f.out_port = 5; },
      [](swsdk_frame& f) { f.out_port = 4; });
}

TEST_F(FieldMatches, TakeGportsOfTheChip) {
  constexpr int local_5 = support::gport(BCM_GPORT_TYPE_LOCAL, 5);
  expect_match(
      {bcmFieldQualifyStageIngress, bcmFieldQualifyInPort},
      [](int id) { return bcm_field_qualify_InPort(unit, id, local_5, exact); }, [](swsdk_frame& f) { f.in_port = 5; },
      [](swsdk_frame& f) { f.in_port = 4; });
}

TEST_F(FieldMatches, CompareMacAddresses) {
  static uint8 mac[] = {0x33, 0x33, 0, 0, 0, 0};
  static uint8 mask[] = {0xFF, 0xFF, 0, 0, 0, 0};
  expect_match(
      {bcmFieldQualifyStageIngress, bcmFieldQualifyDstMac},
      [](int id) { return bcm_field_qualify_DstMac(unit, id, mac, mask); },
      [](swsdk_frame& f) { f.dst_mac[0] = f.dst_mac[1] = 0x33, f.dst_mac[5] = 0x16; },
      [](swsdk_frame& f) { f.dst_mac[0] = 0x33, f.dst_mac[1] = 0x32; });
  expect_match(
      {bcmFieldQualifyStageIngress, bcmFieldQualifySrcMac},
      [](int id) { return bcm_field_qualify_SrcMac(unit, id, mac, mask); },
      [](swsdk_frame& f) { f.src_mac[0] = f.src_mac[1] = 0x33, f.src_mac[5] = 0x16; },
      [](swsdk_frame& f) { f.src_mac[0] = 0x32, f.src_mac[1] = 0x33; });
}

TEST_F(FieldMatches, CompareVlanTags) {
  expect_match(
      {bcmFieldQualifyStageIngress, bcmFieldQualifyOuterVlan},
      [](int id) { return bcm_field_qualify_OuterVlan(unit, id, 10, 0xFFF); },
      [](swsdk_frame& f) { f.outer_tag = 0xE00A; }, [](swsdk_frame& f) { f.outer_tag = 11; });
  expect_match(
      {bcmFieldQualifyStageIngress, bcmFieldQualifyOuterVlan},
      [](int id) { return bcm_field_qualify_OuterVlan(unit, id, 3 << 13 | 10, 0xEFFF); },
      [](swsdk_frame& f) { f.outer_tag = 0x700A; }, [](swsdk_frame& f) { f.outer_tag = 0x400A; });
}

TEST_F(FieldMatches, CompareEtherTypes) {
  expect_match(
      {bcmFieldQualifyStageIngress, bcmFieldQualifyEtherType},
      [](int id) { return bcm_field_qualify_EtherType(unit, id, 0x9088, 0xFFFF); },
      [](swsdk_frame& f) { f.ether_type = 0x9088; }, [](swsdk_frame& f) { f.ether_type = 0x9089; });
}

TEST_F(FieldMatches, CompareIp4Addresses) {
  expect_match(
      {bcmFieldQualifyStageIngress, bcmFieldQualifySrcIp},
      [](int id) { return bcm_field_qualify_SrcIp(unit, id, 0x0A000000, 0xFF000000); },
      [](swsdk_frame& f) { f.ether_type = ip4, f.src_ip = 0x0A010203; },
      [](swsdk_frame& f) { f.ether_type = ip4, f.src_ip = 0x0B010203; });
  expect_match(
      {bcmFieldQualifyStageIngress, bcmFieldQualifyDstIp},
      [](int id) { return bcm_field_qualify_DstIp(unit, id, 0x0A000001, 0xFFFFFFFF); },
      [](swsdk_frame& f) { f.ether_type = ip4, f.dst_ip = 0x0A000001; },
      [](swsdk_frame& f) { f.ether_type = ip4, f.src_ip = 0x0A000001; });
}

TEST_F(FieldMatches, CompareIp6Addresses) {
  static uint8 address[16] = {0x20, 0x01, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x01};
  static uint8 mask[16] = {0xFF, 0xFF, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF};
  expect_match(
      {bcmFieldQualifyStageIngress, bcmFieldQualifySrcIp6},
      [](int id) { return bcm_field_qualify_SrcIp6(unit, id, address, mask); },
      [](swsdk_frame& f) { f.ether_type = ip6, std::copy_n(address, 16, f.src_ip6), f.src_ip6[7] = 9; },
      [](swsdk_frame& f) { f.ether_type = ip6, std::copy_n(address, 16, f.src_ip6), f.src_ip6[1] = 2; });
  expect_match(
      {bcmFieldQualifyStageEgress, bcmFieldQualifyDstIp6},
      [](int id) { return bcm_field_qualify_DstIp6(unit, id, address, mask); },
      [](swsdk_frame& f) { f.ether_type = ip6, std::copy_n(address, 16, f.dst_ip6), f.dst_ip6[7] = 9; },
      [](swsdk_frame& f) { f.ether_type = ip6, std::copy_n(address, 16, f.dst_ip6), f.dst_ip6[15] = 2; });
}

TEST_F(FieldMatches, CompareKindsOfIp) {
  const auto is = [](uint16_t ether_type) { return [=](swsdk_frame& f) { f.ether_type = ether_type; }; };
  const auto of_type = [](bcm_field_IpType_t type) {
    return [=](int id) { return bcm_field_qualify_IpType(unit, id, type); };
  };
  const auto ip_group = {int{bcmFieldQualifyStageIngress}, int{bcmFieldQualifyIpType}};
  expect_match(ip_group, of_type(bcmFieldIpTypeIpv4Any), is(ip4), is(ip6));
  expect_match(ip_group, of_type(bcmFieldIpTypeIpv6), is(ip6), is(ip4));
  expect_match(ip_group, of_type(bcmFieldIpTypeIp), is(ip4), is(0x0806));
  expect_match(ip_group, of_type(bcmFieldIpTypeIp), is(ip6), is(0x0806));
}

TEST_F(FieldMatches, CompareTheIpHeader) {
  const auto ip4_with = [](uint8_t swsdk_frame::*field, uint8_t value) {
    return [=](swsdk_frame& f) { f.ether_type = ip4, f.*field = value; };
  };
  const auto ip6_with = [](uint8_t swsdk_frame::*field, uint8_t value) {
    return [=](swsdk_frame& f) { f.ether_type = ip6, f.*field = value; };
  };
  expect_match(
      {bcmFieldQualifyStageIngress, bcmFieldQualifyIpProtocol},
      [](int id) { return bcm_field_qualify_IpProtocol(unit, id, 89, 0xFF); }, ip4_with(&swsdk_frame::ip_protocol, 89),
      ip4_with(&swsdk_frame::ip_protocol, 88));
  expect_match(
      {bcmFieldQualifyStageIngress, bcmFieldQualifyIp6NextHeader},
      [](int id) { return bcm_field_qualify_Ip6NextHeader(unit, id, 58, 0xFF); },
      ip6_with(&swsdk_frame::ip_protocol, 58), ip6_with(&swsdk_frame::ip_protocol, 57));
  expect_match(
      {bcmFieldQualifyStageIngress, bcmFieldQualifyDSCP},
      [](int id) { return bcm_field_qualify_DSCP(unit, id, 46 * 4, 0xFF); }, ip4_with(&swsdk_frame::tos, 0xB8),
      ip4_with(&swsdk_frame::tos, 0xB9));
  expect_match(
      {bcmFieldQualifyStageIngress, bcmFieldQualifyTos},
      [](int id) { return bcm_field_qualify_Tos(unit, id, 0x10, 0xFF); }, ip4_with(&swsdk_frame::tos, 0x10),
      ip4_with(&swsdk_frame::tos, 0x18));
  expect_match(
      {bcmFieldQualifyStageIngress, bcmFieldQualifyTtl},
      [](int id) { return bcm_field_qualify_Ttl(unit, id, 1, 0xFF); }, ip4_with(&swsdk_frame::ttl, 1),
      ip4_with(&swsdk_frame::ttl, 2));
}

TEST_F(FieldMatches, CompareL4PortsAndIcmp) {
  const auto udp_with = [](uint16_t swsdk_frame::*field, uint16_t value) {
    return [=](swsdk_frame& f) { f.ether_type = ip4, f.ip_protocol = 17, f.*field = value; };
  };
  expect_match(
      {bcmFieldQualifyStageIngress, bcmFieldQualifyL4SrcPort},
      [](int id) { return bcm_field_qualify_L4SrcPort(unit, id, 67, exact); }, udp_with(&swsdk_frame::l4_src_port, 67),
      udp_with(&swsdk_frame::l4_dst_port, 67));
  expect_match(
      {bcmFieldQualifyStageIngress, bcmFieldQualifyL4DstPort},
      [](int id) { return bcm_field_qualify_L4DstPort(unit, id, 68, 0xFFFF); }, udp_with(&swsdk_frame::l4_dst_port, 68),
      udp_with(&swsdk_frame::l4_dst_port, 67));
  expect_match(
      {bcmFieldQualifyStageIngress, bcmFieldQualifyIcmpTypeCode},
      [](int id) { return bcm_field_qualify_IcmpTypeCode(unit, id, 0x8F00, 0xFFFF); },
      [](swsdk_frame& f) { f.ether_type = ip6, f.ip_protocol = 58, f.icmp_type = 143; },
      [](swsdk_frame& f) { f.ether_type = ip6, f.ip_protocol = 58, f.icmp_type = 143, f.icmp_code = 1; });
}

}  // namespace
