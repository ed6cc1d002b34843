#include <bcm/l2.h>
#include <bcm/switch.h>
#include <soc/drv.h>

#include <cstddef>
#include <cstring>
#include <string>

#include "support/one_call.h"

namespace {

using MacTable = support::OneCall;

// The records that callers share with other libraries.
using Entry = sai_l2_mac_entry_t;
static_assert(sizeof(Entry) == 40 && offsetof(Entry, is_vport) == 0 && offsetof(Entry, flags) == 4);
static_assert(offsetof(Entry, mac) == 8 && offsetof(Entry, vlan) == 16 && offsetof(Entry, port) == 24);
static_assert(offsetof(Entry, port_out) == 28 && offsetof(Entry, trunk) == 32);
using Limit = sai_l2_learn_limit_t;
static_assert(sizeof(Limit) == 20 && offsetof(Limit, flags) == 0 && offsetof(Limit, vlan) == 4);
static_assert(offsetof(Limit, port) == 6 && offsetof(Limit, trunk) == 8 && offsetof(Limit, scope_id) == 12);
static_assert(offsetof(Limit, limit) == 16);

/// 02:00:00:00:00:01 in VLAN 10 on port 5.
sai_l2_mac_entry_t entry_5() {
  sai_l2_mac_entry_t entry{};
  entry.mac[0] = 0x02;
  entry.mac[5] = 0x01;
  entry.vlan = 0x3000A;  // its upper half does not count
  entry.port = 5;
  entry.trunk = 4;
  return entry;
}

/// Whether every byte of a record is 0 once `init`, which returns 0, has seen it full of others.
template <class Record>
bool clears(int32_t (*init)(Record*)) {
  Record record;
  std::memset(&record, 0xA5, sizeof record);
  constexpr unsigned char zeros[sizeof record] = {};
  return init(&record) == 0 && std::memcmp(&record, zeros, sizeof record) == 0;
}

TEST_F(MacTable, InitsClearTheWholeRecord) {
  EXPECT_TRUE(clears(sai_l2_init));
  EXPECT_TRUE(clears(sai_l2_mac_learn_limit_init));
}

TEST_F(MacTable, FunctionsThatAreOneCall) {
  expect({
      {[] { return sai_l2_mac_init(unit); }, "bcm_l2_init(0)", "Failed to init mac"},
      {[] { return sai_l2_mac_age_time_set(unit, 300); }, "bcm_l2_age_timer_set(0, 300)",
       "Failed to set mac age time 300"},
      {[] { return sai_l2_addr_delete_by_trunk(unit, 4); }, "bcm_l2_addr_delete_by_trunk(0, 4, 0x0)",
       "Failed to delete l2 addr by trunk [4]"},
      {[] { return sai_l2_mac_learn_limit_enable(unit); }, "bcm_l2_learn_limit_enable(0)",
       "Failed to enable mac limit"},
      {[] { return sai_l2_mac_learn_limit_disable(unit); }, "bcm_l2_learn_limit_disable(0)",
       "Failed to disable mac limit"},
      {[] { return sai_l2_addr_show(unit, nullptr); }, "bcm_l2_traverse(0, <callback>, <pointer>)",
       "Failed to show l2 table"},
      {[] { return sai_l2_dst_hit_enable_set(unit, 1); }, "bcm_switch_control_set(0, 611, 1)",
       "bcm_switch_control_set bcmSwitchL2DstHitEnable failed"},
  });
}

TEST_F(MacTable, AgeTimeGetThatFailsLeavesTheTimeAndNamesItsPointer) {
  int32_t seconds = 77;
  EXPECT_EQ(
      observe_failing("bcm_l2_age_timer_get", BCM_E_FULL, [&] { return sai_l2_mac_age_time_get(unit, &seconds); }),
      "bcm_l2_age_timer_get(0, &?) = -6\n"
      "log: errors: NONE: Failed to get mac age time " +
          support::low_word(&seconds) +
          ": Table is full\n"
          "returned -13\n");
  EXPECT_EQ(seconds, 77);
}

TEST_F(MacTable, DstHitGet) {
  int32_t enable = 77;
  EXPECT_EQ(observe_failing("bcm_switch_control_get", BCM_E_UNAVAIL,
                            [&] { return sai_l2_dst_hit_enable_get(unit, &enable); }),
            "bcm_switch_control_get(0, 611, &?) = -16\n"
            "log: errors: NONE: bcm_switch_control_set bcmSwitchL2DstHitEnable failed: Not available on this chip\n"
            "returned -2\n");
  EXPECT_EQ(enable, 77);
  ASSERT_EQ(bcm_switch_control_set(unit, bcmSwitchL2DstHitEnable, 1), BCM_E_NONE);
  EXPECT_EQ(observe([&] { return sai_l2_dst_hit_enable_get(unit, &enable); }),
            "bcm_switch_control_get(0, 611, &1) = 0\nreturned 0\n");
  EXPECT_EQ(enable, 1);
}

// ------------------------------------------------------------------------------------------------------ add ----

TEST_F(MacTable, AddTranslatesEachFlag) {
  constexpr struct {
    uint32_t own;
    const char* sdk;
  } rows[] = {{0, ""},
              {0x1, "flags=0x20, "},
              {0x2, "flags=0x2, "},
              {0x4, "flags=0x4, "},
              {0x8, "flags=0x8, "},
              {0xF, "flags=0x2e, "},
              {0xFFFFFFF0, ""}};
  for (const auto& [own, sdk] : rows) {
    sai_l2_mac_entry_t entry = entry_5();
    entry.flags = own;
    expect({{[&] { return sai_l2_mac_entry_add(unit, &entry); },
             "bcm_l2_addr_add(0, {" + std::string(sdk) + "mac=02:00:00:00:00:01, vid=10, port=5})",
             "Failed to adding mac entry"}});
  }
}

// --------------------------------------------------------------------------------------------------- delete ----

TEST_F(MacTable, TheFirstBitOfTheModeDecidesWhatIsDeleted) {
  sai_l2_mac_entry_t entry = entry_5();
  entry.flags = 0x9;
  const std::string one = "bcm_l2_addr_delete(0, 02:00:00:00:00:01, 10)";
  const std::string by_mac = "bcm_l2_addr_delete_by_mac(0, 02:00:00:00:00:01, 0x9)";
  const std::string by_vlan = "bcm_l2_addr_delete_by_vlan(0, 10, 0x9)";
  const std::string by_port = "bcm_l2_addr_delete_by_port(0, 0, 5, 0x9)";
  const std::string by_trunk = "bcm_l2_addr_delete_by_trunk(0, 4, 0x0)";
  const struct {
    uint8_t mode;
    std::string sdk_call;
  } rows[] = {{0x01, one}, {0x02, by_mac}, {0x04, by_vlan}, {0x08, by_port}, {0x20, by_trunk}, {0x21, one},
              {0xFF, one}, {0xFE, by_mac}, {0xFC, by_vlan}, {0xF8, by_port}, {0xF0, by_trunk}};
  for (const auto& [mode, sdk_call] : rows)
    expect({{[&, mode = mode] { return sai_l2_mac_entry_del(unit, &entry, mode); }, sdk_call,
             "Failed to delete mac entry"}});
}

/// What the journal has of `calls` calls, one for each front port.
std::string of_each_port(const std::string& before_port, const std::string& after_port) {
  std::string result;
  for (int port = 1; port <= 12; ++port) result += before_port + std::to_string(port) + after_port;
  return result;
}

TEST_F(MacTable, WithoutABitEveryPortIsFlushed) {
  sai_l2_mac_entry_t entry = entry_5();
  entry.flags = 0x3;
  constexpr uint8_t modes[] = {0x00, 0x10, 0x40, 0xD0};
  let_succeed("bcm_stk_my_modid_get");
  let_succeed("bcm_l2_addr_delete_by_port");
  for (const uint8_t mode : modes) {
    EXPECT_EQ(observe([&] { return sai_l2_mac_entry_del(unit, &entry, mode); }),
              of_each_port("bcm_stk_my_modid_get(0, &0) = 0\nbcm_l2_addr_delete_by_port(0, 0, ", ", 0x3) = 0\n") +
                  "returned 0\n");
  }
}

TEST_F(MacTable, AFlushWalksOnWhenAPortFailsAndLogsOnce) {
  const sai_l2_mac_entry_t entry = entry_5();
  let_succeed("bcm_stk_my_modid_get");
  EXPECT_EQ(observe_failing(
                "bcm_l2_addr_delete_by_port", BCM_E_BUSY, [&] { return sai_l2_mac_entry_del(unit, &entry, 0); },
                SWSDK_FAULT_EVERY_CALL),
            of_each_port("bcm_stk_my_modid_get(0, &0) = 0\nbcm_l2_addr_delete_by_port(0, 0, ", ", 0x0) = -10\n") +
                "log: errors: NONE: Failed to delete mac entry: Hardware is busy\n"
                "returned -1\n");
}

TEST_F(MacTable, AFlushWithoutModuleIdsDeletesNothing) {
  const sai_l2_mac_entry_t entry = entry_5();
  std::string calls;
  for (int port = 1; port <= 12; ++port) calls += "bcm_stk_my_modid_get(0, &?) = -16\n";
  EXPECT_EQ(observe_failing(
                "bcm_stk_my_modid_get", BCM_E_UNAVAIL, [&] { return sai_l2_mac_entry_del(unit, &entry, 0); },
                SWSDK_FAULT_EVERY_CALL),
            calls +
                "log: errors: NONE: Failed to delete mac entry: Not available on this chip\n"
                "returned -2\n");
}

TEST_F(MacTable, AFlushWalksTheFrontPortsThatThereAre) {
  const sai_l2_mac_entry_t entry = entry_5();
  SOC_PORT_MIN(unit, port) = 2;
  SOC_PORT_MAX(unit, port) = 5;
  BCM_PBMP_CLEAR(SOC_PORT_BITMAP(unit, port));
  for (const int port : {1, 2, 5, 6}) BCM_PBMP_PORT_ADD(SOC_PORT_BITMAP(unit, port), port);
  let_succeed("bcm_stk_my_modid_get");
  let_succeed("bcm_l2_addr_delete_by_port");
  EXPECT_EQ(observe([&] { return sai_l2_mac_entry_del(unit, &entry, 0); }),
            "bcm_stk_my_modid_get(0, &0) = 0\n"
            "bcm_l2_addr_delete_by_port(0, 0, 2, 0x0) = 0\n"
            "bcm_stk_my_modid_get(0, &0) = 0\n"
            "bcm_l2_addr_delete_by_port(0, 0, 5, 0x0) = 0\n"
            "returned 0\n");
}

TEST_F(MacTable, AFlushWithoutPortsIsSuccess) {
  const sai_l2_mac_entry_t entry = entry_5();
  EXPECT_EQ(observe([&] { return sai_l2_mac_entry_del(5, &entry, 0); }), "returned 0\n");
  SOC_PORT_MAX(unit, port) = 0;
  EXPECT_EQ(observe([&] { return sai_l2_mac_entry_del(unit, &entry, 0); }), "returned 0\n");
  SOC_PORT_MIN(unit, port) = -1;
  EXPECT_EQ(observe([&] { return sai_l2_mac_entry_del(unit, &entry, 0); }), "returned 0\n");
}

// -------------------------------------------------------------------------------------------------- lookups ----

TEST_F(MacTable, LookupsThatFailLeaveTheEntry) {
  const struct {
    int32_t (*call)(int32_t, sai_l2_mac_entry_t*);
    std::string message;
  } rows[] = {{sai_l2_mac_entry_get, "Failed to get mac entry"},
              {sai_l2_addr_port_id_get, "Failed to get l2 addr source port"},
              {sai_l2_addr_logic_port_get, "Failed to get l2 addr source port"}};
  for (const auto& [call, message] : rows) {
    sai_l2_mac_entry_t entry = entry_5();
    entry.flags = 0x8;
    entry.port_out = 66;
    const sai_l2_mac_entry_t before = entry;
    EXPECT_EQ(observe_failing("bcm_l2_addr_get", BCM_E_NOT_FOUND, [&, call = call] { return call(unit, &entry); }),
              "bcm_l2_addr_get(0, 02:00:00:00:00:01, 10, &?) = -7\n"
              "log: errors: NONE: " +
                  message + ": Entry not found\nreturned -7\n");
    EXPECT_EQ(std::memcmp(&entry, &before, sizeof entry), 0);
  }
}

TEST_F(MacTable, EntryGetReadsUnit0WhateverTheUnit) {
  sai_l2_mac_entry_t entry = entry_5();
  EXPECT_EQ(observe_failing("bcm_l2_addr_get", BCM_E_NONE, [&] { return sai_l2_mac_entry_get(1, &entry); }),
            "bcm_l2_addr_get(0, 02:00:00:00:00:01, 10, &{}) = 0\nreturned 0\n");
  EXPECT_EQ(observe([&] { return sai_l2_addr_port_id_get(1, &entry); }),
            "bcm_l2_addr_get(1, 02:00:00:00:00:01, 10, &?) = -3\n"
            "log: errors: NONE: Failed to get l2 addr source port: No such unit\n"
            "returned -1\n");
}

TEST_F(MacTable, EntryGetAnswersInPortOutAndThePortLookupsInPort) {
  sai_l2_mac_entry_t entry = entry_5();
  entry.port_out = 66;
  let_succeed("bcm_l2_addr_get");
  EXPECT_EQ(sai_l2_mac_entry_get(unit, &entry), 0);
  EXPECT_EQ(entry.port_out, 0);
  EXPECT_EQ(entry.port, 5);
  entry.port_out = 66;
  EXPECT_EQ(sai_l2_addr_port_id_get(unit, &entry), 0);
  EXPECT_EQ(entry.port, 0);
  entry.port = 5;
  EXPECT_EQ(sai_l2_addr_logic_port_get(unit, &entry), 0);
  EXPECT_EQ(entry.port, 0);
  EXPECT_EQ(entry.port_out, 66);
}

// --------------------------------------------------------------------------------------------- learn limits ----

TEST_F(MacTable, LearnLimitSetTakesEightFlagsAndWhatIdentifiesTheirScopes) {
  const struct {
    uint32_t flags;
    std::string sdk;
  } rows[] = {
      {0, ""},
      {0x1, "flags=0x1, "},
      {0x2, "flags=0x2, vlan=10, "},
      {0x4, "flags=0x4, port=65535, "},
      {0x8, "flags=0x8, trunk=4, "},
      {0x10, "flags=0x10, "},
      {0x20, "flags=0x20, "},
      {0x40, "flags=0x40, "},
      {0x80, "flags=0x80, tunnel_id=9, "},
      {0xFFFFFFFF, "flags=0xff, vlan=10, port=65535, trunk=4, tunnel_id=9, "},
      {0xFFFFFF00, ""},
  };
  for (const auto& [flags, sdk] : rows) {
    const sai_l2_learn_limit_t limit{
        .flags = flags, .vlan = 10, .port = 65535, .trunk = 4, .scope_id = 9, .limit = 100};
    expect({{[&] { return sai_l2_mac_learn_limit_set(unit, &limit); },
             "bcm_l2_learn_limit_set(0, {" + sdk + "limit=100})", "Failed to set mac limit 100"}});
  }
}

TEST_F(MacTable, LearnLimitGetTakesFourScopesOnly) {
  const struct {
    uint32_t flags;
    std::string sdk;
  } rows[] = {
      {0, ""},
      {0x2, "flags=0x2, vlan=10"},
      {0x4, "flags=0x4, port=5"},
      {0x8, "flags=0x8, trunk=4"},
      {0x80, "flags=0x80, tunnel_id=9"},
      {0xFFFFFFFF, "flags=0x8e, vlan=10, port=5, trunk=4, tunnel_id=9"},
      {0xFFFFFF71, ""},
  };
  for (const auto& [flags, sdk] : rows) {
    sai_l2_learn_limit_t limit{.flags = flags, .vlan = 10, .port = 5, .trunk = 4, .scope_id = 9, .limit = 100};
    const auto call = [&] { return sai_l2_mac_learn_limit_get(unit, &limit); };
    EXPECT_EQ(observe_failing("bcm_l2_learn_limit_get", BCM_E_NOT_FOUND, call),
              "bcm_l2_learn_limit_get(0, {" + sdk +
                  "}) = -7\n"
                  "log: errors: NONE: Failed to get mac limit: Entry not found\n"
                  "returned -7\n");
    EXPECT_EQ(limit.limit, 100);
    EXPECT_EQ(observe_failing("bcm_l2_learn_limit_get", BCM_E_NONE, call),
              "bcm_l2_learn_limit_get(0, {" + sdk + "}) = 0\nreturned 0\n");
    EXPECT_EQ(limit.limit, 0);
    EXPECT_EQ(limit.flags, flags);
  }
}

// --------------------------------------------------------------------------------------------------- counts ----

TEST_F(MacTable, InfoThatFailsEndsItsMessageWithANewline) {
  int32_t max = 66;
  int32_t current = 77;
  EXPECT_EQ(observe_failing("bcm_switch_object_count_multi_get", BCM_E_UNAVAIL,
                            [&] { return sai_l2_info(unit, &max, &current); }),
            "bcm_switch_object_count_multi_get(0, 2, [0, 32], &?) = -16\n"
            "log: errors: NONE: Get L2 info failed Not available on this chip\n"
            "log, next line\n"
            "returned -2\n");
  EXPECT_EQ(max, 66);
  EXPECT_EQ(current, 77);
}

TEST_F(MacTable, InfoLogsBothCounts) {
  int32_t max = 66;
  int32_t current = 77;
  EXPECT_EQ(observe_failing("bcm_switch_object_count_multi_get", BCM_E_NONE,
                            [&] { return sai_l2_info(unit, &max, &current); }),
            "bcm_switch_object_count_multi_get(0, 2, [0, 32], &[0, 0]) = 0\n"
            "log: debugging: NONE: mac entries      :      0 /      0\n"
            "returned 0\n");
  EXPECT_EQ(max, 0);
  EXPECT_EQ(current, 0);
}

TEST_F(MacTable, InfoOfAnAbsentUnit) {
  int32_t max = 66;
  int32_t current = 77;
  EXPECT_EQ(observe([&] { return sai_l2_info(5, &max, &current); }),
            "bcm_switch_object_count_multi_get(5, 2, [0, 32], &?) = -3\n"
            "log: errors: NONE: Get L2 info failed No such unit\n"
            "log, next line\n"
            "returned -1\n");
}

}  // namespace
