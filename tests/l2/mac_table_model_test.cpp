#include <bcm/l2.h>
#include <bcm/switch.h>
#include <bcm/trunk.h>
#include <bcm/vlan.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string>

#include "support/gports.h"
#include "support/one_call.h"

namespace {

constexpr int virtual_port = 17 << 26 | 1;  // 1140850689
constexpr int trunk_gport = support::gport(BCM_GPORT_TYPE_TRUNK, 0);

/// The entry of 02:00:00:00:00:<number> in VLAN 10.
sai_l2_mac_entry_t entry_of(uint8_t number, int port = 0, uint32_t flags = 0) {
  sai_l2_mac_entry_t entry;
  sai_l2_init(&entry);
  entry.mac[0] = 0x02;
  entry.mac[5] = number;
  entry.vlan = 10;
  entry.port = port;
  entry.flags = flags;
  return entry;
}

class MacTableOfTheChip : public support::OneCall {
 protected:
  static void add(uint8_t number, int port, uint32_t flags = 0) {
    const sai_l2_mac_entry_t entry = entry_of(number, port, flags);
    ASSERT_EQ(sai_l2_mac_entry_add(unit, &entry), 0);
  }

  /// The numbers of the entries that the table has, in their order.
  static std::string present() {
    std::array<sai_l2_mac_entry_t, 16> table{};
    EXPECT_EQ(sai_l2_addr_show(unit, table.data()), 0);
    std::sort(table.begin(), table.end(), [](const auto& a, const auto& b) { return a.mac[5] < b.mac[5]; });
    std::string numbers;
    for (const sai_l2_mac_entry_t& entry : table)
      if (entry.vlan != 0) numbers += std::to_string(entry.mac[5]) + ' ';
    return numbers;
  }
};

// -------------------------------------------------------------------------------------------------- lookups ----

TEST_F(MacTableOfTheChip, EntryGetAddsTheStaticBitAndAnswersInPortOut) {
  add(1, 5, SAI_L2_MAC_STATIC);
  add(2, 6);
  sai_l2_mac_entry_t entry = entry_of(1, 77, 0x8);
  EXPECT_EQ(observe([&] { return sai_l2_mac_entry_get(1, &entry); }),
            "bcm_l2_addr_get(0, 02:00:00:00:00:01, 10, &{flags=0x20, mac=02:00:00:00:00:01, vid=10, port=5}) = 0\n"
            "returned 0\n");
  EXPECT_EQ(entry.flags, 0x9U);
  EXPECT_EQ(entry.port_out, 5);
  EXPECT_EQ(entry.port, 77);

  entry = entry_of(2, 77, 0x9);
  EXPECT_EQ(sai_l2_mac_entry_get(unit, &entry), 0);
  EXPECT_EQ(entry.flags, 0x9U) << "a dynamic entry takes no bit away";
  EXPECT_EQ(entry.port_out, 6);
}

TEST_F(MacTableOfTheChip, PortLookupsAnswerInPort) {
  add(1, 5);
  for (const auto lookup : {sai_l2_addr_port_id_get, sai_l2_addr_logic_port_get}) {
    sai_l2_mac_entry_t entry = entry_of(1, 77);
    entry.port_out = 66;
    EXPECT_EQ(observe([&] { return lookup(unit, &entry); }),
              "bcm_l2_addr_get(0, 02:00:00:00:00:01, 10, &{mac=02:00:00:00:00:01, vid=10, port=5}) = 0\nreturned 0\n");
    EXPECT_EQ(entry.port, 5);
    EXPECT_EQ(entry.port_out, 66);
    EXPECT_EQ(entry.flags, 0U);
  }
}

TEST_F(MacTableOfTheChip, AVirtualPortIsResolvedByTheLogicLookupAlone) {
  add(1, virtual_port);
  sai_l2_mac_entry_t entry = entry_of(1);
  EXPECT_EQ(sai_l2_addr_port_id_get(unit, &entry), 0);
  EXPECT_EQ(entry.port, virtual_port);

  const std::string found =
      "bcm_l2_addr_get(0, 02:00:00:00:00:01, 10, &{mac=02:00:00:00:00:01, vid=10, port=1140850689}) = 0\n";
  const std::string key = "bcm_vlan_port_find(0, {vlan_port_id=1140850689}) = ";
  const auto lookup = [&] { return sai_l2_addr_logic_port_get(unit, &entry); };
  entry.port = 77;
  EXPECT_EQ(observe_failing("bcm_vlan_port_find", BCM_E_NOT_FOUND, lookup),
            found + key + "-7\nlog: errors: NONE: Failed to get gport: Entry not found\nreturned -7\n");
  EXPECT_EQ(entry.port, 77);
  let_succeed("bcm_vlan_port_find");
  EXPECT_EQ(observe_failing("bcm_port_local_get", BCM_E_PORT, lookup),
            found + key +
                "0\nbcm_port_local_get(0, 0, &?) = -18\n"
                "log: errors: NONE: Failed to get local port: Invalid port\nreturned -9\n");
  EXPECT_EQ(entry.port, 77);
  let_succeed("bcm_vlan_port_find");
  EXPECT_EQ(observe(lookup), found + key + "0\nbcm_port_local_get(0, 0, &0) = 0\nreturned 0\n");
  EXPECT_EQ(entry.port, 0);
}

TEST_F(MacTableOfTheChip, AnAddressOfAVirtualPortLeadsToThePortItLiesOn) {
  ASSERT_EQ(sai_vlan_vport_init(unit), 0);
  ASSERT_EQ(bcm_vlan_create(unit, 30), BCM_E_NONE);
  sai_vport_t vport{};
  vport.match_vlan = 100;
  vport.vlan = 30;
  ASSERT_EQ(sai_vport_create(unit, 5, &vport), 0);
  add(1, vport.vport_id);

  sai_l2_mac_entry_t entry = entry_of(1, 77);
  EXPECT_EQ(sai_l2_addr_logic_port_get(unit, &entry), 0);
  EXPECT_EQ(entry.port, 5);
  EXPECT_EQ(sai_l2_addr_port_id_get(unit, &entry), 0);
  EXPECT_EQ(entry.port, vport.vport_id);

  sai_l2_mac_entry_t shown{};
  EXPECT_EQ(sai_l2_addr_show(unit, &shown), 0);
  EXPECT_EQ(shown.is_vport, 1U);
  EXPECT_EQ(shown.port, vport.vport_id);
  EXPECT_EQ(shown.port_out, 5);
}

// ----------------------------------------------------------------------------------------------------- dump ----

TEST_F(MacTableOfTheChip, ShowTellsThreeKindsOfEntries) {
  int32_t trunk = 4;
  ASSERT_EQ(sai_trunk_create(unit, BCM_TRUNK_FLAG_WITH_ID, &trunk), 0);
  add(1, 5);
  add(2, 6, SAI_L2_MAC_STATIC | SAI_L2_MAC_COPY_TO_CPU);
  add(3, trunk_gport | trunk);
  add(4, trunk_gport | trunk, SAI_L2_MAC_STATIC);

  std::array<sai_l2_mac_entry_t, 5> table;
  std::memset(table.data(), 0xA5, sizeof table);
  EXPECT_EQ(observe([&] { return sai_l2_addr_show(unit, table.data()); }),
            "bcm_l2_traverse(0, <callback>, <pointer>) = 0\nreturned 0\n");
  EXPECT_EQ(table[4].vlan, 0xA5A5A5A5U) << "there are four entries";
  std::sort(table.begin(), table.end() - 1, [](const auto& a, const auto& b) { return a.mac[5] < b.mac[5]; });

  constexpr struct {
    uint32_t flags;
    int port;
  } expected[] = {{0, 5}, {1, 6}, {0xFFFFFFFF, 4}, {1, 4}};
  for (size_t i = 0; i < 4; ++i) {
    constexpr auto untouched = static_cast<int32_t>(0xA5A5A5A5);
    EXPECT_EQ(std::memcmp(table[i].mac, entry_of(static_cast<uint8_t>(i + 1)).mac, sizeof table[i].mac), 0);
    EXPECT_EQ(table[i].vlan, 10U);
    EXPECT_EQ(table[i].flags, expected[i].flags);
    EXPECT_EQ(table[i].port, expected[i].port);
    EXPECT_EQ(table[i].is_vport, 0xA5A5A5A5U);
    EXPECT_EQ(table[i].port_out, untouched);
    EXPECT_EQ(table[i].trunk, untouched);
    EXPECT_EQ(table[i].reserved1, 0xA5A5A5A5U);
    EXPECT_EQ(table[i].reserved2, 0xA5A5A5A5U);
  }
}

TEST_F(MacTableOfTheChip, ShowMarksAVirtualPortAndSaysNothingWhenItIsNotFound) {
  add(1, virtual_port);
  sai_l2_mac_entry_t slot{};
  const auto show = [&] {
    std::memset(&slot, 0xA5, sizeof slot);
    return sai_l2_addr_show(unit, &slot);
  };
  let_succeed("bcm_vlan_port_find");
  EXPECT_EQ(show(), 0);
  EXPECT_EQ(slot.is_vport, 0xA5A5A501U) << "the low byte alone";
  EXPECT_EQ(slot.port, virtual_port);
  EXPECT_EQ(slot.port_out, 0);
  EXPECT_EQ(slot.flags, 0U);

  const std::string silent = observe_failing("bcm_vlan_port_find", BCM_E_NOT_FOUND, show);
  EXPECT_EQ(silent.find("log:"), std::string::npos) << silent;
  EXPECT_EQ(silent.find("bcm_port_local_get"), std::string::npos) << silent;
  EXPECT_TRUE(silent.ends_with("returned 0\n")) << silent;
  EXPECT_EQ(slot.is_vport, 0xA5A5A501U);
  EXPECT_EQ(slot.port_out, static_cast<int32_t>(0xA5A5A5A5));
  EXPECT_EQ(slot.vlan, 10U);

  let_succeed("bcm_vlan_port_find");
  const std::string silent_too = observe_failing("bcm_port_local_get", BCM_E_PORT, show);
  EXPECT_EQ(silent_too.find("log:"), std::string::npos) << silent_too;
  EXPECT_EQ(slot.is_vport, 0xA5A5A501U);
  EXPECT_EQ(slot.port_out, static_cast<int32_t>(0xA5A5A5A5));
}

TEST_F(MacTableOfTheChip, ShowWithoutAnArrayStopsAtTheFirstEntry) {
  EXPECT_EQ(observe([] { return sai_l2_addr_show(unit, nullptr); }),
            "bcm_l2_traverse(0, <callback>, <pointer>) = 0\nreturned 0\n");
  add(1, 5);
  EXPECT_EQ(observe([] { return sai_l2_addr_show(unit, nullptr); }),
            "bcm_l2_traverse(0, <callback>, <pointer>) = -1\n"
            "log: errors: NONE: Failed to show l2 table: Internal error\n"
            "returned -1\n");
}

// --------------------------------------------------------------------------------------------------- delete ----

TEST_F(MacTableOfTheChip, DeletesTakeWhatTheirModeNames) {
  for (uint8_t number = 1; number <= 3; ++number) add(number, 5);
  add(4, 6);
  sai_l2_mac_entry_t entry = entry_of(1, 5);
  EXPECT_EQ(sai_l2_mac_entry_del(unit, &entry, SAI_L2_DELETE_ENTRY | SAI_L2_DELETE_BY_TRUNK), 0);
  EXPECT_EQ(present(), "2 3 4 ");
  EXPECT_EQ(observe([&] { return sai_l2_mac_entry_del(unit, &entry, SAI_L2_DELETE_ENTRY); }),
            "bcm_l2_addr_delete(0, 02:00:00:00:00:01, 10) = -7\n"
            "log: errors: NONE: Failed to delete mac entry: Entry not found\n"
            "returned -7\n");
  entry = entry_of(2, 5);
  EXPECT_EQ(sai_l2_mac_entry_del(unit, &entry, SAI_L2_DELETE_BY_MAC), 0);
  EXPECT_EQ(present(), "3 4 ");
  EXPECT_EQ(sai_l2_mac_entry_del(unit, &entry, SAI_L2_DELETE_BY_PORT), 0);
  EXPECT_EQ(present(), "4 ");
  EXPECT_EQ(sai_l2_mac_entry_del(unit, &entry, SAI_L2_DELETE_BY_VLAN), 0);
  EXPECT_EQ(present(), "");
}

TEST_F(MacTableOfTheChip, AFlushGoesOnAfterAPortThatFailsAndForgetsIt) {
  add(1, 2);
  add(2, 3);
  add(3, 4);
  const sai_l2_mac_entry_t entry = entry_of(0);
  const std::string seen = observe_failing(
      "bcm_l2_addr_delete_by_port", BCM_E_BUSY, [&] { return sai_l2_mac_entry_del(unit, &entry, 0); }, 3);
  EXPECT_NE(seen.find("bcm_l2_addr_delete_by_port(0, 0, 3, 0x0) = -10\n"), std::string::npos) << seen;
  EXPECT_EQ(seen.find("log:"), std::string::npos) << seen;
  EXPECT_TRUE(seen.ends_with("bcm_l2_addr_delete_by_port(0, 0, 12, 0x0) = 0\nreturned 0\n")) << seen;
  EXPECT_EQ(present(), "2 ");
}

TEST_F(MacTableOfTheChip, AFlushPassesOverAPortWithoutAModuleId) {
  const sai_l2_mac_entry_t entry = entry_of(0);
  const auto flush = [&] { return sai_l2_mac_entry_del(unit, &entry, 0); };
  const std::string seen = observe_failing("bcm_stk_my_modid_get", BCM_E_BUSY, flush, 3);
  EXPECT_EQ(seen.find("bcm_l2_addr_delete_by_port(0, 0, 3,"), std::string::npos) << seen;
  EXPECT_TRUE(seen.ends_with("bcm_l2_addr_delete_by_port(0, 0, 12, 0x0) = 0\nreturned 0\n")) << seen;

  EXPECT_TRUE(observe_failing("bcm_stk_my_modid_get", BCM_E_BUSY, flush, 12)
                  .ends_with("bcm_stk_my_modid_get(0, &?) = -10\n"
                             "log: errors: NONE: Failed to delete mac entry: Hardware is busy\n"
                             "returned -1\n"));
}

TEST_F(MacTableOfTheChip, TrunksLoseTheirAddresses) {
  int32_t trunk = 4;
  ASSERT_EQ(sai_trunk_create(unit, BCM_TRUNK_FLAG_WITH_ID, &trunk), 0);
  add(1, trunk_gport | trunk);
  add(2, 5);
  EXPECT_EQ(sai_l2_addr_delete_by_trunk(unit, trunk), 0);
  EXPECT_EQ(present(), "2 ");
  add(1, trunk_gport | trunk);
  sai_l2_mac_entry_t entry = entry_of(0);
  entry.trunk = trunk;
  EXPECT_EQ(sai_l2_mac_entry_del(unit, &entry, SAI_L2_DELETE_BY_TRUNK), 0);
  EXPECT_EQ(present(), "2 ");
}

// ----------------------------------------------------------------------------------------- what is read back ----

TEST_F(MacTableOfTheChip, AgeTimeComesBack) {
  ASSERT_EQ(sai_l2_mac_age_time_set(unit, 120), 0);
  int32_t seconds = 0;
  EXPECT_EQ(observe([&] { return sai_l2_mac_age_time_get(unit, &seconds); }),
            "bcm_l2_age_timer_get(0, &120) = 0\nreturned 0\n");
  EXPECT_EQ(seconds, 120);
}

TEST_F(MacTableOfTheChip, ALearnLimitComesBackAsANumberAlone) {
  const sai_l2_learn_limit_t set{.flags = BCM_L2_LEARN_LIMIT_VLAN | BCM_L2_LEARN_LIMIT_ACTION_DROP,
                                 .vlan = 10,
                                 .port = 0,
                                 .trunk = 0,
                                 .scope_id = 0,
                                 .limit = 100};
  ASSERT_EQ(sai_l2_mac_learn_limit_set(unit, &set), 0);
  sai_l2_learn_limit_t asked = set;
  asked.flags = BCM_L2_LEARN_LIMIT_VLAN;
  asked.limit = 0;
  EXPECT_EQ(sai_l2_mac_learn_limit_get(unit, &asked), 0);
  EXPECT_EQ(asked.limit, 100);
  EXPECT_EQ(asked.flags, uint32_t{BCM_L2_LEARN_LIMIT_VLAN});
}

TEST_F(MacTableOfTheChip, TheLearnLimitOfTheSystemIsSetAndNotRead) {
  sai_l2_learn_limit_t limit{
      .flags = BCM_L2_LEARN_LIMIT_SYSTEM, .vlan = 0, .port = 0, .trunk = 0, .scope_id = 0, .limit = 100};
  EXPECT_EQ(observe([&] { return sai_l2_mac_learn_limit_set(unit, &limit); }),
            "bcm_l2_learn_limit_set(0, {flags=0x1, limit=100}) = 0\nreturned 0\n");
  limit.limit = 77;
  EXPECT_EQ(observe([&] { return sai_l2_mac_learn_limit_get(unit, &limit); }),
            "bcm_l2_learn_limit_get(0, {}) = -4\n"
            "log: errors: NONE: Failed to get mac limit: Invalid parameter\n"
            "returned -5\n");
  EXPECT_EQ(limit.limit, 77);
}

TEST_F(MacTableOfTheChip, InfoCounts) {
  add(1, 5);
  add(2, 5);
  int32_t max = 0;
  int32_t current = 0;
  EXPECT_EQ(observe([&] { return sai_l2_info(unit, &max, &current); }),
            "bcm_switch_object_count_multi_get(0, 2, [0, 32], &[2, 32768]) = 0\n"
            "log: debugging: NONE: mac entries      :      2 /  32768\n"
            "returned 0\n");
  EXPECT_EQ(current, 2);
  EXPECT_EQ(max, 32768);
}

}  // namespace
