// Which frames the field processor catches by each rule, and which it does not.
#include <arpa/inet.h>
#include <swsdk/field.h>

#include <algorithm>
#include <array>
#include <string>

#include "support/scene.h"

namespace {

constexpr uint16_t ip4 = 0x0800;
constexpr uint16_t ip6 = 0x86DD;
constexpr uint16_t arp = 0x0806;
constexpr uint8_t tcp = 6;
constexpr uint8_t udp = 17;
constexpr uint8_t icmp6 = 58;

constexpr uint8_t own_mac[] = {0x02, 0x0A, 0x00, 0xC1, 0x0D, 0x0E};
using Ip6 = std::array<uint8_t, 16>;
constexpr Ip6 some_ip6 = {0x20, 0x01, 0x0D, 0xB8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x01};
constexpr Ip6 other_ip6 = {0x20, 0x01, 0x0D, 0xB8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x02};

/// The fields that the rules look at; the rest of a swsdk_frame stays 0.
struct Frame {
  int in_port = 0;
  int out_port = 0;
  std::array<uint8_t, 6> src_mac{};
  std::array<uint8_t, 6> dst_mac{};
  int outer_tag = 0;
  uint16_t ether_type = 0;
  uint32_t src_ip = 0;
  Ip6 src_ip6{};
  Ip6 dst_ip6{};
  uint8_t ip_protocol = 0;
  uint8_t tos = 0;
  uint8_t ttl = 0;
  uint16_t l4_src_port = 0;
  uint16_t l4_dst_port = 0;
  uint8_t icmp_type = 0;

  operator swsdk_frame() const {
    swsdk_frame frame{};
    frame.in_port = in_port;
    frame.out_port = out_port;
    std::copy(src_mac.begin(), src_mac.end(), frame.src_mac);
    std::copy(dst_mac.begin(), dst_mac.end(), frame.dst_mac);
    frame.outer_tag = static_cast<uint16_t>(outer_tag);
    frame.ether_type = ether_type;
    frame.src_ip = src_ip;
    std::copy(src_ip6.begin(), src_ip6.end(), frame.src_ip6);
    std::copy(dst_ip6.begin(), dst_ip6.end(), frame.dst_ip6);
    frame.ip_protocol = ip_protocol;
    frame.tos = tos;
    frame.ttl = ttl;
    frame.l4_src_port = l4_src_port;
    frame.l4_dst_port = l4_dst_port;
    frame.icmp_type = icmp_type;
    return frame;
  }
};

struct Named {
  const char* name;
  Frame frame;
};

/// What crosses a switch on port 3, in VLAN 10.
const Named traffic[] = {
    {"TCP", {.ether_type = ip4, .ip_protocol = tcp, .ttl = 64, .l4_src_port = 67, .l4_dst_port = 67}},
    {"TCP over IPv6", {.ether_type = ip6, .ip_protocol = tcp, .ttl = 64, .l4_src_port = 547, .l4_dst_port = 547}},
    {"OSPF", {.ether_type = ip4, .ip_protocol = 89, .ttl = 1}},
    {"OSPF from afar", {.ether_type = ip4, .ip_protocol = 89, .ttl = 64}},
    {"OSPFv3", {.ether_type = ip6, .ip_protocol = 89, .ttl = 1}},
    {"DHCP request", {.ether_type = ip4, .ip_protocol = udp, .ttl = 64, .l4_src_port = 68, .l4_dst_port = 67}},
    {"DHCP response", {.ether_type = ip4, .ip_protocol = udp, .ttl = 64, .l4_src_port = 67, .l4_dst_port = 68}},
    {"DHCPv6 request", {.ether_type = ip6, .ip_protocol = udp, .ttl = 1, .l4_src_port = 546, .l4_dst_port = 547}},
    {"DHCPv6 response", {.ether_type = ip6, .ip_protocol = udp, .ttl = 1, .l4_src_port = 547, .l4_dst_port = 546}},
    {"IGMP", {.dst_mac = {0x01, 0x00, 0x5E}, .ether_type = ip4, .ip_protocol = 2, .ttl = 1}},
    {"MLD query", {.dst_mac = {0x33, 0x33}, .ether_type = ip6, .ip_protocol = icmp6, .icmp_type = 130}},
    {"MLD report", {.dst_mac = {0x33, 0x33}, .ether_type = ip6, .ip_protocol = icmp6, .icmp_type = 131}},
    {"MLD done", {.dst_mac = {0x33, 0x33}, .ether_type = ip6, .ip_protocol = icmp6, .icmp_type = 132}},
    {"MLDv2 report", {.dst_mac = {0x33, 0x33}, .ether_type = ip6, .ip_protocol = icmp6, .icmp_type = 143}},
    {"MLD query to one", {.dst_mac = {0x02}, .ether_type = ip6, .ip_protocol = icmp6, .icmp_type = 130}},
    {"router solicitation", {.dst_mac = {0x33, 0x33}, .ether_type = ip6, .ip_protocol = icmp6, .icmp_type = 133}},
    {"ping", {.ether_type = ip4, .ip_protocol = 1, .ttl = 64, .icmp_type = 8}},
    {"ARP request", {.dst_mac = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}, .ether_type = arp}},
    {"ARP to us", {.dst_mac = {0x02, 0x0A, 0x00, 0xC1, 0x0D, 0x0E}, .ether_type = arp}},
    {"ARP to another", {.dst_mac = {0x02, 0x0A, 0x00, 0xC1, 0x0D, 0x0F}, .ether_type = arp}},
    {"loop", {.src_mac = {0x02, 0x0A, 0x00, 0xC1, 0x0D, 0x0E}, .ether_type = 0x9088}},
    {"another's loop", {.src_mac = {0x02, 0x0A, 0x00, 0xC1, 0x0D, 0x0F}, .ether_type = 0x9088}},
    {"LLDP", {.ether_type = 0x88CC}},
};

class Catches : public support::Scene {
 protected:
  static swsdk_verdict classify(const swsdk_frame& frame, int stage = SWSDK_FIELD_INGRESS) {
    swsdk_verdict verdict;
    EXPECT_EQ(swsdk_field_classify(unit, stage, &frame, &verdict), 0);
    return verdict;
  }

  /// The traffic that is caught on a port and in a VLAN, by name, and what is done to all of it.
  static std::string caught(int port, int vlan) {
    std::string names;
    std::string fate;
    for (const Named& named : traffic) {
      Frame frame = named.frame;
      frame.in_port = port;
      frame.outer_tag = vlan;
      const swsdk_verdict verdict = classify(frame);
      if (verdict.hits == 0) continue;
      names += (names.empty() ? "" : ", ") + std::string(named.name);
      const std::string done = fate_of(verdict);
      EXPECT_TRUE(fate.empty() || fate == done) << named.name << ": " << done;
      fate = done;
    }
    return names.empty() ? "nothing" : names + ": " + fate;
  }

  static std::string fate_of(const swsdk_verdict& verdict) {
    std::string fate;
    if (verdict.priority >= 0) fate += "priority " + std::to_string(verdict.priority) + ' ';
    if (verdict.copied_to_cpu) fate += "copied ";
    if (verdict.redirect_port >= 0) fate += "to port " + std::to_string(verdict.redirect_port) + ' ';
    if (verdict.dropped) fate += "dropped ";
    if (verdict.drop_cancelled) fate += "permitted ";
    if (verdict.red_dropped) fate += "dropped if red ";
    return fate;
  }

  template <class Create>
  int32_t made(Create create) {
    int32_t id = -1;
    EXPECT_EQ(create(unit, &id), 0);
    return id;
  }

  int32_t entry = 0;
};

TEST_F(Catches, OspfOfNeighbors) {
  ASSERT_EQ(sai_fp_ospf_ttl1_set(unit, 3, made(sai_system_ipv4_fp_create), &entry), 0);
  EXPECT_EQ(caught(3, 10), "OSPF: priority 7 copied ");
  EXPECT_EQ(caught(4, 10), "nothing");
  EXPECT_EQ(swsdk_field_hits(unit, entry), 1);
  EXPECT_EQ(sai_fp_entry_destroy(unit, entry), 0);
  EXPECT_EQ(caught(3, 10), "nothing");
}

TEST_F(Catches, TheSwitchsOwnLoopFrame) {
  ASSERT_EQ(sai_fp_loopd_packet_to_cpu_set(unit, 3, own_mac, made(sai_system_ipv4_fp_create), &entry), 0);
  EXPECT_EQ(caught(3, 10), "loop: priority 7 to port 0 ");
  EXPECT_EQ(caught(4, 10), "nothing");
}

TEST_F(Catches, DhcpRequestsOfAVlan) {
  ASSERT_EQ(sai_fp_dhcp_requeset_to_cpu_set(unit, 10, made(sai_system_ipv4_fp_create), &entry), 0);
  EXPECT_EQ(caught(3, 10), "DHCP request: priority 6 to port 0 ");
  EXPECT_EQ(caught(4, 10 | 5 << 13), "DHCP request: priority 6 to port 0 ");
  EXPECT_EQ(caught(3, 11), "nothing");
}

TEST_F(Catches, DhcpResponsesOfAVlan) {
  ASSERT_EQ(sai_fp_dhcp_response_to_cpu_set(unit, 10, made(sai_system_ipv4_fp_create), &entry), 0);
  EXPECT_EQ(caught(3, 10), "DHCP response: priority 6 to port 0 ");
  EXPECT_EQ(caught(3, 11), "nothing");
}

TEST_F(Catches, Dhcp6RequestsOfAVlan) {
  ASSERT_EQ(sai_fp_dhcpv6_req_to_cpu_set(unit, 10, made(sai_system_ipv6_fp_create), &entry), 0);
  EXPECT_EQ(caught(3, 10), "DHCPv6 request: priority 7 to port 0 ");
  EXPECT_EQ(caught(3, 11), "nothing");
}

TEST_F(Catches, Igmp) {
  ASSERT_EQ(sai_fp_igmp_packet_to_cpu(unit, 3, made(sai_system_ipv4_fp_create), &entry), 0);
  EXPECT_EQ(caught(3, 10), "IGMP: priority 7 to port 0 ");
  EXPECT_EQ(caught(4, 10), "nothing");
}

TEST_F(Catches, TheFourKindsOfMld) {
  ASSERT_EQ(sai_fp_mld_packet_to_cpu(unit, 3, made(sai_system_ipv6_fp_create), &entry), 0);
  EXPECT_EQ(caught(3, 10), "MLD query, MLD report, MLD done, MLDv2 report: priority 1 to port 0 ");
  EXPECT_EQ(caught(4, 10), "nothing");
}

TEST_F(Catches, NoMldInAGroupThatCannotTellIcmpTypes) {
  EXPECT_EQ(sai_fp_mld_packet_to_cpu(unit, 3, made(sai_fp_mld_group_create), &entry), SAI_E_PARAM);
  EXPECT_EQ(caught(3, 10), "nothing");
}

TEST_F(Catches, Arp) {
  const int32_t group = made(sai_system_ipv4_fp_create);
  ASSERT_EQ(sai_fp_arp_packet_vlan_qualify_set(unit, 1, group, &entry, own_mac), 0);
  ASSERT_EQ(sai_fp_arp_packet_cpu_qualify_set(unit, 2, group, &entry), 0);
  ASSERT_EQ(sai_fp_arp_packet_port_qualify_set(unit, 3, group, &entry, 9), 0);
  EXPECT_EQ(caught(1, 10), "ARP to us: priority 7 to port 0 ");
  EXPECT_EQ(caught(2, 10), "ARP request: priority 7 to port 0 ");
  EXPECT_EQ(caught(3, 10), "ARP request: priority 7 to port 9 ");
  EXPECT_EQ(caught(4, 10), "nothing");
}

TEST_F(Catches, ExcludedMulticastOnItsWayOut) {
  const int32_t group = made(sai_fp_mld_exclude_group_create);
  ASSERT_EQ(sai_fp_mld_packet_exclude_filter_set(unit, 3, group, &entry, 0, some_ip6.data(), other_ip6.data()), 0);
  Frame frame{.out_port = 3, .ether_type = ip6, .src_ip6 = other_ip6, .dst_ip6 = some_ip6};
  EXPECT_EQ(fate_of(classify(frame, SWSDK_FIELD_EGRESS)), "dropped ");
  frame.out_port = 4;
  EXPECT_EQ(classify(frame, SWSDK_FIELD_EGRESS).hits, 0);
  frame.out_port = 3;
  frame.src_ip6 = some_ip6;
  EXPECT_EQ(classify(frame, SWSDK_FIELD_EGRESS).hits, 0);
}

TEST_F(Catches, FramesOfAVirtualPortOnceItsEntryIsComplete) {
  const int32_t group = made(sai_fp_vport_group_create);
  const Frame frame{.out_port = 3, .outer_tag = 10};
  ASSERT_EQ(sai_fp_vport_qualify_set(unit, 3, group, &entry, 10), 0);
  EXPECT_EQ(classify(frame, SWSDK_FIELD_EGRESS).hits, 0);
  ASSERT_EQ(sai_fp_vport_qualify_action(unit, group, entry), 0);
  EXPECT_EQ(fate_of(classify(frame, SWSDK_FIELD_EGRESS)), "dropped if red ");
  EXPECT_EQ(classify(Frame{.out_port = 4, .outer_tag = 10}, SWSDK_FIELD_EGRESS).hits, 0);
  EXPECT_EQ(classify(Frame{.out_port = 3, .outer_tag = 11}, SWSDK_FIELD_EGRESS).hits, 0);
  // its mask is all ones, so the tag's priority counts
  EXPECT_EQ(classify(Frame{.out_port = 3, .outer_tag = 10 | 1 << 13}, SWSDK_FIELD_EGRESS).hits, 0);
}

TEST_F(Catches, AllIp4OfAGuardedPortButBoundSources) {
  const int32_t group = made(sai_ipsg_init);
  int32_t guard = 0;
  int32_t binding = 0;
  ASSERT_EQ(sai_ipsg_verify_config(group, 10, 0, 3, &guard), 0);
  ASSERT_EQ(sai_ipsg_parameter_config(group, inet_addr("10.0.0.1"), 0xFFFFFFFF, 10, 0, 3, &binding), 0);
  const auto fate = [](int port, const char* source) {
    return fate_of(
        classify(Frame{.in_port = port, .outer_tag = 10, .ether_type = ip4, .src_ip = ntohl(inet_addr(source))}));
  };
  EXPECT_EQ(fate(3, "10.0.0.1"), "permitted ");
  EXPECT_EQ(fate(3, "10.0.0.2"), "dropped ");
  EXPECT_EQ(fate(4, "10.0.0.2"), "");
  EXPECT_EQ(classify(Frame{.in_port = 3, .outer_tag = 10, .ether_type = ip6}).hits, 0);
  EXPECT_EQ(classify(Frame{.in_port = 3, .outer_tag = 11, .ether_type = ip4}).hits, 0);

  ASSERT_EQ(sai_ipsg_parameter_config(group, 0, 0, 0, 0, 4, &binding), 0);
  ASSERT_EQ(sai_ipsg_verify_config(group, 0, 0, 4, &guard), 0);
  EXPECT_EQ(fate(3, "10.0.0.2"), "");
  EXPECT_EQ(fate(4, "10.0.0.1"), "permitted ");
  EXPECT_EQ(fate(4, "10.0.0.2"), "dropped ");
}

TEST_F(Catches, OnEveryVlanByABindingOfVlanZeroAndOnVlanZeroAloneByItsGuard) {
  const auto fate = [](int vlan, const char* source = "10.0.0.1") {
    return fate_of(
        classify(Frame{.in_port = 3, .outer_tag = vlan, .ether_type = ip4, .src_ip = ntohl(inet_addr(source))}));
  };
  const int32_t group = made(sai_ipsg_init);
  ASSERT_EQ(sai_ipsg_verify_config(group, 0, 0, 3, &entry), 0);
  EXPECT_EQ(fate(0), "dropped ");
  EXPECT_EQ(fate(5 << 13), "dropped ") << "a priority tag";
  EXPECT_EQ(fate(1), "");
  EXPECT_EQ(fate(4095), "");

  int32_t binding = 0;
  ASSERT_EQ(sai_ipsg_parameter_config(group, inet_addr("10.0.0.1"), 0xFFFFFFFF, 0, 0, 3, &binding), 0);
  for (const int vlan : {0, 1, 10, 4095}) EXPECT_EQ(fate(vlan), "permitted ") << vlan;
  EXPECT_EQ(fate(0, "10.0.0.2"), "dropped ");
  EXPECT_EQ(fate(10, "10.0.0.2"), "");
}

TEST_F(Catches, EverySourceByABindingOfNone) {
  int32_t binding = 0;
  ASSERT_EQ(sai_ipsg_parameter_config(made(sai_ipsg_init), 0, 0xFFFFFFFF, 10, 0, 3, &binding), 0);
  Frame frame{.in_port = 3, .outer_tag = 10, .ether_type = ip4};
  for (const uint32_t source : {0U, 0x0A000001U, 0xFFFFFFFFU}) {
    frame.src_ip = source;
    EXPECT_EQ(fate_of(classify(frame)), "permitted ") << source;
  }
  frame.ether_type = ip6;
  EXPECT_EQ(classify(frame).hits, 0);
  frame = {.in_port = 3, .outer_tag = 11, .ether_type = ip4};
  EXPECT_EQ(classify(frame).hits, 0);
}

TEST_F(Catches, WhatAnL2RuleDenies) {
  const int32_t group = made(sai_ifp_l2_group_create);
  sai_acl_rule_t rule{};
  std::copy_n(own_mac, 6, rule.src_mac);
  std::fill_n(rule.src_mac_mask, 6, uint8_t{0xFF});
  ASSERT_EQ(sai_acl_l2_entry_install(unit, 3, SAI_ACL_INGRESS, group, &rule, &entry), 0);
  EXPECT_EQ(caught(3, 10), "loop: dropped ");
  EXPECT_EQ(caught(4, 10), "nothing");
  // a VLAN without a priority is its own mask
  rule = {};
  rule.vlan_id = 10;
  ASSERT_EQ(sai_acl_l2_entry_install(unit, 4, SAI_ACL_INGRESS, group, &rule, &entry), 0);
  EXPECT_NE(caught(4, 10), "nothing");
  EXPECT_NE(caught(4, 11), "nothing");
  EXPECT_EQ(caught(4, 9), "nothing");
}

TEST_F(Catches, WhatAnL3RulePermitsAndTheLaterRuleFirst) {
  const int32_t group = made(sai_ifp_mac_ipv4_group_create);
  sai_acl_rule_t rule{};
  rule.ip_type = SAI_ACL_IPV4;
  rule.ip_protocol = -1;
  ASSERT_EQ(sai_acl_std_l3_entry_install(unit, 3, SAI_ACL_INGRESS, group, &rule, &entry), 0);
  rule.action = SAI_ACL_PERMIT;
  rule.ip_protocol = tcp;
  rule.ip_protocol_mask = 0xFF;
  rule.l4_dst_port = 67;
  rule.l4_dst_port_mask = 0xFFFF;
  ASSERT_EQ(sai_acl_ext_l3_entry_install(unit, 3, SAI_ACL_INGRESS, group, &rule, &entry), 0);
  const auto fate = [](const Frame& frame) { return fate_of(classify(frame)); };
  EXPECT_EQ(fate({.in_port = 3, .ether_type = ip4, .ip_protocol = tcp, .l4_dst_port = 67}), "permitted ");
  EXPECT_EQ(fate({.in_port = 3, .ether_type = ip4, .ip_protocol = tcp, .l4_dst_port = 68}), "dropped ");
  EXPECT_EQ(fate({.in_port = 3, .ether_type = ip4, .ip_protocol = udp, .l4_dst_port = 67}), "dropped ");
  EXPECT_EQ(fate({.in_port = 3, .ether_type = arp}), "");
  EXPECT_EQ(fate({.in_port = 4, .ether_type = ip4, .ip_protocol = tcp, .l4_dst_port = 68}), "");
}

TEST_F(Catches, WhatAnIp6RuleDeniesOnTheWayOut) {
  sai_acl_rule_t rule{};
  rule.ip_type = SAI_ACL_IPV6;
  rule.ip_protocol = -1;
  rule.tos_mode = SAI_ACL_DSCP;
  rule.tos_value = 46;
  std::copy(some_ip6.begin(), some_ip6.end(), rule.dst_ip6);
  std::fill_n(rule.dst_ip6_mask, 16, uint8_t{0xFF});
  const int32_t group = made(sai_efp_mac_ipv6_group_create);
  ASSERT_EQ(sai_acl_l2_l3_entry_install(unit, 3, SAI_ACL_EGRESS, group, &rule, &entry), 0);
  Frame frame{.out_port = 3, .ether_type = ip6, .tos = 46 << 2};
  EXPECT_EQ(classify(frame, SWSDK_FIELD_EGRESS).hits, 0);
  frame.dst_ip6 = some_ip6;
  EXPECT_EQ(fate_of(classify(frame, SWSDK_FIELD_EGRESS)), "dropped ");
  frame.tos |= 1;  // the rule compares the whole byte
  EXPECT_EQ(classify(frame, SWSDK_FIELD_EGRESS).hits, 0);
}

TEST_F(Catches, EveryAddressByAnL3RuleInAGroupThatCannotMatchIts) {
  const int32_t group = made(sai_ifp_mac_ipv4_group_create);
  sai_acl_rule_t rule{};
  rule.ip_type = SAI_ACL_IPV6;
  rule.ip_protocol = -1;
  std::copy(some_ip6.begin(), some_ip6.end(), rule.src_ip6);
  std::fill_n(rule.src_ip6_mask, 16, uint8_t{0xFF});
  const auto denied = [](const Ip6& source) {
    return fate_of(classify(Frame{.in_port = 3, .ether_type = ip6, .src_ip6 = source})) == "dropped ";
  };
  for (const auto install : {sai_acl_std_l3_entry_install, sai_acl_ext_l3_entry_install, sai_acl_l2_l3_entry_install}) {
    const std::string seen = observe([&] { return install(unit, 3, SAI_ACL_INGRESS, group, &rule, &entry); });
    EXPECT_NE(seen.find("bcm_field_qualify_SrcIp6(0, " + std::to_string(entry) + ", "), std::string::npos) << seen;
    EXPECT_EQ(seen.find("log: "), std::string::npos) << seen;
    EXPECT_TRUE(seen.ends_with("returned 0\n")) << seen;
    EXPECT_TRUE(denied(some_ip6) && denied(other_ip6));
    ASSERT_EQ(sai_fp_entry_destroy(unit, entry), 0);
  }
  const int32_t fitting = made(sai_ifp_mac_ipv6_group_create);
  ASSERT_EQ(sai_acl_std_l3_entry_install(unit, 3, SAI_ACL_INGRESS, fitting, &rule, &entry), 0);
  EXPECT_TRUE(denied(some_ip6));
  EXPECT_FALSE(denied(other_ip6));
}

TEST_F(Catches, NothingAfterAHalfBuiltEntryIsDestroyed) {
  const int32_t group = made(sai_ifp_l2_group_create);
  const sai_acl_rule_t rule{};
  EXPECT_NE(sai_acl_l2_entry_install(unit, 3, 2, group, &rule, &entry), 0);
  EXPECT_EQ(caught(3, 10), "nothing");
  EXPECT_EQ(sai_fp_entry_destroy(unit, entry), 0);
  EXPECT_EQ(sai_fp_entry_destroy(unit, entry), SAI_E_NOT_FOUND);
}

}  // namespace
