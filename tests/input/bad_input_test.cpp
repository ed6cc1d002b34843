// Every function of sai.h with every argument bad in turn: nothing crashes, nothing outside the caller's memory is
// touched, and what cannot be is refused.
#include <bcm/policer.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <set>

#include "input/arguments.h"
#include "support/scene.h"
#include "support/start.h"

namespace {

using input::Bad;
using input::chosen;
using input::Field;
using input::Function;
using input::Outcome;
using input::Parameter;

/// Numbers at the edges of ports, VLANs, tables, bitmaps and types. Each goes in cut to the argument's type.
constexpr int64_t numbers[] = {INT32_MIN, -1,  0,   1,   7,    8,    31,    32,    63,        64,         127,
                               128,       255, 256, 511, 4095, 4096, 65535, 65536, INT32_MAX, 0x80000000, 0xFFFFFFFE};

/// Texts that are too long for everything, or that somebody might take for more than a text.
const std::string long_text(5000, 'x');
const char* const texts[] = {
    "", "%s%s%s%s%n", "\xFF\xFE", "led", "led 4294967296 on", "emergencies!", long_text.c_str()};

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

/// Whether the function trusts its caller with that argument.
bool is_trusted(const Function& function, const Parameter& parameter) {
  const std::string_view name = function.name;
  return name == "close_sai_log" || (name == "sai_log_set_level" && parameter.name == std::string_view("destination"));
}

std::string_view called(const Function& function, const Bad& bad) {
  return bad.field != nullptr ? bad.field->name : function.parameters[bad.parameter].name;
}

bool is_impossible(const Function& function, const Bad& bad) {
  return !bad.is_null && bad.text == nullptr && is_impossible(called(function, bad), bad.number);
}

std::vector<Bad> all_bad(const Function& function) {
  std::vector<Bad> all;
  for (std::size_t i = 0; i < function.parameters.size(); ++i) {
    const Parameter& parameter = function.parameters[i];
    if (is_trusted(function, parameter)) continue;
    if (parameter.is_pointer) all.push_back({.parameter = i, .is_null = true});
    if (parameter.is_text)
      for (const char* const text : texts) all.push_back({.parameter = i, .text = text});
    if (parameter.is_number)
      for (const int64_t number : numbers) all.push_back({.parameter = i, .number = number});
    for (const Field& field : parameter.fields)
      if (field.is_number)
        for (const int64_t number : numbers) all.push_back({.parameter = i, .field = &field, .number = number});
  }
  return all;
}

/// "sai_l2_mac_entry_add entry.port".
std::string name_of(const Function& function, const Bad& bad) {
  const std::string parameter = std::string(function.name) + ' ' + function.parameters[bad.parameter].name;
  return bad.field == nullptr ? parameter : parameter + '.' + bad.field->name;
}

std::string value_of(const Bad& bad) {
  if (bad.is_null) return "null";
  return bad.text != nullptr ? '"' + std::string(bad.text).substr(0, 20) + '"' : std::to_string(bad.number);
}

/// What functions print is not looked at here.
class Silence {
 public:
  Silence() : console_(dup(STDOUT_FILENO)) {
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    dup2(nowhere, STDOUT_FILENO);
    close(nowhere);
  }
  Silence(const Silence&) = delete;
  Silence& operator=(const Silence&) = delete;
  ~Silence() {
    fflush(stdout);
    dup2(console_, STDOUT_FILENO);
    close(console_);
  }

 private:
  int console_;
};

class BadInput : public support::Scene {
 protected:
  /// What every function needs to succeed with good arguments.
  void set_scene();

  /// Calls every function with all that is bad and `wanted`, each in a scene in which nothing bad was accepted before,
  /// and gives what came to `check`.
  void call_all(
      bool (*wanted)(const Function& function, const Bad& bad),
      const std::function<void(const std::string& what, const Bad& bad, std::optional<int32_t> result)>& check);

  /// With good arguments.
  int32_t call(std::string_view function);
};

void group_create(const char* name, int32_t (*create)(int32_t unit, int32_t* group)) {
  int32_t group = -1;
  ASSERT_EQ(create(0, &group), 0) << name;
  chosen[name] = group;
}

Outcome quietly(const Function& function, const Bad& bad = {}) {
  const Silence silence;
  return function.run(function, bad);
}

int32_t BadInput::call(std::string_view function) {
  const auto all = input::functions();
  const auto found = std::find_if(all.begin(), all.end(), [&](const Function& one) { return one.name == function; });
  return found == all.end() ? SAI_E_UNAVAIL : quietly(*found).result.value_or(0);
}

void BadInput::set_scene() {
  support::start_chip();
  chosen.clear();
  EXPECT_EQ(sai_vlan_vport_init(unit), 0);
  for (const uint16_t vlan : {uint16_t{10}, uint16_t{20}, uint16_t{51}}) {
    EXPECT_EQ(sai_vlan_create(unit, vlan), 0);
    EXPECT_EQ(sai_vlan_port_add(unit, vlan, 3, 0), 0);
  }
  EXPECT_EQ(sai_mirror_init(unit), 0);
  EXPECT_EQ(sai_mirror_dest_port_set(unit, 1, 4), 0);
  EXPECT_EQ(sai_l3_enable_set(unit, 1), 0);
  group_create("ifp_l2", sai_ifp_l2_group_create);
  group_create("ifp_ipv4", sai_ifp_mac_ipv4_group_create);
  group_create("group", sai_system_ipv4_fp_create);
  group_create("ipv6", sai_system_ipv6_fp_create);
  group_create("mld_exclude", sai_fp_mld_exclude_group_create);
  group_create("vport", sai_fp_vport_group_create);
  group_create("ipsg", sai_ipsg_init);
  int32_t id = -1;
  EXPECT_EQ(sai_fp_ospf_ttl1_set(unit, 3, static_cast<int32_t>(chosen["group"]), &id), 0);
  chosen["entry"] = chosen["entry_id"] = id;
  EXPECT_EQ(sai_fp_vport_qualify_set(unit, 3, static_cast<int32_t>(chosen["vport"]), &id, 10), 0);
  chosen["vport_entry"] = id;
  const uint8_t mac[6] = {2};
  EXPECT_EQ(sai_bpdu_set(unit, mac, &id), 0);
  chosen["index"] = id;
  EXPECT_EQ(sai_vport_fp_policer_set(unit, static_cast<int32_t>(chosen["entry"]), &id, 64, 128, 4096, 4096), 0);
  chosen["policer_id"] = id;
  bcm_policer_config_t config{};
  bcm_policer_t unused = -1;
  EXPECT_EQ(bcm_policer_create(unit, &config, &unused), 0);
  chosen["unused_policer"] = unused;
  sai_vport_t vport{.priority = 3, .match_vlan = 51, .match_inner_vlan = 0, .vlan = 20, .outer_vlan = 0, .vport_id = 0};
  EXPECT_EQ(sai_vport_create(unit, 3, &vport), 0);
  chosen["vport_id"] = vport.vport_id;
  // What there is to delete, to read and to change is made by what makes it, with its good arguments.
  for (const char* const maker : {"sai_stg_create",
                                  "sai_stg_vlan_add",
                                  "sai_l2_mac_entry_add",
                                  "sai_trunk_create",
                                  "sai_mirror_dest_port_set",
                                  "sai_mirror_source_port_set",
                                  "sai_vlan_translate_add",
                                  "sai_vlan_dtag_add",
                                  "sai_vlan_dtag_range_add",
                                  "sai_vlan_mac_add",
                                  "sai_vlan_ip_subnet_add",
                                  "sai_vlan_ipv6_subnet_add",
                                  "sai_l3_intf_create",
                                  "sai_l3_host_route_create",
                                  "sai_l3_subnet_route_create",
                                  "sai_ipmc_add",
                                  "sai_ipv6_ipmc_add",
                                  "sai_lldp_set",
                                  "sai_port_protocol_vlan_add",
                                  "sai_register_l2_service"})
    EXPECT_EQ(call(maker), 0) << maker;
}

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
