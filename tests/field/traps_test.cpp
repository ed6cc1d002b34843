#include <bcm/error.h>
#include <soc/drv.h>
#include <swsdk/fault.h>

#include <array>
#include <string>
#include <utility>
#include <vector>

#include "field/steps.h"
#include "support/start.h"

namespace {

using field::Step;
using field::Steps;

class Traps : public field::Scene {
 protected:
  void expect_rule(const Steps& steps, const Call& call) { expect_steps(steps, Told::on_success, call); }
};

constexpr uint8_t some_mac[6] = {0x02, 0x0A, 0x00, 0xC1, 0x0D, 0x0E};

/// The two families of rules whose messages name the SDK's calls: by the entry alone, or by its group as well.
Step of_entry(const std::string& rule, const std::string& call, std::string named = "") {
  if (named.empty()) named = call.substr(0, call.find('('));
  return {call, rule + ' ' + named + " entry $id failed"};
}

Step of_group(const std::string& rule, const std::string& call) {
  return {call, rule + ' ' + call.substr(0, call.find('(')) + " group $group entry $id failed"};
}

Steps of_group(const std::string& rule, const std::vector<std::string>& calls) {
  Steps steps;
  for (const std::string& call : calls)
    steps.push_back(call.find("Port(0, $id, 3, -1)") == std::string::npos ? of_group(rule, call)
                                                                          : of_entry(rule, call));
  steps[0].message = rule + " bcm_field_entry_create group $group entry -1 failed";
  return steps;
}

TEST_F(Traps, OspfWithTtlOne) {
  use_group(sai_system_ipv4_fp_create);
  const std::string rule = "sai_fp_ospf_ttl1_set";
  expect_rule(
      {
          {"bcm_field_entry_create(0, $group, &$id)", rule + " group $group bcm_field_entry_create failed"},
          of_entry(rule, "bcm_field_qualify_clear(0, $id)"),
          of_entry(rule, "bcm_field_qualify_InPort(0, $id, 3, -1)"),
          of_entry(rule, "bcm_field_qualify_IpType(0, $id, 5)"),
          of_entry(rule, "bcm_field_qualify_IpProtocol(0, $id, 89, 255)"),
          of_entry(rule, "bcm_field_qualify_Ttl(0, $id, 1, 255)"),
          of_entry(rule, "bcm_field_action_add(0, $id, 10, 7, 0)"),
          of_entry(rule, "bcm_field_action_add(0, $id, 23, 0, 0)"),
          of_entry(rule, "bcm_field_entry_install(0, $id)"),
      },
      [this](int32_t* entry) { return sai_fp_ospf_ttl1_set(unit, 3, group, entry); });
}

TEST_F(Traps, LoopDetection) {
  use_group(sai_system_ipv4_fp_create);
  expect_rule(of_group("sai_fp_loopd_packet_to_cpu_set",
                       {
                           "bcm_field_entry_create(0, $group, &$id)",
                           "bcm_field_qualify_clear(0, $id)",
                           "bcm_field_qualify_InPort(0, $id, 3, -1)",
                           "bcm_field_qualify_SrcMac(0, $id, 02:0a:00:c1:0d:0e, ff:ff:ff:ff:ff:ff)",
                           "bcm_field_qualify_EtherType(0, $id, 0x9088, 0xffff)",
                           "bcm_field_action_add(0, $id, 10, 7, 0)",
                           "bcm_field_action_add(0, $id, 29, 0, 0)",
                           "bcm_field_entry_install(0, $id)",
                       }),
              [this](int32_t* entry) { return sai_fp_loopd_packet_to_cpu_set(unit, 3, some_mac, group, entry); });
}

struct DhcpRow {
  const char* name;
  int32_t (*install)(int32_t unit, int32_t vlan, int32_t group, int32_t* entry);
  const char* ip_type;
  const char* port;
  const char* priority;
};

class DhcpTraps : public Traps, public testing::WithParamInterface<DhcpRow> {};

TEST_P(DhcpTraps, MatchAVlanAndNoPortAndHavePriorityThree) {
  const DhcpRow& row = GetParam();
  use_group(row.install == sai_fp_dhcpv6_req_to_cpu_set ? sai_system_ipv6_fp_create : sai_system_ipv4_fp_create);
  expect_rule(of_group(row.name,
                       {
                           "bcm_field_entry_create(0, $group, &$id)",
                           "bcm_field_qualify_clear(0, $id)",
                           "bcm_field_qualify_OuterVlan(0, $id, 100, 4095)",
                           std::string("bcm_field_qualify_IpType(0, $id, ") + row.ip_type + ")",
                           "bcm_field_qualify_IpProtocol(0, $id, 17, 255)",
                           std::string("bcm_field_qualify_L4DstPort(0, $id, ") + row.port + ", 65535)",
                           "bcm_field_entry_prio_set(0, $id, 3)",
                           std::string("bcm_field_action_add(0, $id, 10, ") + row.priority + ", 0)",
                           "bcm_field_action_add(0, $id, 29, 0, 0)",
                           "bcm_field_entry_install(0, $id)",
                       }),
              [&](int32_t* entry) { return row.install(unit, 100, group, entry); });
}

INSTANTIATE_TEST_SUITE_P(
    Rules, DhcpTraps,
    testing::Values(DhcpRow{"sai_fp_dhcp_requeset_to_cpu_set", sai_fp_dhcp_requeset_to_cpu_set, "11", "67", "6"},
                    DhcpRow{"sai_fp_dhcp_response_to_cpu_set", sai_fp_dhcp_response_to_cpu_set, "11", "68", "6"},
                    DhcpRow{"sai_fp_dhcpv6_req_to_cpu_set", sai_fp_dhcpv6_req_to_cpu_set, "10", "547", "7"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(Traps, Igmp) {
  use_group(sai_system_ipv4_fp_create);
  const std::string rule = "sai_fp_igmp_packet_to_cpu";
  expect_rule(
      {
          {"bcm_field_entry_create(0, $group, &$id)", rule + " create entry from group $group failed"},
          {"bcm_field_qualify_clear(0, $id)", rule + " clear entry $id failed"},
          of_entry(rule, "bcm_field_qualify_InPort(0, $id, 3, -1)"),
          {"bcm_field_qualify_IpProtocol(0, $id, 2, 255)", rule + " set entry $id ip protocol type failed"},
          {"bcm_field_action_add(0, $id, 10, 7, 0)", rule + " set entry $id action failed"},
          {"bcm_field_action_add(0, $id, 29, 0, 0)", rule + " set entry $id action failed"},
          {"bcm_field_entry_install(0, $id)", rule + " install entry $id failed"},
      },
      [this](int32_t* entry) { return sai_fp_igmp_packet_to_cpu(unit, 3, group, entry); });
}

class MldTraps : public Traps {
 protected:
  static constexpr size_t runs = 4;

  MldTraps() { use_group(sai_system_ipv6_fp_create); }

  static Steps steps_of(size_t run) {
    constexpr std::array<const char*, runs> types = {"33280", "33536", "33792", "36608"};  // 0x8200 and so on
    const std::string rule = "sai_fp_mld_packet_set";
    return {
        {"bcm_field_entry_create(0, $group, &$id)", rule + " create entry from group $group failed"},
        {"bcm_field_qualify_clear(0, $id)", rule + " clear entry $id failed"},
        of_entry(rule, "bcm_field_qualify_InPort(0, $id, 3, -1)"),
        of_entry(rule, "bcm_field_qualify_DstMac(0, $id, 33:33:00:00:00:00, ff:ff:00:00:00:00)"),
        of_entry(rule, "bcm_field_qualify_Ip6NextHeader(0, $id, 58, 255)"),
        of_entry(rule, std::string("bcm_field_qualify_IcmpTypeCode(0, $id, ") + types[run] + ", 65535)",
                 "bcm_field_qualify_IcmpType"),
        {"bcm_field_action_add(0, $id, 10, 1, 0)", rule + " set entry $id action failed"},
        {"bcm_field_action_add(0, $id, 29, 0, 0)", rule + " set entry $id action failed"},
        {"bcm_field_entry_install(0, $id)", rule + " install entry $id failed"},
    };
  }

  int32_t entry = untouched;
  const std::function<int32_t()> call = [this] { return sai_fp_mld_packet_to_cpu(unit, 3, group, &entry); };
};

TEST_F(MldTraps, FourEntriesAreInstalledAndTheLastIsTold) {
  const std::string seen = observe(call);
  const std::vector<std::string> ids = ids_in(seen);
  ASSERT_EQ(ids.size(), runs);
  std::string expected;
  for (size_t run = 0; run < runs; ++run) expected += journal_of(steps_of(run), ids[run]);
  EXPECT_EQ(seen, expected + "returned 0\n");
  EXPECT_EQ(std::to_string(entry), ids[3]);
}

TEST_F(MldTraps, AFailureEndsItsOwnEntryAloneAndOnlyThatOfTheLastIsReturned) {
  for (size_t failing_run = 0; failing_run < runs; ++failing_run) {
    const Steps steps = steps_of(failing_run);
    for (size_t failing = 0; failing < steps.size(); ++failing) {
      SCOPED_TRACE(steps[failing].call + " of run " + std::to_string(failing_run));
      support::start_chip();
      use_group(sai_system_ipv6_fp_create);
      entry = untouched;
      const int calls_per_run = function_of(steps[failing]) == "bcm_field_action_add" ? 2 : 1;
      const std::string seen = observe_failing(function_of(steps[failing]).c_str(), BCM_E_FULL, call,
                                               static_cast<int>(failing_run) * calls_per_run + nth_of(steps, failing));
      const std::vector<std::string> ids = ids_in(seen);
      ASSERT_EQ(ids.size(), runs) << seen;
      std::string expected;
      for (size_t run = 0; run < runs; ++run)
        expected += journal_of(steps_of(run), ids[run], run == failing_run ? failing : SIZE_MAX);
      const bool last_fails = failing_run == runs - 1;
      EXPECT_EQ(seen, expected + "log: errors: NONE: " + filled(steps[failing].message, ids[failing_run]) +
                          ": Table is full\nreturned " + (last_fails ? "-13" : "0") + "\n");
      EXPECT_EQ(std::to_string(entry), last_fails ? ids[2] : ids[3]);
    }
  }
}

/// The steps of an ARP rule that sends what goes to a MAC address, whose message shows it as `shown`, to a port.
Steps arp_steps(const std::string& rule, const std::string& mac, const std::string& shown, const std::string& port) {
  Steps steps = of_group(rule, {
                                   "bcm_field_entry_create(0, $group, &$id)",
                                   "bcm_field_qualify_clear(0, $id)",
                                   "bcm_field_qualify_InPort(0, $id, 3, -1)",
                                   "bcm_field_qualify_EtherType(0, $id, 0x806, 0xffff)",
                                   "bcm_field_qualify_DstMac(0, $id, " + mac + ", ff:ff:ff:ff:ff:ff)",
                                   "bcm_field_action_add(0, $id, 10, 7, 0)",
                                   "bcm_field_action_add(0, $id, 29, 0, " + port + ")",
                                   "bcm_field_entry_install(0, $id)",
                               });
  steps[4].message = rule + " bcm_field_qualify_DstMac group $group entry $id mac " + shown + " failed";
  return steps;
}

TEST_F(Traps, ArpToAMacAddress) {
  use_group(sai_system_ipv4_fp_create);
  expect_rule(arp_steps("sai_fp_arp_packet_vlan_qualify_set", "02:0a:00:c1:0d:0e", " 2: A: 0:C1: D: E", "0"),
              [this](int32_t* entry) { return sai_fp_arp_packet_vlan_qualify_set(unit, 3, group, entry, some_mac); });
}

TEST_F(Traps, ArpBroadcastsToTheCpu) {
  use_group(sai_system_ipv4_fp_create);
  expect_rule(arp_steps("sai_fp_arp_packet_cpu_qualify_set", "ff:ff:ff:ff:ff:ff", "FF:FF:FF:FF:FF:FF", "0"),
              [this](int32_t* entry) { return sai_fp_arp_packet_cpu_qualify_set(unit, 3, group, entry); });
}

TEST_F(Traps, ArpBroadcastsToAPort) {
  use_group(sai_system_ipv4_fp_create);
  expect_rule(arp_steps("sai_fp_arp_packet_port_qualify_set", "ff:ff:ff:ff:ff:ff", "FF:FF:FF:FF:FF:FF", "9"),
              [this](int32_t* entry) { return sai_fp_arp_packet_port_qualify_set(unit, 3, group, entry, 9); });
}

TEST_F(Traps, TheCpusPortIsThatOfTheUnit) {
  use_group(sai_system_ipv4_fp_create);
  CMIC_PORT(unit) = 7;
  int32_t entry = untouched;
  const auto expect_action = [&](const std::string& seen, const std::string& action) {
    EXPECT_NE(seen.find(filled("bcm_field_action_add(0, $id, " + action + ") = 0\n", std::to_string(entry))),
              std::string::npos)
        << seen;
  };
  expect_action(observe([&] { return sai_fp_ospf_ttl1_set(unit, 3, group, &entry); }), "23, 0, 7");
  expect_action(observe([&] { return sai_fp_igmp_packet_to_cpu(unit, 3, group, &entry); }), "29, 0, 7");
}

TEST_F(Traps, MldExcludeDropsWhatASourceSendsToADestination) {
  use_group(sai_fp_mld_exclude_group_create);
  constexpr uint8_t destination[16] = {0xFF, 0x1E, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1};
  constexpr uint8_t source[16] = {0xFE, 0x80, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2};
  const std::string ones = "ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff";
  expect_rule(of_group("sai_fp_mld_packet_exclude_filter_set",
                       {
                           "bcm_field_entry_create(0, $group, &$id)",
                           "bcm_field_qualify_clear(0, $id)",
                           "bcm_field_qualify_OutPort(0, $id, 3, -1)",
                           "bcm_field_qualify_SrcIp6(0, $id, fe80::2, " + ones + ")",
                           "bcm_field_qualify_DstIp6(0, $id, ff1e::1, " + ones + ")",
                           "bcm_field_action_add(0, $id, 39, 0, 0)",
                           "bcm_field_entry_install(0, $id)",
                       }),
              [&](int32_t* entry) {
                return sai_fp_mld_packet_exclude_filter_set(unit, 3, group, entry, 99, destination, source);
              });
}

class VirtualPortEntries : public Traps {
 protected:
  VirtualPortEntries() { use_group(sai_fp_vport_group_create); }
};

TEST_F(VirtualPortEntries, AreBuiltWithoutAnActionAndUninstalled) {
  sai_log_set_level(nullptr, SAI_LOG_FILE, SAI_LOG_ERRORS);
  const std::string rule = "sai_fp_vport_qualify_set";
  expect_rule(
      {
          {"bcm_field_entry_create(0, $group, &$id)", rule + " bcm_field_entry_create group $group entry -1 failed"},
          of_group(rule, "bcm_field_qualify_clear(0, $id)"),
          of_entry(rule, "bcm_field_qualify_OutPort(0, $id, 3, 255)"),
          of_entry(rule, "bcm_field_qualify_OuterVlan(0, $id, 100, 65535)", "bcm_field_qualify_OutVlan"),
      },
      [this](int32_t* entry) { return sai_fp_vport_qualify_set(unit, 3, group, entry, 100); });
}

TEST_F(VirtualPortEntries, AreTraced) {
  int32_t entry = untouched;
  const std::string seen = observe([&] { return sai_fp_vport_qualify_set(unit, 3, group, &entry, 65535); });
  EXPECT_TRUE(seen.ends_with("log: debugging: NONE: sai_fp_vport_qualify_set port 3 vlan 65535\nreturned 0\n")) << seen;
}

TEST_F(VirtualPortEntries, AreCompletedByTheirAction) {
  int32_t entry = untouched;
  ASSERT_EQ(sai_fp_vport_qualify_set(unit, 3, group, &entry, 100), 0);
  const std::string id = std::to_string(entry);
  const auto complete = [&] { return sai_fp_vport_qualify_action(unit, group, entry); };
  const std::string rule = "sai_fp_vport_qualify_action";
  EXPECT_EQ(observe_failing("bcm_field_action_add", BCM_E_FULL, complete),
            filled("bcm_field_action_add(0, $id, 52, 0, 0) = -6\n"
                   "log: errors: NONE: sai_fp_vport_qualify_action bcm_field_action_add group $group entry $id failed: "
                   "Table is full\n"
                   "returned -13\n",
                   id));
  EXPECT_EQ(observe(complete), filled("bcm_field_action_add(0, $id, 52, 0, 0) = 0\n"
                                      "bcm_field_entry_install(0, $id) = 0\n"
                                      "returned 0\n",
                                      id));
}

TEST_F(VirtualPortEntries, ThatCannotBeInstalledAreLoggedWithTheirGroup) {
  int32_t entry = untouched;
  ASSERT_EQ(sai_fp_vport_qualify_set(unit, 3, group, &entry, 100), 0);
  EXPECT_EQ(observe_failing("bcm_field_entry_install", BCM_E_FULL,
                            [&] { return sai_fp_vport_qualify_action(unit, group, entry); }),
            filled("bcm_field_action_add(0, $id, 52, 0, 0) = 0\n"
                   "bcm_field_entry_install(0, $id) = -6\n"
                   "log: errors: NONE: sai_fp_vport_qualify_action bcm_field_entry_install group $group entry $id "
                   "failed: Table is full\n"
                   "returned -13\n",
                   std::to_string(entry)));
}

TEST_F(Traps, DetachTakesThePolicerOfLevelZero) {
  const auto detach = [] { return sai_fp_entry_policer_detach(unit, 44); };
  EXPECT_EQ(observe_failing("bcm_field_entry_policer_detach", BCM_E_NONE, detach),
            "bcm_field_entry_policer_detach(0, 44, 0) = 0\nreturned 0\n");
  EXPECT_EQ(observe_failing("bcm_field_entry_policer_detach", BCM_E_NOT_FOUND, detach),
            "bcm_field_entry_policer_detach(0, 44, 0) = -7\n"
            "log: errors: NONE: bcm_field_entry_policer_detach entry_id 44 failed: Entry not found\n"
            "returned -7\n");
}

/// A walk over the Ethernet ports with `lines` for each, in which "$port" stands for its number.
std::string for_each_port(const std::string& lines) {
  std::string result;
  for (int port = 1; port <= 12; ++port) {
    std::string text = lines;
    for (size_t at = 0; (at = text.find("$port", at)) != std::string::npos;) text.replace(at, 5, std::to_string(port));
    result += text;
  }
  return result;
}

TEST_F(Traps, DhcpPacketsGoToTheCpuAndAreDroppedElsewhere) {
  EXPECT_EQ(observe([] { return sai_dhcp_packet_to_cpu(unit, 1); }),
            for_each_port("bcm_switch_control_port_set(0, $port, 94, 1) = 0\n"
                          "bcm_switch_control_port_set(0, $port, 95, 1) = 0\n") +
                "returned 0\n");
}

TEST_F(Traps, DhcpPacketsThatAreNoLongerDroppedStillGoToTheCpu) {
  for (const int32_t enable : {0, 2, -1})
    EXPECT_EQ(observe([=] { return sai_dhcp_packet_to_cpu(unit, enable); }),
              for_each_port("bcm_switch_control_port_set(0, $port, 95, 0) = 0\n") + "returned 0\n");
}

TEST_F(Traps, DhcpPacketsStayTheCpusWhenTheyAreDroppedElsewhereOrNot) {
  const std::string to_cpu =
      "control      value\n"
      "DHCP to CPU  on ports {1-12}\n";
  const std::string to_cpu_alone =
      "control       value\n"
      "DHCP to CPU   on ports {1-12}\n"
      "DHCP dropped  on ports {1-12}\n";
  for (const auto& [enable, controls] : {std::pair{1, to_cpu_alone}, {0, to_cpu}, {1, to_cpu_alone}}) {
    ASSERT_EQ(sai_dhcp_packet_to_cpu(unit, enable), 0);
    EXPECT_EQ(support::table("control"), controls);
  }
}

TEST_F(Traps, ADhcpSwitchThatFailsIsLoggedForItsPortAndNeverReturned) {
  const auto on = [] { return sai_dhcp_packet_to_cpu(unit, 1); };
  EXPECT_EQ(observe_failing("bcm_switch_control_port_set", BCM_E_PORT, on, SWSDK_FAULT_EVERY_CALL),
            for_each_port("bcm_switch_control_port_set(0, $port, 94, 1) = -18\n"
                          "bcm_switch_control_port_set(0, $port, 95, 1) = -18\n") +
                for_each_port("log: errors: NONE: Failed to set port [$port] bcmSwitchDhcpPktToCpu: Invalid port\n"
                              "log: errors: NONE: Failed to set port [$port] bcmSwitchDhcpPktDrop: Invalid port\n") +
                "returned 0\n");
  EXPECT_EQ(observe_failing(
                "bcm_switch_control_port_set", BCM_E_PORT, [] { return sai_dhcp_packet_to_cpu(unit, 0); },
                SWSDK_FAULT_EVERY_CALL),
            for_each_port("bcm_switch_control_port_set(0, $port, 95, 0) = -18\n") +
                for_each_port("log: errors: NONE: Failed to set port [$port] bcmSwitchDhcpPktDrop: Invalid port\n") +
                "returned 0\n");
}

TEST_F(Traps, DhcpPacketsOfAUnitThatIsNotThereAreLeftAlone) {
  EXPECT_EQ(observe([] { return sai_dhcp_packet_to_cpu(1, 1); }), "returned 0\n");
}

}  // namespace
