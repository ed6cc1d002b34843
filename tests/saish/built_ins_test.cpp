#include "built_ins.h"

#include <swsdk/chip.h>

#include "library.h"
#include "saish/shell.h"

extern "C" int sdk_main(int argc, char** argv);

namespace {

/// The first lines of what is shown: a heading and the default VLAN.
constexpr const char* vlan_heading =
    "VLAN  tagged  untagged  flags\n"
    "1     {0}     {1-12}    -\n";

class ShellBuiltIns : public support::Shell {
 protected:
  ShellBuiltIns() { run("journal off", "journal clear"); }

  /// A log that is open and hears nothing, so that failures do not go to standard error.
  void open_log() { run("open_sai_log test 0 0 0"); }
};

TEST_F(ShellBuiltIns, TooFewOrTooManyWordsAreRefusedWithTheForm) {
  EXPECT_EQ(refused("show"), "too few arguments; the form is show TABLE [UNIT]");
  EXPECT_EQ(refused("show vlan 0 0"), "too many arguments; the form is show TABLE [UNIT]");
  EXPECT_EQ(refused("journal"), "too few arguments; the form is journal on|off|show|clear|follow [SECONDS]");
  EXPECT_EQ(refused("journal on off"), "only follow takes a number of seconds");
  EXPECT_EQ(refused("fail"), "too few arguments; the form is fail FUNCTION CODE [NTH|every]");
  EXPECT_EQ(refused("fail bcm_vlan_init -1 1 1"), "too many arguments; the form is fail FUNCTION CODE [NTH|every]");
  EXPECT_EQ(refused("log"), "too few arguments; the form is log LEVEL");
  EXPECT_EQ(refused("source"), "too few arguments; the form is source FILE");
  EXPECT_EQ(refused("quit now"), "too many arguments; the form is quit");
  EXPECT_FALSE(session().ended());
}

TEST_F(ShellBuiltIns, ShowPrintsATableOfTheChip) {
  EXPECT_EQ(run("show vlan"), vlan_heading);
  run("sai_vlan_create 0 10", "sai_vlan_port_add 0 10 3 0");
  EXPECT_EQ(run("show vlan 0"), std::string(vlan_heading) + "10    {0}     {3}       -\n");
  EXPECT_TRUE(run("show port").starts_with("port  kind")) << run("show port");
}

TEST_F(ShellBuiltIns, ShowRefusesATableThatThereIsNot) {
  const std::string text = refused("show mac_addresses");
  EXPECT_TRUE(text.starts_with("there is no table \"mac_addresses\"; the tables are ")) << text;
  EXPECT_NE(text.find("port"), std::string::npos);
  EXPECT_NE(text.find("vlan"), std::string::npos);
  EXPECT_TRUE(refused("show VLAN").starts_with("there is no table \"VLAN\"; "));
}

TEST_F(ShellBuiltIns, ShowRefusesAUnitThatThereIsNot) {
  EXPECT_EQ(refused("show vlan 1"), "unit 1 is not attached");
  EXPECT_EQ(refused("show vlan 15"), "unit 15 is not attached");
  for (const std::string unit : {"16", "-1", "first", "SAI_E_NONE"})
    EXPECT_EQ(refused("show vlan " + unit), "unit: \"" + unit + "\" is not a number from 0 to 15");
}

TEST_F(ShellBuiltIns, CheckFailsWhenSomethingIsLeftOver) {
  EXPECT_EQ(run("check"), "  nothing is left over\n");
  run("sai_stg_create 0 2");
  const std::string text = run("check 0");
  EXPECT_TRUE(text.starts_with("spanning-tree group 2 has no VLANs\n  call ")) << text;
  EXPECT_TRUE(
      text.ends_with(": bcm_stg_create_id(0, 2) = 0\n"
                     "unexpected: calls have left something on the chip that nothing uses\n"))
      << text;
  EXPECT_EQ(refused("check 1"), "unit 1 is not attached");
}

TEST_F(ShellBuiltIns, JournalOnShowsExactlyTheCallsOfEachCommand) {
  EXPECT_EQ(run("sai_vlan_create 0 10"), "  = 0\n");
  EXPECT_EQ(run("journal on"), "");
  EXPECT_EQ(run("sai_vlan_create 0 20"),
            "  > bcm_vlan_create(0, 20) = 0\n"
            "  > bcm_vlan_port_add(0, 20, {0}, {}) = 0\n"
            "  = 0\n");
  EXPECT_EQ(run("sai_vlan_destroy 0 20"), "  > bcm_vlan_destroy(0, 20) = 0\n  = 0\n");
  EXPECT_EQ(run("sai_unit_get"), "  = 0\n");
  EXPECT_EQ(run("expect -1 sai_sh_process_command 0 ps"),
            "ps: no such command; help lists them\n"
            "  > sh_process_command(0, \"ps\") = -3\n  = -1 SAI_E_FAIL\n");
}

TEST_F(ShellBuiltIns, JournalOffShowsNoneAndRecordsNone) {
  run("journal on", "sai_vlan_init 0");
  EXPECT_EQ(run("journal off"), "");
  EXPECT_EQ(run("sai_vlan_create 0 10"), "  = 0\n");
  EXPECT_EQ(run("journal show"), "bcm_vlan_init(0) = 0\n");
  EXPECT_EQ(run("journal on", "sai_vlan_destroy 0 10"), "  > bcm_vlan_destroy(0, 10) = 0\n  = 0\n");
}

TEST_F(ShellBuiltIns, JournalShowGivesAllCallsSinceTheLastClear) {
  EXPECT_EQ(run("journal show"), "");
  run("journal on", "sai_vlan_create 0 10", "sai_vlan_destroy 0 10");
  EXPECT_EQ(run("journal show"),
            "bcm_vlan_create(0, 10) = 0\n"
            "bcm_vlan_port_add(0, 10, {0}, {}) = 0\n"
            "bcm_vlan_destroy(0, 10) = 0\n");
  EXPECT_EQ(run("journal clear", "journal show"), "");
  EXPECT_EQ(run("sai_vlan_init 0"), "  > bcm_vlan_init(0) = 0\n  = 0\n");
  EXPECT_EQ(run("journal show"), "bcm_vlan_init(0) = 0\n");
}

TEST_F(ShellBuiltIns, JournalRefusesAnyOtherWord) {
  EXPECT_EQ(refused("journal maybe"), "\"maybe\" is not on, off, show, clear or follow");
}

TEST_F(ShellBuiltIns, FailMakesTheNextCallFail) {
  open_log();
  EXPECT_EQ(run("fail bcm_vlan_create BCM_E_FULL"), "");
  EXPECT_EQ(run("expect SAI_E_FULL sai_vlan_create 0 10"), "  = -13 SAI_E_FULL\n");
  EXPECT_EQ(run("sai_vlan_create 0 10"), "  = 0\n");
}

TEST_F(ShellBuiltIns, FailMakesTheNthCallFailOrEvery) {
  open_log();
  run("fail bcm_vlan_init -18 3");
  EXPECT_EQ(run("sai_vlan_init 0", "sai_vlan_init 0", "expect SAI_E_PORT sai_vlan_init 0", "sai_vlan_init 0"),
            "  = 0\n  = 0\n  = -9 SAI_E_PORT\n  = 0\n");
  run("fail bcm_vlan_init BCM_E_MEMORY every");
  for (int i = 0; i < 3; ++i) EXPECT_EQ(run("expect SAI_E_MEMORY sai_vlan_init 0"), "  = -3 SAI_E_MEMORY\n");
}

TEST_F(ShellBuiltIns, FailClearEndsAllFaults) {
  run("fail bcm_vlan_create BCM_E_FULL every", "fail bcm_vlan_port_add BCM_E_FULL 1");
  EXPECT_EQ(run("fail clear"), "");
  EXPECT_EQ(run("sai_vlan_create 0 10"), "  = 0\n");
}

TEST_F(ShellBuiltIns, FailRefusesWhatItDoesNotKnowAndInjectsNothing) {
  EXPECT_EQ(refused("fail bcm_vlan_creat BCM_E_FULL"), "the Chip SDK has no function \"bcm_vlan_creat\"");
  EXPECT_EQ(refused("fail sai_vlan_create BCM_E_FULL"), "the Chip SDK has no function \"sai_vlan_create\"");
  EXPECT_EQ(refused("fail bcm_vlan_create"), "a code is missing; the form is fail FUNCTION CODE [NTH] or fail clear");
  for (const std::string code : {"BCM_E_NONSENSE", "SAI_E_FULL", "SAI_LOG_OFF", "full", "2147483648", "-2147483649"})
    EXPECT_EQ(refused("fail bcm_vlan_create " + code), "code: \"" + code + "\" is neither a number nor a BCM_E_ name");
  for (const std::string nth : {"0", "-1", "2147483648", "each", "SAI_LOG_ERRORS"})
    EXPECT_EQ(refused("fail bcm_vlan_create -1 " + nth),
              "nth: \"" + nth + "\" is neither a number from 1 on nor \"every\"");
  EXPECT_EQ(run("sai_vlan_create 0 10"), "  = 0\n");
}

TEST_F(ShellBuiltIns, LogSetsWhatTheConsoleTakes) {
  const auto heard = [&] {
    std::string levels;
    for (const std::string function : {"sai_err", "sai_warn", "sai_notice", "sai_info", "sai_debug"})
      if (run(function + " x") == "2026/11/21 09:05:00 NONE: x\n") levels += function.substr(4) + " ";
    return levels;
  };
  run("log errors");
  EXPECT_EQ(heard(), "err ");
  run("log 4");
  EXPECT_EQ(heard(), "err warn ");
  run("log SAI_LOG_NOTIFICATIONS");
  EXPECT_EQ(heard(), "err warn notice ");
  run("log info");
  EXPECT_EQ(heard(), "err warn notice info ");
  run("log debugging");
  EXPECT_EQ(heard(), "err warn notice info debug ");
  run("log off");
  EXPECT_EQ(heard(), "");
  run("log 7", "log -1");
  EXPECT_EQ(heard(), "");
}

TEST_F(ShellBuiltIns, LogOpensALogOnlyWhenThereIsNone) {
  open_log();
  sai_log_handle* const before = sai_log_default;
  run("log 7");
  EXPECT_EQ(sai_log_default, before);
  EXPECT_EQ(sai_log_default->max_level[SAI_LOG_CONSOLE], 7);
  EXPECT_EQ(sai_log_default->max_level[SAI_LOG_SYSLOG], SAI_LOG_OFF);
  EXPECT_EQ(sai_log_default->max_level[SAI_LOG_FILE], SAI_LOG_OFF);
}

TEST_F(ShellBuiltIns, LogRefusesWhatIsNoLevel) {
  for (const std::string level : {"8", "-2", "loud", "e", "SAI_E_NONE", "SAI_E_FAIL", "BCM_E_NONE"})
    EXPECT_EQ(refused("log " + level),
              "level: \"" + level + "\" is neither off, a number from 0 to 7, nor a level such as errors or debugging");
  EXPECT_EQ(sai_log_default, nullptr);
}

TEST_F(ShellBuiltIns, ALogLineOnTheConsoleComesBeforeTheCallsAndTheResultLast) {
  run("log errors", "journal on");
  EXPECT_EQ(run("expect SAI_E_NOT_FOUND sai_vlan_port_add 0 30 4 1"),
            "2026/11/21 09:05:00 NONE: Failed to add port [4] to vlan [30]: Entry not found\n"
            "  > bcm_vlan_port_add(0, 30, {4}, {}) = -7\n"
            "  = -7 SAI_E_NOT_FOUND\n");
}

TEST_F(ShellBuiltIns, LinkTellsWhoIsRegistered) {
  run("sai_register_link_service print");
  EXPECT_EQ(run("link 1 up"), "  ! link of unit 0 port 1 is up\n");
  EXPECT_EQ(run("link 1 down 0"), "  ! link of unit 0 port 1 is down\n");
  EXPECT_EQ(refused("link 13 up"), "port: unit 0 has no Ethernet port \"13\"");
  EXPECT_EQ(refused("link 1 high"), "\"high\" is neither up nor down");
}

TEST_F(ShellBuiltIns, LearnPutsAnAddressIntoTheMacTable) {
  run("sai_vlan_create 0 10", "sai_register_l2_service 0 print");
  EXPECT_EQ(run("learn 00:00:00:00:00:01 10 1"),
            "  ! address 00:00:00:00:00:01 in VLAN 10 on port 1 is added\n  learned\n");
  EXPECT_EQ(run("learn 00:00:00:00:00:01 10 2 0"),
            "  ! address 00:00:00:00:00:01 in VLAN 10 on port 1 is deleted\n"
            "  ! address 00:00:00:00:00:01 in VLAN 10 on port 2 is added\n"
            "  learned\n");
  EXPECT_EQ(run("learn 00:00:00:00:00:01 20 1"), "  not learned; \"help learn\" lists the reasons\n");
  EXPECT_EQ(run("learn 01:00:00:00:00:01 10 1"), "  not learned; \"help learn\" lists the reasons\n");
  EXPECT_EQ(run("show mac"),
            "VLAN  MAC                at      kind  hit\n"
            "10    00:00:00:00:00:01  port 2  -     source\n");
}

TEST_F(ShellBuiltIns, LearnRefusesWhatIsNotOnTheChip) {
  EXPECT_EQ(refused("learn 00:00:00:00:00:01 1 13"), "unit 0 has no port 13");
  EXPECT_EQ(refused("learn 00:00:00:00:00:01 5000 1"), "vlan: 5000 is not between 1 and 4095");
  EXPECT_EQ(refused("learn 00:00:00:00:00:01 0 1"), "vlan: 0 is not between 1 and 4095");
  EXPECT_EQ(refused("learn 00:00:00:00:00:01 1 1 1"), "unit 1 is not attached");
  EXPECT_TRUE(refused("learn 1 1 1").starts_with("mac: \"1\" is not a MAC address"));
  EXPECT_TRUE(refused("learn 00:00:00:00:00:01 x 1").starts_with("vlan: \"x\" is not a number"));
}

TEST_F(ShellBuiltIns, WhatHappensOnAUnitIsRefusedWithTheReasonWhenTheUnitIsNotUp) {
  const auto expect_refused = [&](const std::string& reason) {
    for (const std::string event : {"link 1 up", "learn 00:00:00:00:00:01 1 1", "age 1", "hit 10.0.0.1 source",
                                    "counter 1 snmpIfInErrors 3", "temperature 40", "classify ingress {}", "send 1 00"})
      EXPECT_EQ(refused(event), reason) << event;
  };
  swsdk_power_off();
  expect_refused("unit 0 is not attached");
  sdk_main(0, nullptr);
  expect_refused("unit 0 is not initialized");
}

TEST_F(ShellBuiltIns, ACallsEventsAreToldBeforeItsResult) {
  run("sai_vlan_create 0 10", "sai_register_l2_service 0 print");
  EXPECT_EQ(run("sai_l2_mac_entry_add 0 {mac=00:00:00:00:00:01, vlan=10, port=3}"),
            "  ! address 00:00:00:00:00:01 in VLAN 10 on port 3 is added\n  = 0\n");
}

TEST_F(ShellBuiltIns, AgeLetsAddressesGo) {
  run("sai_vlan_create 0 10", "learn 00:00:00:00:00:01 10 1", "sai_l2_mac_age_time_set 0 300");
  run("sai_register_l2_service 0 print");
  EXPECT_EQ(run("age 300"), "");
  EXPECT_EQ(run("age 299 0"), "");
  EXPECT_EQ(run("age 1"), "  ! address 00:00:00:00:00:01 in VLAN 10 on port 1 is deleted\n");
  EXPECT_EQ(refused("age -1"), "seconds: time does not go back");
  EXPECT_EQ(refused("age 1 1"), "unit 1 is not attached");
}

TEST_F(ShellBuiltIns, HitMarksAHostOrARoute) {
  open_log();
  const std::string macs = "02:00:00:00:00:01 00:00:00:00:10:05";
  run("sai_vlan_create 0 10", "sai_l3_intf_create 0 02:00:00:00:00:01 10", "learn 00:00:00:00:10:05 10 1");
  ASSERT_EQ(run("sai_l3_host_route_create 0 10.0.10.5 " + macs + " 1 10 0"), "  = 0\n");
  ASSERT_EQ(run("sai_l3_subnet_route_create 0 10.1.0.0 255.255.0.0 10.0.10.5 " + macs + " 1 10 0"), "  = 0\n");
  ASSERT_EQ(run("sai_l3_subnet_route_create 0 0 0 10.0.10.5 " + macs + " 1 10 0"), "  = 0\n");
  EXPECT_EQ(run("sai_l3_host_route_hit_get 10.0.10.5"), "  = 0\n");
  EXPECT_EQ(run("hit 10.0.10.5 source", "sai_l3_host_route_hit_get 10.0.10.5"), "  = 1\n");
  EXPECT_NE(run("hit 10.0.10.5 destination 0", "show host").find(" destination\n"), std::string::npos);
  EXPECT_EQ(run("hit 10.1.0.0/16 destination", "sai_l3_subnet_route_hit_get 0 0"), "  = 0\n");
  EXPECT_EQ(run("sai_l3_subnet_route_hit_get 10.1.0.0 255.255.0.0"), "  = 1\n");
  EXPECT_EQ(run("hit 0.0.0.0/0 destination", "sai_l3_subnet_route_hit_get 0 0"), "  = 1\n");
}

TEST_F(ShellBuiltIns, HitRefusesWhatThereIsNot) {
  EXPECT_EQ(refused("hit 10.0.10.6 source"), "unit 0 has no host 10.0.10.6");
  EXPECT_EQ(refused("hit 10.2.0.0/16 source"), "unit 0 has no route 10.2.0.0/16");
  EXPECT_EQ(refused("hit 10.2.0.0/33 source"), "length: 33 is more than the 32 bits of an address");
  EXPECT_EQ(refused("hit 10.2.0.0 both"), "\"both\" is neither source nor destination");
  EXPECT_TRUE(refused("hit host source").starts_with("address: \"host\" is not an IPv4 address"));
  EXPECT_TRUE(refused("hit 10.2.0.0/ source").starts_with("length: \"\" is not a number"));
}

TEST_F(ShellBuiltIns, CounterSetsACounter) {
  EXPECT_EQ(run("counter 1 snmpIfInErrors 3", "counter 12 snmpIfHCInOctets 18446744073709551615 0"), "");
  EXPECT_EQ(run("show counters"),
            "port  counter           value\n"
            "1     snmpIfInErrors    3\n"
            "12    snmpIfHCInOctets  18446744073709551615\n");
}

TEST_F(ShellBuiltIns, CounterRefusesWhatThereIsNot) {
  EXPECT_EQ(refused("counter 1 errors 3"), "there is no counter \"errors\"; sai_port_stat_show 0 1 shows them all");
  EXPECT_EQ(refused("counter 13 snmpIfInErrors 3"), "unit 0 has no port 13");
  EXPECT_TRUE(refused("counter 1 snmpIfInErrors -3").starts_with("value: \"-3\" is not a number"));
}

TEST_F(ShellBuiltIns, TemperatureSetsTheSensorsAndHowManyThereAre) {
  EXPECT_EQ(run("temperature 41.5/47 -0.5 40", "show temperature"),
            "sensor  current  peak\n"
            "0       41.5     47.0\n"
            "1       -0.5     -0.5\n"
            "2       40.0     40.0\n");
  EXPECT_EQ(run("temperature 1", "show temperature"),
            "sensor  current  peak\n"
            "0       1.0      1.0\n");
  for (const std::string word : {"warm", "", "41.5C", "1e9", "nan", "inf", "0x10"})
    EXPECT_EQ(refused("temperature 20 \"" + word + "\""),
              "temperature: \"" + word + "\" is not a number of degrees such as 41.5");
  EXPECT_EQ(refused("temperature 41.5/"), "temperature: \"\" is not a number of degrees such as 41.5");
}

TEST_F(ShellBuiltIns, ClassifySaysWhatEntriesDoWithAFrame) {
  open_log();
  run("sai_ifp_mac_ipv4_group_create 0", "sai_system_ipv4_fp_create 0");
  EXPECT_EQ(run("classify ingress {}"), "  passes: no entry\n");
  const std::string rule = "sai_acl_ext_l3_entry_install 0 1 0 1 {ip_type=SAI_ACL_IPV4, ip_protocol=-1, ";
  ASSERT_EQ(run(rule + "action=0, dst_ip=10.9.0.0, dst_ip_mask=255.255.0.0}"), "  = 0\n  entry = 1\n");
  ASSERT_EQ(run(rule + "action=1, dst_ip=10.9.0.80, dst_ip_mask=255.255.255.255}"), "  = 0\n  entry = 2\n");
  ASSERT_EQ(run("sai_fp_ospf_ttl1_set 0 1 2"), "  = 0\n  entry = 3\n");
  ASSERT_EQ(run("sai_fp_arp_packet_port_qualify_set 0 1 2 5"), "  = 0\n  entry = 4\n");

  const std::string ip4 = "classify ingress {in_port=1, ether_type=0x0800, dst_ip=10.9.0.";
  EXPECT_EQ(run(ip4 + "7}"), "  dropped: entry 1 of group 1\n");
  EXPECT_EQ(run(ip4 + "80} 0"), "  passes, whatever else would drop it: entry 2 of group 1\n");
  EXPECT_EQ(run(ip4 + "7, ip_protocol=89, ttl=1}"),
            "  dropped, copied to the CPU, with priority 7: entry 1 of group 1, entry 3 of group 2\n");
  EXPECT_EQ(run("classify ingress {in_port=1, ether_type=0x0806, dst_mac=ff:ff:ff:ff:ff:ff}"),
            "  goes to port 5 alone, with priority 7: entry 4 of group 2\n");
}

TEST_F(ShellBuiltIns, ClassifyNamesThePolicer) {
  open_log();
  run("sai_vlan_vport_init 0", "sai_fp_vport_group_create 0", "sai_fp_vport_qualify_set 0 1 1 100");
  run("sai_vport_fp_policer_set 0 1 1000 2000 1500 3000", "sai_fp_vport_qualify_action 0 1 1");
  EXPECT_EQ(run("classify egress {out_port=1, outer_tag=100}"),
            "  passes, metered by policer 1, dropped if red: entry 1 of group 1\n");
  EXPECT_EQ(run("classify ingress {out_port=1, outer_tag=100}"), "  passes: no entry\n");
}

TEST_F(ShellBuiltIns, ClassifyRefusesWhatIsNoFrame) {
  EXPECT_EQ(refused("classify inward {}"), "\"inward\" is neither ingress nor egress");
  EXPECT_EQ(refused("classify ingress 1"), "frame: \"1\" is not a record such as {in_port=0}");
  EXPECT_TRUE(
      refused("classify ingress {port=1}").starts_with("frame: there is no field \"port\"; the fields are in_"));
  EXPECT_EQ(refused("classify ingress {} 1"), "unit 1 is not attached");
}

constexpr const char* hello = "send 1 02:00:00:00:00:01 > 02:00:00:00:00:02 ";

TEST_F(ShellBuiltIns, SendLetsAFrameInAndCaptureShowsWhatLeft) {
  open_log();
  run("sai_vlan_create 0 10", "sai_vlan_port_add 0 10 1 1", "sai_vlan_port_add 0 10 2 1", "link 1 up", "link 2 up");
  EXPECT_EQ(run(hello + std::string("vlan 10/3 ip 10.0.0.1 > 10.0.0.2 udp 5 > 6")), "  passed on\n");
  EXPECT_EQ(run("capture"),
            "  2: 02:00:00:00:00:01 > 02:00:00:00:00:02 vlan 10/3 ip 10.0.0.1 > 10.0.0.2 ttl 64 udp 5 > 6\n"
            "  cpu (destination): 02:00:00:00:00:01 > 02:00:00:00:00:02 vlan 10/3 ip 10.0.0.1 > 10.0.0.2 ttl 64 "
            "udp 5 > 6\n");
  EXPECT_EQ(run("capture"), "");
  EXPECT_EQ(run("send 2 0200000000010200000000038100000a88b50000"), "  passed on\n");
  EXPECT_EQ(run("capture"), "  1: 02:00:00:00:00:03 > 02:00:00:00:00:01 vlan 10 type 0x88b5\n");
  EXPECT_EQ(run("send 1 0200"), "  not passed on: malformed\n");
}

TEST_F(ShellBuiltIns, WhatCaptureShowsCanBeSent) {
  open_log();
  run("sai_vlan_create 0 10", "sai_vlan_port_add 0 10 1 1", "sai_vlan_port_add 0 10 2 1", "link 1 up", "link 2 up");
  for (const std::string frame :
       {"vlan 10 arp 10.0.0.1 > 10.0.0.2", "vlan 10 vlan 20/7 type 0x1234",
        "vlan 10 ip 10.0.0.1 > 10.0.0.2 tos 8 ttl 1 tcp 80 > 81", "vlan 10 ip 2001:db8::1 > ff02::1 ttl 255 icmp 135",
        "vlan 10 ip 10.0.0.1 > 224.0.0.22 ttl 1 igmp 22 239.1.1.1", "vlan 10 ip 10.0.0.1 > 10.0.0.2 ttl 64 protocol 89",
        "vlan 10 ip 2001:db8::1 > 2001:db8::2 tos 184 ttl 64 udp 1 > 2"}) {
    ASSERT_EQ(run(hello + frame), "  passed on\n");
    const std::string shown = run("capture");
    EXPECT_EQ(shown.substr(0, shown.find('\n')), "  2: 02:00:00:00:00:01 > 02:00:00:00:00:02 " + frame);
  }
}

TEST_F(ShellBuiltIns, SendRefusesWhatIsNoFrame) {
  EXPECT_EQ(refused("send 1 123"), "frame: \"123\" is not pairs of hexadecimal digits");
  EXPECT_EQ(refused("send 1 02:00:00:00:00:01 02:00:00:00:00:02"), "frame: \"02:00:00:00:00:02\" is not >");
  EXPECT_EQ(refused("send 1 02:00:00:00:00:01 >"), "frame: it ends where a MAC address should be");
  EXPECT_EQ(refused(hello + std::string("vlan 4096")), "frame: a tag has a VLAN up to 4095 and a priority up to 7");
  EXPECT_EQ(refused(hello + std::string("udp 5 > 6")), "frame: \"udp\" is no field, or comes before ip");
  EXPECT_EQ(refused(hello + std::string("ip 10.0.0.1 > ::1")), "frame: an IPv4 address does not go with an IPv6 one");
  EXPECT_EQ(refused(hello + std::string("ip 10.0.0.1 > 10.0.0.2 utp 5")), "frame: there is no field \"utp\"");
  EXPECT_EQ(refused("send 99 00"), "unit 0 has no port 99");
}

}  // namespace
