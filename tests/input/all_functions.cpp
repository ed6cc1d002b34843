#include "input/all_functions.h"

#include <bcm/policer.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <climits>

#include "support/start.h"

namespace input {

namespace {

/// Numbers at the edges of ports, VLANs, tables, bitmaps and types. Each goes in cut to the argument's type.
constexpr int64_t numbers[] = {INT32_MIN, -1,  0,   1,   7,    8,    31,    32,    63,        64,         127,
                               128,       255, 256, 511, 4095, 4096, 65535, 65536, INT32_MAX, 0x80000000, 0xFFFFFFFE};

/// Texts that are too long for everything, or that somebody might take for more than a text.
const std::string long_text(5000, 'x');
const char* const texts[] = {
    "", "%s%s%s%s%n", "\xFF\xFE", "led", "led 4294967296 on", "emergencies!", long_text.c_str()};

/// Whether the function trusts its caller with that argument.
bool is_trusted(const Function& function, const Parameter& parameter) {
  const std::string_view name = function.name;
  return name == "close_sai_log" || (name == "sai_log_set_level" && parameter.name == std::string_view("destination"));
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

void group_create(const char* name, int32_t (*create)(int32_t unit, int32_t* group)) {
  int32_t group = -1;
  ASSERT_EQ(create(0, &group), 0) << name;
  chosen[name] = group;
}

}  // namespace

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

Outcome quietly(const Function& function, const Bad& bad) {
  const Silence silence;
  return function.run(function, bad);
}

int32_t AllFunctions::call(std::string_view function) {
  const auto all = functions();
  const auto found = std::find_if(all.begin(), all.end(), [&](const Function& one) { return one.name == function; });
  return found == all.end() ? SAI_E_UNAVAIL : quietly(*found).result.value_or(0);
}

void AllFunctions::set_scene() {
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

}  // namespace input
