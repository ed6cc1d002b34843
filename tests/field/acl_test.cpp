#include <arpa/inet.h>
#include <bcm/error.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>

#include "field/steps.h"

namespace {

using field::Step;
using field::Steps;

using Install = int32_t (*)(int32_t unit, int32_t port, int32_t direction, int32_t group, const sai_acl_rule_t* rule,
                            int32_t* entry);

uint32_t network_order(const char* address) { return inet_addr(address); }

/// A rule in which no two fields are the same.
sai_acl_rule_t some_rule(uint32_t ip_type) {
  sai_acl_rule_t rule{};
  rule.unread0 = 0xFFFFFFFF;
  rule.action = SAI_ACL_PERMIT;
  rule.ip_type = ip_type;
  constexpr uint8_t macs[4][6] = {
      {2, 0, 0, 0, 0, 1}, {2, 0, 0, 0, 0, 2}, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0}, {0xFF, 0xFF, 0xFF, 0xFF, 0, 0}};
  std::copy(std::begin(macs[0]), std::end(macs[0]), rule.src_mac);
  std::copy(std::begin(macs[1]), std::end(macs[1]), rule.dst_mac);
  std::copy(std::begin(macs[2]), std::end(macs[2]), rule.src_mac_mask);
  std::copy(std::begin(macs[3]), std::end(macs[3]), rule.dst_mac_mask);
  rule.ether_type = 0x0806;
  rule.ether_type_mask = 0xFFF0;
  rule.vlan_id = 10;
  rule.vlan_mask = 0xFF;
  rule.vlan_pri = 5;
  rule.vlan_pri_mask = 7;
  rule.src_ip = network_order("10.1.2.3");
  rule.dst_ip = network_order("10.4.5.6");
  rule.src_ip_mask = network_order("255.255.255.0");
  rule.dst_ip_mask = network_order("255.255.0.0");
  const std::pair<const char*, uint8_t*> ip6[] = {{"2001:db8::1", rule.src_ip6},
                                                  {"2001:db8::2", rule.dst_ip6},
                                                  {"ffff:ffff::", rule.src_ip6_mask},
                                                  {"ffff::", rule.dst_ip6_mask}};
  for (const auto& [text, address] : ip6) inet_pton(AF_INET6, text, address);
  std::fill(std::begin(rule.unread1), std::end(rule.unread1), uint8_t{0xFF});
  rule.l4_src_port = 1000;
  rule.l4_dst_port = 80;
  rule.l4_src_port_mask = 0xFFF8;
  rule.l4_dst_port_mask = 0xFFFF;
  rule.ip_protocol = 6;
  rule.ip_protocol_mask = 0x3F;
  rule.unread2 = 0xFFFFFFFF;
  rule.tos_mode = SAI_ACL_DSCP;
  rule.tos_value = 46;
  return rule;
}

constexpr const char* layer2 = "sai_acl_l2_entry_install";
constexpr const char* standard = "sai_acl_std_l3_entry_install";
constexpr const char* extended = "sai_acl_ext_l3_entry_install";
constexpr const char* both = "sai_acl_l2_l3_entry_install";

/// A step whose message names its call, or what is `named` instead.
Step step(const std::string& installer, const std::string& call, std::string named = "") {
  if (named.empty()) named = call.substr(0, call.find('('));
  return {call, installer + ' ' + named + " entry $id failed"};
}

Step ignored(const std::string& call) { return {call, ""}; }

/// All steps of an installer on input port 3, around those that set it apart.
Steps steps_of(const std::string& name, const Steps& own,
               const std::string& port = "bcm_field_qualify_InPort(0, $id, 3, -1)",
               const std::string& action = "bcm_field_action_add(0, $id, 40, 0, 0)") {
  Steps steps{{"bcm_field_entry_create(0, $group, &$id)",
               name + " group $group bcm_field_entry_create_id 0xffffffff(-1) failed"},
              step(name, "bcm_field_qualify_clear(0, $id)"),
              step(name, port, "bcm_field_qualify_InPort")};
  steps.insert(steps.end(), own.begin(), own.end());
  steps.push_back(step(name, "bcm_field_entry_prio_set(0, $id, $id)"));
  steps.push_back(step(name, action));
  steps.push_back(step(name, "bcm_field_entry_install(0, $id)"));
  return steps;
}

class AclRules : public field::Scene {
 protected:
  void expect_entry(Install install, const Steps& steps, const sai_acl_rule_t& rule,
                    int32_t direction = SAI_ACL_INGRESS) {
    expect_steps(steps, Told::at_once,
                 [=, this](int32_t* entry) { return install(unit, 3, direction, group, &rule, entry); });
  }

  /// The first call of `function` while a rule is installed, without its first argument, or "" without one.
  std::string call_of(const std::string& function, Install install, const sai_acl_rule_t& rule) {
    int32_t entry = untouched;
    const std::string seen = observe([&] { return install(unit, 3, SAI_ACL_INGRESS, group, &rule, &entry); });
    EXPECT_TRUE(seen.ends_with("returned 0\n")) << seen;
    const std::string begin = function + "(0, " + std::to_string(entry) + ", ";
    const size_t at = seen.find(begin);
    return at == std::string::npos ? "" : seen.substr(at + begin.size(), seen.find(')', at) - at - begin.size());
  }
};

Steps l2_steps(const std::string& name) {
  return {
      step(name, "bcm_field_qualify_SrcMac(0, $id, 02:00:00:00:00:01, ff:ff:ff:ff:ff:00)"),
      step(name, "bcm_field_qualify_DstMac(0, $id, 02:00:00:00:00:02, ff:ff:ff:ff:00:00)"),
      step(name, "bcm_field_qualify_OuterVlan(0, $id, 40970, 57599)"),  // 5 << 13 | 10 and 7 << 13 | 0xff
      step(name, "bcm_field_qualify_EtherType(0, $id, 0x806, 0xfff0)"),
  };
}

TEST_F(AclRules, L2OnIngress) {
  use_group(sai_ifp_l2_group_create);
  expect_entry(sai_acl_l2_entry_install, steps_of(layer2, l2_steps(layer2)), some_rule(0));
}

TEST_F(AclRules, L2OnEgressMatchesTheOutputPortAndWordsItAsTheInputPort) {
  use_group(sai_efp_l2_group_create);
  expect_entry(sai_acl_l2_entry_install, steps_of(layer2, l2_steps(layer2), "bcm_field_qualify_OutPort(0, $id, 3, -1)"),
               some_rule(0), SAI_ACL_EGRESS);
}

TEST_F(AclRules, StandardIpv4) {
  use_group(sai_ifp_mac_ipv4_group_create);
  expect_entry(sai_acl_std_l3_entry_install,
               steps_of(standard, {step(standard, "bcm_field_qualify_IpType(0, $id, 11)"),
                                   ignored("bcm_field_qualify_SrcIp(0, $id, 10.1.2.3, 255.255.255.0)")}),
               some_rule(SAI_ACL_IPV4));
}

TEST_F(AclRules, StandardIpv6) {
  use_group(sai_ifp_mac_ipv6_group_create);
  expect_entry(sai_acl_std_l3_entry_install,
               steps_of(standard, {step(standard, "bcm_field_qualify_IpType(0, $id, 10)"),
                                   ignored("bcm_field_qualify_SrcIp6(0, $id, 2001:db8::1, ffff:ffff::)")}),
               some_rule(SAI_ACL_IPV6));
}

TEST_F(AclRules, ExtendedIpv4) {
  use_group(sai_ifp_mac_ipv4_group_create);
  expect_entry(sai_acl_ext_l3_entry_install,
               steps_of(extended, {step(extended, "bcm_field_qualify_IpType(0, $id, 11)"),
                                   step(extended, "bcm_field_qualify_IpProtocol(0, $id, 6, 63)"),
                                   ignored("bcm_field_qualify_DSCP(0, $id, 184, 255)"),
                                   ignored("bcm_field_qualify_SrcIp(0, $id, 10.1.2.3, 255.255.255.0)"),
                                   ignored("bcm_field_qualify_DstIp(0, $id, 10.4.5.6, 255.255.0.0)"),
                                   step(extended, "bcm_field_qualify_L4SrcPort(0, $id, 1000, 65528)"),
                                   step(extended, "bcm_field_qualify_L4DstPort(0, $id, 80, 65535)")}),
               some_rule(SAI_ACL_IPV4));
}

TEST_F(AclRules, ExtendedIpv6OnEgress) {
  use_group(sai_efp_mac_ipv6_group_create);
  expect_entry(sai_acl_ext_l3_entry_install,
               steps_of(extended,
                        {step(extended, "bcm_field_qualify_IpType(0, $id, 10)"),
                         step(extended, "bcm_field_qualify_IpProtocol(0, $id, 6, 63)"),
                         ignored("bcm_field_qualify_DSCP(0, $id, 184, 255)"),
                         ignored("bcm_field_qualify_SrcIp6(0, $id, 2001:db8::1, ffff:ffff::)"),
                         ignored("bcm_field_qualify_DstIp6(0, $id, 2001:db8::2, ffff::)"),
                         step(extended, "bcm_field_qualify_L4SrcPort(0, $id, 1000, 65528)"),
                         step(extended, "bcm_field_qualify_L4DstPort(0, $id, 80, 65535)")},
                        "bcm_field_qualify_OutPort(0, $id, 3, -1)"),
               some_rule(SAI_ACL_IPV6), SAI_ACL_EGRESS);
}

TEST_F(AclRules, L2AndL3) {
  use_group(sai_ifp_mac_ipv4_group_create);
  Steps own = l2_steps(both);
  own.insert(own.begin(), step(both, "bcm_field_qualify_IpType(0, $id, 11)"));
  for (const Step& next :
       {step(both, "bcm_field_qualify_IpProtocol(0, $id, 6, 63)"), ignored("bcm_field_qualify_DSCP(0, $id, 184, 255)"),
        ignored("bcm_field_qualify_SrcIp(0, $id, 10.1.2.3, 255.255.255.0)"),
        ignored("bcm_field_qualify_DstIp(0, $id, 10.4.5.6, 255.255.0.0)"),
        step(both, "bcm_field_qualify_L4SrcPort(0, $id, 1000, 65528)"),
        step(both, "bcm_field_qualify_L4DstPort(0, $id, 80, 65535)")})
    own.push_back(next);
  expect_entry(sai_acl_l2_l3_entry_install, steps_of(both, own), some_rule(SAI_ACL_IPV4));
}

TEST_F(AclRules, AnyActionButPermitDenies) {
  use_group(sai_ifp_l2_group_create);
  for (const auto& [action, passed] : {std::pair{1, "40, 0, 0"}, {0, "39, 0, 0"}, {2, "39, 0, 0"}, {-1, "39, 0, 0"}}) {
    sai_acl_rule_t rule = some_rule(0);
    rule.action = static_cast<int8_t>(action);
    EXPECT_EQ(call_of("bcm_field_action_add", sai_acl_l2_entry_install, rule), passed);
  }
}

TEST_F(AclRules, AVlanWithoutAPriorityMaskIsItsOwnMask) {
  use_group(sai_ifp_l2_group_create);
  sai_acl_rule_t rule = some_rule(0);
  rule.vlan_pri_mask = 0;
  const auto vlan = [&] { return call_of("bcm_field_qualify_OuterVlan", sai_acl_l2_entry_install, rule); };
  EXPECT_EQ(vlan(), "10, 10");
  rule.vlan_id = 0;
  EXPECT_EQ(vlan(), "0, 0");
  rule.vlan_id = 0xF123;
  EXPECT_EQ(vlan(), "291, 291");
}

TEST_F(AclRules, AVlanWithAPriorityMaskIsCutToSixteenBits) {
  use_group(sai_ifp_l2_group_create);
  sai_acl_rule_t rule = some_rule(0);
  rule.vlan_id = 0xF00A;
  rule.vlan_mask = 0xFFFF;
  rule.vlan_pri = 0xF9;
  rule.vlan_pri_mask = 0xFF;
  const std::string data = std::to_string(1 << 13 | 10);
  const std::string mask = std::to_string(7 << 13 | 0xFFF);
  EXPECT_EQ(call_of("bcm_field_qualify_OuterVlan", sai_acl_l2_entry_install, rule), data + ", " + mask);
}

TEST_F(AclRules, AProtocolIsComparedUnlessItIsNegative) {
  use_group(sai_ifp_mac_ipv4_group_create);
  sai_acl_rule_t rule = some_rule(SAI_ACL_IPV4);
  const auto protocol = [&] { return call_of("bcm_field_qualify_IpProtocol", sai_acl_ext_l3_entry_install, rule); };
  rule.ip_protocol = -1;
  EXPECT_EQ(protocol(), "");
  rule.ip_protocol = 0;
  EXPECT_EQ(protocol(), "0, 63");
  rule.ip_protocol = 255;
  rule.ip_protocol_mask = 0;
  EXPECT_EQ(protocol(), "255, 0");
}

TEST_F(AclRules, AnL4PortIsComparedUnlessItIsZero) {
  use_group(sai_ifp_mac_ipv4_group_create);
  sai_acl_rule_t rule = some_rule(SAI_ACL_IPV4);
  rule.l4_src_port = 0;
  EXPECT_EQ(call_of("bcm_field_qualify_L4SrcPort", sai_acl_ext_l3_entry_install, rule), "");
  EXPECT_EQ(call_of("bcm_field_qualify_L4DstPort", sai_acl_ext_l3_entry_install, rule), "80, 65535");
  rule.l4_src_port = 1;
  rule.l4_dst_port = 0;
  EXPECT_EQ(call_of("bcm_field_qualify_L4SrcPort", sai_acl_ext_l3_entry_install, rule), "1, 65528");
  EXPECT_EQ(call_of("bcm_field_qualify_L4DstPort", sai_acl_ext_l3_entry_install, rule), "");
}

TEST_F(AclRules, TypeOfServiceIsShiftedByItsModeAndMaskedByAWholeByte) {
  use_group(sai_ifp_mac_ipv4_group_create);
  const struct {
    uint32_t mode;
    int value;
    const char* tos;
    const char* dscp;
  } rows[] = {
      {SAI_ACL_TOS, 9, "18, 255", ""},
      {SAI_ACL_TOS, 0x1F, "30, 255", ""},
      {SAI_ACL_TOS, -1, "30, 255", ""},
      {SAI_ACL_DSCP, 46, "", "184, 255"},
      {SAI_ACL_DSCP, 0x7F, "", "252, 255"},
      {SAI_ACL_DSCP, -1, "", "252, 255"},
      {SAI_ACL_PRECEDENCE, 5, "", "160, 255"},
      {SAI_ACL_PRECEDENCE, 0x0F, "", "224, 255"},
      {0, 9, "", ""},
      {4, 9, "", ""},
  };
  for (const auto& row : rows) {
    sai_acl_rule_t rule = some_rule(SAI_ACL_IPV4);
    rule.tos_mode = row.mode;
    rule.tos_value = static_cast<int8_t>(row.value);
    EXPECT_EQ(call_of("bcm_field_qualify_Tos", sai_acl_l2_l3_entry_install, rule), row.tos) << row.mode;
    EXPECT_EQ(call_of("bcm_field_qualify_DSCP", sai_acl_l2_l3_entry_install, rule), row.dscp) << row.mode;
  }
}

TEST_F(AclRules, ATypeOfServiceThatFailsIsIgnored) {
  use_group(sai_ifp_mac_ipv4_group_create);
  sai_acl_rule_t rule = some_rule(SAI_ACL_IPV4);
  rule.tos_mode = SAI_ACL_TOS;
  int32_t entry = untouched;
  const std::string seen = observe_failing("bcm_field_qualify_Tos", BCM_E_FULL, [&] {
    return sai_acl_ext_l3_entry_install(unit, 3, SAI_ACL_INGRESS, group, &rule, &entry);
  });
  EXPECT_NE(seen.find(filled("bcm_field_qualify_Tos(0, $id, 28, 255) = -6\n", std::to_string(entry))),
            std::string::npos)
      << seen;
  EXPECT_TRUE(seen.ends_with(filled("bcm_field_entry_install(0, $id) = 0\nreturned 0\n", std::to_string(entry))))
      << seen;
}

TEST_F(AclRules, AnUnknownDirectionLeavesAnEmptyEntryWhoseIdIsTold) {
  use_group(sai_ifp_l2_group_create);
  const sai_acl_rule_t rule = some_rule(SAI_ACL_IPV4);
  const std::pair<Install, std::string> installers[] = {{sai_acl_l2_entry_install, layer2},
                                                        {sai_acl_std_l3_entry_install, standard},
                                                        {sai_acl_ext_l3_entry_install, extended},
                                                        {sai_acl_l2_l3_entry_install, both}};
  for (const auto& [install, name] : installers) {
    for (const int32_t direction : {2, -1}) {
      int32_t entry = untouched;
      const std::string seen = observe([&, call = install] { return call(unit, 3, direction, group, &rule, &entry); });
      EXPECT_EQ(seen, filled("bcm_field_entry_create(0, $group, &$id) = 0\n"
                             "bcm_field_qualify_clear(0, $id) = 0\n"
                             "log: errors: NONE: " +
                                 name + " Invalid direction\nreturned -1\n",
                             std::to_string(entry)));
    }
  }
}

TEST_F(AclRules, AnUnknownKindOfIpPacketIsFoundAfterThePort) {
  use_group(sai_ifp_mac_ipv4_group_create);
  const std::pair<Install, std::string> installers[] = {{sai_acl_std_l3_entry_install, standard},
                                                        {sai_acl_ext_l3_entry_install, extended},
                                                        {sai_acl_l2_l3_entry_install, both}};
  for (const auto& [install, name] : installers) {
    for (const uint32_t ip_type : {0U, 1U, 4U, 0xFFFFFFFFU}) {
      const sai_acl_rule_t rule = some_rule(ip_type);
      int32_t entry = untouched;
      const std::string seen =
          observe([&, call = install] { return call(unit, 3, SAI_ACL_INGRESS, group, &rule, &entry); });
      EXPECT_EQ(seen, filled("bcm_field_entry_create(0, $group, &$id) = 0\n"
                             "bcm_field_qualify_clear(0, $id) = 0\n"
                             "bcm_field_qualify_InPort(0, $id, 3, -1) = 0\n"
                             "log: errors: NONE: " +
                                 name + " Invalid ip type\nreturned -1\n",
                             std::to_string(entry)));
    }
  }
}

TEST_F(AclRules, DestroyTakesAnEntryOutOfTheHardwareAndEndsIt) {
  use_group(sai_ifp_l2_group_create);
  const sai_acl_rule_t rule = some_rule(0);
  int32_t entry = untouched;
  ASSERT_EQ(sai_acl_l2_entry_install(unit, 3, SAI_ACL_INGRESS, group, &rule, &entry), 0);
  const auto destroy = [&] { return sai_fp_entry_destroy(unit, entry); };
  const std::string id = std::to_string(entry);

  EXPECT_EQ(observe_failing("bcm_field_entry_remove", BCM_E_NOT_FOUND, destroy),
            filled("bcm_field_entry_remove(0, $id) = -7\n"
                   "log: errors: NONE: sai_fp_entry_destroy bcm_field_entry_remove entry $id failed: Entry not found\n"
                   "returned -7\n",
                   id));
  EXPECT_EQ(observe_failing("bcm_field_entry_destroy", BCM_E_BUSY, destroy),
            filled("bcm_field_entry_remove(0, $id) = 0\n"
                   "bcm_field_entry_destroy(0, $id) = -10\n"
                   "log: errors: NONE: sai_fp_entry_destroy bcm_field_entry_destroy entry $id failed: Hardware is "
                   "busy\n"
                   "returned -1\n",
                   id));
  EXPECT_EQ(observe(destroy), filled("bcm_field_entry_remove(0, $id) = 0\n"
                                     "bcm_field_entry_destroy(0, $id) = 0\n"
                                     "returned 0\n",
                                     id));
}

}  // namespace
