// Every function of sai.h with every argument bad in turn: nothing crashes, nothing outside the caller's memory is
// touched, and what cannot be is refused.
#include <bcm/l2.h>
#include <bcm/policer.h>
#include <bcm/trunk.h>

#include <algorithm>
#include <climits>
#include <map>
#include <set>
#include <stdexcept>

#include "input/arguments.h"
#include "support/scene.h"
#include "support/start.h"

namespace {

/// The ids that the chip chose when the scene was set, by name.
std::map<std::string, int64_t, std::less<>> chosen;

constexpr int64_t group_ip = 0xE1020304;

}  // namespace

int64_t input::good(std::string_view function, std::string_view name) {
  // What is not the same everywhere.
  static const std::map<std::string, std::string, std::less<>> aliases = {
      {"sai_acl_l2_entry_install.group", "ifp_l2"},
      {"sai_acl_std_l3_entry_install.group", "ifp_ipv4"},
      {"sai_acl_ext_l3_entry_install.group", "ifp_ipv4"},
      {"sai_acl_l2_l3_entry_install.group", "ifp_ipv4"},
      {"sai_fp_dhcpv6_req_to_cpu_set.group", "ipv6"},
      {"sai_fp_mld_packet_to_cpu.group", "ipv6"},
      {"sai_fp_mld_packet_exclude_filter_set.group", "mld_exclude"},
      {"sai_fp_vport_qualify_set.group", "vport"},
      {"sai_fp_vport_qualify_action.group", "vport"},
      {"sai_fp_vport_qualify_action.entry", "vport_entry"},
      {"sai_ipsg_verify_config.group", "ipsg"},
      {"sai_ipsg_verify_config.entry", "none"},
      {"sai_ipsg_parameter_config.group", "ipsg"},
      {"sai_ipsg_parameter_config.entry", "none"},
      {"sai_multicast_egress_add.group", "group_ip"},
      {"sai_multicast_egress_del.group", "group_ip"},
      {"sai_multicast_destroy.group", "group_ip"},
      {"sai_ipmc_add.group", "group_ip"},
      {"sai_ipv6_ipmc_add.group", "group_ip6"},
      {"sai_ipv6_multicast_egress_del.group", "group_ip6"},
      {"sai_ipv6_multicast_destroy.group", "group_ip6"},
      {"sai_trunk_create.flags", "with_id"},
      {"sai_l2_mac_learn_limit_set.flags", "port_scope"},
      {"sai_l2_mac_learn_limit_get.flags", "port_scope"},
      {"sai_vport_create.vlan", "user_vlan"},
      {"sai_mirror_dest_port_unset.session", "unused_session"},
      {"sai_vport_fp_policer_destroy.policer_id", "unused_policer"},
      {"sai_vlan_ip_subnet_add.ip", "network_subnet"},
      {"sai_vlan_ip_subnet_add.mask", "network_mask"},
      {"sai_vlan_ip_subnet_del.ip", "network_subnet"},
      {"sai_vlan_ip_subnet_del.mask", "network_mask"},
      {"sai_vport_destroy.vlan", "user_vlan"},
  };
  // clang-format off
  static const std::map<std::string, int64_t, std::less<>> values = {
      {"unit", 0}, {"port", 3}, {"target", 4}, {"dest_port", 4}, {"port_out", 0},
      {"vlan", 10}, {"vid", 10}, {"user_vlan", 20}, {"user_vid", 20}, {"report_vid", 20}, {"old_vid", 31},
      {"new_vid", 32}, {"inner_vid", 33}, {"outer_vid", 34}, {"inner_lo", 41}, {"inner_hi", 44}, {"match_vlan", 51},
      {"match_inner_vlan", 0}, {"outer_vlan", 0},
      {"stg", 2}, {"tid", 1}, {"trunk", 1}, {"session", 0}, {"netif_id", 2}, {"module", 0}, {"destination", SAI_LOG_FILE},
      {"mode", 1}, {"direction", 0}, {"selector", 0}, {"psc", 0}, {"type", 1}, {"ip_type", 2}, {"tos_mode", 1},
      {"frame_type", 1}, {"ether_type", 0x0800}, {"fec_type", 1}, {"dfe_type", 1}, {"pf_type", 1}, {"tap", 1},
      {"state", 4}, {"ip_protocol", 6}, {"command", 36996}, {"action", 1},
      {"enable", 1}, {"enabled", 1}, {"disable", 1}, {"tagged", 1}, {"up", 0}, {"dtag", 0}, {"autoneg", 1},
      {"duplex", 1}, {"speed", 1000}, {"pause_tx", 1}, {"pause_rx", 1}, {"size", 1518}, {"ifg", 96},
      {"rate", 64}, {"burst", 64}, {"pps", 64}, {"seconds", 300}, {"limit", 10}, {"count", 0}, {"delay", 0},
      {"weights", 1}, {"prio", 3}, {"egress_prio", 3}, {"egress_priority", 3}, {"priority", 3}, {"prefix", 64},
      {"ckbits_sec", 64}, {"pkbits_sec", 128}, {"cburst_bytes", 4096}, {"pburst_bytes", 4096},
      {"member_bitmap", 3}, {"member_count", 2}, {"flags", 0}, {"level", 7}, {"rv", 0}, {"facility", 8},
      {"syslog_options", 0}, {"ignored", 0}, {"value", 0}, {"value1", 0}, {"value2", 0}, {"avg_len", 16},
      {"max_len", 16}, {"max", 0}, {"current", 0}, {"query", 0}, {"scope_id", 0}, {"is_vport", 0},
      {"phy_addr", 3}, {"reg", 2}, {"devad", 1}, {"data", 0}, {"pre", 1}, {"main", 1}, {"post", 1}, {"post2", 1},
      {"post3", 1}, {"fir", 0}, {"pf", 0}, {"taps", 0}, {"values", 0},
      {"ip", 0x0A00000A}, {"subnet", 0x0A010000}, {"mask", 0xFFFF0000}, {"nexthop_ip", 0x0A00000A},
      {"src_ip", 0x0A00000A}, {"src_ip_mask", 0xFFFFFFFF}, {"dst_ip", 0}, {"dst_ip_mask", 0}, {"ip6", 0x20},
      {"src_ip6", 0x20}, {"dst_ip6", 0x20}, {"src_ip6_mask", 0xFF}, {"dst_ip6_mask", 0xFF}, {"source", 0x20},
      {"mac", 2}, {"router_mac", 6}, {"host_mac", 2}, {"nexthop_mac", 2}, {"system_mac", 2}, {"src_mac", 2},
      {"dst_mac", 2}, {"src_mac_mask", 0xFF}, {"dst_mac_mask", 0xFF}, {"ether_type_mask", 0xFFFF},
      {"vlan_id", 10}, {"vlan_mask", 0xFFF}, {"vlan_pri", 1}, {"vlan_pri_mask", 7}, {"l4_src_port", 80},
      {"l4_dst_port", 80}, {"l4_src_port_mask", 0xFFFF}, {"l4_dst_port_mask", 0xFFFF}, {"ip_protocol_mask", 0xFF},
      {"tos_value", 1}, {"reserved", 0}, {"reserved1", 0}, {"reserved2", 0}, {"unread0", 0}, {"unread1", 0},
      {"unread2", 0},
      {"none", 0}, {"group_ip", group_ip}, {"group_ip6", 0xFF}, {"unused_session", 1}, {"network_subnet", 0x010A}, {"network_mask", 0xFFFF},
      {"with_id", BCM_TRUNK_FLAG_WITH_ID},
      {"port_scope", BCM_L2_LEARN_LIMIT_PORT},
  };
  // clang-format on
  const std::string both = std::string(function) + '.' + std::string(name);
  const auto alias = aliases.find(both);
  const std::string_view key = alias == aliases.end() ? name : std::string_view(alias->second);
  if (const auto found = chosen.find(key); found != chosen.end()) return found->second;
  if (const auto found = values.find(key); found != values.end()) return found->second;
  ADD_FAILURE() << both << " has no good value here";
  return 0;
}

namespace {

using input::Bad;
using input::Field;
using input::Function;
using input::Outcome;
using input::Parameter;

/// Numbers at the edges of ports, VLANs, tables, bitmaps and types. Each goes in cut to the argument's type.
constexpr int64_t numbers[] = {INT32_MIN, -1,   0,    1,    7,     8,     31,        32,        63,        64,
                               127,       128,  255,  256,  4095,  4096,  65535,     65536,     INT32_MAX, 0x80000000,
                               0xFFFFFFFE};

/// A text that is too long for everything.
const std::string long_text(5000, 'x');
const char* const texts[] = {"", "%s%s%s%s%n", "\xFF\xFE", "led", "led 4294967296 on", "emergencies!", long_text.c_str()};

/// Which numbers cannot be for what an argument or a field is called.
[[maybe_unused]] std::span<const int64_t> impossible(std::string_view name) {
  static constexpr int64_t ports[] = {-1, 255, 256, 65535};
  static constexpr int64_t vlans[] = {0, 4096, 65535};
  static constexpr int64_t units[] = {INT32_MIN, -1, 1, 255, 65535, INT32_MAX};
  static constexpr int64_t ids[] = {-1, 65535, INT32_MAX};
  const auto is_one_of = [name](std::initializer_list<std::string_view> names) {
    return std::find(names.begin(), names.end(), name) != names.end();
  };
  if (name == "unit") return units;
  if (is_one_of({"port", "target", "dest_port"})) return ports;
  if (name.starts_with("vlan") || name.ends_with("vlan") || name.ends_with("vid") || name.starts_with("inner_"))
    return vlans;
  if (is_one_of({"stg", "tid", "trunk", "session", "group", "entry", "entry_id", "policer_id", "index", "vport_id"}))
    return ids;
  return {};
}

/// Whether the function trusts its caller with that argument.
bool is_trusted(const Function& function, const Parameter& parameter) {
  const std::string_view name = function.name;
  return name == "close_sai_log" || (name == "sai_log_set_level" && parameter.name == std::string_view("destination"));
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

std::string name_of(const Function& function, const Bad& bad) {
  const Parameter& parameter = function.parameters[bad.parameter];
  return std::string(function.name) + ' ' + parameter.name + (bad.field != nullptr ? "." : "") +
         (bad.field != nullptr ? bad.field->name : "");
}

std::string value_of(const Bad& bad) {
  if (bad.is_null) return "null";
  return bad.text != nullptr ? "\"" + std::string(bad.text).substr(0, 20) + '"' : std::to_string(bad.number);
}

class BadInput : public support::Scene {
 protected:
  /// What every function needs to succeed with good arguments.
  void set_scene();

  /// The bad calls that were accepted. Each function's first call has a new scene, and so has one after an acceptance.
  std::multimap<std::string, std::string> accepted_of(const Function& function);
};

void group_create(const char* name, int32_t (*create)(int32_t unit, int32_t* group)) {
  int32_t group = -1;
  ASSERT_EQ(create(0, &group), 0) << name;
  chosen[name] = group;
}

const Function& function_called(std::string_view name) {
  const auto all = input::functions();
  const auto found = std::find_if(all.begin(), all.end(), [&](const Function& one) { return one.name == name; });
  if (found == all.end()) throw std::invalid_argument(std::string(name));
  return *found;
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
  for (const char* const maker :
       {"sai_stg_create", "sai_stg_vlan_add", "sai_l2_mac_entry_add", "sai_trunk_create", "sai_mirror_dest_port_set",
        "sai_mirror_source_port_set", "sai_vlan_translate_add", "sai_vlan_dtag_add", "sai_vlan_dtag_range_add",
        "sai_vlan_mac_add", "sai_vlan_ip_subnet_add", "sai_vlan_ipv6_subnet_add", "sai_l3_intf_create",
        "sai_l3_host_route_create", "sai_l3_subnet_route_create", "sai_ipmc_add", "sai_ipv6_ipmc_add", "sai_lldp_set",
        "sai_port_protocol_vlan_add", "sai_register_l2_service"}) {
    const Function& function = function_called(maker);
    EXPECT_EQ(function.run(function, {}).result, 0) << maker;
  }
}

std::multimap<std::string, std::string> BadInput::accepted_of(const Function& function) {
  std::multimap<std::string, std::string> accepted;
  set_scene();
  bool is_new = true;
  for (const Bad& bad : all_bad(function)) {
    if (!is_new) set_scene();
    if (getenv("BI_V")) fprintf(stderr, "%s %s\n", name_of(function, bad).c_str(), value_of(bad).c_str());
    const Outcome outcome = function.run(function, bad);
    EXPECT_TRUE(outcome.memory_intact) << name_of(function, bad) << ' ' << value_of(bad);
    is_new = outcome.result.value_or(0) < 0;
    if (!is_new) accepted.emplace(name_of(function, bad), value_of(bad));
  }
  return accepted;
}

TEST_F(BadInput, GoodArgumentsAreAccepted) {
  for (const Function& function : input::functions()) {
    set_scene();
    const Outcome outcome = function.run(function, {});
    EXPECT_TRUE(outcome.memory_intact) << function.name;
    const int32_t result = outcome.result.value_or(0);
    EXPECT_TRUE(result >= 0 || result == SAI_E_EXISTS) << function.name << ' ' << result;
  }
}


TEST_F(BadInput, NullPointersAreRefused) {
  std::string all;
  for (const Function& function : input::functions()) for (auto [what, value] : accepted_of(function)) all += what + ' ' + value + '\n';
  puts(all.c_str());
}

}  // namespace
