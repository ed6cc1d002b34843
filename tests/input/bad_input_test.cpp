// Every function of sai.h with every argument bad in turn: nothing crashes, nothing outside the caller's memory is
// touched, and what cannot be is refused.
#include <algorithm>
#include <climits>
#include <set>

#include "input/all_functions.h"

namespace {

using input::all_bad;
using input::Bad;
using input::Function;
using input::name_of;
using input::Outcome;
using input::quietly;
using input::value_of;

/// Which of the numbers cannot be, for what is called so.
bool is_impossible(std::string_view name, int64_t number) {
  struct Row {
    std::set<std::string_view> names;
    std::set<int64_t> numbers;
  };
  static const Row rows[] = {
      {{"unit"}, {INT32_MIN, -1, 1, 255, 65535, INT32_MAX}},
      {{"port", "target", "dest_port"}, {-1, 255, 256, 65535}},
      {{"vlan", "vid", "user_vlan", "user_vid", "report_vid", "old_vid", "new_vid", "inner_vid", "outer_vid",
        "inner_lo", "inner_hi", "match_vlan", "match_inner_vlan", "outer_vlan"},
       {0, 4096, 65535}},
      {{"stg", "tid", "trunk", "session", "group", "entry", "entry_id", "policer_id", "index", "vport_id"},
       {INT32_MIN, -1, 65535, INT32_MAX}},
  };
  return std::any_of(std::begin(rows), std::end(rows),
                     [&](const Row& row) { return row.names.contains(name) && row.numbers.contains(number); });
}

std::string_view called(const Function& function, const Bad& bad) {
  return bad.field != nullptr ? bad.field->name : function.parameters[bad.parameter].name;
}

bool is_impossible(const Function& function, const Bad& bad) {
  return !bad.is_null && bad.text == nullptr && is_impossible(called(function, bad), bad.number);
}

class BadInput : public input::AllFunctions {
 protected:
  /// Calls every function with all that is bad and `wanted`, each in a scene in which nothing bad was accepted before,
  /// and gives what came to `check`.
  void call_all(
      bool (*wanted)(const Function& function, const Bad& bad),
      const std::function<void(const std::string& what, const Bad& bad, std::optional<int32_t> result)>& check);
};

void BadInput::call_all(
    bool (*wanted)(const Function& function, const Bad& bad),
    const std::function<void(const std::string& what, const Bad& bad, std::optional<int32_t> result)>& check) {
  int calls = 0;
  for (const Function& function : input::functions()) {
    bool is_new = false;
    for (const Bad& bad : all_bad(function)) {
      if (!wanted(function, bad)) continue;
      if (!is_new) set_scene();
      const Outcome outcome = quietly(function, bad);
      const std::string what = name_of(function, bad);
      EXPECT_TRUE(outcome.memory_intact) << what << ' ' << value_of(bad);
      check(what, bad, outcome.result);
      is_new = outcome.result.value_or(0) < 0;
      ++calls;
    }
  }
  RecordProperty("calls", calls);
}

TEST_F(BadInput, GoodArgumentsAreAccepted) {
  for (const Function& function : input::functions()) {
    set_scene();
    const Outcome outcome = quietly(function);
    EXPECT_TRUE(outcome.memory_intact) << function.name;
    const int32_t result = outcome.result.value_or(0);
    EXPECT_TRUE(result >= 0 || result == SAI_E_EXISTS) << function.name << ' ' << result;
  }
}

TEST_F(BadInput, NullPointersAreRefused) {
  // What is said of them there instead.
  const std::map<std::string, int32_t> otherwise = {
      {"sai_level_match text", -1},
      {"sai_sh_process_command command", SAI_E_FAIL},
      {"sai_switch_chip_init system_mac", SAI_E_NONE},    // a step that fails, as others do
      {"sai_register_link_service handler", SAI_E_NONE},  // always
      {"sai_register_l2_service callback", SAI_E_NONE},   // nobody is told
      {"sai_unregister_l2_service callback", SAI_E_NOT_FOUND},
      {"sai_l2_addr_show entries", SAI_E_FAIL},  // ends the work at the first entry
  };
  call_all([](const Function&, const Bad& bad) { return bad.is_null; },
           [&](const std::string& what, const Bad&, std::optional<int32_t> result) {
             const auto found = otherwise.find(what);
             const int32_t expected = found == otherwise.end() ? SAI_E_PARAM : found->second;
             EXPECT_EQ(result.value_or(expected), expected) << what;
           });
}

/// What cannot be and is accepted all the same, as sai.h says. Without a number: any of them.
const std::set<std::string> accepted_all_the_same = {
    // Every port of a unit that is not there: none.
    "sai_stat_clean unit",
    "sai_dhcp_packet_to_cpu unit",
    // No failure shows.
    "sai_port_mib_read unit",
    "sai_port_mib_read port",
    "sai_multicast_egress_add vlan",
    "sai_multicast_egress_add group",
    "sai_vport_create vport.match_vlan",
    "sai_vport_create vport.match_inner_vlan",
    "sai_vport_destroy vport.match_vlan",
    "sai_vport_destroy vport.match_inner_vlan",
    "sai_vport_destroy vport.vlan",
    "sai_vport_destroy vport.outer_vlan",
    // Always unit 0.
    "sai_l2_mac_entry_get unit",
    // Not read, or written only.
    "sai_l2_init entry.vlan",
    "sai_l2_init entry.port",
    "sai_l2_init entry.trunk",
    "sai_l2_mac_entry_get entry.port",
    "sai_l2_mac_entry_get entry.trunk",
    "sai_l2_mac_entry_add entry.trunk",
    "sai_l2_mac_entry_del entry.port",
    "sai_l2_mac_entry_del entry.trunk",
    "sai_l2_addr_port_id_get entry.port",
    "sai_l2_addr_port_id_get entry.trunk",
    "sai_l2_addr_logic_port_get entry.port",
    "sai_l2_addr_logic_port_get entry.trunk",
    "sai_l2_addr_show entries.vlan",
    "sai_l2_addr_show entries.port",
    "sai_l2_addr_show entries.trunk",
    "sai_l2_mac_learn_limit_init limit.vlan",
    "sai_l2_mac_learn_limit_init limit.port",
    "sai_l2_mac_learn_limit_init limit.trunk",
    "sai_l2_mac_learn_limit_set limit.vlan",
    "sai_l2_mac_learn_limit_set limit.trunk",
    "sai_l2_mac_learn_limit_get limit.vlan",
    "sai_l2_mac_learn_limit_get limit.trunk",
    "sai_mirror_dest_port_unset port",
    "sai_fp_vport_qualify_action group",
    "sai_vport_create vport.vport_id",
    // The low 12 bits of what is compared, 0 like any other.
    "sai_fp_dhcp_requeset_to_cpu_set vlan",
    "sai_fp_dhcp_response_to_cpu_set vlan",
    "sai_fp_dhcpv6_req_to_cpu_set vlan",
    "sai_fp_vport_qualify_set vlan",
    "sai_ipsg_verify_config vlan",
    "sai_ipsg_parameter_config vlan",
    // 0 means none.
    "sai_vport_create vport.vlan 0",
    "sai_vport_create vport.outer_vlan 0",
    // The numbers of sessions are free, an 8-bit port is 0 then, and a port that is no port is taken out of the set.
    "sai_mirror_dest_port_set session 65535",
    "sai_ipv6_ipmc_add port 256",
    "sai_port_isolate_set target 255",
};

TEST_F(BadInput, WhatCannotBeIsRefused) {
  std::set<std::string> accepted;
  call_all([](const Function& function, const Bad& bad) { return is_impossible(function, bad); },
           [&](const std::string& what, const Bad& bad, std::optional<int32_t> result) {
             if (result.value_or(SAI_E_FAIL) < 0) return;
             accepted.insert(accepted_all_the_same.contains(what) ? what : what + ' ' + value_of(bad));
           });
  EXPECT_EQ(accepted, accepted_all_the_same);
}

TEST_F(BadInput, WhateverElseIsBadGetsAResultOfTheTable) {
  const std::set<int32_t> codes = {SAI_E_FAIL,   SAI_E_UNAVAIL,   SAI_E_MEMORY, SAI_E_PARAM,
                                   SAI_E_EXISTS, SAI_E_NOT_FOUND, SAI_E_PORT,   SAI_E_FULL};
  call_all([](const Function& function, const Bad& bad) { return !bad.is_null && !is_impossible(function, bad); },
           [&](const std::string& what, const Bad& bad, std::optional<int32_t> result) {
             const int32_t code = result.value_or(0);
             EXPECT_TRUE(code >= 0 || codes.contains(code)) << what << ' ' << value_of(bad) << ": " << code;
           });
}

TEST_F(BadInput, TextsAreCutToTheCallersBuffers) {
  const auto read = [](const input::Room& average, int32_t average_size, const input::Room& highest, int32_t size) {
    return sai_switch_temperature_monitor_get(unit, reinterpret_cast<char*>(average.get()), average_size,
                                              reinterpret_cast<char*>(highest.get()), size);
  };
  for (const int32_t size : {INT32_MIN, -1, 0, 1, 2, 5}) {
    const std::size_t bytes = size > 0 ? static_cast<std::size_t>(size) : 0;
    input::Room average(bytes);
    input::Room highest(bytes);
    EXPECT_EQ(read(average, size, highest, size), 0) << size;
    EXPECT_TRUE(average.intact() && highest.intact()) << size;
  }
  // Of nothing, nothing is written.
  EXPECT_EQ(sai_switch_temperature_monitor_get(unit, nullptr, 0, nullptr, -1), 0);
}

TEST_F(BadInput, ALogOfAnUnknownModuleSaysSo) {
  for (const int32_t module : {INT32_MIN, -1, 2, INT32_MAX}) {
    sai_log_default->module = module;
    EXPECT_EQ(observe([] {
                sai_err("a message");
                return 0;
              }),
              "log: errors: unknown: a message\nreturned 0\n")
        << module;
  }
}

TEST_F(BadInput, WithoutALogThereIsNoLimitToSet) {
  sai_log_handle* const log = sai_log_default;
  sai_log_default = nullptr;
  sai_log_set_level(nullptr, SAI_LOG_FILE, SAI_LOG_OFF);
  sai_log_default = log;
  EXPECT_EQ(log->max_level[SAI_LOG_FILE], SAI_LOG_DEBUGGING);
}

}  // namespace
