// Access control rules as frames see them, on their way in and out.
#include <arpa/inet.h>

#include <algorithm>

#include "forwarding_fixture.h"

namespace {

using support::Bytes;
using support::Frame;

class Acl : public support::ForwardingTest {
 protected:
  Acl() { vlan(10, {1, 2}); }

  static int32_t group(int32_t (*create)(int32_t, int32_t*)) {
    int32_t id = 0;
    EXPECT_EQ(create(0, &id), 0);
    return id;
  }
  static sai_acl_rule_t deny(uint32_t ip_type = SAI_ACL_IPV4) {
    sai_acl_rule_t rule{};
    rule.action = SAI_ACL_DENY;
    rule.ip_type = ip_type;
    rule.ip_protocol = -1;
    return rule;
  }

  /// Where a frame from port 1 to port 2 goes: "passed", "stopped" or "dropped: ...".
  std::string fate(const Bytes& frame) {
    const std::string copies = send(1, frame);
    if (('\n' + copies).find("\n2: ") != std::string::npos) return "passed";
    return copies.substr(0, 7) == "dropped" ? copies : "stopped";
  }

  const std::string dropped = "dropped: field rule\n";
  const Bytes plain = Frame(1, 9).tag(10).type(0x9000);
  const Bytes udp = Frame(1, 9).tag(10).ip("10.0.0.1", "10.0.0.9").udp(5, 6);
  const Bytes udp6 = Frame(1, 9).tag(10).ip("2001:db8::1", "2001:db8::9").udp(5, 6);
};

// ---------------------------------------------------------------------------------------------------- way in ----

TEST_F(Acl, AnL2RuleDeniesASource) {
  EXPECT_EQ(fate(plain), "passed");
  sai_acl_rule_t rule = deny();
  std::copy_n(&plain[6], 6, rule.src_mac);
  std::fill_n(rule.src_mac_mask, 6, uint8_t{0xFF});
  int32_t entry = 0;
  EXPECT_EQ(sai_acl_l2_entry_install(0, 1, SAI_ACL_INGRESS, group(sai_ifp_l2_group_create), &rule, &entry), 0);
  EXPECT_EQ(fate(plain), dropped);
  EXPECT_EQ(fate(Frame(2, 9).tag(10).type(0x9000)), "passed");
  EXPECT_EQ(sai_fp_entry_destroy(0, entry), 0);
  EXPECT_EQ(fate(plain), "passed");
}

TEST_F(Acl, AnL2RuleDeniesAVlanOfAPriority) {
  sai_acl_rule_t rule = deny();
  rule.vlan_id = 10;
  rule.vlan_mask = 0xFFF;
  rule.vlan_pri = 5;
  rule.vlan_pri_mask = 7;
  int32_t entry = 0;
  EXPECT_EQ(sai_acl_l2_entry_install(0, 1, SAI_ACL_INGRESS, group(sai_ifp_l2_group_create), &rule, &entry), 0);
  EXPECT_EQ(fate(plain), "passed");
  EXPECT_EQ(fate(Frame(1, 9).tag(10, 5).type(0x9000)), dropped);
}

TEST_F(Acl, AStandardRuleDeniesASourceAddress) {
  EXPECT_EQ(fate(udp), "passed");
  sai_acl_rule_t rule = deny();
  rule.src_ip = inet_addr("10.0.0.0");
  rule.src_ip_mask = inet_addr("255.255.255.0");
  int32_t entry = 0;
  const int32_t in = group(sai_ifp_mac_ipv4_group_create);
  EXPECT_EQ(sai_acl_std_l3_entry_install(0, 1, SAI_ACL_INGRESS, in, &rule, &entry), 0);
  EXPECT_EQ(fate(udp), dropped);
  EXPECT_EQ(fate(Frame(1, 9).tag(10).ip("10.0.1.1", "10.0.0.9").udp(5, 6)), "passed");
  EXPECT_EQ(fate(plain), "passed");
}

TEST_F(Acl, AnExtendedRulePermitsAPortOfWhatAnotherDenies) {
  const int32_t in = group(sai_ifp_mac_ipv4_group_create);
  sai_acl_rule_t rule = deny();
  int32_t entry = 0;
  EXPECT_EQ(sai_acl_std_l3_entry_install(0, 1, SAI_ACL_INGRESS, in, &rule, &entry), 0);
  EXPECT_EQ(fate(udp), dropped);
  rule.action = SAI_ACL_PERMIT;
  rule.ip_protocol = 17;
  rule.ip_protocol_mask = 0xFF;
  rule.l4_dst_port = 6;
  rule.l4_dst_port_mask = 0xFFFF;
  EXPECT_EQ(sai_acl_ext_l3_entry_install(0, 1, SAI_ACL_INGRESS, in, &rule, &entry), 0);
  EXPECT_EQ(fate(udp), "passed");
  EXPECT_EQ(fate(Frame(1, 9).tag(10).ip("10.0.0.1", "10.0.0.9").udp(5, 7)), dropped);
  EXPECT_EQ(fate(Frame(1, 9).tag(10).ip("10.0.0.1", "10.0.0.9").tcp(5, 6)), dropped);
}

TEST_F(Acl, ARuleOfBothLayersDeniesAnIp6Destination) {
  EXPECT_EQ(fate(udp6), "passed");
  sai_acl_rule_t rule = deny(SAI_ACL_IPV6);
  std::copy_n(&udp6[18 + 24], 16, rule.dst_ip6);
  std::fill_n(rule.dst_ip6_mask, 16, uint8_t{0xFF});
  int32_t entry = 0;
  const int32_t in = group(sai_ifp_mac_ipv6_group_create);
  EXPECT_EQ(sai_acl_l2_l3_entry_install(0, 1, SAI_ACL_INGRESS, in, &rule, &entry), 0);
  EXPECT_EQ(fate(udp6), dropped);
  EXPECT_EQ(fate(Frame(1, 9).tag(10).ip("2001:db8::1", "2001:db8::8").udp(5, 6)), "passed");
  EXPECT_EQ(fate(udp), "passed");
}

TEST_F(Acl, APermitOpensNoVlanThatThePortIsNotIn) {
  EXPECT_EQ(sai_vlan_create(0, 20), 0);
  sai_acl_rule_t rule = deny();
  rule.action = SAI_ACL_PERMIT;
  int32_t entry = 0;
  EXPECT_EQ(sai_acl_l2_entry_install(0, 1, SAI_ACL_INGRESS, group(sai_ifp_l2_group_create), &rule, &entry), 0);
  EXPECT_EQ(fate(plain), "passed");
  EXPECT_EQ(fate(Frame(1, 9).tag(20).type(0x9000)), "dropped: not a member of the vlan\n");
}

TEST_F(Acl, TheCpuHearsArpThatARuleDenies) {
  sai_acl_rule_t rule = deny();
  int32_t entry = 0;
  EXPECT_EQ(sai_acl_l2_entry_install(0, 1, SAI_ACL_INGRESS, group(sai_ifp_l2_group_create), &rule, &entry), 0);
  EXPECT_EQ(send(1, Frame(1, 0xFF).tag(10).arp(false, "10.0.0.1", "10.0.0.2")),
            "cpu 0x2: 01>all [10] arp 10.0.0.1>10.0.0.2\n" + dropped);
}

TEST_F(Acl, AnEtherTypeIsNoneOfWhatStandsBehindALength) {
  const Bytes arp = Frame(1, 9).tag(10).arp(false, "10.0.0.1", "10.0.0.9");
  const Bytes access_points = Frame(1, 9).tag(10).type(3).bytes({0x08, 0x06, 3});
  EXPECT_EQ(send(1, arp).substr(0, 6), "2: 01>");
  EXPECT_EQ(fate(access_points), "passed");
  sai_acl_rule_t rule = deny();
  rule.ether_type = 0x0806;
  rule.ether_type_mask = 0xFFFF;
  int32_t entry = 0;
  EXPECT_EQ(sai_acl_l2_entry_install(0, 1, SAI_ACL_INGRESS, group(sai_ifp_l2_group_create), &rule, &entry), 0);
  EXPECT_EQ(send(1, arp), "cpu 0x2: 01>09 [10] arp 10.0.0.1>10.0.0.9\n" + dropped);
  EXPECT_EQ(fate(access_points), "passed");
}

// --------------------------------------------------------------------------------------------------- way out ----

TEST_F(Acl, AnL2RuleDeniesADestinationOnTheWayOut) {
  sai_acl_rule_t rule = deny();
  std::copy_n(plain.begin(), 6, rule.dst_mac);
  std::fill_n(rule.dst_mac_mask, 6, uint8_t{0xFF});
  int32_t entry = 0;
  EXPECT_EQ(fate(plain), "passed");
  EXPECT_EQ(sai_acl_l2_entry_install(0, 2, SAI_ACL_EGRESS, group(sai_efp_l2_group_create), &rule, &entry), 0);
  EXPECT_EQ(send(1, plain), "dropped: egress field rule\n");
  EXPECT_EQ(fate(Frame(1, 8).tag(10).type(0x9000)), "passed");
  EXPECT_EQ(sai_vlan_port_add(0, 10, 3, 1), 0);
  EXPECT_EQ(send(1, plain), "3: 01>09 [10] 9000\n") << "the copies for other ports leave";
}

TEST_F(Acl, WhatIsDeniedOnTheWayOutCountsAsDiscarded) {
  constexpr std::size_t out_discards = 13;
  const auto discarded = [] {
    uint64_t values[18];
    EXPECT_EQ(sai_port_mib_read(0, 2, values), 0);
    return values[out_discards];
  };
  sai_acl_rule_t rule = deny();
  int32_t entry = 0;
  EXPECT_EQ(sai_acl_l2_entry_install(0, 2, SAI_ACL_EGRESS, group(sai_efp_l2_group_create), &rule, &entry), 0);
  const uint64_t before = discarded();
  send(1, plain);
  EXPECT_EQ(discarded(), before + 1);
}

TEST_F(Acl, AnIp4RuleDeniesOnTheWayOut) {
  sai_acl_rule_t rule = deny();
  rule.dst_ip = inet_addr("10.0.0.9");
  rule.dst_ip_mask = 0xFFFFFFFF;
  int32_t entry = 0;
  const int32_t out = group(sai_efp_mac_ipv4_group_create);
  EXPECT_EQ(sai_acl_ext_l3_entry_install(0, 2, SAI_ACL_EGRESS, out, &rule, &entry), 0);
  EXPECT_EQ(send(1, udp), "dropped: egress field rule\n");
  EXPECT_EQ(fate(Frame(1, 9).tag(10).ip("10.0.0.1", "10.0.0.8").udp(5, 6)), "passed");
}

TEST_F(Acl, EveryKindOfIp4RuleDeniesOnTheWayOut) {
  const int32_t out = group(sai_efp_mac_ipv4_group_create);
  for (const auto install : {sai_acl_std_l3_entry_install, sai_acl_ext_l3_entry_install, sai_acl_l2_l3_entry_install}) {
    const sai_acl_rule_t rule = deny();
    int32_t entry = 0;
    EXPECT_EQ(fate(udp), "passed");
    EXPECT_EQ(install(0, 2, SAI_ACL_EGRESS, out, &rule, &entry), 0);
    EXPECT_EQ(send(1, udp), "dropped: egress field rule\n");
    EXPECT_EQ(sai_fp_entry_destroy(0, entry), 0);
  }
}

TEST_F(Acl, AnIp6RuleDeniesOnTheWayOut) {
  sai_acl_rule_t rule = deny(SAI_ACL_IPV6);
  rule.tos_mode = SAI_ACL_DSCP;
  rule.tos_value = 46;
  int32_t entry = 0;
  const int32_t out = group(sai_efp_mac_ipv6_group_create);
  EXPECT_EQ(sai_acl_ext_l3_entry_install(0, 2, SAI_ACL_EGRESS, out, &rule, &entry), 0);
  EXPECT_EQ(fate(udp6), "passed");
  EXPECT_EQ(send(1, Frame(1, 9).tag(10).ip("2001:db8::1", "2001:db8::9", 64, 46 << 2).udp(5, 6)),
            "dropped: egress field rule\n");
}

}  // namespace
