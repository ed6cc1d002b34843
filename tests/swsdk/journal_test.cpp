#include <swsdk/journal.h>

#include <appl/diag/shell.h>
#include <appl/diag/system.h>
#include <bcm/error.h>
#include <bcm/field.h>
#include <bcm/ipmc.h>
#include <bcm/knet.h>
#include <bcm/l2.h>
#include <bcm/l3.h>
#include <bcm/multicast.h>
#include <bcm/port.h>
#include <bcm/stat.h>
#include <bcm/switch.h>
#include <bcm/trunk.h>
#include <bcm/vlan.h>
#include <gtest/gtest.h>
#include <soc/cmic.h>
#include <swsdk/chip.h>
#include <swsdk/fault.h>

#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "support/scene.h"
#include "support/start.h"

namespace {

class Journal : public testing::Test {
 protected:
  Journal() {
    support::start_chip();
    swsdk_journal_record(1);
  }
  ~Journal() override { swsdk_power_off(); }

  /// Calls of these functions do nothing, so that their lines do not hang on what the chip holds.
  static void refuse(std::initializer_list<const char*> functions) {
    for (const char* function : functions)
      ASSERT_EQ(swsdk_fault_inject(function, BCM_E_UNAVAIL, SWSDK_FAULT_EVERY_CALL), 0) << function;
  }

  /// The journal since the last time.
  static std::string take() {
    std::string text = support::journal();
    swsdk_journal_clear();
    return text;
  }
};

TEST_F(Journal, IsOffUntilItIsSwitchedOn) {
  support::start_chip();
  EXPECT_EQ(swsdk_journal_recording(), 0);
  bcm_vlan_create(0, 10);
  EXPECT_EQ(support::journal(), "");
  swsdk_journal_record(7);
  EXPECT_EQ(swsdk_journal_recording(), 1);
  bcm_vlan_create(0, 11);
  swsdk_journal_record(0);
  bcm_vlan_create(0, 12);
  EXPECT_EQ(support::journal(), "bcm_vlan_create(0, 11) = 0\n");
}

TEST_F(Journal, HasALinePerCallInTheirOrder) {
  bcm_vlan_create(0, 10);
  bcm_vlan_create(0, 10);
  bcm_vlan_destroy(9, 10);
  EXPECT_EQ(take(),
            "bcm_vlan_create(0, 10) = 0\n"
            "bcm_vlan_create(0, 10) = -8\n"
            "bcm_vlan_destroy(9, 10) = -3\n");
}

TEST_F(Journal, ForgetsWhatIsCleared) {
  bcm_vlan_create(0, 10);
  swsdk_journal_clear();
  EXPECT_EQ(support::journal(), "");
}

TEST_F(Journal, IsReadAsFarAsItFits) {
  bcm_vlan_init(0);
  const std::string line = "bcm_vlan_init(0) = 0\n";
  EXPECT_EQ(swsdk_journal_read(nullptr, 0), line.size());
  char text[64];
  EXPECT_EQ(swsdk_journal_read(text, sizeof text), line.size());
  EXPECT_EQ(text, line);
  EXPECT_EQ(swsdk_journal_read(text, 4), line.size());
  EXPECT_STREQ(text, "bcm");
  EXPECT_EQ(swsdk_journal_read(text, 1), line.size());
  EXPECT_STREQ(text, "");
}

TEST_F(Journal, IsReadFromAPositionOn) {
  bcm_vlan_init(0);
  const std::size_t before = swsdk_journal_read(nullptr, 0);
  char text[64];
  EXPECT_EQ(swsdk_journal_read_from(before, text, sizeof text), 0);
  EXPECT_STREQ(text, "");
  bcm_vlan_create(0, 10);
  const std::string line = "bcm_vlan_create(0, 10) = 0\n";
  EXPECT_EQ(swsdk_journal_read_from(before, nullptr, 0), line.size());
  EXPECT_EQ(swsdk_journal_read_from(before, text, sizeof text), line.size());
  EXPECT_EQ(text, line);
  EXPECT_EQ(swsdk_journal_read_from(before, text, 4), line.size());
  EXPECT_STREQ(text, "bcm");
  EXPECT_EQ(swsdk_journal_read_from(0, nullptr, 0), before + line.size());
  for (const std::size_t beyond : {before + line.size() + 1, ~std::size_t{0}}) {
    EXPECT_EQ(swsdk_journal_read_from(beyond, text, sizeof text), 0);
    EXPECT_STREQ(text, "");
  }
}

TEST_F(Journal, ShowsBitmapsAsTheirPorts) {
  bcm_pbmp_t members;
  bcm_pbmp_t untagged;
  BCM_PBMP_CLEAR(members);
  BCM_PBMP_CLEAR(untagged);
  for (const int port : {1, 5, 6, 7, 8}) BCM_PBMP_PORT_ADD(members, port);
  bcm_vlan_port_add(0, 1, members, untagged);
  EXPECT_EQ(take(), "bcm_vlan_port_add(0, 1, {1,5-8}, {}) = 0\n");
}

TEST_F(Journal, MarksWhatTheCallWrote) {
  int value = 0;
  bcm_switch_control_set(0, bcmSwitchL3EgressMode, 1);
  bcm_switch_control_get(0, bcmSwitchL3EgressMode, &value);
  bcm_switch_control_get(0, static_cast<bcm_switch_control_t>(1), &value);
  bcm_switch_control_get(0, bcmSwitchL3EgressMode, nullptr);
  EXPECT_EQ(take(),
            "bcm_switch_control_set(0, 230, 1) = 0\n"
            "bcm_switch_control_get(0, 230, &1) = 0\n"
            "bcm_switch_control_get(0, 1, &?) = -16\n"
            "bcm_switch_control_get(0, 230, NULL) = -4\n");
}

TEST_F(Journal, ShowsTheFieldsOfARecordThatDifferFromTheirInitialValue) {
  bcm_vlan_control_vlan_t control;
  bcm_vlan_control_vlan_t_init(&control);
  bcm_vlan_control_vlan_set(0, 1, control);
  control.broadcast_group = -1;
  control.flags = 0x80001;
  bcm_vlan_control_vlan_set(0, 1, control);
  bcm_vlan_control_vlan_get(0, 1, &control);
  EXPECT_EQ(take(),
            "bcm_vlan_control_vlan_set(0, 1, {}) = 0\n"
            "bcm_vlan_control_vlan_set(0, 1, {flags=0x80001, broadcast_group=-1}) = 0\n"
            "bcm_vlan_control_vlan_get(0, 1, &{flags=0x80001, broadcast_group=-1}) = 0\n");
}

TEST_F(Journal, ShowsAddressesAndNamesAsPeopleWriteThem) {
  refuse(
      {"bcm_l2_addr_add", "bcm_l2_addr_delete", "bcm_l3_host_add", "bcm_knet_netif_create", "bcm_field_qualify_SrcIp"});
  uint8 mac[6] = {0x01, 0x80, 0xC2, 0, 0, 0x0E};
  bcm_l2_addr_t station;
  bcm_l2_addr_t_init(&station, mac, 10);
  station.flags = BCM_L2_STATIC;
  bcm_l2_addr_add(0, &station);
  bcm_l2_addr_delete(0, mac, 10);

  bcm_l3_host_t host;
  bcm_l3_host_t_init(&host);
  host.l3a_ip_addr = 0xC0A80101;
  host.l3a_ip6_addr[0] = 0xFE;
  host.l3a_ip6_addr[1] = 0x80;
  host.l3a_ip6_addr[15] = 1;
  bcm_l3_host_add(0, &host);

  bcm_knet_netif_t netif;
  bcm_knet_netif_t_init(&netif);
  std::strcpy(netif.name, "ethv0");
  bcm_knet_netif_create(0, &netif);

  bcm_field_qualify_SrcIp(0, 3, 0x0A000001, 0xFFFFFF00);
  bcm_field_qualify_SrcMac(0, 3, mac, nullptr);
  EXPECT_EQ(take(),
            "bcm_l2_addr_add(0, {flags=0x20, mac=01:80:c2:00:00:0e, vid=10}) = -16\n"
            "bcm_l2_addr_delete(0, 01:80:c2:00:00:0e, 10) = -16\n"
            "bcm_l3_host_add(0, {l3a_ip_addr=192.168.1.1, l3a_ip6_addr=fe80::1}) = -16\n"
            "bcm_knet_netif_create(0, {name=\"ethv0\"}) = -16\n"
            "bcm_field_qualify_SrcIp(0, 3, 10.0.0.1, 255.255.255.0) = -16\n"
            "bcm_field_qualify_SrcMac(0, 3, 01:80:c2:00:00:0e, NULL) = -4\n");
}

TEST_F(Journal, ShowsListsWithTheirItems) {
  refuse({"bcm_switch_ipv6_reserved_multicast_addr_multi_set", "bcm_trunk_set", "bcm_stat_multi_get"});
  bcm_ip6_t addresses[2] = {{0xFF, 0x01}, {0xFF, 0x02}};
  bcm_ip6_t masks[2] = {{0xFF, 0xFF}, {0xFF, 0xFF}};
  bcm_switch_ipv6_reserved_multicast_addr_multi_set(0, 0, 2, addresses, masks);

  bcm_trunk_info_t info;
  bcm_trunk_info_t_init(&info);
  bcm_trunk_member_t members[2];
  for (bcm_trunk_member_t& member : members) bcm_trunk_member_t_init(&member);
  members[1].gport = 7;
  bcm_trunk_set(0, 1, &info, 2, members);

  bcm_stat_val_t names[2] = {snmpIfInOctets, snmpIfInUcastPkts};
  uint64 values[2];
  bcm_stat_multi_get(0, 1, 2, names, values);
  EXPECT_EQ(take(),
            "bcm_switch_ipv6_reserved_multicast_addr_multi_set(0, 0, 2, [ff01::, ff02::], [ffff::, ffff::]) = -16\n"
            "bcm_trunk_set(0, 1, {}, 2, [{}, {gport=7}]) = -16\n"
            "bcm_stat_multi_get(0, 1, 2, [0, 1], &?) = -16\n");
}

void on_l2_event(int /*unit*/, bcm_l2_addr_t* /*address*/, int /*operation*/, void* /*data*/) {}

TEST_F(Journal, ShowsCallbacksPointersAndTextsWithoutAddresses) {
  refuse({"bcm_l2_addr_register", "sh_process_command"});
  int anything = 0;
  bcm_l2_addr_register(0, on_l2_event, &anything);
  bcm_l2_addr_register(0, nullptr, nullptr);
  char command[] = "echo \"a\\b\"\n";
  sh_process_command(0, command);
  sh_process_command(0, nullptr);
  EXPECT_EQ(take(),
            "bcm_l2_addr_register(0, <callback>, <pointer>) = -16\n"
            "bcm_l2_addr_register(0, NULL, NULL) = -16\n"
            "sh_process_command(0, \"echo \\\"a\\\\b\\\"\\n\") = -16\n"
            "sh_process_command(0, NULL) = -16\n");
}

TEST_F(Journal, ShowsCallsThatAreOnNoUnit) {
  system_init(0);
  system_init(5);
  soc_linkscan_pause(0);
  EXPECT_EQ(take(),
            "system_init(0) = 0\n"
            "system_init(5) = -3\n"
            "soc_linkscan_pause(0) = 0\n");
}

TEST_F(Journal, TakesWholeLinesFromSeveralThreads) {
  constexpr int calls = 200;
  const auto work = [](bcm_vlan_t vid) {
    for (int i = 0; i < calls; ++i) bcm_vlan_create(0, vid);
  };
  std::vector<std::thread> threads;
  for (const bcm_vlan_t vid : std::initializer_list<bcm_vlan_t>{10, 20, 30}) threads.emplace_back(work, vid);
  for (std::thread& thread : threads) thread.join();

  std::istringstream lines(take());
  int count = 0;
  for (std::string line; std::getline(lines, line); ++count)
    EXPECT_TRUE(line.starts_with("bcm_vlan_create(0, ") && (line.ends_with("= 0") || line.ends_with("= -8"))) << line;
  EXPECT_EQ(count, 3 * calls);
}

}  // namespace
